// Functions on single characters and on the sound of words.
#include <algorithm>

#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

constexpr std::size_t kSoundexLength = 4;

Value Char(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 255) {
        return {};
    }
    return FromCodePage1252(std::string(1, static_cast<char>(code)));
}

Value Ascii(Values values, Types types) {
    const std::string bytes = ToCodePage1252(TextOf(values[0], types[0]));
    return bytes.empty() ? Value{} : Value(std::int64_t{static_cast<unsigned char>(bytes.front())});
}

Value NChar(Values values, Types types) {
    const std::int64_t code = IntOf(values[0], types[0]);
    if (code < 0 || code > 0xFFFF) {
        return {};
    }
    std::string text;
    AppendUtf8(text, static_cast<char32_t>(code));
    return text;
}

Value Unicode(Values values, Types types) {
    const std::u16string units = ToUtf16(TextOf(values[0], types[0]));
    return units.empty() ? Value{} : Value(std::int64_t{units.front()});
}

/// The group of a letter; 0 for vowels, '-' for H and W, which don't part letters of the same group.
char SoundexGroup(char letter) {
    //                                      ABCDEFGHIJKLMNOPQRSTUVWXYZ
    constexpr std::string_view groups = "01230120022455012623010202";
    if (letter == 'H' || letter == 'W') {
        return '-';
    }
    return groups[static_cast<std::size_t>(letter - 'A')];
}

std::string SoundexOf(const std::string& text) {
    const std::string upper = AsciiUpper(text);
    const auto is_letter = [](char c) { return c >= 'A' && c <= 'Z'; };
    if (upper.empty() || !is_letter(upper.front())) {
        return std::string(kSoundexLength, '0');
    }
    std::string code(1, upper.front());
    char last = SoundexGroup(upper.front());
    for (std::size_t i = 1; i < upper.size() && is_letter(upper[i]) && code.size() < kSoundexLength; ++i) {
        const char group = SoundexGroup(upper[i]);
        if (group == '-') {
            continue;
        }
        if (group != '0' && group != last) {
            code += group;
        }
        last = group;
    }
    code.resize(kSoundexLength, '0');
    return code;
}

Value Soundex(Values values, Types types) {
    return SoundexOf(TextOf(values[0], types[0]));
}

Value Difference(Values values, Types types) {
    const std::string a = SoundexOf(TextOf(values[0], types[0]));
    const std::string b = SoundexOf(TextOf(values[1], types[1]));
    std::int64_t equal = 0;
    for (std::size_t i = 0; i < kSoundexLength; ++i) {
        equal += a[i] == b[i] ? 1 : 0;
    }
    return equal;
}

constexpr ScalarFunction kFunctions[] = {
    {"CHAR", 1, 1, Always<TypeId::Char, 1>, NullIfAnyNull<Char>},
    {"ASCII", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Ascii>},
    {"NCHAR", 1, 1, Always<TypeId::NChar, 1>, NullIfAnyNull<NChar>},
    {"UNICODE", 1, 1, Always<TypeId::Int>, NullIfAnyNull<Unicode>},
    {"SOUNDEX", 1, 1, Always<TypeId::VarChar, 4>, NullIfAnyNull<Soundex>},
    {"DIFFERENCE", 2, 2, Always<TypeId::Int>, NullIfAnyNull<Difference>},
};

} // namespace

std::span<const ScalarFunction> CharacterFunctions() {
    return kFunctions;
}

} // namespace devsql
