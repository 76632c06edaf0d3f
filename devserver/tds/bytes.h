// Appends numbers to a string of bytes and reads them from one. Knows nothing of messages.
#pragma once

#include <array>
#include <concepts>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "devserver/tds/protocol_error.h"

namespace devsql::tds {

/// Appends the number with its lowest byte first.
template <std::unsigned_integral T>
void AppendLe(std::string& out, T value) {
    std::array<char, sizeof(T)> bytes{};
    for (std::size_t i = 0; i < sizeof(T); ++i) {
        bytes[i] = static_cast<char>(static_cast<std::uint8_t>(value >> (8 * i)));
    }
    out.append(bytes.data(), bytes.size());
}

inline void AppendByte(std::string& out, std::uint8_t value) {
    out.push_back(static_cast<char>(value));
}

/// Appends the number with its highest byte first.
template <std::unsigned_integral T>
void AppendBe(std::string& out, T value) {
    for (std::size_t i = sizeof(T); i-- > 0;) {
        out.push_back(static_cast<char>(static_cast<std::uint8_t>(value >> (8 * i))));
    }
}

/// Reads bytes one after the other. It does not own them. A read past the end throws ProtocolError
/// (StreamEnded).
class ByteReader {
  public:
    explicit ByteReader(std::string_view data) : data_(data) {}

    std::size_t position() const { return position_; }
    std::size_t left() const { return data_.size() - position_; }
    bool AtEnd() const { return left() == 0; }

    std::string_view Take(std::size_t count) {
        if (count > left()) {
            throw StreamEnded();
        }
        const std::string_view taken = data_.substr(position_, count);
        position_ += count;
        return taken;
    }

    std::uint8_t Byte() { return static_cast<std::uint8_t>(Take(1).front()); }

    /// A number with its lowest byte first.
    template <std::unsigned_integral T>
    T Le() {
        const std::string_view bytes = Take(sizeof(T));
        std::uint64_t value = 0;
        for (std::size_t i = sizeof(T); i-- > 0;) {
            value = value << 8 | static_cast<std::uint8_t>(bytes[i]);
        }
        return static_cast<T>(value);
    }

    /// A number with its highest byte first.
    std::uint16_t Be16() {
        const std::uint8_t high = Byte();
        return static_cast<std::uint16_t>(high << 8 | Byte());
    }

    /// The next byte, which stays to be read.
    std::uint8_t Peek() {
        if (AtEnd()) {
            throw StreamEnded();
        }
        return static_cast<std::uint8_t>(data_[position_]);
    }

  private:
    std::string_view data_;
    std::size_t position_ = 0;
};

} // namespace devsql::tds
