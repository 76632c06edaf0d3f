// Parses the command line of the query tool: its switches and their values. Knows neither files nor servers.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace querytool {

/// The values of the switches, or their defaults.
struct Switches {
    std::string server = "localhost";    ///< -S
    std::optional<std::string> user;     ///< -U
    std::optional<std::string> password; ///< -P; without it the tool uses OSQLPASSWORD or asks
    std::string database;                ///< -d; empty: the login's default
    std::string workstation;             ///< -H: the name of this computer for the server
    std::string input_file;              ///< -i; empty: the tool runs `query` or reads the standard input
    std::string output_file;             ///< -o; empty: the standard output
    std::optional<std::string> query;    ///< -q or -Q
    bool exit_after_query = false;       ///< true for -Q; after the query of -q the input is read
    std::string terminator = "GO";       ///< -c: the word that ends a batch, in any letter case
    std::string separator = " ";         ///< -s: the character between the columns
    int width = 80;                      ///< -w: the number of characters of an output line
    int header_rows = 0; ///< -h: rows between two headings; 0: one heading for a result; -1: no heading
    /// -m: messages of a lower severity are not shown, and all others are shown with their numbers. Without
    /// it all messages are shown, but only errors with their numbers.
    std::optional<int> error_level;
    unsigned query_timeout = 0;      ///< -t: in seconds; 0 means no limit
    unsigned login_timeout = 8;      ///< -l: in seconds; 0 means no limit
    unsigned packet_size = 0;        ///< -a: in bytes; 0 means the driver's default
    bool echo = false;               ///< -e: the input lines are written to the output
    bool no_prompts = false;         ///< -n: no prompt with the line's number
    bool stop_on_error = false;      ///< -b: the tool ends at the first error
    bool errors_to_stderr = false;   ///< -r, -r0 or -r1: errors go to the standard error channel
    bool messages_to_stderr = false; ///< -r1: messages too
    bool quoted_identifiers = false; ///< -I: double quotes enclose identifiers, not strings
    bool help = false;               ///< -?
};

/// The result of parsing a command line.
struct ParsedLine {
    Switches switches;
    /// The message about the first error in the line. The switches after the error are read too, since one of
    /// them may name the output file, to which the message is written.
    std::optional<std::string> error;
};

/// Parses the arguments; the program's name is not one of them. The value of a switch is attached to it or is
/// the next argument. An argument that begins with "-" is not taken as the value of a switch that takes text;
/// after -P it means that the password is empty. A password that begins with "-" must be attached.
ParsedLine ParseSwitches(const std::vector<std::string>& arguments);

/// Returns the text that -? prints.
std::string HelpText();

} // namespace querytool
