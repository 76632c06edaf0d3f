// Reads the rows of a result. The number of rows in a block (the array size) is set only after the statement
// has run: if it is set before, the drivers of this server open a cursor on the server instead of sending the
// rows.
#include "odbc/odbc_rows.h"

#include <algorithm>
#include <array>
#include <string>
#include <utility>

#include "odbc/odbc_types.h"

namespace odbc {
namespace {

/// The size of a block in bytes, and the largest number of rows in a block.
constexpr std::size_t kBlockBytes = 256 * 1024;
constexpr std::size_t kMaxBlockRows = 512;
/// A long value is read in pieces of this many bytes.
constexpr std::size_t kPieceBytes = 64 * 1024;

/// A column that is bound, with a value and an indicator for each row of the block.
struct BoundColumn {
    SQLSMALLINT c_type = SQL_C_WCHAR;
    CellKind kind = CellKind::Text;
    bool varies = false;            ///< the values have different lengths
    std::size_t width = 0;          ///< the number of bytes reserved for a value
    std::size_t room = 0;           ///< the number of bytes of the longest value that fits
    std::vector<char> data;         ///< `width` bytes for each row
    std::vector<SQLLEN> indicators; ///< for each row the value's length in bytes, or SQL_NULL_DATA
};

/// Returns the number of bytes to reserve for a value of the column.
std::size_t WidthOf(const Column& column, SQLSMALLINT c_type) {
    const std::size_t fixed = FixedSize(c_type);
    if (fixed != 0) {
        return fixed;
    }
    // Text takes one character more for the NUL after it. The display size of a decimal includes its sign and
    // point.
    return c_type == SQL_C_BINARY ? column.size
                                  : (std::max(column.size, column.display_size) + 1) * sizeof(char16_t);
}

/// Returns the length in bytes of the longest value that fits into a buffer of `size` bytes. Text is followed
/// by a NUL.
std::size_t RoomFor(SQLSMALLINT c_type, std::size_t size) {
    return c_type == SQL_C_WCHAR ? size - sizeof(char16_t) : size;
}

} // namespace

struct RowReader::State {
    Statement* statement = nullptr;
    std::vector<Column> columns;
    std::vector<BoundColumn> bound;       ///< the columns before the first long one
    std::vector<CellView> cells;          ///< the current row's values in them
    std::vector<SQLUSMALLINT> row_status; ///< written by the driver for each row of the block
    std::vector<char> piece;              ///< a part of a long value
    std::string whole;                    ///< the long value that was read last
    std::size_t block_rows = 1;           ///< the number of rows for which a block has space
    SQLULEN fetched = 0;                  ///< the number of rows in the current block
    std::size_t current = 0;              ///< the current row of the block
    bool ended = false;                   ///< the last block has been fetched

    ~State() { Unbind(); }
    /// Chooses which columns to bind and how many rows make a block, and makes the buffers.
    void MakeBuffers();
    void BindAll();
    bool BlockFailed() const;
    /// Returns false if there is no further row.
    bool FetchBlock();
    void ReadCells();
    [[noreturn]] void FailCut(std::size_t column, SQLLEN indicator) const;
    CellView LongView(std::size_t column);
    void Unbind() noexcept;
};

void RowReader::State::MakeBuffers() {
    std::size_t row_bytes = 0;
    for (const Column& column : columns) {
        // The drivers of this server read columns in pieces only after the last bound one, and only from
        // blocks of one row.
        if (column.IsLong()) {
            break;
        }
        BoundColumn& next_bound = bound.emplace_back();
        next_bound.c_type = BufferType(column.type);
        next_bound.kind = KindOf(next_bound.c_type);
        next_bound.varies = FixedSize(next_bound.c_type) == 0;
        next_bound.width = WidthOf(column, next_bound.c_type);
        next_bound.room = RoomFor(next_bound.c_type, next_bound.width);
        row_bytes += next_bound.width + sizeof(SQLLEN);
    }
    if (bound.size() == columns.size()) {
        block_rows =
            std::clamp<std::size_t>(kBlockBytes / std::max<std::size_t>(row_bytes, 1), 1, kMaxBlockRows);
    }
    for (BoundColumn& column : bound) {
        column.data.resize(column.width * block_rows);
        column.indicators.resize(block_rows);
    }
    row_status.resize(block_rows);
    cells.resize(bound.size());
}

void RowReader::State::BindAll() {
    Handle& handle = statement->OwnedHandle();
    handle.Check("SQLSetStmtAttr", SQLSetStmtAttrW(handle.Get(), SQL_ATTR_ROW_ARRAY_SIZE,
                                                   AttributeValue(block_rows), SQL_IS_UINTEGER));
    handle.Check("SQLSetStmtAttr",
                 SQLSetStmtAttrW(handle.Get(), SQL_ATTR_ROWS_FETCHED_PTR, &fetched, SQL_IS_POINTER));
    handle.Check("SQLSetStmtAttr",
                 SQLSetStmtAttrW(handle.Get(), SQL_ATTR_ROW_STATUS_PTR, row_status.data(), SQL_IS_POINTER));
    SQLUSMALLINT number = 0;
    for (BoundColumn& column : bound) {
        ++number;
        handle.Check("SQLBindCol", SQLBindCol(handle.Get(), number, column.c_type, column.data.data(),
                                              static_cast<SQLLEN>(column.width), column.indicators.data()));
    }
}

/// Success with information may also mean that an error has cut the block short. Then a row has the status
/// SQL_ROW_ERROR, or there is only a record.
bool RowReader::State::BlockFailed() const {
    const auto rows_end =
        row_status.begin() + static_cast<std::ptrdiff_t>(std::min<SQLULEN>(fetched, block_rows));
    return std::find(row_status.begin(), rows_end, SQL_ROW_ERROR) != rows_end ||
           std::ranges::any_of(ReadDiagnostics(HandleKind::Statement, statement->Get(), false),
                               &Diagnostic::error);
}

bool RowReader::State::FetchBlock() {
    Handle& handle = statement->OwnedHandle();
    current = 0;
    fetched = 0;
    const SQLRETURN code = SQLFetch(handle.Get());
    if (code == SQL_SUCCESS_WITH_INFO && BlockFailed()) {
        throw OdbcError("SQLFetch", ReadDiagnostics(HandleKind::Statement, handle.Get(), true));
    }
    const bool got = handle.Check("SQLFetch", code) && fetched != 0;
    // A block that is not full is the last one. A further fetch must be avoided: FreeTDS would read past the
    // result and lose the message that follows.
    ended = !got || fetched < block_rows;
    return got;
}

void RowReader::State::ReadCells() {
    const std::size_t row = current;
    CellView* cell = cells.data();
    for (const BoundColumn& column : bound) {
        const SQLLEN indicator = column.indicators[row];
        if (indicator == SQL_NULL_DATA) {
            *cell++ = {};
            continue;
        }
        // A negative indicator becomes a size that is too large.
        const std::size_t size = column.varies ? static_cast<std::size_t>(indicator) : column.width;
        if (size > column.room) {
            FailCut(static_cast<std::size_t>(cell - cells.data()), indicator);
        }
        *cell++ = {column.kind, column.data.data() + row * column.width, size};
    }
}

void RowReader::State::FailCut(std::size_t column, SQLLEN indicator) const {
    Diagnostic cut;
    cut.sql_state = "01004";
    cut.message = "The column '" + columns[column].name + "' holds a value of " + std::to_string(indicator) +
                  " bytes, more than the " + std::to_string(bound[column].room) + " of its description";
    throw OdbcError("SQLFetch", {std::move(cut)});
}

CellView RowReader::State::LongView(std::size_t column) {
    Handle& handle = statement->OwnedHandle();
    const SQLSMALLINT c_type = BufferType(columns[column].type);
    piece.resize(kPieceBytes);
    const std::size_t room = RoomFor(c_type, piece.size());
    whole.clear();
    for (;;) {
        SQLLEN indicator = 0;
        const SQLRETURN code = SQLGetData(handle.Get(), static_cast<SQLUSMALLINT>(column + 1), c_type,
                                          piece.data(), static_cast<SQLLEN>(piece.size()), &indicator);
        const bool got = code == SQL_SUCCESS_WITH_INFO || handle.Check("SQLGetData", code);
        if (!got) {
            break;
        }
        if (indicator == SQL_NULL_DATA || FixedSize(c_type) != 0) {
            return ViewOf(c_type, piece.data(), indicator);
        }
        const bool cut = indicator == SQL_NO_TOTAL || static_cast<std::size_t>(indicator) > room;
        whole.append(piece.data(), cut ? room : static_cast<std::size_t>(indicator));
        if (!cut) {
            break;
        }
    }
    return ViewOf(c_type, whole.data(), static_cast<SQLLEN>(whole.size()));
}

void RowReader::State::Unbind() noexcept {
    // Return codes are ignored: the buffers are freed now, and the statement must not refer to them.
    SQLFreeStmt(statement->Get(), SQL_UNBIND);
    SQLSetStmtAttrW(statement->Get(), SQL_ATTR_ROW_STATUS_PTR, nullptr, SQL_IS_POINTER);
    SQLSetStmtAttrW(statement->Get(), SQL_ATTR_ROWS_FETCHED_PTR, nullptr, SQL_IS_POINTER);
    SQLSetStmtAttrW(statement->Get(), SQL_ATTR_ROW_ARRAY_SIZE, AttributeValue(1), SQL_IS_UINTEGER);
}

RowReader::RowReader(Statement& statement) : state_(std::make_unique<State>()) {
    state_->statement = &statement;
    state_->columns = statement.Columns();
    // FreeTDS has already read an empty result to its end, and a fetch would read past it (see FetchBlock).
    state_->ended = statement.KnownEmpty();
    state_->MakeBuffers();
    state_->BindAll();
    cells_ = state_->cells.data();
    bound_ = state_->cells.size();
}

RowReader::RowReader(RowReader&&) noexcept = default;
RowReader::~RowReader() = default;

const std::vector<Column>& RowReader::Columns() const {
    return state_->columns;
}

bool RowReader::NextRow() {
    State& state = *state_;
    ++state.current;
    if (state.current >= state.fetched && (state.ended || !state.FetchBlock())) {
        return false;
    }
    state.ReadCells();
    return true;
}

CellView RowReader::LongView(std::size_t column) {
    return state_->LongView(column);
}

bool RowReader::Next(std::vector<Value>& row) {
    if (!NextRow()) {
        return false;
    }
    row.resize(state_->columns.size());
    for (std::size_t column = 0; column < row.size(); ++column) {
        row[column] = ReadValue(View(column));
    }
    return true;
}

} // namespace odbc
