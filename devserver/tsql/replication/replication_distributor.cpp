// Distributor, publishers, subscribers, and which database publishes.
#include <algorithm>

#include "devserver/storage/databases.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/storage/publications.h"
#include "devserver/tsql/linked/remote_values.h"
#include "devserver/tsql/replication/replication_procedures.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/session/server.h"

namespace devsql {

namespace embedded { // The .sql files of this folder.
extern const std::string_view kAddAgentJob;
extern const std::string_view kDropAgentJob;
} // namespace embedded

void AddAgentJob(SystemCall& call, const std::string& name, const std::string& category) {
    call.Run(embedded::kAddAgentJob, {name, category});
}

void DropAgentJob(SystemCall& call, const std::string& name) {
    call.Run(embedded::kDropAgentJob, {name});
}

namespace {

constexpr const char* kDistributor = "repl_distributor";
constexpr const char* kDistributionOption = "DISTRIBUTOR"; ///< option of a distribution database
constexpr const char* kDistributionDb = "distribution db"; ///< option of a publisher's server
constexpr const char* kMadeHere = "made by replication";   ///< option of a server that replication has added

SqliteConnection& Connection(SystemCall& call) {
    return call.session().connection();
}

void Save(SystemCall& call, const LinkedServer& server) {
    call.session().transactions().Write("main", [&] { SaveServer(Connection(call), server); });
}

/// The row of the server; a new one if it is not listed.
LinkedServer ServerRow(SystemCall& call, const std::string& name) {
    if (std::optional<LinkedServer> known = FindServer(Connection(call), name)) {
        return *std::move(known);
    }
    LinkedServer server;
    server.name = name;
    server.product = "SQL Server";
    server.provider = "SQLOLEDB";
    server.source = name;
    server.options[kMadeHere] = "true";
    return server;
}

/// Saves a server that has lost a role. Removes its row if replication added it and no role is left.
void DropRole(SystemCall& call, const LinkedServer& server) {
    const bool none = !server.publisher && !server.subscriber && !server.distributor;
    if (none && server.Is(kMadeHere)) {
        call.session().transactions().Write("main", [&] { RemoveServer(Connection(call), server.id); });
    } else {
        Save(call, server);
    }
}

std::vector<std::string> DistributionDatabases(SystemCall& call) {
    std::vector<std::string> names;
    for (const DatabaseInfo& info : ListDatabases(Connection(call))) {
        if (info.Option(kDistributionOption)) {
            names.push_back(info.name);
        }
    }
    return names;
}

/// The distributor's row in the list of servers. Raises 14071 if there is no distributor.
LinkedServer RequireDistributor(SystemCall& call) {
    return Required(FindServer(Connection(call), kDistributor), 14071);
}

std::int32_t AddDistributor(SystemCall& call) {
    const std::string name = call.Text("@distributor");
    if (const auto known = FindServer(Connection(call), kDistributor)) {
        RaiseError(14099, {known->source});
    }
    LinkedServer server = ServerRow(call, kDistributor);
    server.source = name;
    server.distributor = true;
    server.options["rpc"] = "true";
    server.options["rpc out"] = "true";
    server.options["system"] = "true";
    Save(call, server);
    return 0;
}

/// The folder with a separator at its end, of the kind that it already contains; empty stays empty.
std::string FolderPrefix(std::string folder) {
    if (!folder.empty() && !folder.ends_with('\\') && !folder.ends_with('/')) {
        folder += folder.find('/') == std::string::npos ? '\\' : '/';
    }
    return folder;
}

void SetOption(SystemCall& call, const DatabaseInfo& info, std::string_view option, bool on) {
    call.session().transactions().Write(
        "main", [&] { StoreOption(Connection(call), info.id, option, on ? "ON" : "OFF"); });
}

std::int32_t AddDistributionDb(SystemCall& call) {
    RequireDistributor(call);
    const std::string name = call.Text("@database");
    std::optional<DatabaseInfo> info = FindDatabase(Connection(call), name);
    RaiseIf(info && info->Option(kDistributionOption), 14119, {name});
    if (!info) {
        std::string sql = "CREATE DATABASE " + BracketName(name);
        const std::string data = FolderPrefix(call.Text("@data_folder"));
        const std::string log = FolderPrefix(call.Text("@log_folder"));
        const auto file = [&](const std::string& given, const std::string& otherwise) {
            return given.empty() ? otherwise : given;
        };
        if (!data.empty()) {
            sql += " ON (NAME = " + BracketName(name) +
                   ", FILENAME = " + RemoteText(data + file(call.Text("@data_file"), name + ".MDF")) + ")";
        }
        if (!data.empty() && !log.empty()) {
            sql += " LOG ON (NAME = " + BracketName(name + "_log") +
                   ", FILENAME = " + RemoteText(log + file(call.Text("@log_file"), name + ".LDF")) + ")";
        }
        call.Run(sql);
        info = FindDatabase(Connection(call), name);
        if (!info) { // CREATE DATABASE has reported the reason.
            return 1;
        }
    }
    SetOption(call, *info, kDistributionOption, true);
    AddAgentJob(call, "Distribution clean up: " + name, "REPL-Distribution Cleanup");
    AddAgentJob(call, "Agent history clean up: " + name, "REPL-History Cleanup");
    return 0;
}

std::int32_t AddDistPublisher(SystemCall& call) {
    RequireDistributor(call);
    const std::string name = call.Text("@distribution_db");
    const DatabaseInfo info = Required(FindDatabase(Connection(call), name), 14117, {name});
    RaiseIf(!info.Option(kDistributionOption), 14117, {name});
    LinkedServer server = ServerRow(call, call.Text("@publisher"));
    server.publisher = true;
    server.options[kDistributionDb] = info.name;
    server.options["working directory"] = call.Text("@working_directory");
    Save(call, server);
    return 0;
}

void DropDistributionDatabase(SystemCall& call, const std::string& name) {
    DropAgentJob(call, "Distribution clean up: " + name);
    DropAgentJob(call, "Agent history clean up: " + name);
    std::optional<DatabaseInfo> info = FindDatabase(Connection(call), name);
    SetOption(call, *info, kDistributionOption, false);
    call.Run("DROP DATABASE " + BracketName(name));
}

std::int32_t DropDistributor(SystemCall& call) {
    const LinkedServer distributor =
        Required(FindServer(Connection(call), kDistributor), 14114, {call.session().server().name()});
    const std::vector<std::string> databases = DistributionDatabases(call);
    RaiseIf(!databases.empty() && call.Int("@no_checks") == 0, 14121, {distributor.source});
    for (const DatabaseInfo& info : ListDatabases(Connection(call))) {
        if (info.Option("PUBLISHED")) {
            UnpublishDatabase(call, info.name);
        }
    }
    for (LinkedServer server : ListServers(Connection(call))) {
        if (server.publisher) {
            server.publisher = false;
            server.options.erase(kDistributionDb);
            DropRole(call, server);
        }
    }
    for (const std::string& name : databases) {
        DropDistributionDatabase(call, name);
    }
    call.session().transactions().Write("main", [&] { RemoveServer(Connection(call), distributor.id); });
    return 0;
}

std::int32_t AddSubscriber(SystemCall& call) {
    const std::string name = call.Text("@subscriber");
    LinkedServer server = ServerRow(call, name);
    RaiseIf(server.subscriber, 14040, {name});
    server.subscriber = true;
    server.options["rpc"] = "true";
    Save(call, server);
    if (call.IsNull("@login")) {
        return 0;
    }
    LinkedLogins logins(Connection(call), call.session().server().LinkedKeyFile());
    const int id = FindServer(Connection(call), name)->id;
    call.session().transactions().Write("main", [&] {
        logins.Save(id, {"", false, call.Text("@login"), call.Text("@password")});
    });
    return 0;
}

std::int32_t ReplicationDbOption(SystemCall& call) {
    const std::string name = call.Text("@dbname");
    const DatabaseInfo info = Required(FindDatabase(Connection(call), name), 15010, {name});
    const std::string option = AsciiUpper(call.Text("@optname"));
    RaiseIf(ListHas("MERGE PUBLISH,SUBSCRIBE,SYNC WITH BACKUP", option), 40517,
            {"sp_replicationdboption '" + call.Text("@optname") + "'"});
    RaiseIf(option != "PUBLISH", 14137, {call.Text("@optname")});
    const std::string value = AsciiUpper(TrimTrailingBlanks(call.Text("@value")));
    RaiseIf(value != "TRUE" && value != "FALSE", 14148, {"@value"});
    const bool on = value == "TRUE";
    RaiseIf(on && (!FindServer(Connection(call), kDistributor) || DistributionDatabases(call).empty()),
            20028);
    if (!on) {
        UnpublishDatabase(call, info.name);
    }
    SetOption(call, info, "PUBLISHED", on);
    return 0;
}

constexpr SystemProcedure kProcedures[] = {
    {"sp_adddistributor", AddDistributor},     {"sp_adddistributiondb", AddDistributionDb},
    {"sp_adddistpublisher", AddDistPublisher}, {"sp_dropdistributor", DropDistributor},
    {"sp_addsubscriber", AddSubscriber},       {"sp_replicationdboption", ReplicationDbOption},
};

} // namespace

std::span<const SystemProcedure> DistributorProcedures() {
    return kProcedures;
}

} // namespace devsql
