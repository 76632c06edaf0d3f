// The text of values that the database layer and the query tool show in the same way. Needs no driver.
#pragma once

#include <string>

#include "odbc/odbc.h"

namespace odbc {

/// Returns upper-case hexadecimal digits in five groups with "-" between them, without braces.
std::string TextOf(const Guid& guid);
/// Returns "0x" and two upper-case hexadecimal digits for each byte.
std::string TextOf(const Bytes& bytes);

} // namespace odbc
