// One statement from its start to the end of its last result: inner header of the layer.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ado/recordset.h"
#include "odbc/odbc.h"

namespace ado {

/// Collects what a statement gives: its results are taken until there is none.
class StatementRun {
  public:
    /// The statement is one of the connection's; both must outlive the run.
    StatementRun(platform::odbc::Statement& statement, platform::odbc::Connection& connection)
        : statement_(statement), connection_(connection) {}

    /// Runs what `start` begins. Throws nothing that the database reported.
    void Run(const std::function<void()>& start);

    /// True if the call that ran it has to fail.
    bool Failed() const { return failed_; }
    /// Rows that the first result touched; -1 where nothing was counted.
    std::int64_t RecordsAffected() const { return records_affected_; }
    const std::vector<platform::odbc::Diagnostic>& Diagnostics() const { return diagnostics_; }
    /// The first result; closed if it has no columns or if there is none.
    std::unique_ptr<Recordset> TakeRecordset();

  private:
    template <class Call>
    bool Step(Call call);
    void TakeMessages();
    void TakeResult();

    platform::odbc::Statement& statement_;
    platform::odbc::Connection& connection_;
    std::vector<platform::odbc::Diagnostic> diagnostics_;
    std::unique_ptr<Recordset> rows_; ///< of the first result, if it has columns and has been read
    bool has_result_ = false;
    bool failed_ = false;
    std::int64_t records_affected_ = -1;
};

} // namespace ado
