// Maps the SQLSTATEs of ODBC to the numbers with which ADO reports them. Every layer that reports errors uses
// this table.
#pragma once

#include <cstdint>
#include <string_view>

namespace odbc {

/// Returns ADO's number for a SQLSTATE. A state that has no number of its own gets that of an unspecified
/// error, -2147467259.
std::int32_t ErrorNumberOf(std::string_view sql_state);

} // namespace odbc
