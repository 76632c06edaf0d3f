// How values lie in the buffers that ODBC reads and writes: inner header of the ODBC layer's own sources.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "platform/odbc.h"
#include "platform/odbc_api.h"

namespace platform::odbc {

/// What a column of the type is bound as; SQL_C_CHAR where nothing fits better.
SQLSMALLINT BufferType(SqlType type);
/// Bytes that one value of the buffer type takes; 0 for text and bytes, whose length varies.
std::size_t FixedSize(SQLSMALLINT c_type);
/// The value that lies at `data`; `indicator` is its length in bytes or SQL_NULL_DATA.
Value ReadValue(SQLSMALLINT c_type, const char* data, SQLLEN indicator);

/// A value as a parameter marker is bound to it.
struct ValueBuffer {
    SQLSMALLINT c_type = SQL_C_CHAR;
    std::vector<char> data; ///< never empty
    std::size_t length = 0; ///< of the value that goes in
    bool null = false;
};

/// A buffer with the parameter's value in it, wide enough for what may come back.
ValueBuffer MakeParameterBuffer(const Parameter& parameter);

/// What SQLBindParameter calls the column size and the decimal digits.
struct ParameterShape {
    SQLULEN size = 0;
    SQLSMALLINT decimal_digits = 0;
};
ParameterShape ShapeOf(const Parameter& parameter, const ValueBuffer& buffer);

} // namespace platform::odbc
