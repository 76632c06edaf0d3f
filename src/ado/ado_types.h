// ADO's numbers of data types, and what they are in ODBC: one table, both ways. Inner header of the layer but
// for the numbers.
#pragma once

#include <cstdint>
#include <string_view>

#include "odbc/odbc.h"

namespace ado {

enum DataType : std::int32_t {
    adEmpty = 0,
    adSmallInt = 2,
    adInteger = 3,
    adSingle = 4,
    adDouble = 5,
    adCurrency = 6,
    adBoolean = 11,
    adVariant = 12,
    adUnsignedTinyInt = 17,
    adBigInt = 20,
    adGUID = 72,
    adBinary = 128,
    adChar = 129,
    adWChar = 130,
    adNumeric = 131,
    adDBDate = 133,
    adDBTime = 134,
    adDBTimeStamp = 135,
    adVarChar = 200,
    adLongVarChar = 201,
    adVarWChar = 202,
    adLongVarWChar = 203,
    adVarBinary = 204,
    adLongVarBinary = 205,
};

/// What Size and Precision of a parameter of the type are.
enum class TypeKind : std::uint8_t {
    Fixed,   ///< its precision follows from the type
    Decimal, ///< precision and scale are the parameter's own
    Sized,   ///< so many characters or bytes
    Long,    ///< the same, and adParamLong
};

struct AdoType {
    DataType number = adEmpty;
    platform::odbc::SqlType sql_type = platform::odbc::SqlType::Unknown;
    std::string_view server_name; ///< the server's own name for the type
    TypeKind kind = TypeKind::Fixed;
    std::uint8_t precision = 0; ///< of a fixed type; 0 for those that are no numbers
    bool is_signed = false;
};

/// ADO's type of a column of the catalogue. The driver's type tells it, but for money, which is a decimal to
/// ODBC and which the server's name for the type tells. A type without a row is text, which every value has.
const AdoType& AdoTypeOf(platform::odbc::SqlType sql_type, std::string_view type_name);
/// The row of one of ADO's numbers; text for a number that no driver gives.
const AdoType& AdoTypeOf(std::int32_t number);

} // namespace ado
