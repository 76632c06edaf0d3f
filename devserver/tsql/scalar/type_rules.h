// The rules that need types alone: names, catalogue ids, precedence, the result types of operators and of the
// constructs that choose one of several values, and which conversions are allowed.
// Knows nothing of values.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

// ------------------------------------------------------------------ kinds of types

/// A kind of types. It is called with a TypeId, as a function is.
class TypeSet {
  public:
    constexpr TypeSet(std::initializer_list<TypeId> ids) {
        for (const TypeId id : ids) {
            bits_ |= std::uint64_t{1} << static_cast<unsigned>(id);
        }
    }
    constexpr bool operator()(TypeId id) const { return (bits_ >> static_cast<unsigned>(id) & 1) != 0; }
    constexpr TypeSet operator|(TypeSet other) const {
        other.bits_ |= bits_;
        return other;
    }

  private:
    std::uint64_t bits_ = 0;
};

inline constexpr TypeSet IsInteger{TypeId::TinyInt, TypeId::SmallInt, TypeId::Int, TypeId::BigInt}; // not bit
inline constexpr TypeSet IsDecimal{TypeId::Decimal, TypeId::Numeric};
inline constexpr TypeSet IsMoney{TypeId::Money, TypeId::SmallMoney};
inline constexpr TypeSet IsApproximate{TypeId::Real, TypeId::Float};
inline constexpr TypeSet IsNumber = IsInteger | IsDecimal | IsMoney | IsApproximate | TypeSet{TypeId::Bit};
inline constexpr TypeSet IsDateTime{TypeId::DateTime, TypeId::SmallDateTime, TypeId::Date};
inline constexpr TypeSet IsUnicode{TypeId::NChar, TypeId::NVarChar, TypeId::NText};
inline constexpr TypeSet IsCharacter = IsUnicode | TypeSet{TypeId::Char, TypeId::VarChar, TypeId::Text};
inline constexpr TypeSet IsBinary{TypeId::Binary, TypeId::VarBinary, TypeId::Image, TypeId::Timestamp};
inline constexpr TypeSet IsFixedLength{TypeId::Char, TypeId::NChar, TypeId::Binary}; // padded to their length
inline constexpr TypeSet IsOldLob{TypeId::Text, TypeId::NText,
                                  TypeId::Image}; // not compared or computed with
/// Declared with a length.
inline constexpr TypeSet HasLength =
    IsFixedLength | TypeSet{TypeId::VarChar, TypeId::NVarChar, TypeId::VarBinary};

// ------------------------------------------------------------------ making types

/// A type without length, precision and scale.
constexpr Type Simple(TypeId id) {
    return Type{id, 0, 0, 0};
}
constexpr Type Sized(TypeId id, std::int32_t length) {
    return Type{id, length, 0, 0};
}
constexpr Type DecimalType(int precision, int scale, TypeId id = TypeId::Decimal) {
    return Type{id, 0, static_cast<std::uint8_t>(precision), static_cast<std::uint8_t>(scale)};
}

/// The type of the literal NULL: an int to every client, but CommonType, OperatorType and the functions give
/// it the type of the other operand. Its length, which an int does not use, marks it.
inline constexpr Type kUntypedNull{TypeId::Int, -2, 0, 0};
inline bool IsUntypedNull(const Type& type) {
    return type == kUntypedNull;
}

/// The type of an integer literal: an int that carries the count of its digits in `precision`, because next
/// to a decimal a literal counts as numeric(digits, 0) and not as numeric(10, 0): 1.0 / 3 has six digits, not
/// twelve.
constexpr Type IntLiteralType(int digits) {
    return Type{TypeId::Int, 0, static_cast<std::uint8_t>(digits), 0};
}

/// `type` without the marks of the two types above. Every type that leaves an expression (columns, SELECT
/// INTO, parameters) goes through it. OperatorType and CommonType return settled types, except CommonType of
/// untyped NULLs alone.
Type Settled(const Type& type);

/// The literal's or declared length fitted to its kind: more than 8000 bytes or 4000 characters become (max).
Type FittedLength(TypeId id, std::int64_t length);

// ------------------------------------------------------------------ names and catalogue

/// One row of systypes: the names and numbers of a type in the catalogue, INFORMATION_SCHEMA and ODBC.
struct SystemType {
    TypeId id;
    std::string_view name;       ///< "int", as users write it
    std::uint8_t xtype;          ///< systypes.xtype, sys.types.system_type_id
    std::uint8_t user_type;      ///< systypes.usertype, of SQL Server's own types
    std::uint8_t tds_type;       ///< systypes.type
    std::int32_t storage_length; ///< bytes; 0 for those declared with a length or precision
    std::uint8_t precision;      ///< decimal digits of numbers, characters of dates; 0 for others
    std::uint8_t scale;
    std::int16_t odbc_type;             ///< ODBC 2's SQL type, as sp_columns and sp_datatype_info give it
    std::string_view literal_prefix;    ///< of sp_datatype_info; empty for none
    std::string_view literal_suffix;    ///< of sp_datatype_info; empty for none
    std::string_view create_parameters; ///< of sp_datatype_info; empty for none
};

std::span<const SystemType> SystemTypes();
const SystemType& SystemTypeOf(TypeId id);
/// "decimal": the name alone.
std::string_view TypeName(TypeId id);
/// "decimal(18,2)", "varchar(max)", "int": the name with length, precision and scale.
std::string FullTypeName(const Type& type);
/// By name or synonym ("integer", "character varying", "rowversion", "double precision", "national char
/// varying" with single blanks), ignoring case; nothing if there is no such type. The caller looks up
/// sysname, since it is a user type.
std::optional<TypeId> FindTypeId(std::string_view name);

/// The column or parameter that a declaration is for, as its errors name it.
struct DeclarationPlace {
    std::string_view kind = "type"; ///< "column", "parameter", "convert specification"
    std::string_view name;          ///< of the column or parameter; empty: the type's own
    int ordinal = 1;                ///< of the column or parameter, from 1
};

/// The type of a declaration. `first` and `second` are the numbers in the parentheses; `max` is true for
/// (max); `default_length` is the length of char types and binary without parentheses: 1 in declarations, 30
/// in CAST and CONVERT. float(1) to float(24) is real. Raises 102, 131, 192, 1001, 2716, 2717, 2750 as CREATE
/// TABLE and DECLARE do.
Type DeclaredType(TypeId id, std::optional<std::int64_t> first, std::optional<std::int64_t> second, bool max,
                  std::int32_t default_length, const DeclarationPlace& place = {});

/// Bytes that a value of the type takes at most, as syscolumns.length, COL_LENGTH; -1 for (max), 16 for text,
/// ntext and image, 5 to 17 for decimals.
std::int32_t StorageBytes(const Type& type);
/// syscolumns.prec, INFORMATION_SCHEMA's precisions: digits or characters of the type.
std::int32_t TypePrecision(const Type& type);
/// Digits after the point; nothing for types without a scale.
std::optional<std::int32_t> TypeScale(const Type& type);

// ------------------------------------------------------------------ conversions between types

enum class Allowed : std::uint8_t { Implicit, Explicit, Never };

Allowed ConversionAllowed(TypeId from, TypeId to);
/// Raises 206 (operand type clash) or 257 (implicit conversion not allowed) if assigning is not allowed.
void RequireImplicit(TypeId from, TypeId to);

// ------------------------------------------------------------------ result types

enum class BinaryOperator : std::uint8_t { Add, Subtract, Multiply, Divide, Modulo, BitAnd, BitOr, BitXor };
enum class UnaryOperator : std::uint8_t { Plus, Minus, BitNot };

/// "add", "subtract" ...: as messages name the operator.
std::string_view OperatorWord(BinaryOperator op);

/// Higher is stronger: the operand of lower precedence is converted to the type of the other.
int Precedence(TypeId id);

/// The type of UNION, CASE, COALESCE, IIF: the stronger type, wide enough for both. Raises 206 where neither
/// converts to the other.
Type CommonType(const Type& a, const Type& b);
/// Of at least one type.
Type CommonType(std::span<const Type> types);

/// The type of `left op right`. Raises 402 (incompatible types), 8117 (invalid type for the operator), 206,
/// 257.
Type OperatorType(BinaryOperator op, const Type& left, const Type& right);
Type OperatorType(UnaryOperator op, const Type& operand);
/// Raises 402 or 306 or 206 if the two can't be compared with `op` ("equal to", "less than", ...).
void RequireComparable(const Type& left, const Type& right, std::string_view op);

/// The decimal that holds every value of an integer, bit, money or decimal type.
Type AsDecimalType(const Type& type);
/// A decimal type with at most 38 digits. The scale is reduced for it, but not below 6, or below the given
/// scale if that is smaller.
Type ReducedDecimal(int precision, int scale);

// Result types of aggregates. Each raises 8117 for types it doesn't take.

Type SumType(const Type& type);
Type AverageType(const Type& type);
/// MIN, MAX: the type itself.
Type ExtremeType(const Type& type, std::string_view function);

} // namespace devsql
