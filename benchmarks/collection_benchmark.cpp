// The Data Collection screen on large surveys: the respondent list until it is painted, a page of
// it scrolled, and a page turn of manual entry. Each stands beside the same done with bare SQLite
// statements on the same file.
#include <QApplication>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTest>

#include <SQLiteCpp/SQLiteCpp.h>

#include <memory>

#include "Measuring.h"
#include "collection/frmManualResponse.h"
#include "collection/picCollect.h"
#include "collection/picRespondentList.h"
#include "platform/controls/Grid.h"
#include "platform/desktop/QtDialogs.h"

using namespace pollarix;
using namespace pollarix::benchmarks;

namespace {

constexpr int RowsOfPage = 25;
constexpr const char* ListRespondents =
    "SELECT id FROM respondent ORDER BY submitteddate DESC, id DESC";

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
    Screen screen(LargeSurvey(static_cast<int>(state.range(0))));
    const double before = OwnMemory();
    for ([[maybe_unused]] const auto run : state) {
        state.PauseTiming();
        screen.state.SurveyConnection.Run("UPDATE version SET version = version");
        state.ResumeTiming();
        screen.Show();
    }
    state.counters["MB"] = OwnMemory() - before;
}

// Once more, with nothing changed.
void ListAgain(benchmark::State& state) {
    Screen screen(LargeSurvey(static_cast<int>(state.range(0))));
    screen.Show();
    for ([[maybe_unused]] const auto run : state)
        screen.Show();
}

void ListOnScreen_BareSQLite(benchmark::State& state) {
    const SQLite::Database file(LargeSurvey(static_cast<int>(state.range(0))).toStdString());
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

// From evenly spread places, the last of them a page before the end.
void ScrollAPage(benchmark::State& state) {
    constexpr int Places = 20;
    Screen screen(LargeSurvey(static_cast<int>(state.range(0))));
    screen.Show();
    Grid& list = screen.Respondents();
    const int last = list.Rows() - 1 - 2 * RowsOfPage;
    int place = 0;
    for ([[maybe_unused]] const auto run : state) {
        state.PauseTiming();
        place = place % Places + 1;
        list.SetRow(static_cast<int>(std::int64_t{last} * place / Places));
        list.viewport()->repaint();
        state.ResumeTiming();
        QTest::keyClick(&list, Qt::Key_PageDown);
        list.viewport()->repaint();
    }
}

// Page 1, an open ended question, stored again and again.
void PageTurn(benchmark::State& state) {
    Screen screen(LargeSurvey(static_cast<int>(state.range(0))));
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
    SQLite::Database file(LargeSurvey(static_cast<int>(state.range(0))).toStdString(),
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

BENCHMARK(ListOnScreen)->Apply(Respondents);
BENCHMARK(ListAgain)->Apply(Respondents);
BENCHMARK(ListOnScreen_BareSQLite)->Apply(Respondents);
BENCHMARK(ScrollAPage)->Apply(Respondents);
BENCHMARK(PageTurn)->Apply(Respondents);
BENCHMARK(PageTurn_BareSQLite)->Apply(Respondents);

} // namespace
