// The types of DB-Library, and a reader for each.
#include "querytool/linux/db_library_values.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdint>
#include <cstring>

#include "text/code_page.h"
#include "text/utf8.h"

namespace querytool {
namespace {

using odbc::Bytes;
using odbc::Guid;
using odbc::SqlType;
using odbc::Timestamp;

/// The unit of a column's size. It also determines how wide the column is printed.
enum class Measure : std::uint8_t { Fixed, Characters, Bytes, Digits, Long };

/// A type of the library. Its sizes are those that ODBC gives for the type.
struct TypeRow {
    int type; ///< the library's number
    SqlType sql_type;
    Measure measure;
    std::size_t size;            ///< of a Fixed type: Column::size
    std::size_t width;           ///< of a Fixed type: Column::display_size
    std::int16_t decimal_digits; ///< of a Fixed type: Column::decimal_digits
};

/// A number of the protocol that the library's header does not name.
constexpr int kUniqueIdentifier = 36;

constexpr std::array kTypes = {
    TypeRow{SYBBIT, SqlType::Bit, Measure::Fixed, 1, 1, 0},
    TypeRow{SYBINT1, SqlType::TinyInt, Measure::Fixed, 3, 3, 0},
    TypeRow{SYBINT2, SqlType::SmallInt, Measure::Fixed, 5, 6, 0},
    TypeRow{SYBINT4, SqlType::Integer, Measure::Fixed, 10, 11, 0},
    TypeRow{SYBINT8, SqlType::BigInt, Measure::Fixed, 19, 20, 0},
    TypeRow{SYBREAL, SqlType::Real, Measure::Fixed, 24, 14, 0},
    TypeRow{SYBFLT8, SqlType::Float, Measure::Fixed, 53, 24, 0},
    TypeRow{SYBMONEY, SqlType::Decimal, Measure::Fixed, 19, 21, 4},
    TypeRow{SYBMONEY4, SqlType::Decimal, Measure::Fixed, 10, 12, 4},
    TypeRow{SYBDECIMAL, SqlType::Decimal, Measure::Digits, 0, 0, 0},
    TypeRow{SYBNUMERIC, SqlType::Numeric, Measure::Digits, 0, 0, 0},
    TypeRow{SYBDATETIME, SqlType::Timestamp, Measure::Fixed, 23, 23, 3},
    TypeRow{SYBDATETIME4, SqlType::Timestamp, Measure::Fixed, 16, 19, 0},
    TypeRow{kUniqueIdentifier, SqlType::Guid, Measure::Fixed, 36, 36, 0},
    TypeRow{SYBCHAR, SqlType::VarChar, Measure::Characters, 0, 0, 0},
    TypeRow{SYBVARCHAR, SqlType::VarChar, Measure::Characters, 0, 0, 0},
    TypeRow{SYBBINARY, SqlType::VarBinary, Measure::Bytes, 0, 0, 0},
    TypeRow{SYBVARBINARY, SqlType::VarBinary, Measure::Bytes, 0, 0, 0},
    TypeRow{SYBIMAGE, SqlType::LongVarBinary, Measure::Long, 0, 0, 0},
};

/// Types that are not in the table are printed as long text: text, ntext, xml and unknown types.
constexpr TypeRow kOther = {0, SqlType::LongVarChar, Measure::Long, 0, 0, 0};

/// The library gives the size of a text column in bytes of UTF-8, with four bytes for each character.
constexpr std::size_t kBytesOfCharacter = 4;
/// A larger size in characters or bytes means a column without a limit (max).
constexpr std::size_t kMaxInRow = 8000;

const TypeRow& TypeOf(int type) {
    const auto* const row = std::ranges::find(kTypes, type, &TypeRow::type);
    return row != kTypes.end() ? *row : kOther;
}

/// Returns the column's largest number of digits, characters or bytes; 0 if there is no limit.
std::size_t SizeOf(const TypeRow& row, const DBCOL& description) {
    if (row.measure == Measure::Digits) {
        return description.Precision;
    }
    if (row.measure == Measure::Fixed || row.measure == Measure::Long) {
        return row.size;
    }
    const auto bytes = static_cast<std::size_t>(std::max<DBINT>(description.MaxLength, 0));
    const std::size_t size = row.measure == Measure::Characters ? bytes / kBytesOfCharacter : bytes;
    return size <= kMaxInRow ? size : 0;
}

std::size_t DisplaySizeOf(const TypeRow& row, std::size_t size) {
    switch (row.measure) {
    case Measure::Fixed:
        return row.width;
    case Measure::Digits:
        return size + 2; // the sign and the point
    case Measure::Bytes:
        return size * 2;
    default:
        return size;
    }
}

/// Copies the cell's bytes, which may not be aligned, into a value of this type.
template <class Type>
Type As(std::string_view bytes) {
    Type value{};
    std::memcpy(&value, bytes.data(), std::min(bytes.size(), sizeof value));
    return value;
}

/// Returns an amount of money with four digits after the point.
std::string MoneyText(std::int64_t ten_thousandths) {
    constexpr std::uint64_t kUnit = 10000;
    const bool negative = ten_thousandths < 0;
    const std::uint64_t size = negative ? 0 - static_cast<std::uint64_t>(ten_thousandths)
                                        : static_cast<std::uint64_t>(ten_thousandths);
    const std::string fraction = std::to_string(kUnit + size % kUnit).substr(1);
    return (negative ? "-" : "") + std::to_string(size / kUnit) + "." + fraction;
}

/// Returns the date `days` after 1 January 1900 and the time `milliseconds` after midnight.
Timestamp TimestampOf(std::int32_t days, std::int64_t milliseconds) {
    using namespace std::chrono;
    const sys_days day = sys_days(year(1900) / January / 1) + std::chrono::days(days);
    const year_month_day date(day);
    const hh_mm_ss time{std::chrono::milliseconds(milliseconds)};
    Timestamp timestamp;
    timestamp.year = static_cast<std::int16_t>(static_cast<int>(date.year()));
    timestamp.month = static_cast<std::uint16_t>(static_cast<unsigned>(date.month()));
    timestamp.day = static_cast<std::uint16_t>(static_cast<unsigned>(date.day()));
    timestamp.hour = static_cast<std::uint16_t>(time.hours().count());
    timestamp.minute = static_cast<std::uint16_t>(time.minutes().count());
    timestamp.second = static_cast<std::uint16_t>(time.seconds().count());
    timestamp.nanosecond = static_cast<std::uint32_t>(duration_cast<nanoseconds>(time.subseconds()).count());
    return timestamp;
}

/// Reads a datetime, which counts 300 ticks a second. The server shows them as milliseconds that end in 0, 3
/// and 7.
Value FromTicks(std::string_view bytes) {
    const auto value = As<DBDATETIME>(bytes);
    constexpr std::int64_t kTicks = 300;
    constexpr std::int64_t kMilliseconds = 1000;
    return TimestampOf(value.dtdays, (std::int64_t{value.dttime} * kMilliseconds + kTicks / 2) / kTicks);
}

/// Reads a smalldatetime, which counts minutes.
Value FromMinutes(std::string_view bytes) {
    const auto value = As<DBDATETIME4>(bytes);
    constexpr std::int64_t kMinute = 60000;
    return TimestampOf(value.days, value.minutes * kMinute);
}

template <class Type>
Value WholeNumber(std::string_view bytes) {
    return std::int64_t{As<Type>(bytes)};
}

template <class Type>
Value FloatingNumber(std::string_view bytes) {
    return double{As<Type>(bytes)};
}

Value Bit(std::string_view bytes) {
    return As<BYTE>(bytes) != 0;
}

Value Money(std::string_view bytes) {
    const auto money = As<DBMONEY>(bytes);
    return MoneyText((std::int64_t{money.mnyhigh} << 32) | std::int64_t{money.mnylow});
}

Value SmallMoney(std::string_view bytes) {
    return MoneyText(As<DBMONEY4>(bytes).mny4);
}

Value Identifier(std::string_view bytes) {
    return As<Guid>(bytes);
}

Value AnyBytes(std::string_view bytes) {
    return Bytes{std::string(bytes)};
}

Value Characters(std::string_view bytes) {
    return FromLibrary(bytes);
}

struct Reader {
    int type; ///< the library's
    Value (*read)(std::string_view bytes);
};

constexpr std::array kReaders = {
    Reader{SYBBIT, Bit},
    Reader{SYBINT1, WholeNumber<std::uint8_t>},
    Reader{SYBINT2, WholeNumber<std::int16_t>},
    Reader{SYBINT4, WholeNumber<std::int32_t>},
    Reader{SYBINT8, WholeNumber<std::int64_t>},
    Reader{SYBREAL, FloatingNumber<float>},
    Reader{SYBFLT8, FloatingNumber<double>},
    Reader{SYBMONEY, Money},
    Reader{SYBMONEY4, SmallMoney},
    Reader{SYBDATETIME, FromTicks},
    Reader{SYBDATETIME4, FromMinutes},
    Reader{kUniqueIdentifier, Identifier},
    Reader{SYBBINARY, AnyBytes},
    Reader{SYBVARBINARY, AnyBytes},
    Reader{SYBIMAGE, AnyBytes},
    Reader{SYBCHAR, Characters},
    Reader{SYBVARCHAR, Characters},
    Reader{SYBTEXT, Characters},
};

/// Returns the library's own text for a value of another type. The text of an exact number is its digits.
Value LibraryText(DBPROCESS* process, int type, std::string_view bytes) {
    constexpr DBINT kUntilNul = -1;
    std::array<BYTE, 512> text{};
    const DBINT done = dbconvert(process, type, reinterpret_cast<const BYTE*>(bytes.data()),
                                 static_cast<DBINT>(bytes.size()), SYBCHAR, text.data(), kUntilNul);
    return done >= 0 ? std::string(reinterpret_cast<const char*>(text.data())) : std::string();
}

} // namespace

std::string FromLibrary(std::string_view utf8) {
    const auto wide = text::FromUtf8(utf8);
    return wide ? text::Narrow(*wide) : std::string(utf8);
}

std::string ToLibrary(std::string_view text) {
    return text::ToUtf8(text::Widen(text));
}

Column ColumnAt(DBPROCESS* process, int number) {
    DBCOL description{};
    description.SizeOfStruct = sizeof description;
    dbcolinfo(process, CI_REGULAR, number, 0, &description);
    const TypeRow& row = TypeOf(description.Type);
    Column column;
    column.name = FromLibrary(dbcolname(process, number));
    column.type = row.sql_type;
    column.size = SizeOf(row, description);
    column.decimal_digits =
        row.measure == Measure::Digits ? std::int16_t{description.Scale} : row.decimal_digits;
    column.nullable = description.Null != FALSE;
    column.display_size = DisplaySizeOf(row, column.size);
    return column;
}

Value CellAt(DBPROCESS* process, int number) {
    const BYTE* const data = dbdata(process, number);
    if (data == nullptr) {
        return std::monostate();
    }
    const int type = dbcoltype(process, number);
    const std::string_view bytes(reinterpret_cast<const char*>(data),
                                 static_cast<std::size_t>(dbdatlen(process, number)));
    const auto* const reader = std::ranges::find(kReaders, type, &Reader::type);
    return reader != kReaders.end() ? reader->read(bytes) : LibraryText(process, type, bytes);
}

} // namespace querytool
