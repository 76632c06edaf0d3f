// The command line of the query tool: its switches, their values and the errors in them. Knows neither files
// nor servers.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace querytool {

struct Switches {
    std::string server = "localhost";
    std::optional<std::string> user;
    std::optional<std::string> password; ///< absent: from OSQLPASSWORD, or asked for
    std::string database;                ///< empty: the login's default
    std::string workstation;
    std::string input_file;  ///< empty: run `query`, or read the standard input
    std::string output_file; ///< empty: the standard output
    std::optional<std::string> query;
    bool exit_after_query = false; ///< true for -Q; after the query of -q the prompt follows
    std::string terminator = "GO"; ///< ends a batch, in any letter case
    std::string separator = " ";   ///< between the columns
    int width = 80;                ///< characters of an output line
    int header_rows = 0;           ///< rows between two headings; 0: one heading for a result, -1: no heading
    /// -m: messages of a lower severity are not shown, and all others are shown with their numbers. Absent:
    /// all messages are shown, but only errors with their numbers.
    std::optional<int> error_level;
    unsigned query_timeout = 0; ///< seconds, 0: no limit
    unsigned login_timeout = 8; ///< seconds, 0: no limit
    unsigned packet_size = 0;   ///< bytes, 0: the driver's own
    bool echo = false;
    bool no_prompts = false;
    bool stop_on_error = false;
    bool errors_to_stderr = false;   ///< -r, -r0 and -r1
    bool messages_to_stderr = false; ///< -r1 only
    bool quoted_identifiers = false;
    bool help = false;
};

struct ParsedLine {
    Switches switches;
    /// The message about the first error in the line. The switches after the error are read too, since one of
    /// them may name the output file, to which the message is written.
    std::optional<std::string> error;
};

/// `arguments` without the program's name. The value of a switch is attached to it or is the next argument.
/// An argument that begins with "-" is not taken as the value of a switch that takes text; after -P it means
/// that the password is empty. A password that begins with "-" must be attached.
ParsedLine ParseSwitches(const std::vector<std::string>& arguments);

/// The text that -? prints.
std::string HelpText();

} // namespace querytool
