// The table of ODBC's types and the conversion of each kind of value. See odbc_values.h.
#include "devserver/linked/odbc_values.h"

#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {
namespace {

using odbc::SqlType;

/// Which parts of ODBC's description a type takes: none, the length, or the digits and the scale.
enum class Shape : std::uint8_t { Plain, Sized, Exact };

struct TypeRow {
    SqlType odbc;
    TypeId id;
    Shape shape;
};

constexpr std::array kTypes = {
    TypeRow{SqlType::Bit, TypeId::Bit, Shape::Plain},
    TypeRow{SqlType::TinyInt, TypeId::TinyInt, Shape::Plain},
    TypeRow{SqlType::SmallInt, TypeId::SmallInt, Shape::Plain},
    TypeRow{SqlType::Integer, TypeId::Int, Shape::Plain},
    TypeRow{SqlType::BigInt, TypeId::BigInt, Shape::Plain},
    TypeRow{SqlType::Real, TypeId::Real, Shape::Plain},
    TypeRow{SqlType::Float, TypeId::Float, Shape::Plain},
    TypeRow{SqlType::Double, TypeId::Float, Shape::Plain},
    TypeRow{SqlType::Timestamp, TypeId::DateTime, Shape::Plain},
    TypeRow{SqlType::Guid, TypeId::UniqueIdentifier, Shape::Plain},
    TypeRow{SqlType::Decimal, TypeId::Decimal, Shape::Exact},
    TypeRow{SqlType::Numeric, TypeId::Numeric, Shape::Exact},
    TypeRow{SqlType::Char, TypeId::Char, Shape::Sized},
    TypeRow{SqlType::VarChar, TypeId::VarChar, Shape::Sized},
    TypeRow{SqlType::LongVarChar, TypeId::VarChar, Shape::Sized},
    TypeRow{SqlType::WChar, TypeId::NChar, Shape::Sized},
    TypeRow{SqlType::WVarChar, TypeId::NVarChar, Shape::Sized},
    TypeRow{SqlType::WLongVarChar, TypeId::NVarChar, Shape::Sized},
    TypeRow{SqlType::Binary, TypeId::Binary, Shape::Sized},
    TypeRow{SqlType::VarBinary, TypeId::VarBinary, Shape::Sized},
    TypeRow{SqlType::LongVarBinary, TypeId::VarBinary, Shape::Sized},
};

Type TypeOf(const odbc::Column& column) {
    const auto* row = std::ranges::find(kTypes, column.type, &TypeRow::odbc);
    if (row == kTypes.end()) {
        return Sized(TypeId::NVarChar, kMaxLength);
    }
    switch (row->shape) {
    case Shape::Plain:
        return Simple(row->id);
    case Shape::Exact:
        return DecimalType(static_cast<int>(column.size), column.decimal_digits, row->id);
    case Shape::Sized:
        break;
    }
    if (!column.IsLong()) {
        return FittedLength(row->id, static_cast<std::int64_t>(column.size));
    }
    return Sized(IsBinary(row->id)    ? TypeId::VarBinary
                 : IsUnicode(row->id) ? TypeId::NVarChar
                                      : TypeId::VarChar,
                 kMaxLength);
}

/// Drivers return the milliseconds that SQL Server prints. The nearest tick (1/300 s) is the original value.
DateTime DateTimeOf(const odbc::Timestamp& time) {
    constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
    DateTime value;
    value.days = DaysFromCivil(time.year, time.month, time.day);
    const std::int64_t ticks =
        (std::int64_t{time.nanosecond} * kTicksPerSecond + kNanosecondsPerSecond / 2) / kNanosecondsPerSecond;
    value.ticks = (time.hour * 3600 + time.minute * 60 + time.second) * kTicksPerSecond +
                  static_cast<std::int32_t>(ticks);
    if (value.ticks >= kTicksPerDay) {
        value.ticks -= kTicksPerDay;
        ++value.days;
    }
    return value;
}

/// In ODBC's structure the first three groups are numbers; a Guid of the server has the bytes as printed,
/// with the highest one first.
Guid GuidOf(const odbc::Guid& from) {
    Guid guid;
    for (std::size_t i = 0; i < 4; ++i) {
        guid.bytes[i] = static_cast<std::uint8_t>(from.data1 >> (24 - 8 * i));
    }
    guid.bytes[4] = static_cast<std::uint8_t>(from.data2 >> 8);
    guid.bytes[5] = static_cast<std::uint8_t>(from.data2);
    guid.bytes[6] = static_cast<std::uint8_t>(from.data3 >> 8);
    guid.bytes[7] = static_cast<std::uint8_t>(from.data3);
    std::copy(std::begin(from.data4), std::end(from.data4), guid.bytes.begin() + 8);
    return guid;
}

/// Converts a value of the driver to a value of the server.
struct ToValue {
    const Type& type;

    Value operator()(std::monostate) const { return {}; }
    Value operator()(bool value) const { return std::int64_t{value ? 1 : 0}; }
    Value operator()(std::int64_t value) const { return value; }
    Value operator()(double value) const { return value; }
    Value operator()(const std::string& value) const {
        const std::string text = FromCodePage1252(value);
        return IsCharacter(type.id) ? Value(text) : Convert(text, Sized(TypeId::NVarChar, kMaxLength), type);
    }
    Value operator()(const odbc::Bytes& value) const { return Bytes{value.data}; }
    Value operator()(const odbc::Timestamp& value) const { return DateTimeOf(value); }
    Value operator()(const odbc::Guid& value) const { return GuidOf(value); }
};

} // namespace

Column ColumnOfOdbc(const odbc::Column& column) {
    return {FromCodePage1252(column.name), TypeOf(column), column.nullable, false};
}

Value ValueOfOdbc(const odbc::Value& value, const Type& type) {
    return std::visit(ToValue{type}, value);
}

} // namespace devsql
