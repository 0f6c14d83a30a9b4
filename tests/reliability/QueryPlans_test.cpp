// How the database finds what the program asks for: every statement that runs on a survey during
// one walk through the real main window, recorded as it runs.
#include <QRegularExpression>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <set>
#include <string>

#include "platform/controls/Grid.h"
#include "reliability/Session.h"

using namespace pollarix;
using namespace pollarix::test;

namespace {

std::set<std::string> recorded;

int Record(unsigned, void*, void* statement, void*) {
    recorded.insert(sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
    return 0;
}

int RecordAll(sqlite3* database, char**, const sqlite3_api_routines*) {
    return sqlite3_trace_v2(database, SQLITE_TRACE_STMT, Record, nullptr);
}

const auto Entry = reinterpret_cast<void (*)()>(&RecordAll);

QString PlanOf(sqlite3* database, const std::string& sql) {
    sqlite3_stmt* explain = nullptr;
    QString plan;
    // One that is refused here asks for tables of the library.
    if (sqlite3_prepare_v2(database, ("EXPLAIN QUERY PLAN " + sql).c_str(), -1, &explain,
                           nullptr) == SQLITE_OK)
        while (sqlite3_step(explain) == SQLITE_ROW)
            plan += reinterpret_cast<const char*>(sqlite3_column_text(explain, 3)) + QString("\n");
    sqlite3_finalize(explain);
    return plan;
}

} // namespace

TEST(QueryPlans, NoStatementScansTheAnswersOrSortsWhatAnIndexOrders) {
    QTemporaryDir directory;
    QString survey;
    sqlite3_auto_extension(Entry);
    {
        Session session(directory.path());
        survey = session.survey;
        for (const Action action : Actions) {
            session.target = directory.filePath(QString::fromStdString(NameOf(action)));
            session.Around(action, [&] { session.Act(action); });
            session.dialogs.TakeTexts();
        }
        for (int form = 2; form < 7; ++form) { // for statistics programs
            session.dialogs.fileNames = {{directory.filePath(QString::number(form)), form}};
            session.Menu("mnuFileExport");
        }
        session.Menu("mnuViewAnalyse");
        auto* const summary = session.Find<Grid>("gSummaryReport");
        for (int row = 1; row < summary->Rows(); ++row) {
            summary->SetRow(row);
            summary->Click();
        }
        session.Menu("mnuAnalyseExplore");
        QTest::qWait(50);
    }
    sqlite3_cancel_auto_extension(Entry);

    sqlite3* database = nullptr;
    ASSERT_EQ(sqlite3_open(qPrintable(survey), &database), SQLITE_OK);
    int ofAnswers = 0;
    for (const std::string& sql : recorded) {
        const QString plan = PlanOf(database, sql);
        SCOPED_TRACE(sql + '\n' + plan.toStdString());
        const QString text = QString::fromStdString(sql).toLower();
        if (text.contains("from respondent_responses") || text.contains("join respondent_resp"))
            ++ofAnswers;
        // Whether open questions hold numbers, and how long their texts are: all are read.
        EXPECT_TRUE(text.endsWith("limit 1") || text.contains("simpleresponse <> ''") ||
                    !plan.contains(QRegularExpression("SCAN (respondent_responses|answer)\\b",
                                                      QRegularExpression::CaseInsensitiveOption)));
        if (text.startsWith("select count(*) from respondent_responses")) { // not in the table
            EXPECT_TRUE(plan.contains("COVERING INDEX"));
        }
        // The text of the numbers has no index, nor have the points: there are few of both.
        if (!text.contains("order by questionno") && !text.contains("from responsematrix order")) {
            EXPECT_FALSE(plan.contains("TEMP B-TREE"));
        }
    }
    sqlite3_close(database);
    EXPECT_GT(ofAnswers, 7) << "too little was done to be recorded";
}
