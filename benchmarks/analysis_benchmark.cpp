// The Analyze screen of the real window on large surveys: opening the survey, counting and showing
// the summary, and the graph of a click. The summary stands beside its counts alone, done with bare
// SQLite statements on the same file. "MB" is what the process grew by in all of that.
#include <QAction>
#include <QApplication>
#include <QTemporaryDir>

#include <SQLiteCpp/SQLiteCpp.h>

#include <stdexcept>

#include "Measuring.h"
#include "platform/charts/Chart.h"
#include "platform/controls/ComboBox.h"
#include "platform/controls/Grid.h"
#include "platform/desktop/QtDialogs.h"
#include "shell/frmMain.h"

using namespace pollarix;
using namespace pollarix::benchmarks;

namespace {

// A user who opens the one survey.
class Chooser : public QtDialogs {
  public:
    QString path;
    FileDialogResult ShowOpen(const FileDialogRequest&) override { return {path, 0}; }
    MsgAnswer MsgBox(const QString& text, MsgIcon, MsgButtons) override {
        throw std::runtime_error(text.toStdString());
    }
};

struct Window {
    explicit Window(int respondents) {
        dialogs.path = LargeSurvey(respondents);
        window.resize(1024, 740);
        window.show();
        QApplication::processEvents();
        before = OwnMemory();
        Menu("mnuFileOpen");
    }
    void Menu(const char* name) {
        window.findChild<QAction*>(name)->trigger();
        window.repaint();
        QApplication::processEvents();
    }
    Grid& Summary() { return *window.findChild<Grid*>("gSummaryReport"); }

    QTemporaryDir directory;
    Settings settings{directory.path() + "/settings"};
    Chooser dialogs;
    ApplicationState state{Directories{POLLARIX_DATA_DIR, directory.path()}, settings, dialogs};
    frmMain window{state};
    double before = 0;
};

void Open(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] const auto run : state)
        window.Menu("mnuFileOpen");
}

// The first time after a change.
void Summary(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    for ([[maybe_unused]] const auto run : state) {
        state.PauseTiming();
        window.state.SurveyConnection.Run("UPDATE version SET version = version");
        state.ResumeTiming();
        window.Menu("mnuViewAnalyse");
    }
    state.counters["rows"] = window.Summary().Rows();
    state.counters["MB"] = OwnMemory() - window.before;
}

// Once more, with nothing changed.
void SummaryAgain(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    window.Menu("mnuViewAnalyse");
    for ([[maybe_unused]] const auto run : state)
        window.Menu("mnuViewAnalyse");
}

// The same counts with the best statements we know; no text is read.
void Summary_BareSQLite(benchmark::State& state) {
    const SQLite::Database file(LargeSurvey(static_cast<int>(state.range(0))).toStdString());
    for ([[maybe_unused]] const auto run : state) {
        SQLite::Statement all(file, "SELECT count(*) FROM respondent");
        all.executeStep();
        benchmark::DoNotOptimize(all.getColumn(0).getInt64());
        SQLite::Statement bySource(file, "SELECT count(*) FROM respondent WHERE source = ?");
        for (const char* source : {"Manual Entry", "Web Based", "Imported"}) {
            bySource.bind(1, source);
            bySource.executeStep();
            benchmark::DoNotOptimize(bySource.getColumn(0).getInt64());
            bySource.reset();
        }
        SQLite::Statement answers(file, "SELECT id, questionid FROM response");
        SQLite::Statement count(file, "SELECT count(*) FROM respondent_responses WHERE "
                                      "ResponseID = ? AND QuestionID = ?");
        SQLite::Statement points(file, "SELECT ResponseMatrixID, count(*) FROM "
                                       "respondent_responses WHERE ResponseID = ? "
                                       "GROUP BY ResponseMatrixID");
        while (answers.executeStep()) {
            const int question = answers.getColumn(1).getInt();
            const bool matrix = question == 5 || question == 9;
            SQLite::Statement& counting = matrix ? points : count;
            counting.bind(1, answers.getColumn(0).getInt64());
            if (!matrix)
                counting.bind(2, question);
            while (counting.executeStep())
                benchmark::DoNotOptimize(counting.getColumn(0).getInt64());
            counting.reset();
        }
    }
}

// One answer of a check question and of a matrix in turn, each drawn whole.
void ClickOnAnswer(benchmark::State& state) {
    Window window(static_cast<int>(state.range(0)));
    window.Menu("mnuViewAnalyse");
    window.window.findChild<ComboBox*>("cboGraphStyle")->SetListIndex(0);
    Grid& grid = window.Summary();
    const auto rowOf = [&](const QString& text) {
        for (int row = 1; row < grid.Rows(); ++row)
            if (grid.TextMatrix(row, 1).trimmed() == text)
                return row;
        throw std::runtime_error("no such answer");
    };
    const int rows[] = {rowOf("Answer 2 of question 3"), rowOf("Statement 2 of question 5")};
    int turn = 0;
    for ([[maybe_unused]] const auto run : state) {
        grid.SetRow(rows[turn++ % 2]);
        grid.Click();
        window.window.repaint();
        QApplication::processEvents();
    }
    state.counters["bars"] =
        static_cast<double>(window.window.findChild<Chart*>("c")->ChartData().size());
    state.counters["MB"] = OwnMemory() - window.before;
}

BENCHMARK(Open)->Apply(Respondents);
BENCHMARK(Summary)->Apply(Respondents);
BENCHMARK(SummaryAgain)->Apply(Respondents);
BENCHMARK(Summary_BareSQLite)->Apply(Respondents);
BENCHMARK(ClickOnAnswer)->Apply(Respondents);

} // namespace
