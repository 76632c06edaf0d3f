// Whole numbers in as few bytes as they need: seven bits to a byte, the lowest first; the top bit says that
// more follow.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace ado {

inline void PutNumber(std::string& to, std::uint64_t number) {
    while (number >= 0x80) {
        to += static_cast<char>((number & 0x7F) | 0x80);
        number >>= 7U;
    }
    to += static_cast<char>(number);
}

/// The number at `offset`, which goes on behind it.
inline std::uint64_t TakeNumber(const std::string& from, std::size_t& offset) {
    std::uint64_t number = 0;
    for (unsigned shift = 0;; shift += 7) {
        const auto byte = static_cast<unsigned char>(from[offset++]);
        number |= std::uint64_t{byte & 0x7FU} << shift;
        if (byte < 0x80) {
            return number;
        }
    }
}

} // namespace ado
