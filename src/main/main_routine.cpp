// The order in which arguments are parsed, and the help text.
#include "main/main_routine.h"

#include <array>

#include "main/command_argument.h"
#include "platform/files.h"

namespace kv {
namespace {

/// True for a folder and for a plain file: a file is accepted where a folder is asked for.
bool Exists(const std::string& path) {
    return platform::FolderExists(path) || platform::FileExists(path);
}

/// Looks arguments up in the line, one at a time and in the caller's order. An argument that is never parsed
/// counts as not found.
class Lookup {
  public:
    explicit Lookup(const std::string& line) : line_(line), arguments_(KnownArguments()) {}

    bool Parse(ArgumentIndex index) {
        ParseCommandArgument(line_, index, arguments_);
        return arguments_[index].Found;
    }
    bool Found(ArgumentIndex index) const { return arguments_[index].Found; }
    const std::string& Value(ArgumentIndex index) const { return arguments_[index].Value; }

  private:
    const std::string& line_;
    CommandArguments arguments_;
};

/// True if the line has a server, a user and a password; the password may be empty.
bool LoginIsComplete(const Lookup& lookup) {
    return lookup.Found(kServer) && !lookup.Value(kServer).empty() && lookup.Found(kUser) &&
           !lookup.Value(kUser).empty() && lookup.Found(kPassword);
}

void ParseInstallArguments(Lookup& lookup) {
    const bool found = lookup.Parse(kSqlDataPath);
    const std::string& data_path = lookup.Value(kSqlDataPath);
    if (!data_path.empty() && Exists(data_path) && found) {
        lookup.Parse(kInstallDb);
        lookup.Parse(kInstallSp);
    }
    lookup.Parse(kInstallDts);
}

struct HelpEntry {
    const char* option;
    const char* description;
};

// The odd wording of /upgradedb is part of the product and must not change.
constexpr std::array kHelpEntries = {
    HelpEntry{"/help", "Shows this command help information."},
    HelpEntry{"/scriptfolder", "Path to the folder with sql scripts and dts storage files."},
    HelpEntry{"/server", "The name of the sql server instance."},
    HelpEntry{"/user", "The user in the sql server instance."},
    HelpEntry{"/password", "The password for the user in the sql server instance."},
    HelpEntry{"/sqldatapath", "The sql server instance data path."},
    HelpEntry{
        "/installdb",
        "Command to install batch database (requires ScriptFolder, Server, User, Password and SQLDataPath)."},
    HelpEntry{"/installsp",
              "Command to install batch stored procedures (requires ScriptFolder, Server, User, "
              "Password and SQLDataPath)."},
    HelpEntry{"/installdts",
              "Command to install DTS packages (requires ScriptFolder, Server, User and Password)."},
    HelpEntry{"/upgradedb",
              "Command to install upgrade current batch database to newer version (requires ScriptFolder)."},
};

} // namespace

MainDecision DecideAction(const std::string& CommandLine) {
    MainDecision decision;
    if (CommandLine.empty()) {
        return decision;
    }
    Lookup lookup(CommandLine);
    if (lookup.Parse(kHelp)) {
        decision.show_help = true;
        return decision;
    }
    if (!lookup.Parse(kScriptFolder)) {
        return decision;
    }
    const std::string& script_folder = lookup.Value(kScriptFolder);
    if (script_folder.empty() || !Exists(script_folder)) {
        return decision;
    }
    lookup.Parse(kServer);
    lookup.Parse(kUser);
    lookup.Parse(kPassword);
    if (LoginIsComplete(lookup)) {
        ParseInstallArguments(lookup);
    }
    if (lookup.Parse(kUpgradeDb)) {
        decision.action = MainAction::Upgrade;
        decision.script_folder = script_folder;
        return decision;
    }
    if (!lookup.Found(kInstallDb) && !lookup.Found(kInstallSp) && !lookup.Found(kInstallDts)) {
        return decision;
    }
    decision.action = MainAction::Install;
    decision.script_folder = script_folder;
    decision.server = lookup.Value(kServer);
    decision.user = lookup.Value(kUser);
    decision.password = lookup.Value(kPassword);
    decision.sql_data_path = lookup.Value(kSqlDataPath);
    decision.install_db = lookup.Found(kInstallDb);
    // Installing the database always installs the stored procedures too.
    decision.install_sp = lookup.Found(kInstallSp) || decision.install_db;
    decision.install_dts = lookup.Found(kInstallDts);
    return decision;
}

std::string HelpText() {
    const std::string line_end = "\r\n";
    std::string text = "The following command arguments can be defined:" + line_end + line_end;
    for (const HelpEntry& entry : kHelpEntries) {
        text += entry.option + line_end + "  - " + entry.description + line_end + line_end;
    }
    text += line_end + line_end;
    text += "Example:" + line_end + line_end;
    text += R"(kvlsqldbmgr.exe /upgradedb /scriptfolder "c:\program files\orvik\server\sqlscripts")" +
            line_end + line_end;
    return text;
}

} // namespace kv
