#include "platform/database/Database.h"

#include <QFile>
#include <QFileInfo>

#include <cmath>
#include <utility>

#include "platform/database/DatabaseHandle.h"

namespace pollarix {

namespace {

constexpr double LargestWhole = 9.2e18;

std::int64_t WholeOf(sqlite3_stmt* statement, int field) {
    switch (sqlite3_column_type(statement, field)) {
    case SQLITE_INTEGER:
        return sqlite3_column_int64(statement, field);
    case SQLITE_FLOAT: {
        const double rounded = std::nearbyint(sqlite3_column_double(statement, field));
        if (!(std::fabs(rounded) <= LargestWhole))
            throw Failure(failure::Overflow);
        return static_cast<std::int64_t>(rounded);
    }
    case SQLITE_NULL:
        throw Failure(failure::InvalidNull);
    default:
        throw Failure(failure::TypeMismatch);
    }
}

QString InDecimal(double value) {
    if (value == std::trunc(value) && std::fabs(value) < 1e15)
        return QString::number(static_cast<std::int64_t>(value));
    const QString text = QString::number(value, 'g', 15);
    return text.toDouble() == value ? text : QString::number(value, 'g', 17);
}

QByteArrayView StoredText(sqlite3_stmt* statement, int field) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement, field));
    return {text, sqlite3_column_bytes(statement, field)};
}

// The type is asked for before the value: asking for text would change it.
QString TextOf(sqlite3_stmt* statement, int field, bool nullIsEmpty) {
    switch (sqlite3_column_type(statement, field)) {
    case SQLITE_TEXT:
        return TextOfUtf8(StoredText(statement, field));
    case SQLITE_INTEGER:
        return QString::number(sqlite3_column_int64(statement, field));
    case SQLITE_FLOAT:
        return InDecimal(sqlite3_column_double(statement, field));
    case SQLITE_NULL:
        if (nullIsEmpty)
            return {};
        throw Failure(failure::InvalidNull);
    default:
        throw Failure(failure::TypeMismatch);
    }
}

std::string Quoted(const char* name) {
    std::string quoted = "\"";
    for (; *name; ++name) {
        if (*name == '"')
            quoted += '"';
        quoted += *name;
    }
    return quoted + '"';
}

std::string InsertStatement(const char* table, std::initializer_list<const char*> columns) {
    std::string names;
    std::string places;
    for (const char* column : columns) {
        names += (names.empty() ? "" : ", ") + Quoted(column);
        places += places.empty() ? "?" : ", ?";
    }
    return "INSERT INTO " + Quoted(table) +
           (names.empty() ? " DEFAULT VALUES" : " (" + names + ") VALUES (" + places + ")");
}

} // namespace

// --- Recordset ---

struct Recordset::State {
    State(std::shared_ptr<Connection::Handle> handle, const char* sql)
        : lease(std::move(handle), sql) {}

    DbLease lease;
};

Recordset::Recordset(std::unique_ptr<State> state) : state_(std::move(state)) {}
Recordset::Recordset(Recordset&&) noexcept = default;
Recordset& Recordset::operator=(Recordset&&) noexcept = default;
Recordset::~Recordset() = default;

bool Recordset::AtEnd() const {
    return !state_ || !state_->lease.Statement().hasRow;
}

void Recordset::MoveNext() {
    if (AtEnd())
        throw Failure(failure::NoCurrentRecord);
    state_->lease.Handle().Step(state_->lease.Statement());
}

void Recordset::Close() {
    state_.reset();
}

int Recordset::Ordinal(const char* field) const {
    if (!state_ || !state_->lease.IsUsable())
        throw Failure(failure::NoCurrentRecord);
    const int index = state_->lease.Statement().FieldIndex(field);
    if (index < 0)
        throw Failure(failure::InvalidArgument,
                      QString("No field \"%1\"").arg(QString::fromUtf8(field)));
    return index;
}

sqlite3_stmt* Recordset::Row(int field) const {
    if (AtEnd())
        throw Failure(failure::NoCurrentRecord);
    const DbStatement& statement = state_->lease.Statement();
    if (field < 0 || field >= static_cast<int>(statement.fields.size()))
        throw Failure(failure::InvalidArgument, QString("No field %1").arg(field));
    return statement.statement;
}

bool Recordset::IsNull(int field) const {
    return sqlite3_column_type(Row(field), field) == SQLITE_NULL;
}

QString Recordset::Text(int field) const {
    return TextOf(Row(field), field, false);
}

QString Recordset::NullToString(int field) const {
    return TextOf(Row(field), field, true);
}

std::optional<QByteArray> Recordset::Utf8(int field) const {
    sqlite3_stmt* const row = Row(field);
    switch (sqlite3_column_type(row, field)) {
    case SQLITE_NULL:
        return std::nullopt;
    case SQLITE_TEXT: {
        const QByteArrayView text = StoredText(row, field);
        return QByteArray::fromRawData(text.data(), text.size());
    }
    default:
        return TextOf(row, field, false).toUtf8();
    }
}

std::int64_t Recordset::Integer(int field) const {
    return WholeOf(Row(field), field);
}

std::optional<std::int64_t> Recordset::IntegerOrNull(int field) const {
    sqlite3_stmt* const row = Row(field);
    const int type = sqlite3_column_type(row, field);
    if (type == SQLITE_NULL)
        return std::nullopt;
    return type == SQLITE_INTEGER ? sqlite3_column_int64(row, field) : WholeOf(row, field);
}

double Recordset::Real(int field) const {
    sqlite3_stmt* const row = Row(field);
    switch (sqlite3_column_type(row, field)) {
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
        return sqlite3_column_double(row, field);
    case SQLITE_NULL:
        throw Failure(failure::InvalidNull);
    default:
        throw Failure(failure::TypeMismatch);
    }
}

// A text may begin with U+FEFF, which a decoder would take for a mark of its own and drop.
QString TextOfUtf8(QByteArrayView utf8) {
    constexpr char16_t mark = u'\xFEFF';
    const QString decoded = QString::fromUtf8(utf8);
    return utf8.startsWith("\xEF\xBB\xBF") ? mark + decoded : decoded;
}

// --- Connection ---

Connection::Connection() = default;

Connection::~Connection() {
    if (!IsOpen())
        return;
    try {
        handle_->Close();
    } catch (const Failure&) {
        // A batch under way throws it again at its Commit.
    }
}

void Connection::Open(const QString& path, Mode mode) {
    if (IsOpen())
        throw Failure(failure::InvalidArgument, QString("%1 is open already").arg(Path()));
    handle_ = std::make_shared<Handle>(path, mode);
}

void Connection::OpenInMemory() {
    if (IsOpen())
        throw Failure(failure::InvalidArgument, QString("%1 is open already").arg(Path()));
    handle_ = std::make_shared<Handle>();
}

bool Connection::IsOpen() const {
    return handle_ && handle_->IsOpen();
}

void Connection::Close() {
    RequireOpen();
    const std::shared_ptr<Handle> closing = std::exchange(handle_, nullptr);
    closing->Close();
}

QString Connection::Path() const {
    return IsOpen() ? handle_->path : QString();
}

Connection::Handle& Connection::RequireOpen() const {
    if (!IsOpen())
        throw Failure(failure::NoObject, "No survey file is open");
    return *handle_;
}

Recordset Connection::Execute(const char* sql, std::initializer_list<DbValue> values) {
    Handle& handle = RequireOpen();
    auto state = std::make_unique<Recordset::State>(handle_, sql);
    DbStatement& statement = state->lease.Statement();
    handle.Bind(statement, values);
    handle.Step(statement);
    statement.RefreshFields();
    return Recordset(std::move(state));
}

std::int64_t Connection::Run(const char* sql, std::initializer_list<DbValue> values) {
    Handle& handle = RequireOpen();
    const DbLease lease(handle_, sql);
    handle.Bind(lease.Statement(), values);
    const sqlite3_int64 before = sqlite3_total_changes64(handle.Raw());
    do {
        handle.Step(lease.Statement());
    } while (lease.Statement().hasRow);
    return sqlite3_total_changes64(handle.Raw()) - before;
}

std::int64_t Connection::Count(const char* sql, std::initializer_list<DbValue> values) {
    Handle& handle = RequireOpen();
    const DbLease lease(handle_, sql);
    handle.Bind(lease.Statement(), values);
    handle.Step(lease.Statement());
    if (!lease.Statement().hasRow)
        throw Failure(failure::NoCurrentRecord);
    return WholeOf(lease.Statement().statement, 0);
}

void Connection::CopyTo(Connection& target) {
    sqlite3* const from = RequireOpen().Raw();
    Handle& to = target.RequireOpen();
    sqlite3_backup* const copy = sqlite3_backup_init(to.Raw(), "main", from, "main");
    if (!copy)
        to.Fail();
    sqlite3_backup_step(copy, -1);
    if (sqlite3_backup_finish(copy) != SQLITE_OK)
        to.Fail();
}

std::int64_t Connection::DataVersion() {
    return Count("PRAGMA data_version");
}

std::int64_t Connection::OwnChanges() const {
    return sqlite3_total_changes64(RequireOpen().Raw());
}

Connection::Moment Connection::Now() {
    Moment now;
    now.version_ = DataVersion();
    now.changes_ = OwnChanges();
    now.opening_ = handle_;
    return now;
}

// --- TableInsert ---

struct TableInsert::State {
    State(std::shared_ptr<Connection::Handle> handle, const std::string& sql)
        : lease(std::move(handle), sql.c_str()) {}
    DbLease lease;
};

TableInsert::TableInsert(Connection& connection, const char* table,
                         std::initializer_list<const char*> columns) {
    connection.RequireOpen();
    state_ = std::make_unique<State>(connection.handle_, InsertStatement(table, columns));
}

TableInsert::~TableInsert() = default;

std::int64_t TableInsert::Add(std::initializer_list<DbValue> values) {
    const DbLease& lease = state_->lease;
    if (!lease.IsUsable())
        throw Failure(failure::NoObject, "No survey file is open");
    Connection::Handle& handle = lease.Handle();
    DbStatement& statement = lease.Statement();
    // A statement whose step failed is left to be reset as well.
    struct Reset {
        sqlite3_stmt* statement;
        ~Reset() { sqlite3_reset(statement); }
    } const reset{statement.statement};
    handle.Bind(statement, values);
    handle.Step(statement);
    return sqlite3_last_insert_rowid(handle.Raw());
}

// --- WriteBatch ---

WriteBatch::WriteBatch(Connection& connection, OnFailure onFailure) : onFailure_(onFailure) {
    nested_ = connection.RequireOpen().inBatch;
    handle_ = connection.handle_;
    if (nested_)
        handle_->OpenNested();
    else
        handle_->Begin();
}

WriteBatch::~WriteBatch() {
    if (done_)
        return;
    if (onFailure_ == OnFailure::TakeBack) {
        TakeBack();
        return;
    }
    try {
        Commit();
    } catch (const std::exception&) {
        // What brought us here is the failure to tell, and it is on its way already.
    }
}

void WriteBatch::TakeBack() {
    if (done_)
        return;
    done_ = true;
    if (nested_)
        handle_->TakeBackNested();
    else
        handle_->RollBack();
}

void WriteBatch::Commit() {
    if (done_)
        return;
    done_ = true;
    if (handle_->inBatch && nested_) {
        handle_->CloseNested();
    } else if (handle_->inBatch) {
        handle_->Commit();
    } else if (handle_->batchFailure) {
        throw *handle_->batchFailure; // the connection was closed and could not keep the batch
    }
}

void RequireWritable(Connection& connection) {
    const WriteBatch attempt(connection, WriteBatch::OnFailure::TakeBack);
    connection.Run("UPDATE version SET version = version");
}

bool IsBusy(const Failure& failure) {
    return failure.Source() == "SQLite" && (failure.Number() & 0xff) == SQLITE_BUSY;
}

void SettleJournal(const QString& path) {
    // The database follows links, and writes its journal beside what they lead to.
    const QFileInfo info(path);
    const QString real = info.exists() ? info.canonicalFilePath() : info.absoluteFilePath();
    const QString journal = real + "-journal";
    if (!QFileInfo::exists(journal))
        return;
    try {
        Connection file;
        file.Open(path);           // rolls back by reading
        WriteBatch(file).Commit(); // refused while another program writes
    } catch (const Failure& failure) {
        if (failure.Number() != SQLITE_NOTADB && failure.Number() != failure::FileNotFound)
            throw Failure(failure::PathOrFileAccess, path + ": " + failure.Description());
    }
    QFile::remove(journal); // an empty one, or one that belongs to nothing
}

} // namespace pollarix
