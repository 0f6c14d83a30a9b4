// What the database classes share: one open file and the statements kept for it. Included by the
// sources of Database.h only.
#pragma once

#include <QByteArray>

#include <sqlite3.h>

#include <array>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/base/Failure.h"
#include "platform/database/Database.h"

namespace pollarix {

// One prepared statement. Whoever runs it has it alone until it is released; closing the connection
// takes `statement` away under every user, so it is tested before use.
struct DbStatement {
    ~DbStatement() { sqlite3_finalize(statement); }

    std::string sql;
    sqlite3_stmt* statement = nullptr;
    int parameters = 0;
    bool readOnly = false;
    bool inUse = false;
    bool hasRow = false;
    std::vector<std::string> fields;
    int preparations = 0;          // how often SQLite had compiled it when `fields` was read
    std::vector<QByteArray> texts; // bound without a copy, so they live as long as the binding

    // Reads the field names anew if the table changed under the statement.
    void RefreshFields();
    int FieldIndex(const char* name) const; // -1 for none; any case
};

struct Connection::Handle {
    Handle(); // in memory
    Handle(const QString& path, Mode mode);
    ~Handle();

    bool IsOpen() const { return database != nullptr; }
    sqlite3* Raw() const { return database.get(); }
    // Commits a batch under way, finalises all statements and closes. A failure of the commit is
    // thrown after all that.
    void Close();

    std::shared_ptr<DbStatement> Acquire(const char* sql);
    void Bind(DbStatement& statement, std::span<const DbValue> values);
    // Runs to the next row or the end.
    void Step(DbStatement& statement);
    static void Release(DbStatement& statement) noexcept;

    void Begin();
    // Ends the batch; what can't be committed is rolled back and the failure thrown.
    void Commit();
    void RollBack() noexcept;
    // A batch within the batch. What SQLite has rolled back by itself has none to end.
    void OpenNested();
    void CloseNested();
    void TakeBackNested() noexcept;
    // Throws what SQLite says, and notes when it has rolled back the batch.
    [[noreturn]] void Fail();

    QString path;
    struct Closer {
        void operator()(sqlite3* open) const { sqlite3_close(open); }
    };
    std::unique_ptr<sqlite3, Closer> database;
    bool inBatch = false;
    // Why the batch is lost, while one is under way or after Close.
    std::optional<Failure> batchFailure;

  private:
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view text) const {
            return std::hash<std::string_view>()(text);
        }
    };
    struct Recent {
        const char* key = nullptr;
        std::shared_ptr<DbStatement> statement;
    };

    void OpenAt(const char* name, int access);
    void Configure(Mode mode);
    void RunText(const char* sql); // gives no rows, and is not kept
    void RefuseActiveSchema();
    void DropUnusedStatements();
    std::shared_ptr<DbStatement> Prepare(const char* sql);

    std::unordered_map<std::string, std::vector<std::shared_ptr<DbStatement>>, Hash,
                       std::equal_to<>>
        statements_;
    std::size_t statementCount_ = 0;
    // By the address of the text, which for the usual literal never changes: spares hashing.
    std::array<Recent, 64> recent_;
};

// A statement held for the time of a scope.
class DbLease {
  public:
    DbLease(std::shared_ptr<Connection::Handle> handle, const char* sql)
        : handle_(std::move(handle)), statement_(handle_->Acquire(sql)) {}
    ~DbLease() { Connection::Handle::Release(*statement_); }
    DbLease(const DbLease&) = delete;
    DbLease& operator=(const DbLease&) = delete;

    Connection::Handle& Handle() const { return *handle_; }
    DbStatement& Statement() const { return *statement_; }
    bool IsUsable() const { return statement_->statement != nullptr; }

  private:
    std::shared_ptr<Connection::Handle> handle_;
    std::shared_ptr<DbStatement> statement_;
};

} // namespace pollarix
