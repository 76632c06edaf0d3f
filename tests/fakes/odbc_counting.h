// A driver manager without a driver, linked in place of the system's: counts the handles that are open, fails
// the call that a test names, and answers every statement with the results that the test lays down.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
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

/// A result: no column at all, or a number, a text of at most 20 characters and, if it is long, a long text.
struct OdbcResult {
    bool columns = true;
    bool with_long_column = false;
    std::size_t rows = 0;
    std::int64_t row_count = -1;
    std::size_t long_size = 0;         ///< characters of each long text
    std::vector<OdbcRecord> records{}; ///< come with it, by SQL_SUCCESS_WITH_INFO
    bool fails = false;                ///< the call that should give it fails, with its records
};

/// What the fake holds. One for the process, since ODBC's functions know no other place.
struct OdbcCounting {
    std::vector<OdbcResult> results; ///< of each statement, in order

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
    std::string last_connection_string;
    std::string last_statement;
};

OdbcCounting& Counting();
/// Forgets everything.
void ResetCounting();

} // namespace fakes
