// The two-dimensional array of strings in which a manager returns a result to the console. The first index is
// the column, the second the row, both from 0. The rows stay packed as the database layer read them, so that
// a large table takes little more memory than its text; a cell is made a string when it is asked for.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "ado/recordset.h"
#include "ado/row_store.h"

namespace kv {

/// Before its first ReDim it has no bounds: asking for them raises run_time::kSubscriptOutOfRange, and so
/// does a cell outside the bounds. Column 0 is always empty.
class TextTable {
  public:
    /// Clears the table and gives it the columns 0 to `last_column` and row 0, all empty.
    void ReDim(std::int32_t last_column);
    /// Writes a cell of row 0.
    void SetName(std::int32_t column, const std::string& name);
    /// Replaces the rows from 1 on; each has a value for each column from 1 on.
    void SetRows(ado::RowStore rows);

    std::int32_t ColumnUpperBound() const;
    std::int32_t RowUpperBound() const;
    /// A value's ordinary text; "(Null)" for the database's NULL.
    std::string operator()(std::int32_t column, std::int32_t row) const;

    /// The memory of the rows, in bytes; the benchmark reports it.
    std::size_t Bytes() const { return rows_.Bytes(); }

  private:
    void CheckBounds(std::int32_t column, std::int32_t row) const;

    std::vector<std::string> names_; ///< of the columns from 0 on; empty before the first ReDim
    ado::RowStore rows_;
};

/// Sizes the table for the recordset, fills row 0 with the fields' names and adds a row for each record. If
/// it fails, the table keeps what was written. A closed recordset fails when its rows are asked for.
void FillTable(TextTable& table, ado::Recordset& rows);

} // namespace kv
