// An error that knows the line it stands in: what lexer and parser raise.
#pragma once

#include <cstdint>

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

} // namespace devsql
