// Values between the layer and the driver: inner header of the layer.
#pragma once

#include <string>

#include "ado/variant.h"
#include "odbc/odbc.h"

namespace ado {

/// The layer's value of the driver's, which may be emptied by it. `type` tells what the driver's value does
/// not: a single from a double, a decimal from a text.
Variant VariantOf(platform::odbc::SqlType type, platform::odbc::Value& value);

/// True for the types whose text is an exact number.
bool IsExact(platform::odbc::SqlType type);
/// As it is written, in braces.
std::string TextOf(const platform::odbc::Guid& guid);

/// The driver's value of the layer's; no value of Empty and of Null.
platform::odbc::Value OdbcValueOf(const Variant& value);

} // namespace ado
