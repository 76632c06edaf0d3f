// Makes the entries of a connection's Errors from a driver's diagnostic records. Internal to the layer.
#pragma once

#include "ado/errors.h"
#include "odbc/odbc.h"

namespace ado {

/// The entry for a record. Its source is the component that reported it; its text is the driver's, with the
/// names of the components before it. A message that came with success has the number 265946 if a script or
/// procedure raised it, otherwise 0.
Error ErrorOf(const odbc::Diagnostic& diagnostic);

/// The error of a command without text. It is reported without a call of the driver.
Error NoCommandText();

/// The error of a parameter's value that is refused before a call of the driver.
Error RefusalOf(const char* sql_state, const std::string& text);

/// The collection of all records: errors, then raised messages, then the server's own messages, each group in
/// the order in which it came. So the first entry of a failed call is its error, and no entry with number 0
/// comes before another one.
Errors ErrorsOf(const std::vector<odbc::Diagnostic>& diagnostics);

} // namespace ado
