// The rows of a client-side result, packed one behind the other: a byte for the kind of each value, whole
// numbers as long as they need, text as it is. Written once, then read forwards.
#pragma once

#include <cstddef>
#include <string>
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
    std::size_t RowCount() const { return row_count_; }

    /// Replaces the values of `row`, as many as it has, by those at `place`, which goes on behind them. There
    /// must be a row.
    void Read(Place& place, std::vector<Variant>& row) const;

  private:
    /// A row lies in one chunk. Chunks keep what is held twice while the store grows small.
    std::vector<std::string> chunks_;
    std::size_t row_count_ = 0;
};

} // namespace ado
