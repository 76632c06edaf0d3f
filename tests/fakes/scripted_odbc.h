// A fake of the ODBC layer (odbc/odbc.h) with scripted answers, linked instead of it in tests of the package
// store. It has only the functions that the package store uses.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "odbc/odbc.h"

namespace fakes {

/// The result of one executed statement.
struct OdbcAnswer {
    std::vector<odbc::Column> columns;
    std::vector<std::vector<odbc::Value>> rows;
    std::vector<odbc::Diagnostic> error;      ///< the execution fails with these; empty if it succeeds
    std::vector<odbc::Diagnostic> late_error; ///< reading on after the first result fails with these
};

class ScriptedOdbc {
  public:
    ScriptedOdbc();
    ScriptedOdbc(const ScriptedOdbc&) = delete;
    ScriptedOdbc& operator=(const ScriptedOdbc&) = delete;
    ~ScriptedOdbc();
    /// The instance that the functions use.
    static ScriptedOdbc& Current();

    struct Executed {
        std::string sql;
        std::vector<odbc::Parameter> parameters;
    };

    /// Connecting fails with these; empty if it succeeds.
    std::vector<odbc::Diagnostic> connect_error;
    /// Each execution takes the next answer; after the last one executions succeed without a result.
    std::deque<OdbcAnswer> answers;

    std::vector<std::string> connection_strings;
    std::vector<Executed> executed;

    // The current statement.
    Executed prepared;
    OdbcAnswer answer;
    std::size_t next_row = 0;
    bool drained = false; ///< all further results have been read
};

} // namespace fakes
