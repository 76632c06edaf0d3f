// Converts a parameter's value to the parameter's type. Internal to the layer.
#pragma once

#include <exception>
#include <string>

#include "ado/parameter.h"
#include "odbc/odbc.h"
#include "platform/locale.h"

namespace ado {

/// Thrown for a value that cannot be converted to its parameter's type without being changed.
class ValueRefused : public std::exception {
  public:
    /// `sql_state` is a literal; it is not copied.
    ValueRefused(const char* sql_state, std::string text) : sql_state_(sql_state), text_(std::move(text)) {}
    const char* SqlState() const { return sql_state_; }
    /// A text that names the parameter, its type and the value.
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    const char* sql_state_;
    std::string text_;
};

/// Returns the parameter's type as T-SQL declares it: "varchar(30)", "decimal(12,4)".
std::string DeclarationOf(const Parameter& parameter);

/// Returns the parameter's value, converted to the parameter's type, for the driver. Empty and Null become
/// NULL. Text is read in the forms of the locale, in which Variant::ToString writes numbers and dates; dates
/// may also be in ISO 8601. Throws ValueRefused if the value does not fit the type exactly.
odbc::Value TypedValue(const Parameter& parameter, const platform::LocaleForms& forms);

} // namespace ado
