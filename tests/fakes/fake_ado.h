// The connection of the database layer, linked in the place of the one over ODBC: records what it is asked,
// and answers each statement as the test lays it down.
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

/// What a call gives. The default is a closed recordset and no errors.
struct AdoAnswer {
    std::vector<std::string> fields{}; ///< none: a statement without columns
    std::vector<AdoRow> rows{};
    std::vector<ado::Error> errors{}; ///< what the connection's Errors holds then
    bool fails = false;               ///< the call fails, with the first of `errors` or with none
    bool no_recordset = false;
    bool no_columns = false; ///< an open recordset all the same, of no column; drivers do not give one
    std::vector<ado::Parameter> parameters{}; ///< what Refresh makes of the collection
    /// What the call of a procedure gives back, by the parameter's name.
    std::map<std::string, ado::Variant> output{};
};

/// Rows without a field's name to them: the fields are called column0 and so on.
AdoAnswer Rows(std::vector<AdoRow> rows);
/// The call fails, and the server says why.
AdoAnswer Failing(std::int32_t number = -2147217900, const std::string& description = "refused");
/// The call fails as every call to a server that has gone away does.
AdoAnswer ServerGone();
/// A closed recordset with errors of these numbers, in this order.
AdoAnswer WithErrors(const std::vector<std::int32_t>& numbers);

class FakeAdo {
  public:
    FakeAdo();
    FakeAdo(const FakeAdo&) = delete;
    FakeAdo& operator=(const FakeAdo&) = delete;
    ~FakeAdo();
    /// The one that the connections work on. Ends the test's program if there is none.
    static FakeAdo& Current();

    /// Adds an answer for a statement, or for "Open", "Close", "OpenSchema 16", "Refresh" and "call NAME".
    /// Its answers are given one for each call; a call beyond the last succeeds and gives nothing.
    void Answer(const std::string& statement, AdoAnswer answer);
    /// The statements alone, in order.
    std::vector<std::string> Statements() const;

    /// Takes all answers away that were not given yet.
    void Forget() { answers_.clear(); }

    /// The server goes away behind so many further calls: each one beyond them fails, until it is back.
    void LoseServerAfter(std::size_t more) { calls_before_loss_ = more; }
    void ServerIsBack() { calls_before_loss_.reset(); }
    /// How many calls have met a server that was gone.
    std::size_t missed = 0;

    /// Every call in order, as "CommandTimeout 300", "ConnectionString Driver=...", "Open '' '' '' -1",
    /// "Execute 1 text", "Close"; of commands "Command.CommandText name" and so on, "Refresh", and
    /// "call name -1 @a=1 @b=(Empty)" with the values that go in.
    std::vector<std::string> calls;
    std::size_t connections = 0;      ///< objects alive
    std::size_t open_connections = 0; ///< opened and neither closed nor gone
    std::size_t closed_by_going = 0;  ///< objects that were gone while they were open
    std::size_t commands = 0;         ///< objects alive

    /// Called whenever a connection's Errors are read.
    std::function<void()> on_errors_read;

    AdoAnswer Take(const std::string& call);

  private:
    std::map<std::string, std::vector<AdoAnswer>> answers_;
    std::optional<std::size_t> calls_before_loss_;
};

} // namespace fakes
