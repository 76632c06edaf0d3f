// The rows of a client-side result, packed one behind the other: a byte for the kind of each value, with its
// size where that is small, and what the value needs. Written once, then read forwards or by place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "ado/variant.h"

namespace ado {

class RowStore {
  public:
    /// Where the next row begins. A new one stands in front of the first row.
    struct Place {
        std::size_t chunk = 0;
        std::size_t offset = 0;
    };

    /// Every row has as many values as the first.
    void Append(const std::vector<Variant>& row);

    // The same piece by piece: a row, then each of its values.

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
    /// UTF-16, which becomes the program's text.
    void PutWideDecimal(std::u16string_view digits);
    void PutWideText(std::u16string_view text);
    void PutBytes(std::string_view bytes);

    std::size_t RowCount() const { return row_count_; }

    /// Replaces the values of `row`, as many as it has, by those at `place`, which goes on behind them. There
    /// must be a row.
    void Read(Place& place, std::vector<Variant>& row) const;
    /// The value in a column of a row, both from 0. There must be one.
    Variant Value(std::size_t row, std::size_t column) const;

    /// What it holds in memory, in bytes.
    std::size_t Bytes() const;

  private:
    /// Rows lie whole in one chunk. Chunks keep what is held twice while the store grows small.
    struct Chunk {
        std::size_t first_row = 0;
        std::vector<std::uint32_t> row_starts;
        std::string values;
    };

    std::string& Values() { return chunks_.back().values; }
    void PutSized(std::size_t kind, std::string_view bytes);
    void PutWideSized(std::size_t kind, std::u16string_view text);

    std::vector<Chunk> chunks_;
    std::size_t row_count_ = 0;
};

} // namespace ado
