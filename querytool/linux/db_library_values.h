// Columns and cells of DB-Library as the tool's own. The only other file that includes its header is the
// server's.
#pragma once

#include <string>
#include <string_view>

#include <sybdb.h>

#include "querytool/server.h"

namespace querytool {

/// Text in code page 1252 from the UTF-8 that the library is told to speak, and back.
std::string FromLibrary(std::string_view utf8);
std::string ToLibrary(std::string_view text);

/// The column, counted from 1, of the current result.
Column ColumnAt(DBPROCESS* process, int number);
/// Its cell in the current row.
Value CellAt(DBPROCESS* process, int number);

} // namespace querytool
