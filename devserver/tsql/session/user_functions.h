// Calls of the scalar functions that users define, for the rooms below the interpreter that runs them.
#pragma once

#include <span>

#include "devserver/engine/value.h"

namespace devsql {

class SessionCore;
struct ObjectDef;
struct SessionFunction;
class Catalogue;

class UserFunctions {
  public:
    virtual ~UserFunctions() = default;
    /// The function's value. An error in its body is one of the statement that calls it.
    virtual Value Call(SessionCore& session, const std::string& database, const ObjectDef& function,
                       std::span<const Value> arguments, std::span<const Type> types) const = 0;
};

/// The session function that stands in an expression for a call of any user's function. Its arguments are the
/// database's name, the function's object id, and the arguments of the call.
const SessionFunction& UserFunctionCall();

} // namespace devsql
