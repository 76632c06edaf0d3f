// The rows of a client-side result in packed form, one after the other. Each value begins with a byte for its
// kind, which also holds its size if that is small; the bytes of the value follow. Written once, then read
// forwards or by position.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "ado/variant.h"
#include "platform/memory_block.h"

namespace ado {

class RowStore {
  public:
    /// Where the next row begins. A new Place is the beginning of the first row.
    struct Place {
        std::size_t chunk = 0;
        std::size_t offset = 0;
    };

    /// Every row has as many values as the first.
    void Append(const std::vector<Variant>& row);

    // The same in steps: BeginRow, then a call for each value.

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
    /// UTF-16, which is converted to code page 1252.
    void PutWideDecimal(std::u16string_view digits);
    void PutWideText(std::u16string_view text);
    void PutBytes(std::string_view bytes);

    std::size_t RowCount() const { return row_count_; }

    /// Reads the row at `place` into `row`, which has the size of a row, and moves `place` to the next row.
    /// There must be a row at `place`.
    void Read(Place& place, std::vector<Variant>& row) const;
    /// The value in a column of a row, both counted from 0. The value must exist.
    Variant Value(std::size_t row, std::size_t column) const;

    /// The memory that the rows take, in bytes.
    std::size_t Bytes() const;

  private:
    /// Each row lies in one chunk. A buffer that grows is held twice while it is copied; with chunks only the
    /// last one is.
    struct Chunk {
        Chunk(std::size_t first_row, std::size_t bytes);

        std::size_t first_row;
        std::vector<std::uint32_t> row_starts;
        platform::MemoryBlock values;
        std::size_t size = 0; ///< of the values, in bytes
        std::size_t capacity;

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
