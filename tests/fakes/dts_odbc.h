// The ODBC layer with scripted answers, for tests of what the package store sends and what it makes of what
// comes back. Holds what the package store uses and no more.
#pragma once

#include <deque>
#include <string>
#include <vector>

#include "odbc/odbc.h"

namespace fakes {

/// What one executed statement gives.
struct OdbcAnswer {
    std::vector<platform::odbc::Column> columns;
    std::vector<std::vector<platform::odbc::Value>> rows;
    std::vector<platform::odbc::Diagnostic> error;      ///< of the execution; empty: it succeeds
    std::vector<platform::odbc::Diagnostic> late_error; ///< behind the first result
};

class ScriptedOdbc {
  public:
    ScriptedOdbc();
    ScriptedOdbc(const ScriptedOdbc&) = delete;
    ScriptedOdbc& operator=(const ScriptedOdbc&) = delete;
    ~ScriptedOdbc();
    static ScriptedOdbc& Current();

    struct Executed {
        std::string sql;
        std::vector<platform::odbc::Parameter> parameters;
    };

    /// Empty: connecting succeeds.
    std::vector<platform::odbc::Diagnostic> connect_error;
    /// One for each execution; an execution without one gives nothing and succeeds.
    std::deque<OdbcAnswer> answers;

    std::vector<std::string> connection_strings;
    std::vector<Executed> executed;

    // The statement that is open.
    Executed prepared;
    OdbcAnswer answer;
    std::size_t next_row = 0;
    bool drained = false; ///< somebody asked for further results until there were none
};

} // namespace fakes
