// Shared by the functions that ask the session: reading arguments, and the parts of their table.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "devserver/tsql/scalar/compare.h"
#include "devserver/tsql/scalar/conversion.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

using Values = std::span<const Value>;
using Types = std::span<const Type>;

/// The functions about the objects of a database: OBJECT_ID, COLUMNPROPERTY, ...
std::span<const SessionFunction> ObjectFunctions();

/// Empty for NULL and for a missing argument.
inline std::string TextOf(Values values, Types types, std::size_t index) {
    return index < values.size() && !IsNull(values[index]) ? ValueText(values[index], types[index])
                                                           : std::string();
}

inline std::optional<std::int64_t> IntOf(Values values, Types types, std::size_t index) {
    if (index >= values.size() || IsNull(values[index])) {
        return std::nullopt;
    }
    return std::get<std::int64_t>(Convert(values[index], types[index], Simple(TypeId::BigInt)));
}

} // namespace devsql
