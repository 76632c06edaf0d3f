// Literals: what a number, an amount, bytes and a text in the source are, in type and value.
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

Literal ParseNumberLiteral(std::string_view text) {
    if (text.find_first_of("eE") != std::string_view::npos) {
        return FloatLiteral(text);
    }
    // Zeros in front are no digits of the number.
    const std::size_t first = std::min(text.find_first_not_of('0'), text.size() - 1);
    const std::string_view digits = text.substr(first);
    const ParsedDecimal parsed = ParseDecimal(digits);
    if (!parsed.valid) {
        RaiseError(102, {text});
    }
    const auto count = std::count_if(digits.begin(), digits.end(), [](char c) { return c != '.'; });
    if (!parsed.value || count > kMaxDigits) {
        RaiseError(1007, {"number", text});
    }
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
