// Reads the rows of a result: in blocks into bound buffers, long columns in pieces.
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
    Null,
    Bit,
    Whole,     ///< std::int64_t
    Double,    ///< double
    Timestamp, ///< see TimestampAt
    Guid,      ///< Guid
    Binary,
    Text, ///< UTF-16
};

/// A value in the driver's buffers.
struct CellView {
    CellKind kind = CellKind::Null;
    const char* data = nullptr;
    std::size_t size = 0; ///< in bytes

    template <class T>
    T As() const {
        T value;
        std::memcpy(&value, data, sizeof value);
        return value;
    }
    std::u16string_view Text() const {
        return {reinterpret_cast<const char16_t*>(data), size / sizeof(char16_t)};
    }
};

Timestamp TimestampAt(const char* data);

/// Reads the current result of a statement, forwards and once. The statement must outlive the reader, whose
/// destructor unbinds the columns.
class RowReader {
  public:
    /// Binds the columns. Throws OdbcError.
    explicit RowReader(Statement& statement);
    RowReader(RowReader&&) noexcept;
    RowReader& operator=(RowReader&&) = delete;
    ~RowReader();

    const std::vector<Column>& Columns() const;
    /// Reads the next row into `row`, one value for each column. Returns false and leaves `row` as it is if
    /// there is no further row. Throws OdbcError, with 01004 for a value that does not fit its column's
    /// description.
    bool Next(std::vector<Value>& row);

    /// The same without a copy. NextRow goes to the next row; View then returns its values, each once and in
    /// the order of the columns. A view is valid until the next call.
    bool NextRow();
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
