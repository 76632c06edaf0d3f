// CAST and CONVERT between all types, the conversion of assignments, and the reading of literals.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// CAST (no style) and CONVERT. Raises 529 where no conversion exists, and the errors of the values: 220,
/// 232, 234, 235, 241, 242, 244, 245, 248, 281, 293, 295, 8114, 8115, 8169, 8170. NULL stays NULL. A text or
/// binary too long for its type is cut; text and binary that fill a fixed length are padded.
Value Convert(const Value& value, const Type& from, const Type& to, std::optional<int> style = std::nullopt);

/// As Convert, but NULL instead of an error of the value (TRY_CAST, TRY_CONVERT). 529 and 281 still come.
Value TryConvert(const Value& value, const Type& from, const Type& to,
                 std::optional<int> style = std::nullopt);

/// The conversion of INSERT and UPDATE: only what is implicitly allowed (206, 257), and a text or binary that
/// loses more than blanks or zeros raises 8152.
Value Assign(const Value& value, const Type& from, const Type& to);

/// The conversion of variables and parameters (SET @v = …, EXEC): only what is implicitly allowed, cut
/// silently.
Value AssignVariable(const Value& value, const Type& from, const Type& to);

/// How the value reads as text: CONVERT to varchar without style, but never cut. NULL is the text "NULL".
std::string ValueText(const Value& value, const Type& type);

// ------------------------------------------------------------------ literals

struct Literal {
    Type type;
    Value value;
};

/// 42 is an int (of IntLiteralType), 4200000000 and 1.50 are numeric, 1e0 is a float. `text` as the lexer has
/// cut it out: digits, a point, an exponent, no sign. Raises 1007 beyond 38 digits, 168 beyond the range of
/// float.
Literal ParseNumberLiteral(std::string_view text);
/// "$1.5", "$" (0), also "£" and "€": money. Commas are left out. Raises 151 beyond its range.
Literal ParseMoneyLiteral(std::string_view text);
/// "0x", "0xAB", "0xABC" (0x0ABC): varbinary.
Literal ParseBinaryLiteral(std::string_view text);
/// The type of 'text' (varchar) and N'text' (nvarchar); `text` stands between the quotes.
Literal TextLiteral(std::string_view text, bool national);

} // namespace devsql
