// Runs one statement from its start to the end of its last result, and finds out whether the call that runs
// it has to fail. Internal to the layer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ado/recordset.h"
#include "odbc/odbc.h"

namespace ado {

/// One run of a statement. Reads all results and collects the errors and messages that come with them.
class StatementRun {
  public:
    /// The statement must belong to the connection. Both must outlive this object.
    StatementRun(odbc::Statement& statement, odbc::Connection& connection)
        : statement_(statement), connection_(connection) {}

    /// Calls `start`, which executes the statement, and reads all its results. Errors of the database are
    /// collected, not thrown.
    void Run(const std::function<void()>& start);

    /// True if there was an error, except after a first result with columns: then the rows are returned in
    /// spite of the error.
    bool Failed() const { return failed_; }
    /// The number of rows that the first result has changed; -1 if it has columns or the server did not count
    /// them.
    std::int64_t RecordsAffected() const { return records_affected_; }
    const std::vector<odbc::Diagnostic>& Diagnostics() const { return diagnostics_; }
    /// Moves the first result out. A closed recordset if it has no columns or if there is no result; never
    /// null.
    std::unique_ptr<Recordset> TakeRecordset();

  private:
    /// Makes one call of the driver and collects its errors and messages. `call` returns true if a further
    /// result may follow. Returns false if none can follow.
    template <class Call>
    bool RunCall(Call call);
    /// Collects the statement's messages.
    void TakeMessages();
    /// Reads the current result: the rows of the first, and nothing of the others.
    void ReadResult();

    odbc::Statement& statement_;
    odbc::Connection& connection_;
    std::vector<odbc::Diagnostic> diagnostics_;
    std::unique_ptr<Recordset> rows_; ///< of the first result, if it has columns and has been read
    bool has_result_ = false;         ///< the first result has been reached
    bool failed_ = false;
    std::int64_t records_affected_ = -1;
};

} // namespace ado
