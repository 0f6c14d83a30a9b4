#include "platform/database/DatabaseHandle.h"

#include <QFile>
#include <QFileInfo>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <system_error>

namespace pollarix {

namespace {

constexpr int BusyTimeoutMs = 2000;
constexpr std::size_t MostStatements = 256;

// Looked at without opening the file: closing a second descriptor on it would give up the locks
// that another connection of this process holds.
void RequireReadableFile(const QString& path) {
    if (path.isEmpty())
        throw Failure(failure::FileNotFound, "File not found: no name is given");
    const auto refuse = [&](const std::error_code& why) {
        throw Failure(failure::PathOrFileAccess,
                      QString("%1: %2").arg(path, QString::fromLocal8Bit(why.message().c_str())));
    };
    std::error_code why;
    const auto status = std::filesystem::status(QFile::encodeName(path).toStdString(), why);
    if (status.type() == std::filesystem::file_type::not_found)
        throw Failure(failure::FileNotFound, QString("File not found: %1").arg(path));
    if (why)
        refuse(why);
    if (std::filesystem::is_directory(status))
        refuse(std::make_error_code(std::errc::is_a_directory));
    if (!std::filesystem::is_regular_file(status))
        throw Failure(failure::PathOrFileAccess, QString("%1: not a regular file").arg(path));
    if (!QFileInfo(path).isReadable())
        refuse(std::make_error_code(std::errc::permission_denied));
}

bool IsBlank(const char* text) {
    return text[std::strspn(text, " \t\r\n;")] == '\0';
}

} // namespace

void DbStatement::RefreshFields() {
    const int now = sqlite3_stmt_status(statement, SQLITE_STMTSTATUS_REPREPARE, 0) + 1;
    if (now == preparations)
        return;
    preparations = now;
    fields.clear();
    const int count = sqlite3_column_count(statement);
    for (int i = 0; i < count; ++i) {
        const char* name = sqlite3_column_name(statement, i);
        fields.emplace_back(name ? name : "");
    }
}

int DbStatement::FieldIndex(const char* name) const {
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (sqlite3_stricmp(fields[i].c_str(), name) == 0)
            return static_cast<int>(i);
    }
    return -1;
}

Connection::Handle::Handle() {
    OpenAt(":memory:", SQLITE_OPEN_READWRITE);
    Configure(Mode::ReadWriteTrusted);
}

Connection::Handle::Handle(const QString& openPath, Mode mode)
    // An absolute path is never one of the names with a meaning of their own to SQLite.
    : path(openPath) {
    RequireReadableFile(openPath);
    const QByteArray absolute = QFile::encodeName(QFileInfo(openPath).absoluteFilePath());
    OpenAt(absolute.constData(),
           mode == Mode::ReadOnly ? SQLITE_OPEN_READONLY : SQLITE_OPEN_READWRITE);
    Configure(mode);
    if (mode != Mode::ReadWriteTrusted)
        RefuseActiveSchema();
}

Connection::Handle::~Handle() {
    try {
        Close();
    } catch (const std::exception&) {
        // Nobody is left to tell.
    }
}

void Connection::Handle::OpenAt(const char* name, int access) {
    sqlite3* opened = nullptr;
    // The program has one thread, so that there is nothing to lock between threads.
    const int result = sqlite3_open_v2(name, &opened, access | SQLITE_OPEN_NOMUTEX, nullptr);
    database.reset(opened); // a refused one has to be closed as well
    if (result != SQLITE_OK)
        Fail();
    sqlite3_busy_timeout(Raw(), BusyTimeoutMs);
}

void Connection::Handle::RunText(const char* sql) {
    if (sqlite3_exec(Raw(), sql, nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail();
}

void Connection::Handle::Configure(Mode mode) {
    sqlite3* const raw = Raw();
    sqlite3_extended_result_codes(raw, 1);
    // The file may come from anywhere: nothing that lies in it may run.
    sqlite3_db_config(raw, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_ENABLE_VIEW, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_ENABLE_LOAD_EXTENSION, 0, nullptr);
    sqlite3_db_config(raw, SQLITE_DBCONFIG_ENABLE_FKEY, 0, nullptr);
    sqlite3_limit(raw, SQLITE_LIMIT_ATTACHED, 0);
    if (mode != Mode::ReadWriteTrusted)
        sqlite3_limit(raw, SQLITE_LIMIT_LENGTH, static_cast<int>(LongestText));
    RunText("PRAGMA cell_size_check = ON");
    RunText("PRAGMA synchronous = FULL");
    RunText("PRAGMA cache_size = -32000"); // KB; a large import then seldom spills
    if (mode != Mode::ReadOnly)
        RunText("PRAGMA journal_mode = DELETE");
}

// Compared with the texts as SQLite itself writes them, so that a forged type column hides nothing.
void Connection::Handle::RefuseActiveSchema() {
    const std::shared_ptr<DbStatement> check =
        Prepare("SELECT count(*) FROM sqlite_schema WHERE NOT ("
                "type = 'table' AND rootpage > 0 AND sql GLOB 'CREATE TABLE *' OR "
                "type = 'index' AND rootpage > 0 AND (sql IS NULL OR sql GLOB 'CREATE INDEX *' OR "
                "sql GLOB 'CREATE UNIQUE INDEX *'))");
    Step(*check);
    if (sqlite3_column_int64(check->statement, 0) > 0)
        throw Failure(failure::PathOrFileAccess,
                      "It holds views or triggers, which a survey file never has");
    // A column that is computed can give a million long texts from a file of a few pages.
    const std::shared_ptr<DbStatement> computed = Prepare(
        "SELECT count(*) FROM sqlite_schema AS item, pragma_table_xinfo(item.name) AS field "
        "WHERE item.type = 'table' AND field.hidden <> 0");
    Step(*computed);
    if (sqlite3_column_int64(computed->statement, 0) > 0)
        throw Failure(failure::PathOrFileAccess,
                      "It holds computed columns, which a survey file never has");
}

void Connection::Handle::Close() {
    if (!IsOpen())
        return;
    std::optional<Failure> failed;
    if (inBatch) {
        try {
            Commit();
        } catch (const Failure& failure) {
            failed = batchFailure = failure;
        }
    }
    for (auto& [sql, kept] : statements_) {
        for (const std::shared_ptr<DbStatement>& one : kept) {
            sqlite3_finalize(one->statement);
            one->statement = nullptr;
            one->hasRow = false;
        }
    }
    statements_.clear();
    recent_.fill({});
    database.reset();
    if (failed)
        throw *failed;
}

std::shared_ptr<DbStatement> Connection::Handle::Acquire(const char* sql) {
    Recent& recent = recent_[(reinterpret_cast<std::uintptr_t>(sql) >> 3) % recent_.size()];
    if (recent.key == sql && !recent.statement->inUse && recent.statement->sql == sql) {
        recent.statement->inUse = true;
        return recent.statement;
    }
    std::shared_ptr<DbStatement> found;
    const auto kept = statements_.find(std::string_view(sql));
    if (kept != statements_.end()) {
        const auto idle = std::find_if(kept->second.begin(), kept->second.end(),
                                       [](const auto& one) { return !one->inUse; });
        if (idle != kept->second.end())
            found = *idle;
    }
    if (!found) {
        if (statementCount_ >= MostStatements)
            DropUnusedStatements();
        found = Prepare(sql);
        statements_[found->sql].push_back(found);
        ++statementCount_;
    }
    recent = {sql, found};
    found->inUse = true;
    return found;
}

void Connection::Handle::DropUnusedStatements() {
    recent_.fill({});
    statementCount_ = 0;
    for (auto kept = statements_.begin(); kept != statements_.end();) {
        std::erase_if(kept->second, [](const auto& one) { return !one->inUse; });
        statementCount_ += kept->second.size();
        kept = kept->second.empty() ? statements_.erase(kept) : std::next(kept);
    }
}

std::shared_ptr<DbStatement> Connection::Handle::Prepare(const char* sql) {
    auto made = std::make_shared<DbStatement>();
    made->sql = sql;
    const char* rest = nullptr;
    if (sqlite3_prepare_v3(Raw(), sql, static_cast<int>(made->sql.size()) + 1,
                           SQLITE_PREPARE_PERSISTENT, &made->statement, &rest) != SQLITE_OK)
        Fail();
    if (!made->statement || !IsBlank(rest))
        throw Failure(failure::InvalidArgument,
                      QString("Not one statement: %1").arg(QString::fromUtf8(sql)));
    made->parameters = sqlite3_bind_parameter_count(made->statement);
    made->readOnly = sqlite3_stmt_readonly(made->statement) != 0;
    made->RefreshFields();
    return made;
}

void Connection::Handle::Bind(DbStatement& statement, std::span<const DbValue> values) {
    if (static_cast<int>(values.size()) != statement.parameters)
        throw Failure(failure::InvalidArgument, QString("%1 values for %2 places in: %3")
                                                    .arg(values.size())
                                                    .arg(statement.parameters)
                                                    .arg(QString::fromStdString(statement.sql)));
    statement.texts.resize(values.size());
    sqlite3_stmt* const raw = statement.statement;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const int place = static_cast<int>(i) + 1;
        const DbValue::Variant& value = values[i].Value();
        int result = SQLITE_OK;
        if (const auto* whole = std::get_if<std::int64_t>(&value)) {
            result = sqlite3_bind_int64(raw, place, *whole);
        } else if (const auto* real = std::get_if<double>(&value)) {
            result = sqlite3_bind_double(raw, place, *real);
        } else if (const auto* text = std::get_if<QString>(&value)) {
            QByteArray& utf8 = statement.texts[i];
            utf8 = text->toUtf8();
            result = sqlite3_bind_text64(raw, place, utf8.constData(),
                                         static_cast<sqlite3_uint64>(utf8.size()), SQLITE_STATIC,
                                         SQLITE_UTF8);
        } else {
            result = sqlite3_bind_null(raw, place);
        }
        if (result != SQLITE_OK)
            Fail();
    }
}

void Connection::Handle::Step(DbStatement& statement) {
    // SQLite would run and commit it by itself, outside the action it belongs to.
    if (batchFailure && !statement.readOnly)
        throw *batchFailure;
    const int result = sqlite3_step(statement.statement);
    statement.hasRow = result == SQLITE_ROW;
    if (result != SQLITE_ROW && result != SQLITE_DONE)
        Fail();
}

void Connection::Handle::Release(DbStatement& statement) noexcept {
    statement.inUse = false;
    statement.hasRow = false;
    if (!statement.statement)
        return;
    sqlite3_reset(statement.statement);
    if (statement.parameters > 0) {
        sqlite3_clear_bindings(statement.statement);
        statement.texts.clear();
    }
}

void Connection::Handle::Begin() {
    RunText("BEGIN IMMEDIATE");
    inBatch = true;
    batchFailure.reset();
}

void Connection::Handle::Commit() {
    inBatch = false;
    if (batchFailure) {
        const Failure lost = *batchFailure;
        batchFailure.reset();
        throw lost;
    }
    if (sqlite3_exec(Raw(), "COMMIT", nullptr, nullptr, nullptr) == SQLITE_OK)
        return;
    const Failure failed(sqlite3_extended_errcode(Raw()), QString::fromUtf8(sqlite3_errmsg(Raw())),
                         "SQLite");
    if (!sqlite3_get_autocommit(Raw()))
        sqlite3_exec(Raw(), "ROLLBACK", nullptr, nullptr, nullptr);
    throw failed;
}

void Connection::Handle::RollBack() noexcept {
    inBatch = false;
    batchFailure.reset();
    if (IsOpen() && !sqlite3_get_autocommit(Raw()))
        sqlite3_exec(Raw(), "ROLLBACK", nullptr, nullptr, nullptr);
}

void Connection::Handle::OpenNested() {
    if (!batchFailure &&
        sqlite3_exec(Raw(), "SAVEPOINT nested", nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail();
}

void Connection::Handle::CloseNested() {
    if (batchFailure)
        throw *batchFailure;
    if (sqlite3_exec(Raw(), "RELEASE nested", nullptr, nullptr, nullptr) != SQLITE_OK)
        Fail();
}

void Connection::Handle::TakeBackNested() noexcept {
    if (inBatch && !batchFailure)
        sqlite3_exec(Raw(), "ROLLBACK TO nested; RELEASE nested", nullptr, nullptr, nullptr);
}

void Connection::Handle::Fail() {
    const Failure failed(sqlite3_extended_errcode(Raw()), QString::fromUtf8(sqlite3_errmsg(Raw())),
                         "SQLite");
    if (inBatch && !batchFailure && sqlite3_get_autocommit(Raw()))
        batchFailure = failed;
    throw failed;
}

} // namespace pollarix
