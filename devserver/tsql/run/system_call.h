// How the interpreter calls system procedures. It does not know which ones exist: it is given a function that
// finds them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "devserver/tsql/run/interpreter.h"

namespace devsql {

/// A call of a system procedure, as the procedure's function sees it: it reads its parameters by name, with
/// "@", and sends its results to the session's sink. It lives for the call.
class SystemCall {
  public:
    SystemCall(Interpreter& interpreter, Frame& frame, const std::vector<ActualArgument>& actual)
        : interpreter_(interpreter), frame_(frame), actual_(actual) {}

    SessionCore& session() { return interpreter_.session(); }
    Interpreter& interpreter() { return interpreter_; }
    /// The arguments as they were passed.
    const std::vector<ActualArgument>& actual() const { return actual_; }
    bool IsNull(std::string_view name) const;
    /// The parameter's text; empty for NULL.
    std::string Text(std::string_view name) const;
    /// The parameter as a number; `otherwise` for NULL.
    std::int64_t Int(std::string_view name, std::int64_t otherwise = 0) const;
    /// Sets an output parameter.
    void Set(std::string_view name, Value value);
    /// Runs T-SQL in a frame of its own; `values` are its parameters @p1, @p2, … as nvarchar.
    void Run(std::string_view sql, const std::vector<std::string>& values = {});
    /// The values of output arguments, by position, of a procedure that takes any arguments (sp_executesql).
    std::vector<std::optional<Variable>> outputs;

  private:
    const Variable& Find(std::string_view name) const;

    Interpreter& interpreter_;
    Frame& frame_;
    const std::vector<ActualArgument>& actual_;
};

struct SystemProcedure {
    std::string_view name;
    std::int32_t (*run)(SystemCall& call); ///< returns the procedure's status; raises its errors
    std::string_view parameters = "...";   ///< from procedure_parameters.sql; "...": any arguments
};

} // namespace devsql
