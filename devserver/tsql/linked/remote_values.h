// Values on their way to another server and back: as literals of T-SQL, and as expressions of a type that
// arrives unchanged. Knows nothing of connections.
#pragma once

#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// The value as another server reads it: N'…', 0x…, CONVERT(…). ASCII, except characters of code page 1252.
std::string RemoteLiteral(const Value& value, const Type& type);
/// Converts `expression` of the given type so that its value arrives unchanged: Unicode as bytes, money as
/// decimal.
std::string CarriedExpression(const std::string& expression, const Type& type);
/// The value of such an expression, as a value of the original type.
Value CarriedValue(const Value& value, const Type& type);
/// [name], with "]" doubled.
std::string BracketName(std::string_view name);
/// N'text', for names.
std::string RemoteText(std::string_view text);

} // namespace devsql
