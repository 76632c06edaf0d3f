// CAST and CONVERT: checks that the conversion is allowed, and calls the conversion to the target type. Reads
// literals.
#include "devserver/tsql/scalar/conversion.h"

#include <algorithm>
#include <cmath>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

void RequireConvertible(const Type& from, const Type& to) {
    RaiseIf(!IsUntypedNull(from) && ConversionAllowed(from.id, to.id) == Allowed::Never, 529,
            {TypeName(from.id), TypeName(to.id)});
}

void RequireAssignable(const Type& from, const Type& to) {
    if (!IsUntypedNull(from) && from.id != to.id) {
        RequireImplicit(from.id, to.id);
    }
}

Value ConvertValue(const Value& value, const Type& from, const Type& to, Style style) {
    switch (to.id) {
    case TypeId::Bit:
    case TypeId::TinyInt:
    case TypeId::SmallInt:
    case TypeId::Int:
    case TypeId::BigInt:
        return ToInteger(value, from, to.id);
    case TypeId::Decimal:
    case TypeId::Numeric:
    case TypeId::Money:
    case TypeId::SmallMoney:
        return ToDecimalOrMoney(value, from, to);
    case TypeId::Real:
    case TypeId::Float:
        return ToApproximate(value, from, to.id);
    case TypeId::DateTime:
    case TypeId::SmallDateTime:
    case TypeId::Date:
        return ToDate(value, from, to.id, style);
    case TypeId::UniqueIdentifier:
        return ToGuid(value, from);
    case TypeId::Binary:
    case TypeId::VarBinary:
    case TypeId::Image:
    case TypeId::Timestamp:
        return ToBinary(value, from, to, style);
    default:
        return ToText(value, from, to, style);
    }
}

/// True if cutting `text` to the length of `to` loses more than blanks at its end.
bool LosesText(const std::string& text, const Type& to) {
    return HasLength(to.id) && to.length != kMaxLength &&
           TextLength(TrimTrailingBlanks(text)) > static_cast<std::size_t>(to.length);
}

bool LosesBytes(const std::string& bytes, const Type& to) {
    if (!HasLength(to.id) || to.length == kMaxLength) {
        return false;
    }
    const std::size_t last = bytes.find_last_not_of('\0');
    return last != std::string::npos && last >= static_cast<std::size_t>(to.length);
}

Literal FloatLiteral(std::string_view text) {
    // "1e" and "1e+" are 1: the server takes a missing exponent for 0.
    std::string number(text);
    if (std::string_view("eE+-").find(number.back()) != std::string_view::npos) {
        number += '0';
        const std::size_t mark = number.find_first_of("eE");
        number.erase(mark + 1, number.size() - mark - 2);
    }
    const auto value = ParseFloat(number);
    if (!value || !std::isfinite(*value)) {
        RaiseError(168, {text, "8"});
    }
    return {Simple(TypeId::Float), *value};
}

} // namespace

Value Convert(const Value& value, const Type& from, const Type& to, std::optional<int> style) {
    RequireConvertible(from, to);
    if (IsNull(value)) {
        return {};
    }
    return ConvertValue(value, from, to, style);
}

Value TryConvert(const Value& value, const Type& from, const Type& to, std::optional<int> style) {
    RequireConvertible(from, to);
    try {
        return Convert(value, from, to, style);
    } catch (const SqlError& error) {
        constexpr std::int32_t invalid_style = 281;
        if (error.number() == invalid_style) {
            throw;
        }
        return {};
    }
}

Value Assign(const Value& value, const Type& from, const Type& to) {
    RequireAssignable(from, to);
    if (IsNull(value)) {
        return {};
    }
    if (const auto* text = std::get_if<std::string>(&value); text != nullptr && IsCharacter(to.id)) {
        RaiseIf(LosesText(*text, to), 8152);
    }
    if (const auto* bytes = std::get_if<Bytes>(&value); bytes != nullptr && IsBinary(to.id)) {
        RaiseIf(LosesBytes(bytes->data, to), 8152);
    }
    RaiseIf(std::holds_alternative<DateTime>(value) && IsCharacter(to.id) &&
                LosesText(ValueText(value, from), to),
            8152);
    return ConvertValue(value, from, to, std::nullopt);
}

Value AssignVariable(const Value& value, const Type& from, const Type& to) {
    RequireAssignable(from, to);
    return Convert(value, from, to);
}

std::string ValueText(const Value& value, const Type& type) {
    return IsNull(value) ? "NULL" : WriteText(value, type, std::nullopt);
}

// ------------------------------------------------------------------ literals

Literal ParseNumberLiteral(std::string_view text) {
    if (text.find_first_of("eE") != std::string_view::npos) {
        return FloatLiteral(text);
    }
    // Leading zeros do not count as digits.
    const std::size_t first = std::min(text.find_first_not_of('0'), text.size() - 1);
    const std::string_view digits = text.substr(first);
    const ParsedDecimal parsed = ParseDecimal(digits);
    RaiseIf(!parsed.valid, 102, {text});
    const auto count = std::count_if(digits.begin(), digits.end(), [](char c) { return c != '.'; });
    RaiseIf(!parsed.value || count > kMaxDigits, 1007, {"number", text});
    const Decimal value = *parsed.value;
    const bool whole = text.find('.') == std::string_view::npos;
    if (whole && value.unscaled <= INT32_MAX) {
        return {IntLiteralType(DigitCount(value.unscaled)), static_cast<std::int64_t>(value.unscaled)};
    }
    const int precision = std::max({DigitCount(value.unscaled), static_cast<int>(value.scale), 1});
    return {DecimalType(precision, value.scale, TypeId::Numeric), value};
}

Literal ParseMoneyLiteral(std::string_view text) {
    const ParsedMoney parsed = ParseMoney(text);
    const auto value = parsed.value ? Rescale(*parsed.value, 4) : std::nullopt;
    if (!value || !MoneyInRange(value->unscaled, TypeId::Money)) {
        RaiseError(151, {text});
    }
    return {Simple(TypeId::Money), *value};
}

Literal ParseBinaryLiteral(std::string_view text) {
    const auto bytes = BytesFromHex(text.substr(2), true);
    if (!bytes) {
        RaiseError(102, {text});
    }
    const Type type = FittedLength(TypeId::VarBinary, std::max<std::int64_t>(1, std::ssize(*bytes)));
    return {type, Bytes{*bytes}};
}

Literal TextLiteral(std::string_view text, bool national) {
    const TypeId id = national ? TypeId::NVarChar : TypeId::VarChar;
    std::string value = national ? std::string(text) : NarrowToCodePage1252(text);
    const auto length = static_cast<std::int64_t>(TextLength(value));
    return {FittedLength(id, std::max<std::int64_t>(1, length)), std::move(value)};
}

} // namespace devsql
