// Maps ADO's data types to ODBC's types and back. Everything but the enumeration of data types is internal to
// the layer.
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

/// Says what a parameter's Size and Precision mean.
enum class TypeKind : std::uint8_t {
    Fixed,   ///< the type alone determines the precision
    Decimal, ///< each parameter has its own precision and scale
    Sized,   ///< the size is the largest number of characters or bytes
    Long,    ///< as Sized; the parameter also has the attribute adParamLong
};

/// One of ADO's types.
struct AdoType {
    DataType number = adEmpty;
    odbc::SqlType sql_type = odbc::SqlType::Unknown;
    std::string_view server_name; ///< the server's own name for the type
    TypeKind kind = TypeKind::Fixed;
    std::uint8_t precision = 0; ///< the Precision of a Fixed type; 0 for other types
    bool is_signed = false;     ///< a number that may be negative
};

/// Returns ADO's type for an ODBC type. `type_name` is the server's name of the type: it decides for money,
/// which ODBC reports as a decimal. A type that is not in the table becomes text, since every value can be
/// shown as text.
const AdoType& AdoTypeOf(odbc::SqlType sql_type, std::string_view type_name);
/// Returns ADO's type with this number; text for an unknown number.
const AdoType& AdoTypeOf(std::int32_t number);

} // namespace ado
