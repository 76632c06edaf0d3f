// Converts bytes to text that a person can compare, such as "26 04 00", and back.
#pragma once

#include <cstdio>
#include <string>
#include <string_view>

namespace devsql::fakes {

inline std::string Hex(std::string_view bytes) {
    std::string text;
    for (const char byte : bytes) {
        char pair[4] = {};
        std::snprintf(pair, sizeof pair, "%02X", static_cast<unsigned>(static_cast<unsigned char>(byte)));
        text += text.empty() ? "" : " ";
        text += pair;
    }
    return text;
}

/// Converts pairs of hexadecimal digits to bytes. Blanks are ignored.
inline std::string FromHex(std::string_view text) {
    const auto digit = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
    std::string bytes;
    int high = -1;
    for (const char character : text) {
        if (character == ' ') {
            continue;
        }
        if (high < 0) {
            high = digit(character);
        } else {
            bytes += static_cast<char>(high << 4 | digit(character));
            high = -1;
        }
    }
    return bytes;
}

} // namespace devsql::fakes
