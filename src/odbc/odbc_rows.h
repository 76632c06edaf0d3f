// Reads the rows of a result. Rows are fetched in blocks into buffers; values of long columns are read in
// pieces.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "odbc/odbc.h"

namespace odbc {

/// The type of a value in the driver's buffer.
enum class CellKind : std::uint8_t {
    Null,      ///< no data
    Bit,       ///< one byte, 0 or 1
    Whole,     ///< std::int64_t
    Double,    ///< double
    Timestamp, ///< see TimestampAt
    Guid,      ///< Guid
    Binary,    ///< bytes as they are
    Text,      ///< UTF-16
};

/// A value in a reader's buffers, which own the bytes.
struct CellView {
    CellKind kind = CellKind::Null;
    const char* data = nullptr;
    std::size_t size = 0; ///< in bytes

    /// Copies a value of the type that `kind` says.
    template <class T>
    T As() const {
        T value;
        std::memcpy(&value, data, sizeof value);
        return value;
    }
    /// Returns the characters of a value of the kind Text.
    std::u16string_view Text() const {
        return {reinterpret_cast<const char16_t*>(data), size / sizeof(char16_t)};
    }
};

/// Converts the data of a CellView of the kind Timestamp.
Timestamp TimestampAt(const char* data);

/// Reads the current result of a statement, forwards and once. The statement must outlive the reader, whose
/// destructor unbinds the columns. Every failure is an OdbcError.
class RowReader {
  public:
    /// Binds the columns of the current result.
    explicit RowReader(Statement& statement);
    RowReader(RowReader&&) noexcept;
    RowReader& operator=(RowReader&&) = delete;
    ~RowReader();

    const std::vector<Column>& Columns() const;
    /// Reads the next row into `row`, one value for each column. If there is no further row, returns false
    /// and leaves `row` as it is. Fails with SQLSTATE 01004 if a value is longer than its column's
    /// description says.
    bool Next(std::vector<Value>& row);

    // These two do the same without a copy.

    /// Goes to the next row. Returns false if there is no further row.
    bool NextRow();
    /// Returns a value of the current row. Each value may be read once, in the order of the columns, which
    /// are counted from 0. The view is valid until the next call of the reader.
    CellView View(std::size_t column) { return column < bound_ ? cells_[column] : LongView(column); }

  private:
    struct State;

    CellView LongView(std::size_t column);

    std::unique_ptr<State> state_;
    // The current row's values in the bound columns. They are here because View is called for each value.
    const CellView* cells_ = nullptr;
    std::size_t bound_ = 0;
};

} // namespace odbc
