// The built-in scalar functions whose result follows from their arguments alone, as one table, and the
// formatting of RAISERROR. Functions that ask the session (GETDATE, SUSER_NAME, OBJECT_ID) are in
// tsql/session.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "devserver/engine/value.h"

namespace devsql {

/// `max_arguments` of a function that takes any number of arguments.
inline constexpr int kAnyNumber = 254;

struct ScalarFunction {
    std::string_view name; ///< upper case
    int min_arguments = 0;
    int max_arguments = 0;
    /// The result's type; call it through ResultType.
    Type (*result_type)(std::span<const Type> arguments);
    /// The result, of that type. As many values as types. DATEADD, DATEDIFF, DATEPART and DATENAME take the
    /// word for the part as a text in their first argument.
    Value (*evaluate)(std::span<const Value> arguments, std::span<const Type> types);
    /// True for the few that take text, ntext and image.
    bool takes_old_lobs = false;
};

/// Ignores case. Returns null if there is no such function in the table.
const ScalarFunction* FindFunction(std::string_view name);
std::span<const ScalarFunction> AllFunctions();

/// Raises 174 or 189 when `count` arguments are too few or too many.
void CheckArgumentCount(const ScalarFunction& function, std::size_t count);

/// The type of the function's result. Raises 8116 for a type that the function doesn't take.
Type ResultType(const ScalarFunction& function, std::span<const Type> arguments);

/// An argument of RAISERROR.
struct FormatArgument {
    Value value;
    Type type;
};

/// RAISERROR's text with its arguments: %d %i %u %o %x %X %s with flags, width and precision ("*" too), "%%".
/// A NULL or missing argument reads "(null)". Raises 2786 where an argument doesn't fit its place, 2787 for a
/// format it doesn't know, 2748 for a type that can't be an argument, 2747 for more than 20 arguments.
std::string FormatRaiserror(std::string_view text, std::span<const FormatArgument> arguments);

} // namespace devsql
