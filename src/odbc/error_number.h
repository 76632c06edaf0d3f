// The numbers by which ADO reports the SQLSTATEs of ODBC: one table for every layer that reports errors.
#pragma once

#include <cstdint>
#include <string_view>

namespace odbc {

/// The number of a SQLSTATE; that of an unspecified error, -2147467259, for a state without a number of its
/// own.
std::int32_t ErrorNumberOf(std::string_view sql_state);

} // namespace odbc
