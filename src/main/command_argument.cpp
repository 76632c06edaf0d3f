#include "main/command_argument.h"

#include "text/text.h"

namespace kv {
namespace {

constexpr auto kNotFound = std::string::npos;

/// Where the text stands behind "/" or, if it does so nowhere, behind "-".
std::size_t FindPrefixed(const std::string& line, const std::string& text) {
    const auto slash = FindIgnoringCase(line, "/" + text);
    return slash != kNotFound ? slash : FindIgnoringCase(line, "-" + text);
}

bool StandsAlone(const std::string& line, std::size_t at, std::size_t name_length) {
    if (at != 0 && line[at - 1] != ' ') {
        return false;
    }
    const auto behind = at + 1 + name_length;
    return behind == line.size() || line[behind] == ' ';
}

/// The value that begins at `begin`, its quotes taken off.
std::string ValueAt(const std::string& line, std::size_t begin) {
    const bool at_end = begin >= line.size();
    if (at_end || line[begin] == '/') {
        return {};
    }
    const char delimiter = line[begin] == '"' ? '"' : ' ';
    const auto end = line.find(delimiter, begin + 1);
    std::string_view piece = std::string_view(line).substr(begin);
    if (end != kNotFound) {
        piece = piece.substr(0, end - begin + 1);
    }
    piece = Trim(piece);
    if (!piece.empty() && piece.front() == '"') {
        piece.remove_prefix(1);
    }
    if (!piece.empty() && piece.back() == '"') {
        piece.remove_suffix(1);
    }
    return std::string(Trim(piece));
}

} // namespace

CommandArguments KnownArguments() {
    CommandArguments arguments;
    arguments[kHelp] = {"help", false, false, {}};
    arguments[kScriptFolder] = {"scriptfolder", true, false, {}};
    arguments[kServer] = {"server", true, false, {}};
    arguments[kUser] = {"user", true, false, {}};
    arguments[kPassword] = {"password", true, false, {}};
    arguments[kSqlDataPath] = {"sqldatapath", true, false, {}};
    arguments[kInstallDb] = {"installdb", false, false, {}};
    arguments[kInstallSp] = {"installsp", false, false, {}};
    arguments[kInstallDts] = {"installdts", false, false, {}};
    arguments[kUpgradeDb] = {"upgradedb", false, false, {}};
    return arguments;
}

void ParseCommandArgument(const std::string& CommandLine, std::size_t Index, CommandArguments& Arguments) {
    CommandArgument& row = Arguments.at(Index);
    row.Value.clear();
    row.Found = false;

    const auto at = FindPrefixed(CommandLine, row.Name);
    if (at == kNotFound || !StandsAlone(CommandLine, at, row.Name.size())) {
        return;
    }
    row.Found = true;
    if (!row.HasValue) {
        return;
    }
    // A search of its own: it may end at another place than the one that was checked above.
    const auto with_blank = FindPrefixed(CommandLine, row.Name + ' ');
    if (with_blank != kNotFound) {
        row.Value = ValueAt(CommandLine, with_blank + 1 + row.Name.size() + 1);
    }
}

} // namespace kv
