// A table of answers that comes from elsewhere, whatever its file: columns with names, and rows of
// cells, read one after the other in bounded memory. Not for what the cells mean to a survey.
#pragma once

#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace pollarix::tables {

// What a file may hold at most. Nobody has written more; what has was made to use up memory.
inline constexpr std::size_t MostColumns = 16384;
inline constexpr qsizetype LongestCell = 16 << 20; // characters
inline constexpr qsizetype LongestRow = 32 << 20;

struct TableColumn {
    QString name;  // as the file names it
    QString label; // a second, longer name; "" for none
};

struct Cell {
    QString text;                 // "" for an empty cell. A date is "YYYY-MM-DD hh:mm:ss"
    std::optional<double> number; // where the file holds one; its text may then be its label
    QString fault;                // why there is no value, "" for none

    bool IsEmpty() const { return text.isEmpty() && fault.isEmpty(); }
};

struct TableRow {
    std::int64_t number = 0; // as a spreadsheet or an editor counts it, from 1
    double part = 0;         // how much of the file has been read, 0 to 1
    std::vector<Cell> cells; // may be fewer or more than there are columns
};

// False ends the reading.
using RowSink = std::function<bool(const TableRow& row)>;

// How a table of text is written.
struct TextShape {
    enum class Encoding { Utf8, Windows1252, Utf16 };
    Encoding encoding = Encoding::Utf8;
    char16_t separator = u',';
    char16_t quote = u'"'; // 0 for none
    bool operator==(const TextShape&) const = default;
};

// What of a file can be read in more than one way, and how it is read.
struct TableShape {
    std::optional<TextShape> text; // of tables of text alone
    QStringList sheets;            // of workbooks alone
    int sheet = 0;
    bool canLackNames = false;      // whether the first row can be one of answers
    bool hasNames = true;           // whether it is one of names
    bool canTakeNeighbours = false; // whether files like it may lie beside it
    bool takesNeighbours = false;   // whether these are rows as well
};

class Table {
  public:
    virtual ~Table() = default;

    virtual const std::vector<TableColumn>& Columns() const = 0;
    // Gives all rows below the names, from the first. Throws what says that the file can't be read
    // and where.
    virtual void Read(const RowSink& sink) = 0;
    virtual const TableShape& Shape() const = 0;
};

} // namespace pollarix::tables
