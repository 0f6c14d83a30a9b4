// The database under survey and library files: SQLite in the terms the program uses. Nothing here
// knows what a survey is. Names of tables and columns are compared without regard to case.
#pragma once

#include <QByteArray>
#include <QString>

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <string>
#include <variant>

#include "platform/base/Failure.h"

struct sqlite3_stmt;

namespace pollarix {

// A value bound to a statement: Null, a whole number, a real number or text. Values are always
// bound, never pasted into SQL.
class DbValue {
  public:
    DbValue(std::nullptr_t = nullptr) {}
    template <std::integral Whole>
    DbValue(Whole value) : value_(static_cast<std::int64_t>(value)) {}
    DbValue(double value) : value_(value) {}
    DbValue(const QString& value) : value_(value) {}
    DbValue(const char* value) : value_(QString::fromUtf8(value)) {}
    using Variant = std::variant<std::monostate, std::int64_t, double, QString>;
    const Variant& Value() const { return value_; }

  private:
    Variant value_;
};

// A forward-only reader of a statement's rows. Movable; closed when it goes out of scope. Fields
// are named (any case) or numbered from 0. All readers throw: NoCurrentRecord at the end,
// InvalidNull for a Null, TypeMismatch for a value of another kind, InvalidArgument for an unknown
// field name, and database failures.
class Recordset {
  public:
    Recordset(Recordset&&) noexcept;
    Recordset& operator=(Recordset&&) noexcept;
    ~Recordset();

    bool AtEnd() const;
    void MoveNext();
    void Close();

    // Position of a field, for readers of many rows.
    int Ordinal(const char* field) const;

    bool IsNull(int field) const;
    bool IsNull(const char* field) const { return IsNull(Ordinal(field)); }
    // A number read as text is written in decimal.
    QString Text(int field) const;
    QString Text(const char* field) const { return Text(Ordinal(field)); }
    // "" for a Null: NullToString.
    QString NullToString(int field) const;
    QString NullToString(const char* field) const { return NullToString(Ordinal(field)); }
    // The text as UTF-8, none for a Null. It is not copied: it stands until the next row.
    std::optional<QByteArray> Utf8(int field) const;
    // Whole numbers; a real value is rounded half to even, text is refused.
    std::int64_t Integer(int field) const;
    std::int64_t Integer(const char* field) const { return Integer(Ordinal(field)); }
    std::optional<std::int64_t> IntegerOrNull(int field) const;
    double Real(int field) const;
    double Real(const char* field) const { return Real(Ordinal(field)); }

  private:
    friend class Connection;
    struct State;
    explicit Recordset(std::unique_ptr<State> state);
    sqlite3_stmt* Row(int field) const;
    std::unique_ptr<State> state_;
};

// What Utf8 gave, as Text gives it.
QString TextOfUtf8(QByteArrayView utf8);

// A connection to one database file.
class Connection {
  public:
    enum class Mode {
        ReadWrite,        // the survey file
        ReadOnly,         // the library
        ReadWriteTrusted, // a file the program itself has just made (no check for views and
                          // triggers)
    };

    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    // Opens an existing file; never creates one. Throws a Failure that names what is wrong: no such
    // file (53), a directory or no permission (75), no database, views or triggers or virtual
    // tables in it. Fails with InvalidArgument when the connection is open already.
    void Open(const QString& path, Mode mode = Mode::ReadWrite);
    // An empty database of its own that lies in memory alone, and goes with the connection. Its
    // path is "". Fails as Open does when the connection is open already.
    void OpenInMemory();
    bool IsOpen() const;
    // What a text may have, in bytes of UTF-8, together with what else its row holds. Nobody writes
    // a text that long; a file that holds one ends in a message, not in want of memory.
    static constexpr std::int64_t LongestText = 64 << 20;
    // Closes; open recordsets become unusable (AtEnd). Throws NoObject when not open. A batch that
    // is under way is committed first; when that fails the connection is closed all the same and
    // the failure thrown, and once more by the batch's Commit. Whoever must not lose what it holds
    // in memory commits the batch itself and closes after.
    void Close();
    QString Path() const;

    // Runs a statement that gives rows. Statements are prepared once and kept by their text, so
    // keep texts constant and bind what varies (a "?" for each value, in order).
    Recordset Execute(const char* sql, std::initializer_list<DbValue> values = {});
    // Runs a statement that changes rows; gives the count of rows changed.
    std::int64_t Run(const char* sql, std::initializer_list<DbValue> values = {});
    // The first field of the first row as a whole number; throws NoCurrentRecord without a row.
    std::int64_t Count(const char* sql, std::initializer_list<DbValue> values = {});

    // Copies the whole database, as it is at one moment, into the one that `target` is open on and
    // whose content goes. Also reads a file whose name is gone or belongs to another by now.
    void CopyTo(Connection& target);
    // What another connection's commit changes: two calls that give the same number have seen the
    // same content, but for this connection's own writes, which OwnChanges counts.
    std::int64_t DataVersion();
    std::int64_t OwnChanges() const;
    // A state of the content. Two that are equal have seen the same content through the same
    // opening of a file; what another connection is about to commit is in neither.
    class Moment {
      public:
        bool operator==(const Moment& other) const {
            return !opening_.owner_before(other.opening_) &&
                   !other.opening_.owner_before(opening_) && version_ == other.version_ &&
                   changes_ == other.changes_;
        }

      private:
        friend class Connection;
        std::weak_ptr<const void> opening_;
        std::int64_t version_ = 0;
        std::int64_t changes_ = 0;
    };
    Moment Now();
    // Both go on with the other's file. What was read of it before becomes unusable.
    void Swap(Connection& other) { handle_.swap(other.handle_); }

    struct Handle;
    Handle& RequireOpen() const;

  private:
    friend class Recordset;
    friend class TableInsert;
    friend class WriteBatch;
    std::shared_ptr<Handle> handle_;
};

// Adds rows to one table: prepared once, then one Add a row.
//   TableInsert insert(connection, "response", {"questionid", "name"});
//   const std::int64_t id = insert.Add({7, text});
class TableInsert {
  public:
    TableInsert(Connection& connection, const char* table,
                std::initializer_list<const char*> columns);
    ~TableInsert();
    TableInsert(const TableInsert&) = delete;
    TableInsert& operator=(const TableInsert&) = delete;

    // One value a column, in order. Gives the generated id. Text given for a number column is
    // converted by the database if it is a number, else the row is refused with a failure.
    std::int64_t Add(std::initializer_list<DbValue> values);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

// Groups the statements of one user action into one commit, which is that of the outermost batch.
// When the scope is left without Commit, by a failure say, what was written so far is kept: an
// action that fails leaves the file as far as it got. Where that is not wanted, the batch is made
// to take everything back, and the file is as it was. A nested one takes back its own part alone.
// At a crash the file holds all of the action or none of it. Some failures (a full disk, a broken
// one) make the database itself take the whole batch back: then nothing more is written in it and
// Commit throws that failure.
class WriteBatch {
  public:
    enum class OnFailure { Keep, TakeBack };

    // Takes the file's write lock; throws "database is locked" when another program holds it.
    // Nested batches have to end in the reverse order of their making.
    explicit WriteBatch(Connection& connection, OnFailure onFailure = OnFailure::Keep);
    ~WriteBatch();
    WriteBatch(const WriteBatch&) = delete;
    WriteBatch& operator=(const WriteBatch&) = delete;

    // Ends the batch and writes it, the outermost into the file; throws if the file can't take it,
    // and then nothing of the batch is in the file.
    void Commit();
    // Ends the batch and leaves the file as it was before it.
    void TakeBack();

  private:
    std::shared_ptr<Connection::Handle> handle_;
    OnFailure onFailure_ = OnFailure::Keep;
    bool nested_ = false;
    bool done_ = false;
};

// Tries whether the file can be written, without changing it: throws as a write does that the file,
// its directory or the disk refuses.
void RequireWritable(Connection& connection);

// True for a failure that says no more than that another program holds the file just now.
bool IsBusy(const Failure& failure);

// To be called before a file at this path is replaced by another: finishes what a crash cut off in
// the one that is there, if it is a database. What was left of that beside it would else be taken
// for a part of the new one and spoil it. Throws PathOrFileAccess when another program is writing.
void SettleJournal(const QString& path);

} // namespace pollarix
