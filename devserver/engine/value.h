// The data types and values that protocol, language and storage exchange. Knows nothing of the protocol that
// carries them nor of how they are stored.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <variant>

namespace devsql {

enum class TypeId : std::uint8_t {
    Bit,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Decimal,
    Numeric,
    Money,
    SmallMoney,
    Real,
    Float,
    DateTime,
    SmallDateTime,
    Char,
    VarChar,
    NChar,
    NVarChar,
    Text,
    NText,
    Binary,
    VarBinary,
    Image,
    UniqueIdentifier,
    Timestamp,
    Date, // The last one, because database files hold these numbers.
};

/// `length` of a type declared with (max).
inline constexpr std::int32_t kMaxLength = -1;

struct Type {
    TypeId id = TypeId::Int;
    /// char, varchar, binary, varbinary: bytes; nchar, nvarchar: characters; kMaxLength for (max).
    /// Not used by the other types.
    std::int32_t length = 0;
    /// decimal and numeric: digits in all, 1 to 38. Not used by the other types.
    std::uint8_t precision = 0;
    /// decimal and numeric: digits after the point, 0 to `precision`.
    std::uint8_t scale = 0;

    friend bool operator==(const Type&, const Type&) = default;
};

/// GCC's integer of 128 bits; __extension__ allows it under -Wpedantic.
__extension__ typedef __int128 Int128;

/// A decimal, numeric, money or smallmoney: `unscaled` / 10^`scale`. |unscaled| < 10^38. Money has the
/// scale 4.
struct Decimal {
    Int128 unscaled = 0;
    std::uint8_t scale = 0;

    friend bool operator==(const Decimal&, const Decimal&) = default;
};

/// datetime, smalldatetime, and date, which has no time.
struct DateTime {
    /// Days since 1900-01-01; datetime reaches from 1753-01-01 (-53690) to 9999-12-31 (2958463).
    std::int32_t days = 0;
    /// 1/300 seconds since midnight, 0 to 25,919,999. smalldatetime holds whole minutes.
    std::int32_t ticks = 0;

    friend bool operator==(const DateTime&, const DateTime&) = default;
};

/// The 16 bytes of a uniqueidentifier in the order in which they are printed.
struct Guid {
    std::array<std::uint8_t, 16> bytes{};

    friend bool operator==(const Guid&, const Guid&) = default;
};

/// The bytes of a binary, varbinary, image or timestamp.
struct Bytes {
    std::string data;

    friend bool operator==(const Bytes&, const Bytes&) = default;
};

/// One value. Its type decides which alternative is used: std::monostate for NULL of any type; int64 for the
/// integers and bit; double for real and float; std::string for the character types, in UTF-8 (a char or
/// varchar holds only characters of code page 1252).
using Value = std::variant<std::monostate, std::int64_t, double, Decimal, DateTime, std::string, Bytes, Guid>;

inline bool IsNull(const Value& value) {
    return std::holds_alternative<std::monostate>(value);
}

} // namespace devsql
