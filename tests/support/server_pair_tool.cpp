// Calls the managers as the console's commands do, from a command line: the product's own command line has no
// argument for a synchronisation, for replication, or for a rename or an upgrade between databases of any
// name.
//
//   server_pair_tool SETTINGS a|b COMMAND [ARGUMENT...]
//
// SETTINGS is a file of lines "Member=value". The members are those of ServerPairSettings, and ScriptFolder.
// "a" or "b" selects the server. COMMAND is one of Commands() below. Exits with 0 if the operation succeeded,
// with 1 if it failed (the errors that the server reported are written to the terminal), and with 2 for wrong
// arguments.
#include <cstdio>
#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "admin/sql_replication_mgr.h"
#include "admin/synchronize_db_mgr.h"
#include "admin/upgrade_db_mgr.h"
#include "platform/files.h"
#include "scripts/sql_script_mgr.h"

namespace {

using Arguments = std::vector<std::string>;
using Settings = std::map<std::string, std::string>;

Settings ReadSettings(const std::string& path) {
    Settings settings;
    const std::string text = platform::ReadWholeFile(path);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        const std::string line = text.substr(at, end - at);
        if (const std::size_t sign = line.find('='); sign != std::string::npos) {
            settings[line.substr(0, sign)] = line.substr(sign + 1);
        }
        at = end + 1;
    }
    return settings;
}

struct Pair {
    Settings settings;
    bool use_server_a;

    const std::string& operator[](const char* member) const {
        static const std::string empty;
        const auto found = settings.find(member);
        return found == settings.end() ? empty : found->second;
    }
};

template <class Manager>
void Fill(Manager& manager, const Pair& pair) {
    manager.UseServerA(pair.use_server_a);
    manager.ServerA(pair["ServerA"]);
    manager.ServerB(pair["ServerB"]);
    manager.UserA(pair["UserA"]);
    manager.UserB(pair["UserB"]);
    manager.PasswordA(pair["PasswordA"]);
    manager.PasswordB(pair["PasswordB"]);
    manager.SQLDataPathA(pair["SQLDataPathA"]);
    manager.SQLDataPathB(pair["SQLDataPathB"]);
    manager.SQLUNCReplDataPathA(pair["SQLUNCReplDataPathA"]);
    manager.SQLUNCReplDataPathB(pair["SQLUNCReplDataPathB"]);
}

/// Runs an operation of a new manager, and shows the server's errors if it fails.
template <class Manager>
bool Run(const Pair& pair, const std::function<bool(Manager&)>& operation) {
    Manager manager;
    Fill(manager, pair);
    const bool result = operation(manager);
    if (!result) {
        manager.ShowDbError();
    }
    return result;
}

bool Synchronize(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CSynchronizeDbMgr>(pair, [&](kv::CSynchronizeDbMgr& manager) {
        return manager.Synchronize(arguments[0], arguments[1]);
    });
}

bool InstallReplication(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CSQLReplicationMgr>(
        pair, [&](kv::CSQLReplicationMgr& manager) { return manager.InstallReplication(arguments[0]); });
}

bool UninstallReplication(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CSQLReplicationMgr>(
        pair, [&](kv::CSQLReplicationMgr& manager) { return manager.UninstallReplication(arguments[0]); });
}

/// Prints "installed" or "not installed".
bool IsReplicationInstalled(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CSQLReplicationMgr>(pair, [&](kv::CSQLReplicationMgr& manager) {
        bool installed = false;
        const bool answered = manager.IsReplicationInstalled(arguments[0], installed);
        if (answered) {
            std::puts(installed ? "installed" : "not installed");
        }
        return answered;
    });
}

/// Makes the script of the replication procedures for the selected server and runs it there.
bool CreateReplicationProcedures(const Pair& pair, const Arguments& /*arguments*/) {
    return Run<kv::CSQLScriptMgr>(pair, [&](kv::CSQLScriptMgr& scripts) {
        scripts.ScriptFolder(pair["ScriptFolder"]);
        return scripts.CreateModifiedScript(kv::sqlCreateReplicationStoredProcedures, "") &&
               scripts.IsOSQLAvailable() &&
               scripts.ExecuteSQLScript(kv::sqlCreateReplicationStoredProcedures, "");
    });
}

/// ARGUMENTS: the old and the new name.
bool RenameDatabase(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CUpgradeDbMgr>(
        pair, [&](kv::CUpgradeDbMgr& manager) { return manager.RenameDatabase(arguments[0], arguments[1]); });
}

/// ARGUMENTS: the new database, and the old one whose data it takes over.
bool UpgradeDatabase(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CUpgradeDbMgr>(pair, [&](kv::CUpgradeDbMgr& manager) {
        return manager.UpgradeDatabase(arguments[0], arguments[1]);
    });
}

bool RemoveDatabase(const Pair& pair, const Arguments& arguments) {
    return Run<kv::CUpgradeDbMgr>(
        pair, [&](kv::CUpgradeDbMgr& manager) { return manager.RemoveDatabase(arguments[0]); });
}

struct Command {
    std::size_t arguments; ///< how many it takes
    bool (*run)(const Pair& pair, const Arguments& arguments);
};

const std::map<std::string, Command>& Commands() {
    static const std::map<std::string, Command> commands = {
        {"synchronize", {2, Synchronize}},
        {"install-replication", {1, InstallReplication}},
        {"uninstall-replication", {1, UninstallReplication}},
        {"is-replication-installed", {1, IsReplicationInstalled}},
        {"create-replication-procedures", {0, CreateReplicationProcedures}},
        {"rename-database", {2, RenameDatabase}},
        {"upgrade-database", {2, UpgradeDatabase}},
        {"remove-database", {1, RemoveDatabase}},
    };
    return commands;
}

int RunLine(const Arguments& line) {
    constexpr std::size_t kHead = 3;
    const auto command = line.size() < kHead ? Commands().end() : Commands().find(line[2]);
    const bool known = command != Commands().end() && (line[1] == "a" || line[1] == "b");
    if (!known || line.size() - kHead != command->second.arguments) {
        std::fputs("usage: server_pair_tool SETTINGS a|b COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    const Pair pair{ReadSettings(line[0]), line[1] == "a"};
    return command->second.run(pair, Arguments(line.begin() + kHead, line.end())) ? 0 : 1;
}

} // namespace

int main(int argc, char** argv) {
    try {
        return RunLine(Arguments(argv + 1, argv + argc));
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "server_pair_tool: %s\n", failure.what());
        return 1;
    }
}
