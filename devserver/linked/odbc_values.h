// Converts columns and values of ODBC to those of the server. Knows nothing of connections.
#pragma once

#include "devserver/engine/engine.h"
#include "odbc/odbc.h"

namespace devsql {

/// The column with the server's type. A type that the server does not have becomes nvarchar(max).
Column ColumnOfOdbc(const odbc::Column& column);
/// The value as one of `type`, the type that ColumnOfOdbc has returned. Throws SqlError if it cannot be
/// converted.
Value ValueOfOdbc(const odbc::Value& value, const Type& type);

} // namespace devsql
