// ADO's data types and the ODBC types that correspond to them, in one table for both directions. Everything
// but the enumeration of data types is internal to the layer.
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

/// The meaning of a parameter's Size and Precision.
enum class TypeKind : std::uint8_t {
    Fixed,   ///< the precision follows from the type
    Decimal, ///< each parameter has its own precision and scale
    Sized,   ///< the size is the largest number of characters or bytes
    Long,    ///< as Sized; the parameter also has the attribute adParamLong
};

struct AdoType {
    DataType number = adEmpty;
    odbc::SqlType sql_type = odbc::SqlType::Unknown;
    std::string_view server_name; ///< the server's own name for the type
    TypeKind kind = TypeKind::Fixed;
    std::uint8_t precision = 0; ///< of a fixed type; 0 for types that are not numbers
    bool is_signed = false;
};

/// ADO's type for a column of the catalogue. It follows from the driver's type, except for money: ODBC
/// reports it as a decimal, so the server's name of the type decides. A type that is not in the table becomes
/// text, since every value can be shown as text.
const AdoType& AdoTypeOf(odbc::SqlType sql_type, std::string_view type_name);
/// The row for one of ADO's numbers; the row of text for an unknown number.
const AdoType& AdoTypeOf(std::int32_t number);

} // namespace ado
