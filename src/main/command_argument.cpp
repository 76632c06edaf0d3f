// Looks for arguments in the raw command line.
#include "main/command_argument.h"

#include "text/text.h"

namespace kv {
namespace {

constexpr auto kNotFound = std::string::npos;

/// Returns the position of "/" and the text or, if the line does not contain that, of "-" and the text;
/// kNotFound if it contains neither.
std::size_t FindPrefixed(const std::string& line, const std::string& text) {
    const auto slash = text::FindIgnoringCase(line, "/" + text);
    return slash != kNotFound ? slash : text::FindIgnoringCase(line, "-" + text);
}

/// True if the argument at `at` has a blank or an end of the line on both sides. `name_length` is without the
/// "/".
bool StandsAlone(const std::string& line, std::size_t at, std::size_t name_length) {
    if (at != 0 && line[at - 1] != ' ') {
        return false;
    }
    const auto after = at + 1 + name_length;
    return after == line.size() || line[after] == ' ';
}

/// Returns the value that begins at `begin`, without its quotes; empty if there is no value.
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
    piece = text::Trim(piece);
    if (!piece.empty() && piece.front() == '"') {
        piece.remove_prefix(1);
    }
    if (!piece.empty() && piece.back() == '"') {
        piece.remove_suffix(1);
    }
    return std::string(text::Trim(piece));
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
    // A second search, which may find another place than the one that was checked above.
    const auto with_blank = FindPrefixed(CommandLine, row.Name + ' ');
    if (with_blank != kNotFound) {
        row.Value = ValueAt(CommandLine, with_blank + 1 + row.Name.size() + 1);
    }
}

} // namespace kv
