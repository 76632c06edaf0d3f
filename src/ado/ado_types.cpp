// The table of types.
#include "ado/ado_types.h"

#include <algorithm>
#include <array>

namespace ado {
namespace {

using odbc::SqlType;

/// Type numbers of ODBC 2, which drivers report to programs of that version.
constexpr auto kDate2 = static_cast<SqlType>(9);
constexpr auto kTime2 = static_cast<SqlType>(10);
constexpr auto kTimestamp2 = static_cast<SqlType>(11);
/// The server's own number for XML.
constexpr auto kXml = static_cast<SqlType>(-152);

/// ADO's type for each type of ODBC. Where several rows have the same ADO type, its parameters are bound with
/// the ODBC type of the first row.
constexpr std::array kTypes = {
    AdoType{adVarWChar, SqlType::WVarChar, "nvarchar", TypeKind::Sized},
    AdoType{adVarChar, SqlType::VarChar, "varchar", TypeKind::Sized},
    AdoType{adChar, SqlType::Char, "char", TypeKind::Sized},
    AdoType{adWChar, SqlType::WChar, "nchar", TypeKind::Sized},
    AdoType{adLongVarChar, SqlType::LongVarChar, "text", TypeKind::Long},
    AdoType{adLongVarWChar, SqlType::WLongVarChar, "ntext", TypeKind::Long},
    AdoType{adLongVarWChar, kXml, "xml", TypeKind::Long},
    AdoType{adBinary, SqlType::Binary, "binary", TypeKind::Sized},
    AdoType{adVarBinary, SqlType::VarBinary, "varbinary", TypeKind::Sized},
    AdoType{adLongVarBinary, SqlType::LongVarBinary, "image", TypeKind::Long},
    AdoType{adNumeric, SqlType::Numeric, "numeric", TypeKind::Decimal, 0, true},
    AdoType{adNumeric, SqlType::Decimal, "decimal", TypeKind::Decimal, 0, true},
    AdoType{adBoolean, SqlType::Bit, "bit"},
    AdoType{adUnsignedTinyInt, SqlType::TinyInt, "tinyint", TypeKind::Fixed, 3},
    AdoType{adSmallInt, SqlType::SmallInt, "smallint", TypeKind::Fixed, 5, true},
    AdoType{adInteger, SqlType::Integer, "int", TypeKind::Fixed, 10, true},
    AdoType{adBigInt, SqlType::BigInt, "bigint", TypeKind::Fixed, 19, true},
    AdoType{adSingle, SqlType::Real, "real", TypeKind::Fixed, 7, true},
    AdoType{adDouble, SqlType::Double, "float", TypeKind::Fixed, 15, true},
    AdoType{adDouble, SqlType::Float, "float", TypeKind::Fixed, 15, true},
    AdoType{adDBTimeStamp, SqlType::Timestamp, "datetime", TypeKind::Decimal},
    AdoType{adDBTimeStamp, kTimestamp2, "datetime", TypeKind::Decimal},
    AdoType{adDBDate, SqlType::Date, "date", TypeKind::Fixed, 10},
    AdoType{adDBDate, kDate2, "date", TypeKind::Fixed, 10},
    AdoType{adDBTime, SqlType::Time, "time", TypeKind::Fixed, 8},
    AdoType{adDBTime, kTime2, "time", TypeKind::Fixed, 8},
    AdoType{adGUID, SqlType::Guid, "uniqueidentifier"},
    AdoType{adVariant, SqlType::Variant, "sql_variant", TypeKind::Sized},
};

constexpr const AdoType& kText = kTypes.front();

constexpr AdoType kCurrency{adCurrency, SqlType::Decimal, "money", TypeKind::Decimal, 0, true};
constexpr std::array<std::string_view, 2> kMoneyNames = {"money", "smallmoney"};

} // namespace

const AdoType& AdoTypeOf(SqlType sql_type, std::string_view type_name) {
    if (std::ranges::find(kMoneyNames, type_name) != kMoneyNames.end()) {
        return kCurrency;
    }
    const auto* const row = std::ranges::find(kTypes, sql_type, &AdoType::sql_type);
    return row != kTypes.end() ? *row : kText;
}

const AdoType& AdoTypeOf(std::int32_t number) {
    if (number == adCurrency) {
        return kCurrency;
    }
    const auto* const row = std::ranges::find(kTypes, number, &AdoType::number);
    return row != kTypes.end() ? *row : kText;
}

} // namespace ado
