// The rows of a result: fetched in blocks into bound buffers, long columns in pieces. Knows nothing of what
// the rows mean.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <string_view>
#include <vector>

#include "odbc/odbc.h"

namespace platform::odbc {

/// What a value is, where the driver has put it.
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

/// A value as it lies in the driver's buffers.
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

    /// The same without a copy: goes to the next row, whose values View then gives, each asked for once and
    /// in the order of the columns. What it gives is good until its next call.
    bool NextRow();
    CellView View(std::size_t column);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace platform::odbc
