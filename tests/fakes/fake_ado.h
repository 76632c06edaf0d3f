// A fake of the database layer's connections and commands, linked instead of those over ODBC. It records
// their calls and answers each statement as the test has set.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "ado/command.h"
#include "ado/connection.h"

namespace fakes {

using AdoRow = std::vector<ado::Variant>;

/// The answer to a call. The default is a closed recordset and no errors.
struct AdoAnswer {
    std::vector<std::string> fields{}; ///< the names of the columns; empty for a statement without columns
    std::vector<AdoRow> rows{};
    std::vector<ado::Error> errors{}; ///< the connection's Errors after the call
    bool fails = false;               ///< the call fails, with the first of `errors` if there is one
    bool no_recordset = false;        ///< the call returns no recordset
    bool no_columns = false;          ///< the recordset is open but has no columns, which no driver returns
    std::vector<ado::Parameter> parameters{}; ///< the collection after Refresh
    /// The output values of a procedure's call, by the parameter's name.
    std::map<std::string, ado::Variant> output{};
};

/// An answer with these rows. The columns are called column0, column1 and so on.
AdoAnswer Rows(std::vector<AdoRow> rows);
/// The call fails with this ADO error number; the default is that of an error which the server reports.
AdoAnswer Failing(std::int32_t number = -2147217900, const std::string& description = "refused");
/// The call fails as a call on a lost connection does.
AdoAnswer LostConnection();
/// A closed recordset with errors of these numbers, in this order.
AdoAnswer WithErrors(const std::vector<std::int32_t>& numbers);

/// A test makes one; all connections and commands use it.
class FakeAdo {
  public:
    FakeAdo();
    FakeAdo(const FakeAdo&) = delete;
    FakeAdo& operator=(const FakeAdo&) = delete;
    ~FakeAdo();
    /// The instance that the connections use. Ends the test program if there is no instance.
    static FakeAdo& Current();

    /// Adds an answer for a statement, or for "Open", "Close", "OpenSchema 16", "Refresh" and "call NAME".
    /// Each call takes the next answer for it; a call after the last answer succeeds without a result.
    void Answer(const std::string& statement, AdoAnswer answer);
    /// The executed statements, in order.
    std::vector<std::string> Statements() const;

    /// Removes all answers that have not been given yet.
    void Forget() { answers_.clear(); }

    /// After `more` further calls the server is lost: each later call fails until ServerIsBack.
    void LoseServerAfter(std::size_t more) { calls_before_loss_ = more; }
    void ServerIsBack() { calls_before_loss_.reset(); }
    /// The number of calls that failed because the server was lost.
    std::size_t missed = 0;

    /// Every call in order: "CommandTimeout 300", "ConnectionString Driver=...", "Open '' '' '' -1",
    /// "Execute 1 text", "Close"; for commands "Command.CommandText name" and so on, "Refresh", and
    /// "call name -1 @a=1 @b=(Empty)" with the input values.
    std::vector<std::string> calls;
    std::size_t connections = 0;          ///< connection objects that exist
    std::size_t open_connections = 0;     ///< of these, the open ones
    std::size_t destroyed_while_open = 0; ///< connection objects that were destroyed while they were open
    std::size_t commands = 0;             ///< command objects that exist

    /// Called whenever a connection's Errors are read.
    std::function<void()> on_errors_read;

    /// For the fake's own functions: returns the next answer for a call.
    AdoAnswer Take(const std::string& call);

  private:
    std::map<std::string, std::vector<AdoAnswer>> answers_;
    std::optional<std::size_t> calls_before_loss_;
};

} // namespace fakes
