// Letter case by tables that are made at compile time, and plain searching.
#include "text/text.h"

#include <algorithm>
#include <array>

#include "text/code_page.h"

namespace text {
namespace {

using CaseTable = std::array<unsigned char, 256>;

struct CasePair {
    unsigned char upper;
    unsigned char lower;
};

/// Letters outside the two regular ranges that the code page has in both cases.
constexpr std::array kScatteredPairs = {
    CasePair{0x8A, 0x9A}, // S with caron
    CasePair{0x8C, 0x9C}, // OE
    CasePair{0x8E, 0x9E}, // Z with caron
    CasePair{0x9F, 0xFF}, // Y with diaeresis
};

constexpr CaseTable MakeTable(bool to_upper) {
    CaseTable table{};
    for (std::size_t i = 0; i < table.size(); ++i) {
        table[i] = static_cast<unsigned char>(i);
    }
    const auto add = [&](std::size_t upper, std::size_t lower) {
        table[to_upper ? lower : upper] = static_cast<unsigned char>(to_upper ? upper : lower);
    };
    for (std::size_t letter = 'A'; letter <= 'Z'; ++letter) {
        add(letter, letter + 0x20);
    }
    for (std::size_t letter = 0xC0; letter <= 0xDE; ++letter) {
        if (letter != 0xD7) { // no letter: the multiplication sign, with the division sign 0x20 above it
            add(letter, letter + 0x20);
        }
    }
    for (const CasePair& pair : kScatteredPairs) {
        add(pair.upper, pair.lower);
    }
    return table;
}

constexpr CaseTable kUpper = MakeTable(true);
constexpr CaseTable kLower = MakeTable(false);

std::string Mapped(std::string_view text, const CaseTable& table) {
    std::string result(text);
    for (char& c : result) {
        c = static_cast<char>(table[static_cast<unsigned char>(c)]);
    }
    return result;
}

bool SameLetter(char one, char other) {
    return kLower[static_cast<unsigned char>(one)] == kLower[static_cast<unsigned char>(other)];
}

char32_t MappedCharacter(char32_t character, const CaseTable& table) {
    const auto byte = NarrowCharacter(character);
    return byte ? WidenCharacter(static_cast<char>(table[static_cast<unsigned char>(*byte)])) : character;
}

} // namespace

std::string UpperCase(std::string_view text) {
    return Mapped(text, kUpper);
}

std::string LowerCase(std::string_view text) {
    return Mapped(text, kLower);
}

std::u16string UpperCase(std::u16string_view text) {
    std::u16string result(text);
    for (char16_t& c : result) {
        c = static_cast<char16_t>(UpperCharacter(c));
    }
    return result;
}

char32_t UpperCharacter(char32_t character) {
    return MappedCharacter(character, kUpper);
}

char32_t LowerCharacter(char32_t character) {
    return MappedCharacter(character, kLower);
}

std::size_t FindIgnoringCase(std::string_view text, std::string_view wanted, std::size_t from) {
    if (from > text.size()) {
        return std::string_view::npos;
    }
    const auto found = std::search(text.begin() + static_cast<std::ptrdiff_t>(from), text.end(),
                                   wanted.begin(), wanted.end(), SameLetter);
    if (found == text.end() && !wanted.empty()) {
        return std::string_view::npos;
    }
    return static_cast<std::size_t>(found - text.begin());
}

bool SameIgnoringCase(std::string_view one, std::string_view other) {
    return std::ranges::equal(one, other, SameLetter);
}

std::string_view Trim(std::string_view text) {
    const auto first = text.find_first_not_of(' ');
    if (first == std::string_view::npos) {
        return {};
    }
    return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string ReplaceAll(std::string_view text, std::string_view wanted, std::string_view replacement) {
    std::string result;
    result.reserve(text.size());
    std::size_t from = 0;
    for (;;) {
        const auto found = text.find(wanted, from);
        if (found == std::string_view::npos) {
            result.append(text.substr(from));
            return result;
        }
        result.append(text.substr(from, found - from)).append(replacement);
        from = found + wanted.size();
    }
}

} // namespace text
