// A fake ODBC driver manager, linked instead of the system's. It counts open handles, fails the call that a
// test chooses by its number, and answers every statement with the results that the test has set.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace fakes {

/// A diagnostic record as the driver returns it.
struct OdbcRecord {
    std::string state = "HY000";
    std::int32_t native = 0;
    std::string message{};
    std::string server{};
    std::optional<std::int32_t> line{};
    std::optional<std::int32_t> severity{};
    std::optional<std::int32_t> server_state{};
};

/// A cell as text; no value means NULL.
using OdbcCell = std::optional<std::string>;

/// A result of one of three kinds: without columns; with made-up rows of a number, a text of at most 20
/// characters and, if `with_long_column`, a long text; or with the cells that the test has set (`kinds` and
/// `cells`).
struct OdbcResult {
    bool columns = true;
    bool with_long_column = false;
    std::size_t rows = 0;
    std::int64_t row_count = -1;
    std::size_t long_size = 0;         ///< characters of each long text
    std::vector<OdbcRecord> records{}; ///< returned with the result, and with SQL_SUCCESS_WITH_INFO
    /// Returned in the same way with the fetch that reaches the last row.
    std::vector<OdbcRecord> fetch_records{};
    bool no_data = false; ///< the call returns SQL_NO_DATA, as for a statement that changes no row
    bool fails = false;   ///< the call that would return it fails, with its records
    /// The columns of a result with given cells: 'n' is a whole number, 't' a text of at most 20 characters.
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

/// How a parameter marker was bound when its statement was run. The numbers are those of ODBC.
struct OdbcParameter {
    int direction = 0;
    int c_type = 0;
    int sql_type = 0;
    std::size_t size = 0;
    int digits = 0;
    OdbcCell value{}; ///< the input value; numbers as text
};

/// The state of the fake. There is one for the process, since ODBC's functions have no other context.
struct OdbcCounting {
    std::vector<OdbcResult> results;   ///< every statement returns these, in order
    std::vector<OdbcResult> catalogue; ///< every catalogue function returns these; if empty, `results`
    std::vector<OdbcCell> output;      ///< the output values of a statement's markers after its last result
    std::vector<OdbcParameter> parameters; ///< the bound markers of the last statement that was run

    /// The number of the call that fails, from 1; 0 if no call fails. Calls that free handles or read records
    /// are not counted.
    std::size_t failing_call = 0;
    std::size_t calls = 0;       ///< calls so far
    std::string failed_function; ///< the name of the function that has failed
    std::size_t fetches = 0;     ///< calls that fetched rows

    std::size_t open_handles = 0;
    std::size_t most_handles = 0; ///< the largest number of open handles
    std::size_t open_connections = 0;
    /// Violations of the order of calls: a parent freed before its child, a handle freed twice and so on.
    std::vector<std::string> violations;
    std::string driver_name = "fake.so";   ///< as the connection reports it
    std::vector<OdbcRecord> login_records; ///< returned with a login that succeeds
    bool connection_dead = false;          ///< as the connection reports it
    std::string last_connection_string;
    std::string last_statement;
    std::string last_catalogue; ///< the pattern of the last call of the parameters' catalogue
};

OdbcCounting& Counting();
/// Sets the state to its initial values.
void ResetCounting();

} // namespace fakes
