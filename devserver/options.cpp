// The arguments as one table. See options.h.
#include "devserver/options.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <fstream>

#include "devserver/system/file_rights.h"
#include "devserver/tds/browser.h"

#ifndef DEVSQLSERVER_VERSION
#error "the build gives the version"
#endif

namespace devsql {

namespace {

/// The most characters in the name of an instance, as in SQL Server's setup.
constexpr std::size_t kLongestInstance = 16;

std::uint16_t ParsePort(const char* argument, const std::string& text) {
    std::uint16_t port = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, port);
    if (text.empty() || error != std::errc{} || stopped != end) {
        throw UsageError(std::string(argument) + ": \"" + text + "\" is no port from 0 to 65535");
    }
    return port;
}

void TakeRoot(ProgramOptions& options, const std::string& value) {
    options.engine.root = value;
}

void TakePort(ProgramOptions& options, const std::string& value) {
    options.port = ParsePort("--port", value);
}

void TakeLogins(ProgramOptions& options, const std::string& value) {
    options.logins_file = value;
}

void TakeName(ProgramOptions& options, const std::string& value) {
    if (value.find('\\') != std::string::npos) {
        throw UsageError("--name: \"" + value + "\" is no name of a computer; --instance names the instance");
    }
    // The option --instance may come before --name.
    const std::string& known = options.engine.server_name;
    const std::size_t slash = known.find('\\');
    options.engine.server_name = value + (slash == std::string::npos ? "" : known.substr(slash));
}

void TakeInstance(ProgramOptions& options, const std::string& value) {
    const auto fits = [](unsigned char c) {
        return std::isalnum(c) != 0 || c == '_' || c == '$' || c == '#';
    };
    const auto first = static_cast<unsigned char>(value.front());
    if (value.size() > kLongestInstance || !std::all_of(value.begin(), value.end(), fits) ||
        (std::isalpha(first) == 0 && first != '_')) {
        throw UsageError("--instance: \"" + value +
                         "\" is no name of an instance: at most 16 letters, digits, \"_\", \"$\", \"#\", "
                         "beginning with a letter or \"_\"");
    }
    options.engine.server_name += "\\" + value;
}

void TakeBrowser(ProgramOptions& options, const std::string&) {
    options.browser_port = options.browser_port.value_or(tds::kBrowserPort);
}

void TakeBrowserPort(ProgramOptions& options, const std::string& value) {
    options.browser_port = ParsePort("--browser-port", value);
}

void TakeDrive(ProgramOptions& options, const std::string& value) {
    if (value.size() < 3 || std::isalpha(static_cast<unsigned char>(value[0])) == 0 || value[1] != '=') {
        throw UsageError("--drive: \"" + value + "\" is not a letter, \"=\" and a folder");
    }
    const char letter = static_cast<char>(std::toupper(static_cast<unsigned char>(value[0])));
    if (!options.engine.drives.emplace(std::string(1, letter), value.substr(2)).second) {
        throw UsageError(std::string("--drive: ") + letter + " is given twice");
    }
}

/// One argument of the command line. `take` checks its value and stores it in the options; it throws
/// UsageError.
struct Argument {
    const char* name;
    bool required;
    bool repeats; ///< may be given more than once
    bool has_value;
    void (*take)(ProgramOptions& options, const std::string& value);
};

constexpr std::array<Argument, 8> kArguments{{
    {"--root", true, false, true, TakeRoot},
    {"--port", true, false, true, TakePort},
    {"--instance", false, false, true, TakeInstance},
    {"--logins", true, false, true, TakeLogins},
    {"--drive", false, true, true, TakeDrive},
    {"--browser", false, false, false, TakeBrowser},
    {"--browser-port", false, false, true, TakeBrowserPort},
    {"--name", false, false, true, TakeName},
}};

bool Contains(const std::vector<std::string>& texts, const std::string& text) {
    return std::find(texts.begin(), texts.end(), text) != texts.end();
}

const Argument& FindArgument(const std::string& name) {
    const auto* const found = std::find_if(kArguments.begin(), kArguments.end(),
                                           [&](const Argument& argument) { return name == argument.name; });
    if (found == kArguments.end()) {
        throw UsageError("unknown argument \"" + name + "\"");
    }
    return *found;
}

} // namespace

ProgramOptions ParseArguments(const std::vector<std::string>& arguments) {
    ProgramOptions options;
    if (Contains(arguments, "--help") || Contains(arguments, "--version")) {
        options.action = Contains(arguments, "--help") ? Action::Help : Action::Version;
        return options;
    }
    std::vector<std::string> seen;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const Argument& argument = FindArgument(arguments[i]);
        if (!argument.repeats && Contains(seen, argument.name)) {
            throw UsageError(std::string(argument.name) + " is given twice");
        }
        if (argument.has_value && (i + 1 == arguments.size() || arguments[i + 1].empty())) {
            throw UsageError(std::string(argument.name) + " needs a value");
        }
        argument.take(options, argument.has_value ? arguments[++i] : std::string());
        seen.emplace_back(argument.name);
    }
    for (const Argument& argument : kArguments) {
        if (argument.required && !Contains(seen, argument.name)) {
            throw UsageError(std::string(argument.name) + " is missing");
        }
    }
    return options;
}

std::map<std::string, std::string> ParseLogins(std::istream& lines, const std::string& file_name) {
    std::map<std::string, std::string> logins;
    std::string line;
    for (int number = 1; std::getline(lines, line); ++number) {
        if (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        if (line.find_first_not_of(" \t") == std::string::npos || line.front() == '#') {
            continue;
        }
        const std::size_t colon = line.find(':');
        const std::string where = file_name + ", line " + std::to_string(number) + ": ";
        if (colon == std::string::npos || colon == 0) {
            throw UsageError(where + "not a name, a colon and a password");
        }
        if (!logins.emplace(line.substr(0, colon), line.substr(colon + 1)).second) {
            throw UsageError(where + "the login \"" + line.substr(0, colon) + "\" is there twice");
        }
    }
    return logins;
}

std::map<std::string, std::string> ReadLogins(const std::filesystem::path& file) {
    std::ifstream lines(file);
    if (!lines || std::filesystem::is_directory(file)) {
        throw UsageError("--logins: cannot read " + file.string());
    }
    if (system::OthersHaveRights(file)) {
        throw UsageError("--logins: " + file.string() +
                         " holds passwords and others than its owner have rights to it; take them away");
    }
    return ParseLogins(lines, file.string());
}

std::string HelpText() {
    return R"(usage: devsqlserver --root DIR --port N [--instance NAME] --logins FILE [--drive X=DIR ...] [--browser]
                    [--browser-port N] [--name NAME]

A development server: it speaks TDS 7.1 to 7.4 on 127.0.0.1 and understands the T-SQL that installation
scripts use. It is not SQL Server; it is made for trying, rehearsing and testing, and refuses what it does
not know. It is for no production data.

  --root DIR        holds the system databases; made if it is absent
  --port N          the TCP port on 127.0.0.1; 0 takes a free one
  --instance NAME   the server is called COMPUTER\NAME (@@SERVERNAME); without it, COMPUTER
  --logins FILE     a line name:password for each login; lines that begin with # are passed over; refused where
                    others than its owner may read it
  --drive X=DIR     the folder that stands for the drive X: in the paths that clients write
  --browser         answers as SQL Browser on UDP port 1434, so that clients find the port by the instance's name
  --browser-port N  the same on another port; 0 takes a free one
  --name NAME       the computer's name in the server's name; DEVSQLSERVER without it
  --help            shows this text
  --version         shows the version

It prints "devsqlserver: ready on 127.0.0.1:N" when it takes connections. SIGTERM or SIGINT, on Windows Ctrl-C or
closing its console, ends it.
)";
}

std::string VersionText() {
    return std::string("devsqlserver ") + DEVSQLSERVER_VERSION + " (a development server, not SQL Server)\n";
}

} // namespace devsql
