// The two-dimensional array of strings in which a manager hands a result to the console: first index the
// column, second the row, both from 0. Held packed, so that a large table costs little more than its text.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace kv {

/// It is filled from the front: the cells of a row in the order of their columns, row after row. A cell that
/// has not been filled, like every one of column 0, is the empty string. Until its first ReDim it has no
/// bounds, and asking for them raises run_time::kSubscriptOutOfRange, as does a cell outside them.
class TextTable {
  public:
    /// Drops what it holds and sizes it: the columns 0 to `last_column` and the single row 0.
    void ReDim(std::int32_t last_column);
    /// Adds a row behind the last.
    void GrowRow();
    /// Fills the next cell of the last row. There must be a column left for it.
    void Append(std::string_view text);

    std::int32_t ColumnUpperBound() const;
    std::int32_t RowUpperBound() const;
    /// What it holds in memory, in bytes.
    std::size_t Bytes() const;
    std::string operator()(std::int32_t column, std::int32_t row) const;

  private:
    /// Rows lie whole in one chunk: for each cell its length and its text.
    struct Chunk {
        std::size_t first_row = 0;
        std::vector<std::uint32_t> row_starts;
        std::string cells;
    };

    void CheckSized() const;
    const Chunk& ChunkOf(std::size_t row) const;

    std::int32_t last_column_ = -1; ///< below 0: never sized
    std::size_t row_count_ = 0;
    std::vector<Chunk> chunks_;
};

} // namespace kv
