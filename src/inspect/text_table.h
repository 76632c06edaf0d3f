// The two-dimensional array of strings in which a manager hands a result to the console: first index the
// column, second the row, both from 0. The rows stay as the database layer packs them, so that a large table
// costs about its text; a cell becomes a string when it is asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ado/row_store.h"

namespace kv {

/// Until its first ReDim it has no bounds, and asking for them raises run_time::kSubscriptOutOfRange, as does
/// a cell outside them. Column 0 is empty throughout.
class TextTable {
  public:
    /// Drops what it holds and sizes it: the columns 0 to `last_column` and the single row 0, all empty.
    void ReDim(std::int32_t last_column);
    /// Writes a cell of row 0.
    void SetName(std::int32_t column, const std::string& name);
    /// The rows from 1 on, in place of those before; a value for each column from 1 on.
    void SetRows(ado::RowStore rows);

    std::int32_t ColumnUpperBound() const;
    std::int32_t RowUpperBound() const;
    /// A value's ordinary text; "(Null)" for the database's NULL.
    std::string operator()(std::int32_t column, std::int32_t row) const;

    /// What the rows take in memory, in bytes.
    std::size_t Bytes() const { return rows_.Bytes(); }

  private:
    void CheckBounds(std::int32_t column, std::int32_t row) const;

    std::vector<std::string> names_; ///< of the columns from 0 on; none: never sized
    ado::RowStore rows_;
};

} // namespace kv
