// The tables of the server's database, and the steps from an older one to today's. The caller sees
// to the copy that is made before.
#pragma once

#include <SQLiteCpp/SQLiteCpp.h>

namespace pollarix::server {

// Marks the file as a database of this server ("PLXS").
constexpr int ApplicationMark = 0x504C5853;

// How many steps there are; the number that a database of today has.
int CurrentSchema();
// The number that this one has, 0 for an empty file. Throws StoreFailure when it isn't this
// server's, or was made by a later version of it.
int SchemaOf(SQLite::Database& database);
// Takes all the steps that are missing, in one transaction.
void BringUpToDate(SQLite::Database& database);

} // namespace pollarix::server
