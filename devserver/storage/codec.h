// The form of a value in SQLite, by its T-SQL type: SQLite's comparison, sorting and indexes then have
// T-SQL's order.
//
//   bit, integers            INTEGER
//   real, float              REAL
//   money, decimal(1..18,s)  INTEGER, the unscaled number
//   decimal(19..38,s)        BLOB, 16 bytes, big-endian, sign bit inverted
//   datetime, smalldatetime  INTEGER, 1/300 seconds since 1900-01-01
//   character types          TEXT with the collation TSQL
//   binary types             BLOB
//   uniqueidentifier         BLOB, 16 bytes in the order in which SQL Server compares them
#pragma once

#include <sqlite3.h>

#include "devserver/engine/value.h"

namespace devsql {

/// The longest decimal that is held as an INTEGER.
inline constexpr int kShortDecimal = 18;

void BindValue(sqlite3_stmt* statement, int index, const Value& value, const Type& type);
void ResultValue(sqlite3_context* context, const Value& value, const Type& type);
Value DecodeValue(sqlite3_value* value, const Type& type);

/// True when values of both types have the same form in SQLite, so that comparing and copying need no
/// conversion.
bool SameEncoding(const Type& a, const Type& b);

} // namespace devsql
