// Functions that the harnesses share: they divide an input into pieces, and stop the fuzzer if a condition is
// not met.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

/// Ends the process if the condition does not hold, which the fuzzer reports with the input.
inline void Require(bool holds, const char* condition) {
    if (!holds) {
        std::fprintf(stderr, "not met: %s\n", condition);
        std::abort();
    }
}

/// The parts of a text between separators: always one more than there are separators.
inline std::vector<std::string> Split(std::string_view text, char separator) {
    std::vector<std::string> parts;
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(separator, begin), text.size());
        parts.emplace_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

/// Reads an input from its beginning. After its end every number is 0 and every text is empty.
class Input {
  public:
    Input(const std::uint8_t* bytes, std::size_t size) : rest_(reinterpret_cast<const char*>(bytes), size) {}

    bool Empty() const { return rest_.empty(); }
    std::uint8_t Byte() {
        if (rest_.empty()) {
            return 0;
        }
        const auto byte = static_cast<std::uint8_t>(rest_.front());
        rest_.remove_prefix(1);
        return byte;
    }
    /// Four bytes, the highest one first.
    std::int32_t Number() {
        std::uint32_t number = 0;
        for (int i = 0; i < 4; ++i) {
            number = number << 8U | Byte();
        }
        return static_cast<std::int32_t>(number);
    }
    /// The text up to the next NUL, which is skipped.
    std::string Text() {
        const std::size_t end = std::min(rest_.find('\0'), rest_.size());
        std::string text(rest_.substr(0, end));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return text;
    }
    /// All bytes that were not read yet.
    std::string_view Rest() const { return rest_; }

  private:
    std::string_view rest_;
};

} // namespace fuzz
