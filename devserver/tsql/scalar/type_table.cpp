// The types as the catalogue lists them, their names and synonyms, and the sizes that follow from a
// declaration.
#include <algorithm>
#include <array>

#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {

namespace {

using enum TypeId;

// In the order of TypeId.
constexpr std::array kSystemTypes = {
    SystemType{Bit, "bit", 104, 16, 50, 1, 1, 0, -7, "", "", ""},
    SystemType{TinyInt, "tinyint", 48, 5, 48, 1, 3, 0, -6, "", "", ""},
    SystemType{SmallInt, "smallint", 52, 6, 52, 2, 5, 0, 5, "", "", ""},
    SystemType{Int, "int", 56, 7, 56, 4, 10, 0, 4, "", "", ""},
    SystemType{BigInt, "bigint", 127, 0, 63, 8, 19, 0, -5, "", "", ""},
    SystemType{TypeId::Decimal, "decimal", 106, 24, 55, 0, 0, 0, 3, "", "", "precision,scale"},
    SystemType{Numeric, "numeric", 108, 10, 63, 0, 0, 0, 2, "", "", "precision,scale"},
    SystemType{Money, "money", 60, 11, 60, 8, 19, 4, 3, "$", "", ""},
    SystemType{SmallMoney, "smallmoney", 122, 21, 122, 4, 10, 4, 3, "$", "", ""},
    SystemType{Real, "real", 59, 23, 59, 4, 24, 0, 7, "", "", ""},
    SystemType{Float, "float", 62, 8, 62, 8, 53, 0, 6, "", "", ""},
    SystemType{TypeId::DateTime, "datetime", 61, 12, 61, 8, 23, 3, 11, "'", "'", ""},
    SystemType{SmallDateTime, "smalldatetime", 58, 22, 58, 4, 16, 0, 11, "'", "'", ""},
    SystemType{Char, "char", 175, 1, 47, 0, 0, 0, 1, "'", "'", "length"},
    SystemType{VarChar, "varchar", 167, 2, 39, 0, 0, 0, 12, "'", "'", "max length"},
    SystemType{NChar, "nchar", 239, 0, 47, 0, 0, 0, -8, "N'", "'", "length"},
    SystemType{NVarChar, "nvarchar", 231, 0, 39, 0, 0, 0, -9, "N'", "'", "max length"},
    SystemType{Text, "text", 35, 19, 35, 16, 0, 0, -1, "'", "'", ""},
    SystemType{NText, "ntext", 99, 0, 35, 16, 0, 0, -10, "N'", "'", ""},
    SystemType{Binary, "binary", 173, 3, 45, 0, 0, 0, -2, "0x", "", "length"},
    SystemType{VarBinary, "varbinary", 165, 4, 37, 0, 0, 0, -3, "0x", "", "max length"},
    SystemType{Image, "image", 34, 20, 34, 16, 0, 0, -4, "0x", "", ""},
    SystemType{UniqueIdentifier, "uniqueidentifier", 36, 0, 37, 16, 0, 0, -11, "'", "'", ""},
    SystemType{Timestamp, "timestamp", 189, 80, 45, 8, 0, 0, -2, "0x", "", ""},
    SystemType{Date, "date", 40, 0, 40, 3, 10, 0, 91, "'", "'", ""},
};

struct Synonym {
    std::string_view name;
    TypeId id;
};

constexpr std::array kSynonyms = {
    Synonym{"integer", Int},
    Synonym{"dec", TypeId::Decimal},
    Synonym{"double precision", Float},
    Synonym{"character", Char},
    Synonym{"char varying", VarChar},
    Synonym{"character varying", VarChar},
    Synonym{"national char", NChar},
    Synonym{"national character", NChar},
    Synonym{"national char varying", NVarChar},
    Synonym{"national character varying", NVarChar},
    Synonym{"national text", NText},
    Synonym{"binary varying", VarBinary},
    Synonym{"rowversion", Timestamp},
    // To 1/300 seconds, from 1753 on; see devserver/docs/devserver.md.
    Synonym{"datetime2", TypeId::DateTime},
};

constexpr std::int32_t kMaxBytes = 8000;
constexpr int kMaxPrecision = 38;
constexpr int kDefaultPrecision = 18;
constexpr int kMaxFloatBits = 53;
constexpr int kMaxRealBits = 24;
constexpr std::int32_t kMaxLobBytes = 2147483647;

std::string Number(std::int64_t value) {
    return std::to_string(value);
}

std::string_view PlaceName(const DeclarationPlace& place, TypeId id) {
    return place.name.empty() ? TypeName(id) : place.name;
}

void RequirePositive(std::int64_t length) {
    if (length < 1) {
        RaiseError(1001, {"1", Number(length)});
    }
}

void RefusePrecision(const DeclarationPlace& place, std::int64_t precision, int maximum) {
    RaiseError(2750, {Number(place.ordinal), Number(precision), Number(maximum)});
}

Type DeclaredLength(TypeId id, std::int64_t length, const DeclarationPlace& place) {
    RequirePositive(length);
    if (length > kMaxBytes) {
        RaiseError(131, {Number(length), place.kind, PlaceName(place, id), Number(kMaxBytes)});
    }
    if (IsUnicode(id) && length > kMaxBytes / 2) {
        RaiseError(2717, {Number(length), place.kind, PlaceName(place, id), Number(kMaxBytes / 2)});
    }
    return Sized(id, static_cast<std::int32_t>(length));
}

Type DeclaredDecimal(TypeId id, std::int64_t precision, std::int64_t scale, const DeclarationPlace& place) {
    RequirePositive(precision);
    if (precision > kMaxPrecision) {
        RefusePrecision(place, precision, kMaxPrecision);
    }
    RaiseIf(scale < 0 || scale > precision, 192);
    return DecimalType(static_cast<int>(precision), static_cast<int>(scale), id);
}

Type DeclaredFloat(std::int64_t bits, const DeclarationPlace& place) {
    RequirePositive(bits);
    if (bits > kMaxFloatBits) {
        RefusePrecision(place, bits, kMaxFloatBits);
    }
    return Simple(bits <= kMaxRealBits ? Real : Float);
}

} // namespace

std::span<const SystemType> SystemTypes() {
    return kSystemTypes;
}

const SystemType& SystemTypeOf(TypeId id) {
    return kSystemTypes.at(static_cast<std::size_t>(id));
}

std::string_view TypeName(TypeId id) {
    return SystemTypeOf(id).name;
}

std::string FullTypeName(const Type& type) {
    const std::string name(TypeName(type.id));
    if (IsDecimal(type.id)) {
        return name + "(" + Number(type.precision) + "," + Number(type.scale) + ")";
    }
    if (!HasLength(type.id)) {
        return name;
    }
    return name + "(" + (type.length == kMaxLength ? "max" : Number(type.length)) + ")";
}

std::optional<TypeId> FindTypeId(std::string_view name) {
    for (const SystemType& type : kSystemTypes) {
        if (AsciiEqual(type.name, name)) {
            return type.id;
        }
    }
    for (const Synonym& synonym : kSynonyms) {
        if (AsciiEqual(synonym.name, name)) {
            return synonym.id;
        }
    }
    return std::nullopt;
}

Type DeclaredType(TypeId id, std::optional<std::int64_t> first, std::optional<std::int64_t> second, bool max,
                  std::int32_t default_length, const DeclarationPlace& place) {
    if (max) {
        RaiseIf(id != VarChar && id != NVarChar && id != VarBinary, 102, {"max"});
        return Sized(id, kMaxLength);
    }
    if (IsDecimal(id)) {
        return DeclaredDecimal(id, first.value_or(kDefaultPrecision), second.value_or(0), place);
    }
    if (id == TypeId::DateTime && first && !second && *first >= 0 && *first <= 7) { // datetime2(3)
        return Simple(id);
    }
    const bool takes_one = HasLength(id) || id == Float;
    if ((first && !takes_one) || second) {
        RaiseError(2716, {Number(place.ordinal), TypeName(id)});
    }
    if (id == Float) {
        return DeclaredFloat(first.value_or(kMaxFloatBits), place);
    }
    return HasLength(id) ? DeclaredLength(id, first.value_or(default_length), place) : Simple(id);
}

Type FittedLength(TypeId id, std::int64_t length) {
    const std::int64_t most = IsUnicode(id) ? kMaxBytes / 2 : kMaxBytes;
    return Sized(id, length > most ? kMaxLength : static_cast<std::int32_t>(length));
}

std::int32_t StorageBytes(const Type& type) {
    if (IsDecimal(type.id)) {
        struct Step {
            int precision;
            std::int32_t bytes;
        };
        constexpr std::array steps = {Step{9, 5}, Step{19, 9}, Step{28, 13}, Step{38, 17}};
        return std::find_if(steps.begin(), steps.end(),
                            [&](const Step& s) { return type.precision <= s.precision; })
            ->bytes;
    }
    if (!HasLength(type.id)) {
        return SystemTypeOf(type.id).storage_length;
    }
    return type.length == kMaxLength ? kMaxLength : type.length * (IsUnicode(type.id) ? 2 : 1);
}

std::int32_t TypePrecision(const Type& type) {
    switch (type.id) {
    case TypeId::Decimal:
    case Numeric:
        return type.precision;
    case Text:
    case Image:
        return kMaxLobBytes;
    case NText:
        return kMaxLobBytes / 2;
    case UniqueIdentifier:
    case Timestamp:
        return SystemTypeOf(type.id).storage_length;
    default:
        return HasLength(type.id) ? type.length : SystemTypeOf(type.id).precision;
    }
}

std::optional<std::int32_t> TypeScale(const Type& type) {
    if (IsDecimal(type.id)) {
        return type.scale;
    }
    const bool has_scale = (IsNumber(type.id) && !IsApproximate(type.id)) || IsDateTime(type.id);
    return has_scale ? std::optional<std::int32_t>(SystemTypeOf(type.id).scale) : std::nullopt;
}

} // namespace devsql
