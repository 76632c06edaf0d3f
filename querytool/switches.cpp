// The table of switches, from which the parser and the help text are made.
#include "querytool/switches.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace querytool {
namespace {

/// Says which argument after a switch is its value, if no value is attached to the switch.
enum class ValueRule : std::uint8_t {
    None,         ///< the switch has no value
    Text,         ///< the next argument, which must not begin with "-"
    OptionalText, ///< the same; without such an argument the value is empty
    Anything,     ///< the next argument, whatever it begins with
    Refused,      ///< the switch is not supported
};

/// Stores the value of a switch. Returns the text of an error; empty if the value is valid.
using Setter = std::string (*)(Switches&, const std::string&);

/// One switch.
struct Row {
    char letter;
    ValueRule rule;
    Setter set;
    const char* value_name;  ///< the value's name in the help
    const char* description; ///< the line in the help; for a refused switch the reason
};

template <std::string Switches::*Member>
std::string Set(Switches& switches, const std::string& value) {
    switches.*Member = value;
    return {};
}

template <std::optional<std::string> Switches::*Member>
std::string Set(Switches& switches, const std::string& value) {
    switches.*Member = value;
    return {};
}

template <bool Switches::*Member>
std::string Set(Switches& switches, const std::string&) {
    switches.*Member = true;
    return {};
}

/// Reads a whole number from `low` to `high`. Returns false if the value is not such a number.
bool ReadNumber(const std::string& value, int low, int high, int& number) {
    const char* const end = value.data() + value.size();
    const auto [stop, error] = std::from_chars(value.data(), end, number);
    return error == std::errc() && stop == end && number >= low && number <= high;
}

std::string OutOfRange(const std::string& value, int low, int high) {
    return "'" + value + "' is not a number from " + std::to_string(low) + " to " + std::to_string(high);
}

template <auto Member, int Low, int High>
std::string SetNumber(Switches& switches, const std::string& value) {
    int number = 0;
    if (!ReadNumber(value, Low, High, number)) {
        return OutOfRange(value, Low, High);
    }
    using Type = std::remove_reference_t<decltype(switches.*Member)>;
    switches.*Member = static_cast<Type>(number);
    return {};
}

template <bool ExitAfter>
std::string SetQuery(Switches& switches, const std::string& value) {
    switches.query = value;
    switches.exit_after_query = ExitAfter;
    return {};
}

std::string SetHeaderRows(Switches& switches, const std::string& value) {
    return SetNumber<&Switches::header_rows, -1, 2147483647>(switches, value);
}

std::string SetErrorLevel(Switches& switches, const std::string& value) {
    int level = 0;
    if (!ReadNumber(value, -1, 25, level)) {
        return OutOfRange(value, -1, 25);
    }
    switches.error_level = level;
    return {};
}

std::string SetSeparator(Switches& switches, const std::string& value) {
    if (value.size() != 1) {
        return "'" + value + "' is not one character";
    }
    switches.separator = value;
    return {};
}

std::string SetTerminator(Switches& switches, const std::string& value) {
    if (value.empty() || value.find_first_of(" \t") != std::string::npos) {
        return "'" + value + "' can't end a batch";
    }
    switches.terminator = value;
    return {};
}

std::string SetErrorChannel(Switches& switches, const std::string& value) {
    if (!value.empty() && value != "0" && value != "1") {
        return "'" + value + "' is neither 0 nor 1";
    }
    switches.errors_to_stderr = true;
    switches.messages_to_stderr = value == "1";
    return {};
}

constexpr std::array kRows = {
    Row{'S', ValueRule::Text, Set<&Switches::server>, "server",
        "the server: name, name\\instance or name,port"},
    Row{'U', ValueRule::Text, Set<&Switches::user>, "login", "the login"},
    Row{'P', ValueRule::OptionalText, Set<&Switches::password>, "password",
        "its password; without a value, or with a switch after it: empty"},
    Row{'d', ValueRule::Text, Set<&Switches::database>, "database", "the database to begin in"},
    Row{'H', ValueRule::Text, Set<&Switches::workstation>, "name",
        "the name of this computer for the server"},
    Row{'i', ValueRule::Text, Set<&Switches::input_file>, "file", "run the batches of this file"},
    Row{'o', ValueRule::Text, Set<&Switches::output_file>, "file", "write the output to this file"},
    Row{'q', ValueRule::Anything, SetQuery<false>, "query", "run this query, then go on at the prompt"},
    Row{'Q', ValueRule::Anything, SetQuery<true>, "query", "run this query and exit"},
    Row{'c', ValueRule::Anything, SetTerminator, "word", "the line that ends a batch, in place of GO"},
    Row{'n', ValueRule::None, Set<&Switches::no_prompts>, "", "no line numbers and prompts"},
    Row{'e', ValueRule::None, Set<&Switches::echo>, "", "write the input lines to the output"},
    Row{'h', ValueRule::Anything, SetHeaderRows, "rows", "rows between column headings; -1: no headings"},
    Row{'s', ValueRule::Anything, SetSeparator, "char", "the character between the columns"},
    Row{'w', ValueRule::Anything, SetNumber<&Switches::width, 9, 32767>, "chars", "width of an output line"},
    Row{'m', ValueRule::Anything, SetErrorLevel, "level",
        "show messages from this level on, with their numbers; -1: all"},
    Row{'b', ValueRule::None, Set<&Switches::stop_on_error>, "", "stop at the first error, with exit code 1"},
    Row{'r', ValueRule::OptionalText, SetErrorChannel, "0|1",
        "errors (1: messages too) to the error channel"},
    Row{'t', ValueRule::Anything, SetNumber<&Switches::query_timeout, 0, 65534>, "seconds",
        "time that a batch may take"},
    Row{'l', ValueRule::Anything, SetNumber<&Switches::login_timeout, 0, 65534>, "seconds",
        "time that the login may take"},
    Row{'a', ValueRule::Anything, SetNumber<&Switches::packet_size, 512, 32767>, "bytes", "size of a packet"},
    Row{'I', ValueRule::None, Set<&Switches::quoted_identifiers>, "", "double quotes enclose identifiers"},
    Row{'?', ValueRule::None, Set<&Switches::help>, "", "this text"},
    Row{'E', ValueRule::Refused, nullptr, "", "trusted connections are not supported; use -U and -P"},
    Row{'L', ValueRule::Refused, nullptr, "", "listing the servers of the network is not supported"},
    Row{'D', ValueRule::Refused, nullptr, "name", "data sources are not supported; use -S"},
    Row{'p', ValueRule::Refused, nullptr, "", "performance figures are not supported"},
    Row{'O', ValueRule::Refused, nullptr, "", "the behaviour of the older tool is not supported"},
    Row{'R', ValueRule::Refused, nullptr, "", "the client's regional settings are not supported"},
    Row{'u', ValueRule::Refused, nullptr, "", "Unicode output is not supported; it is 8-bit text"},
};

bool LooksLikeSwitch(const std::string& argument) {
    return argument.starts_with("-");
}

const Row* FindRow(char letter) {
    const auto* row = std::ranges::find(kRows, letter, &Row::letter);
    return row != kRows.end() ? row : nullptr;
}

/// Reads the arguments one after the other.
class Parser {
  public:
    explicit Parser(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    ParsedLine Run() {
        for (; at_ < arguments_.size(); ++at_) {
            TakeArgument(arguments_[at_]);
        }
        if (!parsed_.switches.input_file.empty() && parsed_.switches.query) {
            ReportError("The switch -i can't be used with -q or -Q.");
        }
        return std::move(parsed_);
    }

  private:
    void TakeArgument(const std::string& argument) {
        if (argument.size() < 2 || !LooksLikeSwitch(argument)) {
            return ReportError("'" + argument + "' is not a switch. -? lists them.");
        }
        const Row* const row = FindRow(argument[1]);
        if (row == nullptr) {
            return ReportError("The switch -" + argument.substr(1) + " is not known. -? lists the switches.");
        }
        const std::string name = std::string("-") + row->letter;
        if (row->rule == ValueRule::Refused) {
            return ReportError("The switch " + name + " is refused: " + row->description + ".");
        }
        std::string value = argument.substr(2);
        if (row->rule == ValueRule::None && !value.empty()) {
            return ReportError("The switch " + argument + " is not known: " + name + " takes no value.");
        }
        if (value.empty() && !TakeNextAsValue(row->rule, value)) {
            return ReportError("The switch " + name + " needs a value (" + row->value_name + ").");
        }
        if (const std::string error = row->set(parsed_.switches, value); !error.empty()) {
            ReportError("The switch " + name + ": " + error + ".");
        }
    }

    /// Takes the next argument as the value if the rule allows it. Returns false if the switch needs a value
    /// and has none.
    bool TakeNextAsValue(ValueRule rule, std::string& value) {
        if (rule == ValueRule::None) {
            return true;
        }
        const bool found = at_ + 1 < arguments_.size() &&
                           (rule == ValueRule::Anything || !LooksLikeSwitch(arguments_[at_ + 1]));
        if (found) {
            value = arguments_[++at_];
        }
        return found || rule == ValueRule::OptionalText;
    }

    /// Keeps the text if it is the first error.
    void ReportError(std::string text) {
        if (!parsed_.error) {
            parsed_.error = std::move(text);
        }
    }

    const std::vector<std::string>& arguments_;
    std::size_t at_ = 0;
    ParsedLine parsed_;
};

} // namespace

ParsedLine ParseSwitches(const std::vector<std::string>& arguments) {
    return Parser(arguments).Run();
}

std::string HelpText() {
    std::string text = "OSQL, query tool of the Lotkeeper database manager, version " KV_VERSION "\n"
                       "usage: OSQL -S server -U login -P password [switches]\n\n";
    for (const Row& row : kRows) {
        if (row.rule == ValueRule::Refused) {
            continue;
        }
        std::string line = std::string("  -") + row.letter + " " + row.value_name;
        line.resize(std::max<std::size_t>(line.size() + 2, 16), ' ');
        text += line + row.description + "\n";
    }
    return text;
}

} // namespace querytool
