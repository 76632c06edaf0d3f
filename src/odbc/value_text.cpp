// Prints GUIDs and bytes.
#include "odbc/value_text.h"

#include <array>
#include <cstdio>

namespace odbc {

std::string TextOf(const Guid& guid) {
    std::array<char, 37> text{};
    const auto& last = guid.data4;
    std::snprintf(text.data(), text.size(), "%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X",
                  unsigned{guid.data1}, unsigned{guid.data2}, unsigned{guid.data3}, unsigned{last[0]},
                  unsigned{last[1]}, unsigned{last[2]}, unsigned{last[3]}, unsigned{last[4]},
                  unsigned{last[5]}, unsigned{last[6]}, unsigned{last[7]});
    return text.data();
}

std::string TextOf(const Bytes& bytes) {
    constexpr char kDigits[] = "0123456789ABCDEF";
    std::string text = "0x";
    text.reserve(2 + 2 * bytes.data.size());
    for (const char c : bytes.data) {
        const auto byte = static_cast<unsigned char>(c);
        text += kDigits[byte >> 4U];
        text += kDigits[byte & 0xFU];
    }
    return text;
}

} // namespace odbc
