// The rows of a result: fetched in blocks into bound buffers, long columns in pieces. Knows nothing of what
// the rows mean.
#pragma once

#include <cstddef>
#include <memory>
#include <vector>

#include "platform/odbc.h"

namespace platform::odbc {

/// Reads the current result of a statement, forwards and once. The statement must outlive it, and is left
/// without bound columns by its destructor.
class RowReader {
  public:
    /// Binds the columns. Throws OdbcError.
    explicit RowReader(Statement& statement);
    RowReader(RowReader&&) noexcept;
    RowReader& operator=(RowReader&&) = delete;
    ~RowReader();

    const std::vector<Column>& Columns() const;
    /// Fills `row` with the next row, one value for each column. False: there is none, `row` is untouched.
    /// Throws OdbcError; a value that does not fit its column's description is one (01004).
    bool Next(std::vector<Value>& row);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform::odbc
