// Columns and values as ODBC hands them over, in the server's own form. Knows nothing of connections.
#pragma once

#include "devserver/engine/engine.h"
#include "odbc/odbc.h"

namespace devsql {

/// A type that the server does not have becomes nvarchar(max).
Column ColumnOfOdbc(const odbc::Column& column);
/// Of the type that ColumnOfOdbc gave.
Value ValueOfOdbc(const odbc::Value& value, const Type& type);

} // namespace devsql
