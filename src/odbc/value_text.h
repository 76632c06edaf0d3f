// Values that every reader of a result shows in the same way. Needs no driver.
#pragma once

#include <string>

#include "odbc/odbc.h"

namespace odbc {

/// Upper-case hexadecimal digits in five groups with "-" between them, without braces.
std::string TextOf(const Guid& guid);
/// "0x" and two upper-case hexadecimal digits for each byte.
std::string TextOf(const Bytes& bytes);

} // namespace odbc
