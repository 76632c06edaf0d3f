// Runs one statement from its start to the end of its last result. Internal to the layer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ado/recordset.h"
#include "odbc/odbc.h"

namespace ado {

/// Reads all results of a statement and collects what is reported with them.
class StatementRun {
  public:
    /// The statement is one of the connection's; both must outlive the run.
    StatementRun(odbc::Statement& statement, odbc::Connection& connection)
        : statement_(statement), connection_(connection) {}

    /// Calls `start`, which executes the statement, and reads all its results. Errors of the database are
    /// collected, not thrown.
    void Run(const std::function<void()>& start);

    /// True if the call that ran it has to fail.
    bool Failed() const { return failed_; }
    /// The number of rows that the first result touched; -1 if the server did not count them.
    std::int64_t RecordsAffected() const { return records_affected_; }
    const std::vector<odbc::Diagnostic>& Diagnostics() const { return diagnostics_; }
    /// The first result; a closed recordset if it has no columns or if there is no result.
    std::unique_ptr<Recordset> TakeRecordset();

  private:
    template <class Call>
    bool Step(Call call);
    void TakeMessages();
    void TakeResult();

    odbc::Statement& statement_;
    odbc::Connection& connection_;
    std::vector<odbc::Diagnostic> diagnostics_;
    std::unique_ptr<Recordset> rows_; ///< of the first result, if it has columns and has been read
    bool has_result_ = false;
    bool failed_ = false;
    std::int64_t records_affected_ = -1;
};

} // namespace ado
