// The functions and global variables of T-SQL whose value only the session knows: GETDATE, OBJECT_ID,
// @@ERROR.
#pragma once

#include <span>
#include <string_view>

#include "devserver/engine/value.h"
#include "devserver/tsql/session/call_stack.h"

namespace devsql {

class SessionCore;

struct SessionFunction {
    std::string_view name; ///< upper case
    int min_arguments;
    int max_arguments;
    Type type;
    Value (*evaluate)(SessionCore& session, std::span<const Value> arguments, std::span<const Type> types);
    bool constant; ///< the same for all rows of a statement: computed once, if it has no arguments
};

/// Null for an unknown name.
const SessionFunction* FindSessionFunction(std::string_view name);

/// @@name. Raises 137 for an unknown name.
Variable GlobalVariable(SessionCore& session, std::string_view name);

} // namespace devsql
