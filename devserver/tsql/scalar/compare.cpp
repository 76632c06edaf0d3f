// The weights of the collation, and the comparison of values.
#include "devserver/tsql/scalar/compare.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/decimal.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

/// A character of code page 1252 that sorts with one base letter, or with two as ligatures do.
struct Accented {
    char16_t letter; ///< lower case
    char first;
    /// 1 grave, 2 acute, 3 circumflex, 4 tilde, 5 diaeresis, 6 ring, 7 cedilla, 8 caron, 9 stroke, 10 other
    std::uint8_t accent;
    char second = 0;
};

constexpr std::array kAccented = {
    Accented{u'ª', 'a', 10},      Accented{u'²', '2', 10},      Accented{u'³', '3', 10},
    Accented{u'¹', '1', 10},      Accented{u'º', 'o', 10},      Accented{u'ß', 's', 10, 's'},
    Accented{u'à', 'a', 1},       Accented{u'á', 'a', 2},       Accented{u'â', 'a', 3},
    Accented{u'ã', 'a', 4},       Accented{u'ä', 'a', 5},       Accented{u'å', 'a', 6},
    Accented{u'æ', 'a', 10, 'e'}, Accented{u'ç', 'c', 7},       Accented{u'è', 'e', 1},
    Accented{u'é', 'e', 2},       Accented{u'ê', 'e', 3},       Accented{u'ë', 'e', 5},
    Accented{u'ì', 'i', 1},       Accented{u'í', 'i', 2},       Accented{u'î', 'i', 3},
    Accented{u'ï', 'i', 5},       Accented{u'ð', 'd', 10},      Accented{u'ñ', 'n', 4},
    Accented{u'ò', 'o', 1},       Accented{u'ó', 'o', 2},       Accented{u'ô', 'o', 3},
    Accented{u'õ', 'o', 4},       Accented{u'ö', 'o', 5},       Accented{u'ø', 'o', 9},
    Accented{u'ù', 'u', 1},       Accented{u'ú', 'u', 2},       Accented{u'û', 'u', 3},
    Accented{u'ü', 'u', 5},       Accented{u'ý', 'y', 2},       Accented{u'þ', 't', 10, 'h'},
    Accented{u'ÿ', 'y', 5},       Accented{u'œ', 'o', 10, 'e'}, Accented{u'š', 's', 8},
    Accented{u'ž', 'z', 8},       Accented{u'ƒ', 'f', 10}};

// Bytes of a sort key. The separator is below every weight, so that "áb" sorts before "abc".
constexpr char kSeparator = 1;
constexpr unsigned char kFirstWeight = 2;
constexpr unsigned char kPlainAccent = 2;
/// Begins the key of a character that has no weight of its own; its code point follows. Above all weights.
constexpr unsigned char kByCodePoint = 0xF8;

constexpr bool IsLowerLetter(unsigned c) {
    return c >= 'a' && c <= 'z';
}

constexpr bool IsAsciiAlphanumeric(unsigned c) {
    return IsLowerLetter(c) || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// Weights of U+0000 to U+00FF: blank, control characters, punctuation and symbols, digits, letters.
constexpr std::array<unsigned char, 256> MakeWeights() {
    std::array<unsigned char, 256> weights{};
    unsigned char next = kFirstWeight;
    weights[' '] = next++;
    const auto is_control = [](unsigned c) { return c < 0x20 || (c >= 0x7F && c < 0xA0); };
    for (unsigned c = 0; c < 256; ++c) {
        weights[c] = is_control(c) ? next++ : weights[c];
    }
    for (unsigned c = 0x21; c < 256; ++c) {
        if (weights[c] == 0 && !IsAsciiAlphanumeric(c) && c < 0xC0) {
            weights[c] = next++;
        }
    }
    weights[0xD7] = next++;
    weights[0xF7] = next++;
    for (unsigned c = '0'; c <= '9'; ++c) {
        weights[c] = next++;
    }
    for (unsigned c = 'a'; c <= 'z'; ++c) {
        weights[c] = next++;
        weights[c - 'a' + 'A'] = weights[c];
    }
    return weights;
}

constexpr std::array<unsigned char, 256> kWeights = MakeWeights();

const Accented* FindAccented(char32_t letter) {
    const auto* found = std::find_if(kAccented.begin(), kAccented.end(),
                                     [letter](const Accented& row) { return row.letter == letter; });
    return found == kAccented.end() ? nullptr : found;
}

void AppendWeights(char32_t c, std::string& primary, std::string& accents) {
    const auto plain = [&](unsigned char weight, unsigned char accent) {
        primary += static_cast<char>(weight);
        accents += static_cast<char>(kPlainAccent + accent);
    };
    if (c < 0x80) {
        plain(kWeights[c], 0);
        return;
    }
    const char32_t lower = ToLower(c);
    if (const Accented* row = FindAccented(lower)) {
        plain(kWeights[static_cast<unsigned char>(row->first)], row->accent);
        if (row->second != 0) {
            plain(kWeights[static_cast<unsigned char>(row->second)], row->accent);
        }
    } else if (lower < 0x100 && kWeights[lower] != 0) {
        plain(kWeights[lower], 0);
    } else {
        plain(kByCodePoint, 0);
        primary += static_cast<char>(lower >> 16);
        primary += static_cast<char>(lower >> 8);
        primary += static_cast<char>(lower);
    }
}

int Sign(int order) {
    return (order > 0) - (order < 0);
}

template <typename T>
int Order(const T& a, const T& b) {
    return a < b ? -1 : static_cast<int>(b < a);
}

/// The shorter one is compared as if it were filled up with zeros.
int CompareBytes(std::string_view a, std::string_view b) {
    const std::size_t common = std::min(a.size(), b.size());
    if (const int order = std::memcmp(a.data(), b.data(), common); order != 0) {
        return Sign(order);
    }
    const auto rest = [common](std::string_view bytes) {
        return bytes.find_first_not_of('\0', common) != std::string_view::npos;
    };
    return static_cast<int>(rest(a)) - static_cast<int>(rest(b));
}

/// The last group decides first, the first group last, as SQL Server orders them.
std::string GuidOrderKey(const Guid& guid) {
    constexpr std::array<std::size_t, 16> order = {10, 11, 12, 13, 14, 15, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0};
    std::string key;
    for (const std::size_t at : order) {
        key += static_cast<char>(guid.bytes[at]);
    }
    return key;
}

bool IsExact(TypeId id) {
    return IsNumber(id) && !IsApproximate(id);
}

Decimal ExactValue(const Value& value) {
    const auto* integer = std::get_if<std::int64_t>(&value);
    return integer != nullptr ? Decimal{*integer, 0} : std::get<Decimal>(value);
}

} // namespace

std::string SortKey(std::string_view text) {
    text = TrimTrailingBlanks(text);
    std::string key;
    std::string accents;
    key.reserve(text.size() + 1);
    for (std::size_t i = 0; i < text.size();) {
        AppendWeights(DecodeUtf8(text, i), key, accents);
    }
    const std::size_t last = accents.find_last_not_of(static_cast<char>(kPlainAccent));
    if (last != std::string::npos) {
        key += kSeparator;
        key.append(accents, 0, last + 1);
    }
    return key;
}

int CompareText(std::string_view a, std::string_view b) {
    a = TrimTrailingBlanks(a);
    b = TrimTrailingBlanks(b);
    const std::size_t common = std::min(a.size(), b.size());
    for (std::size_t i = 0; i < common; ++i) {
        const auto x = static_cast<unsigned char>(a[i]);
        const auto y = static_cast<unsigned char>(b[i]);
        if (x >= 0x80 || y >= 0x80) {
            // The texts before this position are equal and have no accents, so the rest decides alone.
            return Sign(SortKey(a.substr(i)).compare(SortKey(b.substr(i))));
        }
        if (kWeights[x] != kWeights[y]) {
            return kWeights[x] < kWeights[y] ? -1 : 1;
        }
    }
    return Order(a.size(), b.size());
}

int CompareSameType(const Value& a, const Value& b, TypeId type) {
    if (IsNull(a) || IsNull(b)) {
        return static_cast<int>(IsNull(b)) - static_cast<int>(IsNull(a));
    }
    if (IsCharacter(type)) {
        return CompareText(std::get<std::string>(a), std::get<std::string>(b));
    }
    if (IsBinary(type)) {
        return CompareBytes(std::get<Bytes>(a).data, std::get<Bytes>(b).data);
    }
    if (IsApproximate(type)) {
        return Order(std::get<double>(a), std::get<double>(b));
    }
    if (IsDecimal(type) || IsMoney(type)) {
        return CompareDecimals(std::get<Decimal>(a), std::get<Decimal>(b));
    }
    if (IsDateTime(type)) {
        const auto& x = std::get<DateTime>(a);
        const auto& y = std::get<DateTime>(b);
        return x.days != y.days ? Order(x.days, y.days) : Order(x.ticks, y.ticks);
    }
    if (type == TypeId::UniqueIdentifier) {
        return Sign(GuidOrderKey(std::get<Guid>(a)).compare(GuidOrderKey(std::get<Guid>(b))));
    }
    return Order(std::get<std::int64_t>(a), std::get<std::int64_t>(b));
}

int CompareValues(const Value& a, const Type& a_type, const Value& b, const Type& b_type) {
    if (IsNull(a) || IsNull(b)) {
        return CompareSameType(a, b, a_type.id);
    }
    const bool both_text = IsCharacter(a_type.id) && IsCharacter(b_type.id);
    if (a_type.id == b_type.id || both_text) {
        return CompareSameType(a, b, a_type.id);
    }
    if (IsExact(a_type.id) && IsExact(b_type.id)) {
        return CompareDecimals(ExactValue(a), ExactValue(b));
    }
    const Type common = CommonType(a_type, b_type);
    return CompareSameType(Convert(a, a_type, common), Convert(b, b_type, common), common.id);
}

} // namespace devsql
