// Reads all results of a statement, and decides after an error whether further results can be read.
#include "ado/statement_run.h"

#include <algorithm>
#include <utility>

#include "ado/odbc_values.h"
#include "odbc/odbc_rows.h"

namespace ado {
namespace {

/// Stores a value directly from the driver's buffer. `type` is the type of its column.
void Put(RowStore& store, odbc::SqlType type, const odbc::CellView& cell) {
    switch (cell.kind) {
    case odbc::CellKind::Null:
        return store.PutNull();
    case odbc::CellKind::Bit:
        return store.PutBoolean(*cell.data != 0);
    case odbc::CellKind::Whole:
        return store.PutWhole(cell.As<std::int64_t>());
    case odbc::CellKind::Double:
        return type == odbc::SqlType::Real ? store.PutSingle(static_cast<float>(cell.As<double>()))
                                           : store.PutDouble(cell.As<double>());
    case odbc::CellKind::Timestamp:
        return store.PutDate(odbc::TimestampAt(cell.data));
    case odbc::CellKind::Guid:
        return store.PutText(GuidText(cell.As<odbc::Guid>()));
    case odbc::CellKind::Binary:
        return store.PutBytes({cell.data, cell.size});
    case odbc::CellKind::Text:
        return IsExactNumber(type) ? store.PutWideDecimal(cell.Text()) : store.PutWideText(cell.Text());
    }
}

std::unique_ptr<Recordset> ReadRows(odbc::Statement& statement) {
    odbc::RowReader reader(statement);
    std::vector<std::string> names;
    std::vector<odbc::SqlType> types;
    for (const odbc::Column& column : reader.Columns()) {
        names.push_back(column.name);
        types.push_back(column.type);
    }
    RowStore store;
    while (reader.NextRow()) {
        store.BeginRow();
        for (std::size_t i = 0; i < types.size(); ++i) {
            Put(store, types[i], reader.View(i));
        }
    }
    return std::make_unique<Recordset>(std::move(names), std::move(store));
}

/// True if the server itself reported the failure: further results may follow. A failure that the driver
/// reports (a time-out, a lost connection) ends the statement, since the driver would fail at every further
/// call.
bool ResultsMayFollow(const odbc::OdbcError& error, odbc::Connection& connection) {
    return !error.ConnectionLost() && !connection.Dead() &&
           std::ranges::any_of(error.Diagnostics(), [](const odbc::Diagnostic& diagnostic) {
               return diagnostic.severity.has_value();
           });
}

} // namespace

template <class Call>
bool StatementRun::RunCall(Call call) {
    bool more = false;
    try {
        more = call();
    } catch (const odbc::OdbcError& error) {
        diagnostics_.insert(diagnostics_.end(), error.Diagnostics().begin(), error.Diagnostics().end());
        failed_ = failed_ || !rows_;
        more = ResultsMayFollow(error, connection_);
    }
    TakeMessages();
    return more;
}

void StatementRun::TakeMessages() {
    for (odbc::Diagnostic& message : statement_.TakeMessages()) {
        // ODBC allows a driver to report a batch that went on after a failed statement as success with
        // information.
        failed_ = failed_ || (message.error && !rows_);
        diagnostics_.push_back(std::move(message));
    }
}

void StatementRun::ReadResult() {
    TakeMessages(); // an error that came with the result counts as one before it
    if (statement_.ColumnCount() != 0) {
        // Only the rows of the first result are kept, and the errors and messages of all.
        if (!std::exchange(has_result_, true)) {
            rows_ = ReadRows(statement_);
        }
        return;
    }
    // A statement with neither columns nor a count (USE, PRINT) gives no result.
    const std::int64_t count = statement_.RowCount();
    if (count >= 0 && !std::exchange(has_result_, true)) {
        records_affected_ = count;
    }
}

void StatementRun::Run(const std::function<void()>& start) {
    bool more = RunCall([&] {
        start();
        ReadResult();
        return true;
    });
    while (more) {
        more = RunCall([&] {
            const bool found = statement_.MoreResults();
            if (found) {
                ReadResult();
            }
            return found;
        });
    }
}

std::unique_ptr<Recordset> StatementRun::TakeRecordset() {
    return rows_ ? std::move(rows_) : std::make_unique<Recordset>();
}

} // namespace ado
