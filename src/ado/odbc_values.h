// Converts values between the layer and the driver. Internal to the layer.
#pragma once

#include <string>

#include "ado/variant.h"
#include "odbc/odbc.h"

namespace ado {

/// The layer's value for a value of the driver, whose text is moved out of it. `type` is the column's: the
/// driver gives singles as doubles and decimals as text.
Variant VariantOf(odbc::SqlType type, odbc::Value& value);

/// True for the types whose text is an exact number.
bool IsExact(odbc::SqlType type);
/// In braces, as ADO shows it.
std::string GuidText(const odbc::Guid& guid);

/// The driver's value for a value of the layer. Empty and Null become NULL.
odbc::Value OdbcValueOf(const Variant& value);

} // namespace ado
