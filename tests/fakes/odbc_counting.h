// A driver manager without a driver, linked in place of the system's: counts the handles that are open, fails
// the call that a test names, and answers every statement with the results that the test lays down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fakes {

/// A diagnostic record as the driver hands it out.
struct OdbcRecord {
    std::string state = "HY000";
    std::int32_t native = 0;
    std::string message{};
    std::string server{};
    std::optional<std::int32_t> line{};
    std::optional<std::int32_t> severity{};
    std::optional<std::int32_t> server_state{};
};

/// A cell of a result that a test lays out; none: NULL.
using OdbcCell = std::optional<std::string>;

/// A result: no column at all, or a number, a text of at most 20 characters and, if it is long, a long text;
/// or what the test lays out.
struct OdbcResult {
    bool columns = true;
    bool with_long_column = false;
    std::size_t rows = 0;
    std::int64_t row_count = -1;
    std::size_t long_size = 0;         ///< characters of each long text
    std::vector<OdbcRecord> records{}; ///< come with it, by SQL_SUCCESS_WITH_INFO
    /// Come with the fetch that reaches the last of its rows, in the same way.
    std::vector<OdbcRecord> fetch_records{};
    bool no_data = false; ///< given by SQL_NO_DATA, as a statement that touches no row is
    bool fails = false;   ///< the call that should give it fails, with its records
    /// Of a result that is laid out: 'n' a whole number, 't' a text of at most 20 characters.
    std::string kinds{};
    std::vector<std::vector<OdbcCell>> cells{}; ///< `rows` of them
};

/// A result with columns of these kinds, called column1 and so on.
inline OdbcResult LaidOut(std::string kinds, std::vector<std::vector<OdbcCell>> cells) {
    OdbcResult result;
    result.rows = cells.size();
    result.kinds = std::move(kinds);
    result.cells = std::move(cells);
    return result;
}

/// A marker's binding when its statement was run.
struct OdbcParameter {
    int direction = 0;
    int c_type = 0;
    int sql_type = 0;
    std::size_t size = 0;
    int digits = 0;
    OdbcCell value{}; ///< what goes in, numbers and texts alike
};

/// What the fake holds. One for the process, since ODBC's functions know no other place.
struct OdbcCounting {
    std::vector<OdbcResult> results;       ///< of each statement, in order
    std::vector<OdbcResult> catalogue;     ///< of each call of a catalogue; none: `results`
    std::vector<OdbcCell> output;          ///< what a statement's markers get behind its last result
    std::vector<OdbcParameter> parameters; ///< of the last statement that was run

    /// The call, counted from 1, that fails; 0: none. Freeing handles and reading records is not counted.
    std::size_t failing_call = 0;
    std::size_t calls = 0;
    std::string failed_function; ///< the one that has failed
    std::size_t fetches = 0;

    std::size_t open_handles = 0;
    std::size_t most_handles = 0;
    std::size_t open_connections = 0;
    /// Sins against the order of things: a parent freed before its child, a handle freed twice and so on.
    std::vector<std::string> violations;
    std::string driver_name = "fake.so";   ///< as the connection tells it
    std::vector<OdbcRecord> login_records; ///< come with a login that succeeds
    bool connection_dead = false;          ///< what a connection answers when it is asked
    std::string last_connection_string;
    std::string last_statement;
    std::string last_catalogue; ///< the pattern of the last call of the parameters' catalogue
};

OdbcCounting& Counting();
/// Forgets everything.
void ResetCounting();

} // namespace fakes
