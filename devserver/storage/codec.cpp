// Converts values to the forms that they have in SQLite, and back. See codec.h.
#include "devserver/storage/codec.h"

#include <array>
#include <span>
#include <stdexcept>

#include "devserver/tsql/scalar/date_time.h"
#include "devserver/tsql/scalar/type_rules.h"

namespace devsql {
namespace {

/// The order in which SQL Server compares the bytes of a uniqueidentifier, as positions in its printed form.
constexpr std::array<std::size_t, 16> kGuidOrder = {10, 11, 12, 13, 14, 15, 8, 9, 7, 6, 5, 4, 3, 2, 1, 0};

__extension__ typedef unsigned __int128 Bits128;
using Int128Bytes = std::array<unsigned char, 16>;

/// Big-endian with the sign bit inverted: the order of the bytes is then the order of the numbers.
Int128Bytes LongDecimal(Int128 number) {
    auto bits = static_cast<Bits128>(number);
    Int128Bytes bytes{};
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[bytes.size() - 1 - i] = static_cast<unsigned char>(bits & 0xFF);
        bits >>= 8;
    }
    bytes[0] ^= 0x80;
    return bytes;
}

Int128 FromLongDecimal(std::span<const unsigned char> bytes) {
    Bits128 bits = 0;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bits = (bits << 8) | (i == 0 ? bytes[i] ^ 0x80U : bytes[i]);
    }
    return static_cast<Int128>(bits);
}

/// The unscaled number at `scale`; digits that do not fit are cut off.
Int128 Scaled(const Decimal& decimal, int scale) {
    Int128 number = decimal.unscaled;
    for (int have = decimal.scale; have < scale; ++have) {
        number *= 10;
    }
    for (int have = decimal.scale; have > scale; --have) {
        number /= 10;
    }
    return number;
}

/// Passes the value to SQLite by one of two families of calls: BindTarget binds a parameter, ResultTarget
/// returns the result of a function.
template <class Target>
void Encode(Target&& target, const Value& value, const Type& type) {
    if (IsNull(value)) {
        target.Null();
    } else if (const auto* integer = std::get_if<std::int64_t>(&value)) {
        target.Int(*integer);
    } else if (const auto* real = std::get_if<double>(&value)) {
        target.Real(*real);
    } else if (const auto* decimal = std::get_if<Decimal>(&value)) {
        const bool is_long = IsDecimal(type.id) && type.precision > kShortDecimal;
        const Int128 number = Scaled(*decimal, IsMoney(type.id) ? 4 : type.scale);
        if (is_long) {
            const Int128Bytes bytes = LongDecimal(number);
            target.Blob(bytes.data(), bytes.size());
        } else {
            target.Int(static_cast<std::int64_t>(number));
        }
    } else if (const auto* time = std::get_if<DateTime>(&value)) {
        target.Int(std::int64_t{time->days} * kTicksPerDay + time->ticks);
    } else if (const auto* text = std::get_if<std::string>(&value)) {
        target.Text(*text);
    } else if (const auto* bytes = std::get_if<Bytes>(&value)) {
        target.Blob(bytes->data.data(), bytes->data.size());
    } else {
        std::array<std::uint8_t, 16> ordered{};
        for (std::size_t i = 0; i < ordered.size(); ++i) {
            ordered[i] = std::get<Guid>(value).bytes[kGuidOrder[i]];
        }
        target.Blob(ordered.data(), ordered.size());
    }
}

struct BindTarget {
    sqlite3_stmt* statement;
    int index;

    void Null() const { sqlite3_bind_null(statement, index); }
    void Int(std::int64_t value) const { sqlite3_bind_int64(statement, index, value); }
    void Real(double value) const { sqlite3_bind_double(statement, index, value); }
    void Text(const std::string& text) const {
        sqlite3_bind_text64(statement, index, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void Blob(const void* data, std::size_t size) const {
        // A null pointer would bind NULL, and an empty binary is not NULL.
        sqlite3_bind_blob64(statement, index, size == 0 ? "" : data, size, SQLITE_TRANSIENT);
    }
};

struct ResultTarget {
    sqlite3_context* context;

    void Null() const { sqlite3_result_null(context); }
    void Int(std::int64_t value) const { sqlite3_result_int64(context, value); }
    void Real(double value) const { sqlite3_result_double(context, value); }
    void Text(const std::string& text) const {
        sqlite3_result_text64(context, text.data(), text.size(), SQLITE_TRANSIENT, SQLITE_UTF8);
    }
    void Blob(const void* data, std::size_t size) const {
        // As in BindTarget: a null pointer would return NULL.
        sqlite3_result_blob64(context, size == 0 ? "" : data, size, SQLITE_TRANSIENT);
    }
};

std::string BlobOf(sqlite3_value* value) {
    const auto* data = static_cast<const char*>(sqlite3_value_blob(value));
    const auto size = static_cast<std::size_t>(sqlite3_value_bytes(value));
    return data == nullptr ? std::string() : std::string(data, size);
}

Value DecodeDecimal(sqlite3_value* value, std::uint8_t scale) {
    if (sqlite3_value_type(value) == SQLITE_INTEGER) {
        return Decimal{sqlite3_value_int64(value), scale};
    }
    const std::string blob = BlobOf(value);
    return Decimal{FromLongDecimal({reinterpret_cast<const unsigned char*>(blob.data()), blob.size()}),
                   scale};
}

DateTime DecodeDateTime(std::int64_t ticks) {
    std::int64_t days = ticks / kTicksPerDay;
    std::int64_t rest = ticks % kTicksPerDay;
    if (rest < 0) {
        rest += kTicksPerDay;
        --days;
    }
    return {static_cast<std::int32_t>(days), static_cast<std::int32_t>(rest)};
}

Value DecodeGuid(sqlite3_value* value) {
    const std::string blob = BlobOf(value);
    Guid guid;
    for (std::size_t i = 0; i < guid.bytes.size() && i < blob.size(); ++i) {
        guid.bytes[kGuidOrder[i]] = static_cast<std::uint8_t>(blob[i]);
    }
    return guid;
}

} // namespace

void BindValue(sqlite3_stmt* statement, int index, const Value& value, const Type& type) {
    Encode(BindTarget{statement, index}, value, type);
}

void ResultValue(sqlite3_context* context, const Value& value, const Type& type) {
    Encode(ResultTarget{context}, value, type);
}

Value DecodeValue(sqlite3_value* value, const Type& type) {
    if (sqlite3_value_type(value) == SQLITE_NULL) {
        return {};
    }
    using enum TypeId;
    switch (
        type.id) { // Every value of every row is read here: one switch is faster than type_rules.h's tests.
    case Real:
    case Float:
        return sqlite3_value_double(value);
    case TypeId::Decimal:
    case Numeric:
        return DecodeDecimal(value, type.scale);
    case Money:
    case SmallMoney:
        return DecodeDecimal(value, 4);
    case TypeId::DateTime:
    case SmallDateTime:
    case Date:
        return DecodeDateTime(sqlite3_value_int64(value));
    case Char:
    case VarChar:
    case Text:
    case NChar:
    case NVarChar:
    case NText: {
        const unsigned char* text = sqlite3_value_text(value);
        return std::string(text, text + sqlite3_value_bytes(value));
    }
    case Binary:
    case VarBinary:
    case Image:
    case Timestamp:
        return Bytes{BlobOf(value)};
    case UniqueIdentifier:
        return DecodeGuid(value);
    case Bit:
    case TinyInt:
    case SmallInt:
    case Int:
    case BigInt:
        break;
    }
    return sqlite3_value_int64(value);
}

bool SameEncoding(const Type& a, const Type& b) {
    const auto form = [](const Type& type) {
        if (IsDecimal(type.id)) {
            return type.precision > kShortDecimal ? 100 + type.scale : 200 + type.scale;
        }
        if (IsMoney(type.id)) {
            return 204;
        }
        if (IsApproximate(type.id)) {
            return 2;
        }
        if (IsDateTime(type.id)) {
            return 3;
        }
        if (IsCharacter(type.id)) {
            return 4;
        }
        if (IsBinary(type.id)) {
            return 5;
        }
        return type.id == TypeId::UniqueIdentifier ? 6 : 1;
    };
    return form(a) == form(b);
}

} // namespace devsql
