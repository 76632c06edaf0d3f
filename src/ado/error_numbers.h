// Makes the entries of a connection's Errors from the driver's diagnostic records. Internal to the layer.
#pragma once

#include "ado/errors.h"
#include "odbc/odbc.h"

namespace ado {

/// Returns the entry for a record. Its source is the component that reported it, such as "SQL Server". Its
/// text is the record's message unchanged. An error has ADO's number for its SQLSTATE. A message that came
/// with success has the number 265946 if a script or procedure raised it, otherwise 0.
Error ErrorOf(const odbc::Diagnostic& diagnostic);

/// Returns the entry for a command without text, which fails before any call of the driver.
Error NoCommandText();

/// Returns the entry for a parameter's value that is refused before any call of the driver.
Error RefusalOf(const char* sql_state, const std::string& text);

/// Returns the collection of all records: first the errors, then the messages that scripts raised, then the
/// server's own messages; each group is in the order in which it came. So the first entry of a failed call is
/// its error, and an entry with the number 0 never comes before one with another number.
Errors ErrorsOf(const std::vector<odbc::Diagnostic>& diagnostics);

} // namespace ado
