// The conversions, one for each kind of target type, and the small functions that they and the scalar
// functions share. Values are never NULL here; the caller has checked that the source type converts to the
// target type.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"
#include "devserver/tsql/scalar/date_parser.h"

namespace devsql {

using Style = std::optional<int>;

/// bit and the integers.
Value ToInteger(const Value& value, const Type& from, TypeId to);
Value ToDecimalOrMoney(const Value& value, const Type& from, const Type& to);
Value ToApproximate(const Value& value, const Type& from, TypeId to);
Value ToDate(const Value& value, const Type& from, TypeId to, Style style);
Value ToText(const Value& value, const Type& from, const Type& to, Style style);
Value ToBinary(const Value& value, const Type& from, const Type& to, Style style);
Value ToGuid(const Value& value, const Type& from);

// ------------------------------------------------------------------ text

/// The value written out, whatever its length. Raises 281 for a style that its type doesn't have.
std::string WriteText(const Value& value, const Type& type, Style style);
/// A datetime in one of CONVERT's styles; raises 281 for others.
std::string WriteDate(const DateTime& value, const Type& type, int style);
/// Cut to the length of `to`, padded if it is fixed, with "?" for a character that a char can't hold.
std::string FitText(std::string text, const Type& to);
std::string FitBytes(std::string bytes, const Type& to);
/// "1.5", "1e+020": with so many digits, as SQL Server writes floats.
std::string FloatText(double value, int digits, bool scientific);
/// The number as "%f" writes it; message 232 has it with six digits after the point.
std::string FixedText(double value, int digits_after_point);
std::string HexText(std::string_view bytes);
std::string GuidText(const Guid& guid);

// ------------------------------------------------------------------ bytes

/// The lowest `count` bytes, the highest first.
std::string BigEndian(std::uint64_t value, std::size_t count);
/// The number that the bytes are, the highest first; of more than eight bytes, the last eight.
std::uint64_t FromBigEndian(std::string_view bytes);
/// The 16 bytes as binary holds them: the first three groups with the lowest byte first.
std::string GuidBytes(const Guid& guid);
Guid GuidFromBytes(std::string_view bytes);
/// The bytes of pairs of hexadecimal digits. Returns nothing for other characters, and for an odd count of
/// digits unless `odd` allows it.
std::optional<std::string> BytesFromHex(std::string_view digits, bool odd);

// ------------------------------------------------------------------ numbers and dates

/// The numbers that bit or an integer type holds.
struct IntegerRange {
    TypeId id;
    std::int64_t least;
    std::int64_t most;
    std::size_t bytes;
    std::string_view column; ///< how message 244 calls the type

    bool Holds(Int128 value) const { return value >= least && value <= most; }
};
const IntegerRange& RangeOf(TypeId id);

/// The whole number that a text holds: sign, digits, blanks around; an empty text is 0.
struct ParsedInteger {
    bool valid = false;
    std::optional<std::int64_t> value; ///< empty if it does not fit 64 bits
};
ParsedInteger ParseInteger(std::string_view text);
/// The float in a text, infinite beyond its range; returns nothing if the text holds something else.
std::optional<double> ParseFloat(std::string_view text);
/// A money amount with currency sign and commas; see ParsedDecimal.
struct ParsedMoney {
    bool valid = false;
    std::optional<Decimal> value;
};
ParsedMoney ParseMoney(std::string_view text);
bool MoneyInRange(Int128 unscaled, TypeId id);
/// The order of day, month and year that a style of CONVERT asks for.
DateOrder OrderOfStyle(Style style);
std::string_view TrimBlanks(std::string_view text);

} // namespace devsql
