// Keeps the rows of a result in packed form, one after the other. Each value begins with a byte for its kind,
// which also holds its size if that is small; the bytes of the value follow. The rows are written once, then
// read forwards or by position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ado/variant.h"
#include "platform/memory_block.h"

namespace ado {

/// The rows of one result.
class RowStore {
  public:
    /// A position in the rows: where the next row begins. A new Place is the beginning of the first row.
    struct Place {
        std::size_t chunk = 0;
        std::size_t offset = 0; ///< in the chunk's bytes
    };

    /// Adds a row. Every row must have as many values as the first.
    void Append(const std::vector<Variant>& row);

    // These do the same in steps: BeginRow, then one call for each value of the row.

    void BeginRow();
    void PutEmpty();
    void PutNull();
    void PutBoolean(bool value);
    void PutWhole(std::int64_t value);
    void PutSingle(float value);
    void PutDouble(double value);
    void PutDecimal(std::string_view digits);
    void PutDate(const Date& value);
    void PutText(std::string_view text);

    // These two take UTF-16 and convert it to code page 1252.

    void PutWideDecimal(std::u16string_view digits);
    void PutWideText(std::u16string_view text);

    void PutBytes(std::string_view bytes);

    std::size_t RowCount() const { return row_count_; }

    /// Reads the row at `place` into `row` and moves `place` to the next row. There must be a row at `place`,
    /// and `row` must have as many elements as a row has values.
    void Read(Place& place, std::vector<Variant>& row) const;
    /// Returns the value in a column of a row, both counted from 0. The value must exist.
    Variant Value(std::size_t row, std::size_t column) const;

    /// Returns the memory that the rows take, in bytes.
    std::size_t Bytes() const;

  private:
    /// A part of the rows; each row lies in one chunk. A buffer that grows needs its memory twice while it is
    /// copied. With chunks only the last chunk does.
    struct Chunk {
        Chunk(std::size_t first_row, std::size_t bytes);

        std::size_t first_row;                 ///< the index of its first row
        std::vector<std::uint32_t> row_starts; ///< for each row its offset in `values`
        platform::MemoryBlock values;          ///< the packed values
        std::size_t size = 0;                  ///< the number of bytes of the values
        std::size_t capacity;                  ///< the number of bytes for which `values` has space

        void Reserve(std::size_t bytes);
    };

    /// Where the next value of the current row is written; there is room for `bytes`. Wrote ends the writing.
    char* Room(std::size_t bytes);
    void Wrote(const char* end);
    void PutSized(std::size_t kind, std::string_view bytes);
    void PutWideSized(std::size_t kind, std::u16string_view text);

    std::vector<Chunk> chunks_;
    std::size_t row_count_ = 0;
};

} // namespace ado
