// Converts columns and cells of DB-Library to the tool's types. Only this folder includes the library's
// header.
#pragma once

#include <string>
#include <string_view>

#include <sybdb.h>

#include "querytool/server.h"

namespace querytool {

// The library is set to use UTF-8. These convert its text to code page 1252 and back.

std::string FromLibrary(std::string_view utf8);
std::string ToLibrary(std::string_view text);

/// Describes a column of the current result. The first has the number 1.
Column ColumnAt(DBPROCESS* process, int number);
/// Returns the column's value in the current row.
Value CellAt(DBPROCESS* process, int number);

} // namespace querytool
