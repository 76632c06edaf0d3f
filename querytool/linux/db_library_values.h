// Converts columns and cells of DB-Library to the tool's types. Only this folder includes the library's
// header.
#pragma once

#include <string>
#include <string_view>

#include <sybdb.h>

#include "querytool/server.h"

namespace querytool {

/// Text in code page 1252 from UTF-8, which the library is set to use, and back.
std::string FromLibrary(std::string_view utf8);
std::string ToLibrary(std::string_view text);

/// The column, counted from 1, of the current result.
Column ColumnAt(DBPROCESS* process, int number);
/// Its cell in the current row.
Value CellAt(DBPROCESS* process, int number);

} // namespace querytool
