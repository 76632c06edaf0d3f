// The table of buffer types, and the conversion of values to and from their buffers.
#include "odbc/odbc_types.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <type_traits>

namespace odbc {
namespace {

struct TypeRow {
    SqlType type;
    SQLSMALLINT c_type;
};

/// Types that are not in the table are transferred as text.
constexpr std::array kBufferTypes = {
    TypeRow{SqlType::Bit, SQL_C_BIT},
    TypeRow{SqlType::TinyInt, SQL_C_SBIGINT},
    TypeRow{SqlType::SmallInt, SQL_C_SBIGINT},
    TypeRow{SqlType::Integer, SQL_C_SBIGINT},
    TypeRow{SqlType::BigInt, SQL_C_SBIGINT},
    TypeRow{SqlType::Real, SQL_C_DOUBLE},
    TypeRow{SqlType::Float, SQL_C_DOUBLE},
    TypeRow{SqlType::Double, SQL_C_DOUBLE},
    TypeRow{SqlType::Timestamp, SQL_C_TYPE_TIMESTAMP},
    TypeRow{SqlType::Guid, SQL_C_GUID},
    TypeRow{SqlType::Binary, SQL_C_BINARY},
    TypeRow{SqlType::VarBinary, SQL_C_BINARY},
    TypeRow{SqlType::LongVarBinary, SQL_C_BINARY},
};

/// The least space for an output value whose length varies, in characters or bytes. It is enough for a
/// decimal of 38 digits with sign and point.
constexpr std::size_t kMinOutput = 64;
/// The largest number of digits of a decimal.
constexpr std::size_t kMaxPrecision = 38;
/// A column whose values may be longer than this number of characters or bytes is read in pieces.
constexpr std::size_t kMaxInRow = 8000;

template <class T>
std::vector<char> Store(const T& value) {
    static_assert(std::is_trivially_copyable_v<T>);
    std::vector<char> data(sizeof value);
    std::memcpy(data.data(), &value, sizeof value);
    return data;
}

SQL_TIMESTAMP_STRUCT ToOdbc(const Timestamp& from) {
    SQL_TIMESTAMP_STRUCT to{};
    to.year = from.year;
    to.month = from.month;
    to.day = from.day;
    to.hour = from.hour;
    to.minute = from.minute;
    to.second = from.second;
    to.fraction = from.nanosecond;
    return to;
}

/// Writes a value's bytes and their buffer type into the buffer. NULL leaves the buffer type as it is.
struct Encode {
    ValueBuffer& buffer;

    void operator()(std::monostate) const { buffer.null = true; }
    void operator()(bool value) const { Fixed(SQL_C_BIT, static_cast<unsigned char>(value)); }
    void operator()(std::int64_t value) const { Fixed(SQL_C_SBIGINT, value); }
    void operator()(double value) const { Fixed(SQL_C_DOUBLE, value); }
    void operator()(const std::string& value) const {
        const std::u16string wide = text::Widen(value);
        Varying(SQL_C_WCHAR, {reinterpret_cast<const char*>(wide.data()), wide.size() * sizeof(char16_t)});
    }
    void operator()(const Bytes& value) const { Varying(SQL_C_BINARY, value.data); }
    void operator()(const Timestamp& value) const { Fixed(SQL_C_TYPE_TIMESTAMP, ToOdbc(value)); }
    void operator()(const Guid& value) const { Fixed(SQL_C_GUID, value); }

    template <class T>
    void Fixed(SQLSMALLINT c_type, const T& value) const {
        buffer.c_type = c_type;
        buffer.data = Store(value);
        buffer.length = sizeof value;
    }
    void Varying(SQLSMALLINT c_type, std::string_view value) const {
        buffer.c_type = c_type;
        buffer.data.assign(value.begin(), value.end());
        buffer.length = value.size();
    }
};

} // namespace

SQLSMALLINT BufferType(SqlType type) {
    const auto* row = std::ranges::find(kBufferTypes, type, &TypeRow::type);
    return row != kBufferTypes.end() ? row->c_type : static_cast<SQLSMALLINT>(SQL_C_WCHAR);
}

std::size_t FixedSize(SQLSMALLINT c_type) {
    switch (c_type) {
    case SQL_C_BIT:
        return 1;
    case SQL_C_SBIGINT:
        return sizeof(std::int64_t);
    case SQL_C_DOUBLE:
        return sizeof(double);
    case SQL_C_TYPE_TIMESTAMP:
        return sizeof(SQL_TIMESTAMP_STRUCT);
    case SQL_C_GUID:
        return sizeof(Guid);
    default:
        return 0;
    }
}

CellKind KindOf(SQLSMALLINT c_type) {
    switch (c_type) {
    case SQL_C_BIT:
        return CellKind::Bit;
    case SQL_C_SBIGINT:
        return CellKind::Whole;
    case SQL_C_DOUBLE:
        return CellKind::Double;
    case SQL_C_TYPE_TIMESTAMP:
        return CellKind::Timestamp;
    case SQL_C_GUID:
        return CellKind::Guid;
    case SQL_C_BINARY:
        return CellKind::Binary;
    default:
        return CellKind::Text;
    }
}

CellView ViewOf(SQLSMALLINT c_type, const char* data, SQLLEN indicator) {
    if (indicator == SQL_NULL_DATA) {
        return {};
    }
    const std::size_t fixed = FixedSize(c_type);
    return {KindOf(c_type), data, fixed != 0 ? fixed : static_cast<std::size_t>(indicator)};
}

Timestamp TimestampAt(const char* data) {
    SQL_TIMESTAMP_STRUCT from;
    std::memcpy(&from, data, sizeof from);
    return {from.year,
            from.month,
            from.day,
            from.hour,
            from.minute,
            from.second,
            static_cast<std::uint32_t>(from.fraction)};
}

Value ReadValue(const CellView& view) {
    switch (view.kind) {
    case CellKind::Null:
        return {};
    case CellKind::Bit:
        return *view.data != 0;
    case CellKind::Whole:
        return view.As<std::int64_t>();
    case CellKind::Double:
        return view.As<double>();
    case CellKind::Timestamp:
        return TimestampAt(view.data);
    case CellKind::Guid:
        return view.As<Guid>();
    case CellKind::Binary:
        return Bytes{std::string(view.data, view.size)};
    case CellKind::Text:
        break;
    }
    return text::Narrow(view.Text());
}

ValueBuffer MakeParameterBuffer(const Parameter& parameter) {
    ValueBuffer buffer;
    buffer.c_type = BufferType(parameter.type);
    std::visit(Encode{buffer}, parameter.value);
    const std::size_t fixed = FixedSize(buffer.c_type);
    std::size_t room = std::max<std::size_t>(fixed, 1); // in characters for text, in bytes for other types
    if (fixed == 0 && parameter.direction != Direction::Input) {
        room = std::max(parameter.size, kMinOutput);
    }
    if (buffer.c_type == SQL_C_WCHAR) {
        room = (room + 1) * sizeof(char16_t); // in bytes, with the NUL that the driver appends
    }
    buffer.data.resize(std::max(buffer.data.size(), room));
    return buffer;
}

ParameterShape ShapeOf(const Parameter& parameter, const ValueBuffer& buffer) {
    switch (parameter.type) {
    case SqlType::Numeric:
    case SqlType::Decimal:
        return {parameter.size != 0 ? parameter.size : kMaxPrecision, parameter.decimal_digits};
    case SqlType::Timestamp:
        return {23, 3}; // "yyyy-mm-dd hh:mm:ss.fff"
    case SqlType::Guid:
        return {36, 0}; // characters of its text, without braces
    default:
        break;
    }
    const std::size_t length =
        buffer.c_type == SQL_C_WCHAR ? buffer.length / sizeof(char16_t) : buffer.length;
    const std::size_t size = std::max({parameter.size, length, std::size_t{1}});
    return {size, parameter.decimal_digits};
}

bool Column::IsLong() const {
    constexpr std::array kLongTypes = {SqlType::LongVarChar, SqlType::WLongVarChar, SqlType::LongVarBinary,
                                       SqlType::Variant};
    const bool varies = FixedSize(BufferType(type)) == 0;
    return std::ranges::find(kLongTypes, type) != kLongTypes.end() ||
           (varies && (size == 0 || size > kMaxInRow));
}

} // namespace odbc
