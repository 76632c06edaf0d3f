// Converts values between the layer and the driver. Internal to the layer.
#pragma once

#include <string>

#include "ado/variant.h"
#include "odbc/odbc.h"

namespace ado {

/// The layer's value for a value of the driver, whose text is moved out of it. `type` is the column's: the
/// driver gives singles as doubles and decimals as text.
Variant VariantOf(platform::odbc::SqlType type, platform::odbc::Value& value);

/// True for the types whose text is an exact number.
bool IsExact(platform::odbc::SqlType type);
/// In braces, as ADO shows it.
std::string GuidText(const platform::odbc::Guid& guid);

/// The driver's value for a value of the layer. Empty and Null become NULL.
platform::odbc::Value OdbcValueOf(const Variant& value);

} // namespace ado
