// Errors with the place where they happened: a line of the source, or the call of a procedure.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {

class LocatedError : public SqlError {
  public:
    LocatedError(const SqlError& error, std::int32_t line) : SqlError(error), line_(line) {}

    /// From 1, in the source that was parsed.
    std::int32_t line() const noexcept { return line_; }

  private:
    std::int32_t line_;
};

/// An error of a procedure's arguments. It is reported with the procedure's name and line 0.
class CallError : public SqlError {
  public:
    CallError(const SqlError& error, std::string procedure)
        : SqlError(error), procedure_(std::move(procedure)) {}

    const std::string& procedure() const noexcept { return procedure_; }

  private:
    std::string procedure_;
};

} // namespace devsql
