// A signed 16-bit integer for the program's counters. A value that does not fit raises an overflow failure.
#pragma once

#include <compare>
#include <cstdint>
#include <limits>

#include "base/failure.h"

namespace kv {

/// Every operation raises run_time::kOverflow if its result does not fit; nothing wraps around.
class Int16 {
  public:
    constexpr Int16() = default;
    /// Raises run_time::kOverflow for a value outside -32768 to 32767.
    constexpr explicit Int16(std::int64_t value) : value_(Checked(value)) {}

    constexpr std::int16_t Value() const { return value_; }

    constexpr Int16& operator++() { return *this = *this + Int16(1); }

    friend constexpr Int16 operator+(Int16 left, Int16 right) {
        return Int16(std::int64_t{left.value_} + right.value_);
    }
    friend constexpr Int16 operator-(Int16 left, Int16 right) {
        return Int16(std::int64_t{left.value_} - right.value_);
    }
    friend constexpr Int16 operator*(Int16 left, Int16 right) {
        return Int16(std::int64_t{left.value_} * right.value_);
    }
    friend constexpr bool operator==(Int16, Int16) = default;
    friend constexpr std::strong_ordering operator<=>(Int16 left, Int16 right) {
        return left.value_ <=> right.value_;
    }

  private:
    static constexpr std::int16_t Checked(std::int64_t value) {
        using Limits = std::numeric_limits<std::int16_t>;
        if (value < Limits::min() || value > Limits::max()) {
            RaiseRunTimeFailure(run_time::kOverflow);
        }
        return static_cast<std::int16_t>(value);
    }

    std::int16_t value_ = 0;
};

} // namespace kv
