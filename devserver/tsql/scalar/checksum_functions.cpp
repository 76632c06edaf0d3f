// CHECKSUM and BINARY_CHECKSUM. The second is the one of SQL Server for integers and texts of ASCII; the
// first need only be the same for what compares as equal, and is this server's own.
#include <bit>

#include "devserver/tsql/scalar/conversion_parts.h"
#include "devserver/tsql/scalar/function_tables.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {

namespace {

/// What NULL counts as.
constexpr std::uint32_t kNull = 0x7FFFFFFF;

std::uint32_t Mixed(std::uint32_t sum, std::uint32_t next) {
    return std::rotl(sum, 4) ^ next;
}

std::uint32_t SumOfBytes(std::string_view bytes) {
    std::uint32_t sum = 0;
    for (const char byte : bytes) {
        sum = Mixed(sum, static_cast<unsigned char>(byte));
    }
    return sum;
}

/// `folded`: what differs in case or trailing blanks alone sums up alike.
std::uint32_t SumOf(const Value& value, const Type& type, bool folded) {
    if (IsNull(value)) {
        return kNull;
    }
    if (IsInteger(type.id) || type.id == TypeId::Bit) {
        const auto number = static_cast<std::uint64_t>(std::get<std::int64_t>(value));
        const auto low = static_cast<std::uint32_t>(number);
        return type.id == TypeId::BigInt ? low ^ static_cast<std::uint32_t>(number >> 32) : low;
    }
    const std::string text = TextOf(value, type);
    return SumOfBytes(folded ? ToLower(TrimTrailingBlanks(text)) : text);
}

template <bool Folded>
Value Checksum(Values values, Types types) {
    std::uint32_t sum = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        sum = Mixed(sum, SumOf(values[i], types[i], Folded));
    }
    return std::int64_t{static_cast<std::int32_t>(sum)};
}

constexpr ScalarFunction kFunctions[] = {
    {"CHECKSUM", 1, kAnyNumber, Always<TypeId::Int>, Checksum<true>},
    {"BINARY_CHECKSUM", 1, kAnyNumber, Always<TypeId::Int>, Checksum<false>},
};

} // namespace

std::span<const ScalarFunction> ChecksumFunctions() {
    return kFunctions;
}

} // namespace devsql
