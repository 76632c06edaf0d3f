// Conversions to binary and uniqueidentifier: the bytes of each type.
#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/overloaded.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// Where the bytes of a printed uniqueidentifier lie in memory.
constexpr std::array<std::size_t, 16> kGuidOrder = {3, 2, 1, 0, 5, 4, 7, 6, 8, 9, 10, 11, 12, 13, 14, 15};
/// "XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX".
constexpr std::size_t kGuidLength = 36;
constexpr std::array<std::size_t, 4> kGuidDashes = {8, 13, 18, 23};

int HexValue(char c) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    const std::size_t found = digits.find(c >= 'a' && c <= 'f' ? static_cast<char>(c - 'a' + 'A') : c);
    return found == std::string_view::npos ? -1 : static_cast<int>(found);
}

std::string DateBytes(const DateTime& value, const Type& type) {
    if (type.id == TypeId::DateTime) {
        return BigEndian(static_cast<std::uint32_t>(value.days), 4) +
               BigEndian(static_cast<std::uint32_t>(value.ticks), 4);
    }
    return BigEndian(static_cast<std::uint32_t>(value.days), 2) +
           BigEndian(static_cast<std::uint32_t>(value.ticks / (60 * kTicksPerSecond)), 2);
}

std::string TextBytes(const std::string& text, const Type& from, const Type& to, Style style) {
    if (style != 1 && style != 2) {
        return IsUnicode(from.id) ? ToUtf16Le(text) : ToCodePage1252(text);
    }
    std::string_view digits = TrimTrailingBlanks(text);
    const bool prefixed = AsciiEqual(digits.substr(0, 2), "0x");
    const auto bytes =
        prefixed == (style == 1) ? BytesFromHex(digits.substr(prefixed ? 2 : 0), false) : std::nullopt;
    if (!bytes) {
        RaiseError(8114, {TypeName(from.id), TypeName(to.id)});
    }
    return *bytes;
}

/// Numbers keep their lowest bytes; text and bytes keep their first.
std::string FitNumber(std::string bytes, const Type& to) {
    if (!HasLength(to.id) || to.length == kMaxLength) {
        return bytes;
    }
    const auto room = static_cast<std::size_t>(to.length);
    if (bytes.size() > room) {
        return bytes.substr(bytes.size() - room);
    }
    return to.id == TypeId::Binary ? bytes.insert(0, room - bytes.size(), '\0') : bytes;
}

} // namespace

Value ToBinary(const Value& value, const Type& from, const Type& target, Style style) {
    const Type to = target.id == TypeId::Timestamp ? Sized(TypeId::Binary, 8) : target;
    return Bytes{
        std::visit(Overloaded{
                       [&](std::int64_t v) {
                           const auto width = static_cast<std::size_t>(SystemTypeOf(from.id).storage_length);
                           return FitNumber(BigEndian(static_cast<std::uint64_t>(v), width), to);
                       },
                       [&](const DateTime& v) { return FitNumber(DateBytes(v, from), to); },
                       [&](const std::string& v) { return FitBytes(TextBytes(v, from, to, style), to); },
                       [&](const Bytes& v) { return FitBytes(v.data, to); },
                       [&](const Guid& v) { return FitBytes(GuidBytes(v), to); },
                       // Numbers with a fraction do not convert to binary (type_rules.cpp).
                       [](const auto&) { return std::string(); },
                   },
                   value)};
}

Value ToGuid(const Value& value, const Type&) {
    if (const auto* bytes = std::get_if<Bytes>(&value)) {
        return GuidFromBytes(bytes->data);
    }
    const auto* text = std::get_if<std::string>(&value);
    if (text == nullptr) {
        return std::get<Guid>(value);
    }
    std::string_view digits = *text;
    if (!digits.empty() && digits.front() == '{') {
        digits.remove_prefix(1);
    }
    std::string hex(digits.substr(0, kGuidLength));
    for (auto dash = kGuidDashes.rbegin(); dash != kGuidDashes.rend(); ++dash) {
        RaiseIf(hex.size() != kGuidLength - static_cast<std::size_t>(dash - kGuidDashes.rbegin()) ||
                    hex[*dash] != '-',
                8169);
        hex.erase(*dash, 1);
    }
    const auto bytes = BytesFromHex(hex, false);
    if (!bytes) {
        RaiseError(8169);
    }
    Guid guid;
    std::copy(bytes->begin(), bytes->end(), guid.bytes.begin());
    return guid;
}

std::string FitBytes(std::string bytes, const Type& to) {
    if (!HasLength(to.id) || to.length == kMaxLength) {
        return bytes;
    }
    const auto room = static_cast<std::size_t>(to.length);
    if (bytes.size() > room || to.id == TypeId::Binary) {
        bytes.resize(room, '\0');
    }
    return bytes;
}

std::string HexText(std::string_view bytes) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4];
        text += digits[byte & 15];
    }
    return text;
}

std::string GuidText(const Guid& guid) {
    std::string text = HexText(std::string(guid.bytes.begin(), guid.bytes.end()));
    for (const std::size_t dash : kGuidDashes) {
        text.insert(dash, 1, '-');
    }
    return text;
}

std::string BigEndian(std::uint64_t value, std::size_t count) {
    std::string bytes(count, '\0');
    for (std::size_t i = count; i-- > 0; value >>= 8) {
        bytes[i] = static_cast<char>(value & 0xFF);
    }
    return bytes;
}

std::uint64_t FromBigEndian(std::string_view bytes) {
    std::uint64_t value = 0;
    for (const char c : bytes) {
        value = (value << 8) | static_cast<unsigned char>(c);
    }
    return value;
}

std::string GuidBytes(const Guid& guid) {
    std::string bytes;
    for (const std::size_t at : kGuidOrder) {
        bytes += static_cast<char>(guid.bytes[at]);
    }
    return bytes;
}

Guid GuidFromBytes(std::string_view bytes) {
    Guid guid;
    for (std::size_t i = 0; i < std::min(bytes.size(), kGuidOrder.size()); ++i) {
        guid.bytes[kGuidOrder[i]] = static_cast<unsigned char>(bytes[i]);
    }
    return guid;
}

std::optional<std::string> BytesFromHex(std::string_view digits, bool odd) {
    std::string bytes;
    int high = digits.size() % 2 == 1 && odd ? 0 : -1;
    if (digits.size() % 2 == 1 && !odd) {
        return std::nullopt;
    }
    for (const char c : digits) {
        const int value = HexValue(c);
        if (value < 0) {
            return std::nullopt;
        }
        if (high < 0) {
            high = value;
        } else {
            bytes += static_cast<char>(high * 16 + value);
            high = -1;
        }
    }
    return bytes;
}

} // namespace devsql
