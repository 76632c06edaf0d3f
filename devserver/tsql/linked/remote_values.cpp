// Writes values as literals of T-SQL, and carries values of types that would not arrive unchanged.
#include "devserver/tsql/linked/remote_values.h"

#include <array>
#include <charconv>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {
namespace {

std::string Hex(std::string_view bytes) {
    return "0x" + HexText(bytes);
}

/// True for a text that cannot be written between quotes: it has characters that code page 1252 lacks, a NUL,
/// or a backslash at the end of a line, which the server reads as a line that goes on.
bool NeedsBytes(const std::string& text) {
    return NarrowToCodePage1252(text) != text || text.find('\0') != std::string::npos ||
           text.find("\\\n") != std::string::npos || text.find("\\\r") != std::string::npos;
}

std::string TextLiteralOf(const std::string& text, bool unicode) {
    if (NeedsBytes(text)) {
        return unicode ? "CONVERT(nvarchar(max), " + Hex(ToUtf16Le(text)) + ")"
                       : "CONVERT(varchar(max), " + Hex(ToCodePage1252(text)) + ")";
    }
    std::string literal = unicode ? "N'" : "'";
    for (const char c : text) {
        literal += c == '\'' ? "''" : std::string(1, c);
    }
    return literal + "'";
}

/// All digits that identify the number, with an exponent: without one the literal would be a decimal.
std::string FloatLiteral(double value, bool real) {
    std::array<char, 40> buffer{};
    const auto end = real ? std::to_chars(buffer.data(), buffer.data() + buffer.size(),
                                          static_cast<float>(value), std::chars_format::scientific)
                          : std::to_chars(buffer.data(), buffer.data() + buffer.size(), value,
                                          std::chars_format::scientific);
    const std::string text(buffer.data(), end.ptr);
    return real ? "CONVERT(real, " + text + ")" : text;
}

} // namespace

std::string BracketName(std::string_view name) {
    std::string text = "[";
    for (const char c : name) {
        text += c == ']' ? "]]" : std::string(1, c);
    }
    return text + "]";
}

std::string RemoteText(std::string_view text) {
    return TextLiteralOf(std::string(text), true);
}

std::string RemoteLiteral(const Value& value, const Type& type) {
    if (IsNull(value)) {
        return "NULL";
    }
    if (const auto* text = std::get_if<std::string>(&value)) {
        return TextLiteralOf(*text, IsUnicode(type.id));
    }
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
        return Hex(bytes->data);
    }
    if (const auto* number = std::get_if<double>(&value)) {
        return FloatLiteral(*number, type.id == TypeId::Real);
    }
    if (const auto* decimal = std::get_if<Decimal>(&value)) {
        return DecimalText(*decimal);
    }
    if (std::holds_alternative<DateTime>(value)) {
        // Style 126 reads the same under every language and date format.
        constexpr int kStyle = 126;
        return "'" + std::get<std::string>(Convert(value, type, Sized(TypeId::VarChar, 30), kStyle)) + "'";
    }
    if (std::holds_alternative<Guid>(value)) {
        return "'" + ValueText(value, type) + "'";
    }
    return std::to_string(std::get<std::int64_t>(value));
}

std::string CarriedExpression(const std::string& expression, const Type& type) {
    constexpr std::int32_t kMostCharactersInRow = 4000;
    if (IsUnicode(type.id)) {
        const bool in_row =
            type.length != kMaxLength && !IsOldLob(type.id) && type.length <= kMostCharactersInRow;
        return in_row ? "CONVERT(varbinary(" + std::to_string(2 * type.length) + "), " + expression + ")"
                      : "CONVERT(varbinary(max), CONVERT(nvarchar(max), " + expression + "))";
    }
    if (IsMoney(type.id)) {
        return "CONVERT(decimal(19, 4), " + expression + ")";
    }
    if (type.id == TypeId::Timestamp) {
        return "CONVERT(varbinary(8), " + expression + ")";
    }
    return expression;
}

Value CarriedValue(const Value& value, const Type& type) {
    const auto* bytes = std::get_if<Bytes>(&value);
    if (bytes != nullptr && IsUnicode(type.id)) {
        return FromUtf16Le(bytes->data);
    }
    const auto* text = std::get_if<std::string>(&value);
    return text != nullptr && !IsCharacter(type.id)
               ? Convert(*text, Sized(TypeId::NVarChar, kMaxLength), type)
               : value;
}

} // namespace devsql
