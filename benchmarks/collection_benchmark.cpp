// The Data Collection screen on large surveys: the respondent list until it is painted, a page of
// it scrolled, and a page turn of manual entry. Each stands beside the same done with bare SQLite
// statements on the same file.
//
//   collection_benchmark --benchmark_filter=100000   without the larger survey, which takes 1 GB
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <SQLiteCpp/SQLiteCpp.h>
#include <benchmark/benchmark.h>

#include <map>
#include <memory>

#include "collection/frmManualResponse.h"
#include "collection/picCollect.h"
#include "collection/picRespondentList.h"
#include "generate_survey.h"
#include "platform/Grid.h"
#include "platform/QtDialogs.h"

using namespace pollarix;

namespace {

constexpr int RowsOfPage = 25;
constexpr const char* ListRespondents =
    "SELECT id FROM respondent ORDER BY submitteddate DESC, id DESC";

QString Survey(int respondents) {
    static const QTemporaryDir directory;
    static std::map<int, QString> made;
    QString& path = made[respondents];
    if (path.isEmpty()) {
        path = directory.filePath(QString("%1.plxs").arg(respondents));
        benchmarks::GenerateSurvey(POLLARIX_DATA_DIR "/blank.mdb", path, respondents);
    }
    return path;
}

// Memory of this process alone, in megabytes.
double OwnMemory() {
    QFile file("/proc/self/status");
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    for (const QByteArray& line : file.readAll().split('\n'))
        if (line.startsWith("RssAnon:"))
            return line.simplified().split(' ').value(1).toDouble() / 1024;
    return 0;
}

struct Screen {
    explicit Screen(const QString& path) {
        state.SurveyConnection.Open(path);
        collect.resize(1024, 690);
        collect.LayOut(1024, 768);
        List().ExampleQuestionEventsOn = true;
        List().PrepareGrid();
        List().WriteHeads();
        List().WidenGrid();
        collect.show();
        QApplication::processEvents();
    }

    picRespondentList& List() { return collect.RespondentList(); }
    Grid& Respondents() { return *collect.findChild<Grid*>("gRespondents"); }
    // Lists all respondents and paints them.
    void Show() {
        List().RefreshRespondentList(1, 0);
        collect.repaint();
        QApplication::processEvents();
    }

    QTemporaryDir directory;
    Settings settings{directory.path() + "/settings"};
    QtDialogs dialogs;
    ApplicationState state{Directories{POLLARIX_DATA_DIR, directory.path()}, settings, dialogs};
    picCollect collect{state, nullptr};
};

void ListOnScreen(benchmark::State& state) {
    Screen screen(Survey(static_cast<int>(state.range(0))));
    const double before = OwnMemory();
    for ([[maybe_unused]] const auto run : state)
        screen.Show();
    state.counters["MB"] = OwnMemory() - before;
}

void ListOnScreen_BareSQLite(benchmark::State& state) {
    const SQLite::Database file(Survey(static_cast<int>(state.range(0))).toStdString());
    for ([[maybe_unused]] const auto run : state) {
        std::vector<std::int64_t> ids;
        for (SQLite::Statement row(file, ListRespondents); row.executeStep();)
            ids.push_back(row.getColumn(0).getInt64());
        SQLite::Statement row(file,
                              "SELECT submitteddate, source, SimpleResponse FROM respondent "
                              "LEFT JOIN respondent_responses ON RespondentID = respondent.id "
                              "AND QuestionID = 1 WHERE respondent.id = ?");
        for (int i = 0; i < RowsOfPage; ++i) {
            row.bind(1, ids[static_cast<std::size_t>(i)]);
            row.executeStep();
            benchmark::DoNotOptimize(row.getColumn(2).getString());
            row.reset();
        }
    }
}

void ScrollAPage(benchmark::State& state) {
    Screen screen(Survey(static_cast<int>(state.range(0))));
    screen.Show();
    for ([[maybe_unused]] const auto run : state) {
        QTest::keyClick(&screen.Respondents(), Qt::Key_PageDown);
        screen.Respondents().viewport()->repaint();
    }
}

// Page 1, an open ended question, stored again and again.
void PageTurn(benchmark::State& state) {
    Screen screen(Survey(static_cast<int>(state.range(0))));
    ManualEntryState entry;
    entry.CurrentRespondentID = 1;
    frmManualResponse window(screen.state, entry, nullptr);
    window.show();
    auto& next = *window.findChild<QPushButton*>("cmdDCAnswersNext");
    for ([[maybe_unused]] const auto run : state) {
        next.click();
        window.repaint();
        state.PauseTiming();
        entry.CurrentPosition = 1;
        window.RespondentAnswers_ShowQuestion();
        state.ResumeTiming();
    }
}

void PageTurn_BareSQLite(benchmark::State& state) {
    SQLite::Database file(Survey(static_cast<int>(state.range(0))).toStdString(),
                          SQLite::OPEN_READWRITE);
    file.exec("PRAGMA synchronous = FULL");
    SQLite::Statement remove(
        file, "DELETE FROM respondent_responses WHERE RespondentID = 1 AND QuestionID = 1");
    SQLite::Statement add(file, "INSERT INTO respondent_responses (RespondentID, QuestionID, "
                                "ResponseID, SimpleResponse) VALUES (1, 1, 1, 'Soup')");
    for ([[maybe_unused]] const auto run : state) {
        SQLite::Transaction turn(file);
        remove.exec();
        remove.reset();
        add.exec();
        add.reset();
        turn.commit();
    }
}

void Sizes(benchmark::internal::Benchmark* measured) {
    measured->Arg(100000)->Arg(1000000)->Unit(benchmark::kMillisecond);
}

BENCHMARK(ListOnScreen)->Apply(Sizes);
BENCHMARK(ListOnScreen_BareSQLite)->Apply(Sizes);
BENCHMARK(ScrollAPage)->Apply(Sizes);
BENCHMARK(PageTurn)->Apply(Sizes);
BENCHMARK(PageTurn_BareSQLite)->Apply(Sizes);

} // namespace
