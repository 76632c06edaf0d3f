// The logical names of a database's files go with its data file when it is detached, and come back when it
// is attached, wherever that is.
#pragma once

#include "devserver/storage/databases.h"

namespace devsql {

/// Writes them into the data file; nobody else may have it open.
void KeepFileNames(const DatabaseInfo& database);
/// Gives the files of a database that is being attached the names, kinds and file groups that they had.
/// `database.files` are in the order in which they were named; the first is the data file.
void RestoreFileNames(DatabaseInfo& database);

} // namespace devsql
