// What a driver's diagnostic record becomes as an error of a connection's collection: inner header of the
// layer.
#pragma once

#include "ado/errors.h"
#include "odbc/odbc.h"

namespace ado {

/// The record as the collection holds it. Its source is the component that the record comes from, its text
/// the driver's, with the components that it passed in front. A message that came with success has the number
/// 265946 if a script or procedure raised it, else 0.
Error ErrorOf(const platform::odbc::Diagnostic& diagnostic);

/// What the provider reports where a command has no text: no driver is asked then.
Error NoCommandText();

/// The refusal of a parameter's value, which no driver has seen.
Error RefusalOf(const char* sql_state, const std::string& text);

/// The collection of all records: errors, then raised messages, then the server's own messages, each group in
/// the order in which it came. So the first entry of a failed call is its error, and no entry with number 0
/// comes before another one.
Errors ErrorsOf(const std::vector<platform::odbc::Diagnostic>& diagnostics);

} // namespace ado
