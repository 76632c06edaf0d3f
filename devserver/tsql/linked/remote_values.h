// Values on their way to another server and back: as literals of T-SQL, and as expressions of a type that the
// way carries unharmed. Knows nothing of connections.
#pragma once

#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// The value as another server reads it: N'…', 0x…, CONVERT(…). ASCII but for characters of code page 1252.
std::string RemoteLiteral(const Value& value, const Type& type);
/// `expression` of the given type, so that the way back alters nothing of it: Unicode as bytes, money as
/// decimal.
std::string CarriedExpression(const std::string& expression, const Type& type);
/// What came for a carried expression, as a value of the type.
Value CarriedValue(const Value& value, const Type& type);
/// [name], with "]" doubled.
std::string BracketName(std::string_view name);
/// N'text', for names.
std::string RemoteText(std::string_view text);

} // namespace devsql
