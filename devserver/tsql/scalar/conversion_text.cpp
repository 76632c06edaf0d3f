// Conversions to text: writes each type, and cuts, pads or refuses a text that does not have the target's
// length.
#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

[[noreturn]] void InvalidStyle(int style, const Type& type) {
    throw ErrorOf(281, {std::to_string(style), TypeName(type.id)});
}

std::string MoneyText(const Decimal& value, const Type& type, int style) {
    // Style 0 writes two digits after the point, 1 adds a comma before every three digits, 2 and 126 write
    // all four digits after the point.
    if (style == 2 || style == 126) {
        return DecimalText(value);
    }
    if (style != 0 && style != 1) {
        InvalidStyle(style, type);
    }
    std::string text = DecimalText(*Rescale(value, 2));
    if (style == 1) {
        const std::size_t first = text.front() == '-' ? 1 : 0;
        for (std::size_t at = text.size() - 3; at > first + 3; at -= 3) {
            text.insert(at - 3, 1, ',');
        }
    }
    return text;
}

std::string FloatStyleText(double value, const Type& type, int style) {
    constexpr int digits_of_style[] = {6, 8, 16, 17}; // significant digits of the styles 0 to 3
    if (style < 0 || style > 3) {
        InvalidStyle(style, type);
    }
    return FloatText(value, digits_of_style[style], style != 0);
}

std::string BinaryText(std::string_view bytes, int style) {
    return style == 1 ? "0x" + HexText(bytes) : HexText(bytes);
}

/// For a value whose text is longer than the target type allows: raises the error that SQL Server has for the
/// value's type. Returns "*", without an error, for an int, smallint, tinyint or bit as char or varchar.
std::string Crowded(const Value& value, const Type& from, const Type& to) {
    const std::string_view target = TypeName(to.id);
    RaiseIf(IsMoney(from.id), from.id == TypeId::Money ? 234 : 292, {target});
    if (IsApproximate(from.id)) {
        RaiseError(232, {target, FixedText(std::get<double>(value), 6)});
    }
    RaiseIf(from.id == TypeId::UniqueIdentifier, 8170);
    if (IsDecimal(from.id)) {
        throw ErrorOf(8115, {TypeName(TypeId::Numeric), target}, 5);
    }
    if (from.id == TypeId::BigInt || IsUnicode(to.id)) {
        throw ErrorOf(8115, {"expression", target}, 2);
    }
    return "*";
}

} // namespace

std::string FloatText(double value, int digits, bool scientific) {
    std::array<char, 64> buffer{};
    const auto format = scientific ? std::chars_format::scientific : std::chars_format::general;
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format,
                                   scientific ? digits - 1 : digits);
    std::string text(buffer.data(), end.ptr);
    // SQL Server writes an exponent with three digits; to_chars writes at least two.
    if (const std::size_t mark = text.find('e'); mark != std::string::npos) {
        const std::size_t first = mark + 2;
        text.insert(first, 3 - std::min<std::size_t>(3, text.size() - first), '0');
    }
    return text;
}

std::string FixedText(double value, int digits_after_point) {
    // The largest double has 309 digits before the point.
    std::array<char, 400> buffer{};
    const auto end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                   std::chars_format::fixed, digits_after_point);
    return {buffer.data(), end.ptr};
}

std::string WriteText(const Value& value, const Type& type, Style style) {
    const int number = style.value_or(0);
    return std::visit(
        Overloaded{
            [](std::monostate) { return std::string(); },
            [](std::int64_t v) { return std::to_string(v); },
            [&](double v) { return FloatStyleText(v, type, number); },
            [&](const Decimal& v) { return IsMoney(type.id) ? MoneyText(v, type, number) : DecimalText(v); },
            [&](const DateTime& v) { return WriteDate(v, type, number); },
            [](const std::string& v) { return v; },
            [&](const Bytes& v) {
                return number == 1 || number == 2 ? BinaryText(v.data, number) : FromCodePage1252(v.data);
            },
            [](const Guid& v) { return GuidText(v); },
        },
        value);
}

std::string FitText(std::string text, const Type& to) {
    if (!IsUnicode(to.id)) {
        text = NarrowToCodePage1252(text);
    }
    if (!HasLength(to.id) || to.length == kMaxLength) {
        return text;
    }
    const auto room = static_cast<std::size_t>(to.length);
    const std::size_t length = TextLength(text);
    if (length > room) {
        return SubText(text, 0, room);
    }
    return IsFixedLength(to.id) ? text.append(room - length, ' ') : text;
}

Value ToText(const Value& value, const Type& from, const Type& to, Style style) {
    const auto* bytes = std::get_if<Bytes>(&value);
    const bool hex = style == 1 || style == 2;
    if (bytes != nullptr && !hex) {
        return FitText(IsUnicode(to.id) ? FromUtf16Le(bytes->data) : FromCodePage1252(bytes->data), to);
    }
    std::string text = WriteText(value, from, style);
    // These are cut to the target's length without an error.
    const bool may_be_cut = IsCharacter(from.id) || IsDateTime(from.id) || bytes != nullptr;
    const bool limited = HasLength(to.id) && to.length != kMaxLength;
    if (!may_be_cut && limited && TextLength(text) > static_cast<std::size_t>(to.length)) {
        text = Crowded(value, from, to);
    }
    return FitText(std::move(text), to);
}

} // namespace devsql
