// A parameter's value as one of the parameter's type: inner header of the layer.
#pragma once

#include <exception>
#include <string>

#include "ado/parameter.h"
#include "odbc/odbc.h"
#include "platform/locale.h"

namespace ado {

/// The value cannot be one of its parameter's type without becoming another value.
class ValueRefused : public std::exception {
  public:
    ValueRefused(const char* sql_state, std::string text) : sql_state_(sql_state), text_(std::move(text)) {}
    const char* SqlState() const { return sql_state_; }
    /// Names the parameter, its type and the value.
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    const char* sql_state_;
    std::string text_;
};

/// The parameter's type as a declaration of the server's language has it: "varchar(30)", "decimal(12,4)".
std::string DeclarationOf(const Parameter& parameter);

/// What the driver is given for the parameter's value. Text is read in the forms of the locale, dates also by
/// ISO 8601: the inverse of Variant::ToString. Throws ValueRefused for what does not fit the type whole.
platform::odbc::Value TypedValue(const Parameter& parameter, const platform::LocaleForms& forms);

} // namespace ado
