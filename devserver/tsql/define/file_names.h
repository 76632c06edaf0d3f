// Stores the logical names of a database's files in its data file when it is detached, so that they are
// restored when it is attached anywhere.
#pragma once

#include "devserver/storage/databases.h"

namespace devsql {

/// Writes them into the data file; no other connection may have the file open.
void KeepFileNames(const DatabaseInfo& database);
/// Gives the files of a database that is being attached the names, kinds and file groups that they had.
/// `database.files` are in the order of the statement; the first one is the data file.
void RestoreFileNames(DatabaseInfo& database);

} // namespace devsql
