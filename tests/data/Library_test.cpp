// The question library as it lies beside the program.
#include <SQLiteCpp/SQLiteCpp.h>
#include <gtest/gtest.h>

#include <string>

#include "support/Places.h"

namespace pollarix::test {
namespace {

SQLite::Database Library() {
    return SQLite::Database(DataFile("Library.mdb").toStdString(), SQLite::OPEN_READONLY);
}

TEST(Library, HoldsEnoughQuestionsInEachCategory) {
    SQLite::Database library = Library();
    EXPECT_GE(library.execAndGet("SELECT count(*) FROM category").getInt(), 8);
    EXPECT_GE(library.execAndGet("SELECT count(*) FROM question").getInt(), 80);
    SQLite::Statement thin(library, "SELECT c.name FROM category AS c LEFT JOIN question AS q ON "
                                    "q.categoryid = c.id GROUP BY c.id HAVING count(q.id) < 10");
    while (thin.executeStep()) {
        ADD_FAILURE() << thin.getColumn(0).getString() << " has fewer than ten questions";
    }
}

TEST(Library, TextsArePlainDistinctAndWhole) {
    SQLite::Database library = Library();
    // A text with a brace or backslash could be taken for rich text; one that ends in no question
    // mark was cut.
    SQLite::Statement odd(library,
                          "SELECT name FROM question WHERE name IS NULL OR name <> trim(name) OR "
                          "name GLOB '*[{}\\]*' OR name NOT LIKE '%?' OR name LIKE '%  %' "
                          "UNION ALL SELECT name FROM question GROUP BY name HAVING count(*) > 1 "
                          "UNION ALL SELECT name FROM question WHERE categoryid NOT IN (SELECT id "
                          "FROM category)");
    while (odd.executeStep()) {
        ADD_FAILURE() << odd.getColumn(0).getString();
    }
}

} // namespace
} // namespace pollarix::test
