#include "platform/database/Database.h"

#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>
#include <sqlite3.h>

#include "support/NumberOf.h"

using namespace pollarix;
using test::FailureOf;

namespace {

// What another program does to the file.
class Other {
  public:
    explicit Other(const QString& path) { sqlite3_open(path.toUtf8(), &database_); }
    ~Other() { sqlite3_close(database_); }
    void Run(const char* sql) {
        ASSERT_EQ(sqlite3_exec(database_, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(database_);
    }

  private:
    sqlite3* database_ = nullptr;
};

class Database : public testing::Test {
  protected:
    Database() {
        Other(path).Run("CREATE TABLE item(id INTEGER PRIMARY KEY AUTOINCREMENT, name TEXT,"
                        " size INTEGER, share REAL) STRICT");
        connection.Open(path);
    }
    std::int64_t Rows() { return connection.Count("SELECT count(*) FROM item"); }
    std::int64_t RowsOnDisk() {
        Connection other;
        other.Open(path, Connection::Mode::ReadOnly);
        return other.Count("SELECT count(*) FROM item");
    }

    QTemporaryDir dir;
    QString path = dir.filePath("Umfrage ü%1 #?.plxs");
    Connection connection;
};

} // namespace

TEST_F(Database, ValuesComeBackAsTheyWereWritten) {
    const QString text = u"\uFEFFO'Hara \\ { } عربي 👩‍👩‍👧 %1 ? :a\r\n"_qs +
                         QChar(0) + QString(10000, 'x');
    TableInsert insert(connection, "ITEM", {"Name", "size", "share"});
    EXPECT_EQ(insert.Add({text, INT64_MIN, 0.1}), 1);
    EXPECT_EQ(insert.Add({"", "12", 2}), 2);
    EXPECT_EQ(insert.Add({nullptr, nullptr, nullptr}), 3);

    Recordset rows = connection.Execute("SELECT * FROM item WHERE id >= ? ORDER BY id", {1});
    EXPECT_EQ(rows.Text("NAME"), text);
    EXPECT_EQ(rows.Integer("Size"), INT64_MIN);
    EXPECT_EQ(rows.Real("share"), 0.1);
    rows.MoveNext();
    EXPECT_FALSE(rows.IsNull("name"));
    EXPECT_EQ(rows.Text("name"), "");
    EXPECT_EQ(rows.Integer("size"), 12);
    rows.MoveNext();
    EXPECT_TRUE(rows.IsNull("name"));
    EXPECT_EQ(rows.NullToString("name"), "");
    EXPECT_EQ(FailureOf([&] { rows.Text("name"); }).Number(), failure::InvalidNull);
    rows.MoveNext();
    EXPECT_TRUE(rows.AtEnd());
    EXPECT_EQ(FailureOf([&] { rows.Text("name"); }).Number(), failure::NoCurrentRecord);
    EXPECT_EQ(FailureOf([&] { rows.Ordinal("other"); }).Number(), failure::InvalidArgument);
}

TEST_F(Database, ConversionsRoundHalfToEvenAndRefuseWhatIsNoNumber) {
    for (const auto& [sql, whole] :
         {std::pair("SELECT 0.5", 0), {"SELECT 1.5", 2}, {"SELECT -2.5", -2}})
        EXPECT_EQ(connection.Count(sql), whole) << sql;
    for (const auto& [sql, number] : {std::pair("SELECT '7'", failure::TypeMismatch),
                                      {"SELECT 1e19", failure::Overflow},
                                      {"SELECT NULL", failure::InvalidNull},
                                      {"SELECT 1 WHERE 0", failure::NoCurrentRecord},
                                      {"SELECT 1; SELECT 2", failure::InvalidArgument},
                                      {"SELECT ?", failure::InvalidArgument}})
        EXPECT_EQ(FailureOf([&] { connection.Count(sql); }).Number(), number) << sql;
    TableInsert insert(connection, "item", {"size"});
    const Failure refusal = FailureOf([&] { insert.Add({"twelve"}); });
    EXPECT_EQ(refusal.Source(), "SQLite");
    EXPECT_EQ(refusal.Description(), "cannot store TEXT value in INTEGER column item.size");
    EXPECT_EQ(insert.Add({7}), 1); // the refused row leaves the insert usable
}

TEST_F(Database, StatementsCanBeNestedInThemselvesAndTheTableMayChangeUnderThem) {
    for (int i = 1; i <= 3; ++i)
        connection.Run("INSERT INTO item(size) VALUES(?)", {i});
    const char* sql = "SELECT * FROM item ORDER BY id";
    int seen = 0;
    for (Recordset outer = connection.Execute(sql); !outer.AtEnd(); outer.MoveNext()) {
        for (Recordset inner = connection.Execute(sql); !inner.AtEnd(); inner.MoveNext())
            seen += static_cast<int>(outer.Integer("size") * inner.Integer("size"));
    }
    EXPECT_EQ(seen, 36);
    EXPECT_EQ(connection.Run("UPDATE item SET size = 9 WHERE size > ?", {1}), 2);

    Other(path).Run("ALTER TABLE item ADD COLUMN added TEXT DEFAULT 'new'");
    EXPECT_EQ(connection.Execute(sql).Text("added"), "new");

    // The same address with another text, and more texts than are kept.
    char buffer[64];
    for (int i = 0; i < 1000; ++i) {
        std::snprintf(buffer, sizeof buffer, "SELECT %d", i);
        ASSERT_EQ(connection.Count(buffer), i);
    }
}

TEST_F(Database, ClosingMakesRecordsetsEndAndEverythingElseFail) {
    connection.Run("INSERT INTO item(name) VALUES('a')");
    Recordset rows = connection.Execute("SELECT name FROM item");
    TableInsert insert(connection, "item", {"name"});
    EXPECT_EQ(FailureOf([&] { connection.Open(path); }).Number(), failure::InvalidArgument);
    connection.Close();
    EXPECT_TRUE(rows.AtEnd());
    EXPECT_EQ(FailureOf([&] { insert.Add({"b"}); }).Number(), failure::NoObject);
    EXPECT_EQ(FailureOf([&] { connection.Run("DELETE FROM item"); }).Number(), failure::NoObject);
    connection.Open(path);
    EXPECT_EQ(Rows(), 1);
}

TEST_F(Database, ABatchIsWrittenAsAWholeOrAsFarAsItGot) {
    {
        WriteBatch batch(connection);
        connection.Run("INSERT INTO item(size) VALUES(1)");
        {
            WriteBatch nested(connection);
            connection.Run("INSERT INTO item(size) VALUES(2)");
            nested.Commit();
        }
        EXPECT_EQ(RowsOnDisk(), 0);
        batch.Commit();
        EXPECT_EQ(RowsOnDisk(), 2);
    }
    {
        WriteBatch batch(connection);
        FailureOf([&] { // its own part alone
            WriteBatch nested(connection, WriteBatch::OnFailure::TakeBack);
            connection.Run("DELETE FROM item");
            connection.Run("INSERT INTO item(size) VALUES('x')");
        });
        EXPECT_EQ(Rows(), 2);
        WriteBatch nested(connection);
        connection.Run("DELETE FROM item");
        nested.TakeBack();
        batch.Commit();
    }
    EXPECT_EQ(RowsOnDisk(), 2);
    FailureOf([&] {
        WriteBatch batch(connection);
        connection.Run("INSERT INTO item(size) VALUES(3)");
        connection.Run("INSERT INTO item(size) VALUES('x')");
        batch.Commit();
    });
    EXPECT_EQ(RowsOnDisk(), 3);
    {
        WriteBatch batch(connection);
        connection.Run("INSERT INTO item(size) VALUES(4)");
        connection.Close();
        EXPECT_EQ(RowsOnDisk(), 4);
        connection.Open(path);
        connection.Run("INSERT INTO item(size) VALUES(5)");
        batch.Commit();
    }
    EXPECT_EQ(RowsOnDisk(), 5);
}

TEST_F(Database, ABatchThatTheDatabaseTookBackIsNotPassedOffAsWritten) {
    connection.Execute("PRAGMA max_page_count = 20"); // the disk is full soon
    WriteBatch batch(connection);
    TableInsert insert(connection, "item", {"name"});
    const Failure full = FailureOf([&] {
        for (;;)
            insert.Add({QString(1000, 'x')});
    });
    EXPECT_EQ(FailureOf([&] { insert.Add({nullptr}); }).Number(), full.Number());
    EXPECT_EQ(FailureOf([&] { batch.Commit(); }).Number(), full.Number());
    EXPECT_EQ(RowsOnDisk(), 0);

    // Nor is one that the closing could not write: a reader elsewhere stands in its way.
    Other reader(path);
    reader.Run("BEGIN; SELECT * FROM item");
    connection.Execute("PRAGMA busy_timeout = 20");
    WriteBatch lost(connection);
    connection.Run("DELETE FROM item");
    FailureOf([&] { connection.Close(); });
    EXPECT_EQ(FailureOf([&] { lost.Commit(); }).Description(), "database is locked");
}

// Damaged and hostile surveys are opened by the tests of the document and of the main window.
TEST_F(Database, WhatIsNoFileOfADatabaseIsRefusedWithItsReasonAndLeftAlone) {
    connection.Close();
    Other(dir.filePath("forged"))
        .Run("CREATE TABLE a(x); CREATE VIEW question AS SELECT * FROM a;"
             "PRAGMA writable_schema = ON; UPDATE sqlite_schema SET type = 'table',"
             " rootpage = 2 WHERE type = 'view'");
    for (const auto& [file, number, says] :
         {std::tuple(QString(), failure::FileNotFound, "File not found"),
          {":memory:", failure::FileNotFound, "File not found"},
          {"file:x?mode=memory", failure::FileNotFound, "File not found"},
          {"/dev/null", failure::PathOrFileAccess, "not a regular file"},
          {dir.filePath("forged"), SQLITE_CORRUPT, "malformed database schema"}}) {
        const bool existed = QFile::exists(file);
        const Failure refusal = FailureOf([&] { connection.Open(file); });
        EXPECT_EQ(refusal.Number(), number) << file.toStdString();
        EXPECT_TRUE(refusal.Description().contains(says)) << refusal.what();
        EXPECT_EQ(QFile::exists(file), existed);
    }
}
