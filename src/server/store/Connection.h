// One connection to the database, with its statements prepared once and kept. For one thread at a
// time. Failures of SQLite come out as StoreFull and StoreFailure.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <unordered_map>

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include "server/store/Records.h"

namespace pollarix::server {

// Bound and read as a blob.
struct Bytes {
    std::string_view bytes;
};

// A failure of SQLite in the store's terms.
[[noreturn]] void ThrowStoreFailure(const SQLite::Exception& failure);

// A statement that runs. It lets go of what it holds at its end.
class Query {
  public:
    explicit Query(SQLite::Statement& statement) : statement_(statement) {}
    ~Query() { statement_.tryReset(); }
    Query(const Query&) = delete;
    Query& operator=(const Query&) = delete;

    bool Next() { return statement_.executeStep(); }
    // For statements without rows: how many rows it changed.
    int Run() { return statement_.exec(); }
    std::int64_t Number(int column) const { return statement_.getColumn(column).getInt64(); }
    bool Flag(int column) const { return Number(column) != 0; }
    // Text or a blob.
    std::string Text(int column) const { return statement_.getColumn(column).getString(); }

  private:
    SQLite::Statement& statement_;
};

class Connection {
  public:
    enum class Use { Read, Write };
    Connection(const std::string& path, Use use);

    // sql is a literal: the statement is kept by its place in memory. What is bound has to live as
    // long as the query.
    template <typename... Values> Query Ask(const char* sql, const Values&... values) {
        SQLite::Statement& statement = Prepared(sql);
        int index = 0;
        (Bind(statement, ++index, values), ...);
        return Query(statement);
    }
    void Do(const char* sql) { Query(Prepared(sql)).Run(); }

    SQLite::Database& Raw() { return database_; }
    Id LastId() const { return database_.getLastInsertRowid(); }
    bool InTransaction() const { return sqlite3_get_autocommit(database_.getHandle()) == 0; }

  private:
    SQLite::Statement& Prepared(const char* sql);
    template <typename Value>
    static void Bind(SQLite::Statement& statement, int index, const Value& value) {
        if constexpr (std::is_same_v<Value, Bytes>)
            statement.bindNoCopy(index, value.bytes.empty() ? "" : value.bytes.data(),
                                 static_cast<int>(value.bytes.size()));
        else if constexpr (std::is_same_v<Value, std::string>)
            statement.bindNoCopy(index, value);
        else
            statement.bind(index, static_cast<std::int64_t>(value));
    }

    SQLite::Database database_;
    std::unordered_map<const char*, std::unique_ptr<SQLite::Statement>> statements_;
};

} // namespace pollarix::server
