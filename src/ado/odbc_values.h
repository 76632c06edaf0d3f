// Converts values between this layer (Variant) and the driver (odbc::Value). Internal to the layer.
#pragma once

#include <string>

#include "ado/variant.h"
#include "odbc/odbc.h"

namespace ado {

/// Converts a value of the driver; its text is moved out of it. `type` is the column's type, which is needed
/// because the driver gives singles as doubles and decimals as text.
Variant VariantOf(odbc::SqlType type, odbc::Value& value);

/// True for types whose values are exact numbers, which the driver gives as text.
bool IsExactNumber(odbc::SqlType type);
/// Returns the text in braces, as ADO shows it.
std::string GuidText(const odbc::Guid& guid);

/// Converts a value of this layer. Empty and Null become NULL.
odbc::Value OdbcValueOf(const Variant& value);

} // namespace ado
