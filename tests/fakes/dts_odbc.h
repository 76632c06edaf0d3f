// A fake of the ODBC layer with scripted answers, for tests of the package store. Has only the functions that
// the package store uses.
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
    std::vector<odbc::Diagnostic> error;      ///< of the execution; empty: it succeeds
    std::vector<odbc::Diagnostic> late_error; ///< after the first result
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
        std::vector<odbc::Parameter> parameters;
    };

    /// Empty: connecting succeeds.
    std::vector<odbc::Diagnostic> connect_error;
    /// One for each execution; a further execution succeeds without a result.
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
