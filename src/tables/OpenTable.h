// Opens a file as a table. What kind of file it is stands in its first bytes; its name says
// nothing.
#pragma once

#include <memory>

#include "tables/Table.h"

namespace pollarix::tables {

// Reads the table's columns. Without a shape it is guessed; one that was guessed before and changed
// by the user is taken as it is. Throws FileNotFound or PathOrFileAccess for the file, and
// InvalidArgument with the path for one that is no table.
std::unique_ptr<Table> OpenTable(const QString& path,
                                 const std::optional<TableShape>& shape = std::nullopt);

} // namespace pollarix::tables
