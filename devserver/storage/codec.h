// The form of a value in SQLite, by its T-SQL type: SQLite's comparison, sorting and indexes then have
// T-SQL's order.
//
//   bit, integers            INTEGER
//   real, float              REAL
//   money, decimal(1..18,s)  INTEGER, the unscaled number
//   decimal(19..38,s)        BLOB, 16 bytes, big-endian, sign bit inverted
//   datetime, smalldatetime  INTEGER, 1/300 seconds since 1900-01-01
//   date                     INTEGER, the same
//   character types          TEXT with the collation TSQL
//   binary types             BLOB
//   uniqueidentifier         BLOB, 16 bytes in the order in which SQL Server compares them
#pragma once

#include <sqlite3.h>

#include "devserver/engine/value.h"

namespace devsql {

/// The most digits of a decimal that is stored as an INTEGER.
inline constexpr int kShortDecimal = 18;

/// Binds the value to the parameter `index`, counted from 1, in the form of `type`.
void BindValue(sqlite3_stmt* statement, int index, const Value& value, const Type& type);
/// Returns the value as the result of a function that SQLite has called.
void ResultValue(sqlite3_context* context, const Value& value, const Type& type);
/// Reads a value that has the form of `type`.
Value DecodeValue(sqlite3_value* value, const Type& type);

/// True if values of both types have the same form in SQLite, so that they can be compared and copied without
/// a conversion.
bool SameEncoding(const Type& a, const Type& b);

} // namespace devsql
