// Runs the scalar functions that users define. Each call gets an interpreter of its own, because it comes in
// the middle of a statement. A function sends nothing and changes nothing; its definition has been checked
// for that.
#pragma once

#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/session/user_functions.h"

namespace devsql {

class FunctionRunner : public UserFunctions {
  public:
    explicit FunctionRunner(SystemProcedureFinder find_system_procedure)
        : find_system_procedure_(find_system_procedure) {}

    Value Call(SessionCore& session, const std::string& database, const ObjectDef& function,
               std::span<const Value> arguments, std::span<const Type> types) const override;

  private:
    SystemProcedureFinder find_system_procedure_;
};

} // namespace devsql
