// The command line of the query tool: its switches, their values, what is refused. Knows neither files nor
// servers.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace querytool {

struct Switches {
    std::string server = "localhost";
    std::optional<std::string> user;
    std::optional<std::string> password; ///< absent: OSQLPASSWORD, or ask
    std::string database;                ///< empty: the login's default
    std::string workstation;
    std::string input_file;  ///< empty: the query, or the standard input
    std::string output_file; ///< empty: the standard output
    std::optional<std::string> query;
    bool exit_after_query = false; ///< -Q; with -q the prompt follows
    std::string terminator = "GO"; ///< ends a batch, in any letter case
    std::string separator = " ";   ///< between the columns
    int width = 80;                ///< characters of an output line
    int header_rows = 0;           ///< rows between two headings; 0: one heading for a result, -1: no heading
    std::optional<int> error_level; ///< -m: messages below it are not shown, from it on with their numbers
    unsigned query_timeout = 0;     ///< seconds, 0: no limit
    unsigned login_timeout = 8;     ///< seconds, 0: no limit
    unsigned packet_size = 0;       ///< bytes, 0: the driver's own
    bool echo = false;
    bool no_prompts = false;
    bool stop_on_error = false;
    bool errors_to_stderr = false;   ///< -r: errors
    bool messages_to_stderr = false; ///< -r1: messages too
    bool quoted_identifiers = false;
    bool help = false;
};

struct ParsedLine {
    Switches switches;
    /// The first error of the line. The other switches are read all the same, so that the message can go to
    /// the output file that the line names.
    std::optional<std::string> error;
};

/// `arguments` without the program's name. The value of a switch is attached to it or is the next argument.
/// An argument that begins with "-" is not taken as the value of a switch that takes text; after -P it means
/// that the password is empty. A password that begins with "-" must be attached.
ParsedLine ParseSwitches(const std::vector<std::string>& arguments);

/// The text that -? prints.
std::string HelpText();

} // namespace querytool
