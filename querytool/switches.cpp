#include "querytool/switches.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <string_view>

namespace querytool {
namespace {

/// How a switch takes its value from the next argument.
enum class Takes : std::uint8_t {
    Nothing,
    Optional,   ///< the next argument, unless it begins with "-"; it may have no value
    Text,       ///< the next argument, unless it begins with "-"
    TextOrNone, ///< the same; without such an argument the value is empty
    Anything,   ///< the next argument, whatever it begins with
    Refused,
};

/// Applies the value. Returns what is wrong with it; empty if it is right.
using Apply = std::string (*)(Switches&, const std::string&);

struct Row {
    char letter;
    Takes takes;
    Apply apply;
    const char* value; ///< as the help names it
    const char* about; ///< for a refused switch: why
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

/// Reads a whole number within limits; false if the value is not such a number.
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
    Row{'S', Takes::Text, Set<&Switches::server>, "server", "the server: name, name\\instance or name,port"},
    Row{'U', Takes::Text, Set<&Switches::user>, "login", "the login"},
    Row{'P', Takes::TextOrNone, Set<&Switches::password>, "password",
        "its password; without a value, or with a switch after it: empty"},
    Row{'d', Takes::Text, Set<&Switches::database>, "database", "the database to begin in"},
    Row{'H', Takes::Text, Set<&Switches::workstation>, "name", "the name of this computer for the server"},
    Row{'i', Takes::Text, Set<&Switches::input_file>, "file", "run the batches of this file"},
    Row{'o', Takes::Text, Set<&Switches::output_file>, "file", "write the output to this file"},
    Row{'q', Takes::Anything, SetQuery<false>, "query", "run this query, then go on at the prompt"},
    Row{'Q', Takes::Anything, SetQuery<true>, "query", "run this query and exit"},
    Row{'c', Takes::Anything, SetTerminator, "word", "the line that ends a batch, in place of GO"},
    Row{'n', Takes::Nothing, Set<&Switches::no_prompts>, "", "no line numbers and prompts"},
    Row{'e', Takes::Nothing, Set<&Switches::echo>, "", "write the input lines to the output"},
    Row{'h', Takes::Anything, SetHeaderRows, "rows", "rows between column headings; -1: no headings"},
    Row{'s', Takes::Anything, SetSeparator, "char", "the character between the columns"},
    Row{'w', Takes::Anything, SetNumber<&Switches::width, 9, 32767>, "chars", "width of an output line"},
    Row{'m', Takes::Anything, SetErrorLevel, "level",
        "show messages from this level on, with their numbers; -1: all"},
    Row{'b', Takes::Nothing, Set<&Switches::stop_on_error>, "", "stop at the first error, with exit code 1"},
    Row{'r', Takes::Optional, SetErrorChannel, "0|1", "errors (1: messages too) to the error channel"},
    Row{'t', Takes::Anything, SetNumber<&Switches::query_timeout, 0, 65534>, "seconds",
        "time that a batch may take"},
    Row{'l', Takes::Anything, SetNumber<&Switches::login_timeout, 0, 65534>, "seconds",
        "time that the login may take"},
    Row{'a', Takes::Anything, SetNumber<&Switches::packet_size, 512, 32767>, "bytes", "size of a packet"},
    Row{'I', Takes::Nothing, Set<&Switches::quoted_identifiers>, "", "double quotes enclose identifiers"},
    Row{'?', Takes::Nothing, Set<&Switches::help>, "", "this text"},
    Row{'E', Takes::Refused, nullptr, "", "trusted connections are not supported; use -U and -P"},
    Row{'L', Takes::Refused, nullptr, "", "listing the servers of the network is not supported"},
    Row{'D', Takes::Refused, nullptr, "name", "data sources are not supported; use -S"},
    Row{'p', Takes::Refused, nullptr, "", "performance figures are not supported"},
    Row{'O', Takes::Refused, nullptr, "", "the behaviour of the older tool is not supported"},
    Row{'R', Takes::Refused, nullptr, "", "the client's regional settings are not supported"},
    Row{'u', Takes::Refused, nullptr, "", "Unicode output is not supported; it is 8-bit text"},
};

bool LooksLikeSwitch(const std::string& argument) {
    return argument.starts_with("-");
}

const Row* FindRow(char letter) {
    const auto* row = std::ranges::find(kRows, letter, &Row::letter);
    return row != kRows.end() ? row : nullptr;
}

/// Walks through the arguments.
class Parser {
  public:
    explicit Parser(const std::vector<std::string>& arguments) : arguments_(arguments) {}

    ParsedLine Run() {
        for (; at_ < arguments_.size(); ++at_) {
            TakeArgument(arguments_[at_]);
        }
        if (!parsed_.switches.input_file.empty() && parsed_.switches.query) {
            Complain("The switch -i can't be used with -q or -Q.");
        }
        return std::move(parsed_);
    }

  private:
    void TakeArgument(const std::string& argument) {
        if (argument.size() < 2 || !LooksLikeSwitch(argument)) {
            return Complain("'" + argument + "' is not a switch. -? lists them.");
        }
        const Row* const row = FindRow(argument[1]);
        if (row == nullptr) {
            return Complain("The switch -" + argument.substr(1) + " is not known. -? lists the switches.");
        }
        const std::string name = std::string("-") + row->letter;
        if (row->takes == Takes::Refused) {
            return Complain("The switch " + name + " is refused: " + row->about + ".");
        }
        std::string value = argument.substr(2);
        if (row->takes == Takes::Nothing && !value.empty()) {
            return Complain("The switch " + argument + " is not known: " + name + " takes no value.");
        }
        if (value.empty() && !NextValue(row->takes, value)) {
            return Complain("The switch " + name + " needs a value (" + row->value + ").");
        }
        if (const std::string wrong = row->apply(parsed_.switches, value); !wrong.empty()) {
            Complain("The switch " + name + ": " + wrong + ".");
        }
    }

    /// Takes the next argument as the value if the switch may have it; false if a value is missing.
    bool NextValue(Takes takes, std::string& value) {
        if (takes == Takes::Nothing) {
            return true;
        }
        const bool there = at_ + 1 < arguments_.size() &&
                           (takes == Takes::Anything || !LooksLikeSwitch(arguments_[at_ + 1]));
        if (there) {
            value = arguments_[++at_];
        }
        return there || takes == Takes::TextOrNone || takes == Takes::Optional;
    }

    /// Only the first error is reported.
    void Complain(std::string text) {
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
        if (row.takes == Takes::Refused) {
            continue;
        }
        std::string line = std::string("  -") + row.letter + " " + row.value;
        line.resize(std::max<std::size_t>(line.size() + 2, 16), ' ');
        text += line + row.about + "\n";
    }
    return text;
}

} // namespace querytool
