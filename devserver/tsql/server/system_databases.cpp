// Makes the files and the lists of the system databases, and runs the T-SQL that belongs in master and msdb.
#include "devserver/tsql/server/system_databases.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "devserver/storage/catalogue.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/storage/paths.h"
#include "devserver/storage/publications.h"
#include "devserver/tsql/catalogue/embedded_sql.h"
#include "devserver/tsql/server/client_session.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

/// Keeps the first error of the bootstrap's statements.
class BootstrapSink : public ResultSink {
  public:
    void Columns(const std::vector<Column>&) override {}
    void Row(const std::vector<Value>&) override {}
    void StatementDone(Command, std::optional<std::int64_t>, bool) override {}
    void Send(const Message& message) override {
        if (message.severity > 10 && error.empty()) {
            error = std::to_string(message.number) + " " + message.text + " (line " +
                    std::to_string(message.line) + ")";
        }
    }
    void DatabaseChanged(const std::string&, const std::string&) override {}
    void OutputParameter(const std::string&, const Type&, const Value&) override {}
    void ReturnStatus(std::int32_t) override {}

    std::string error;
};

DatabaseFile SystemFile(const std::filesystem::path& root, const std::string& name, bool log) {
    DatabaseFile file;
    file.id = log ? 2 : 1;
    file.name = log ? name + "log" : name == "master" ? "master" : name + "dev";
    file.path = root / (name + (log ? "log.ldf" : ".mdf"));
    file.client_path = Utf8(file.path);
    file.log = log;
    file.file_group = log ? "" : "PRIMARY";
    file.size = "2048 KB";
    file.max_size = "Unlimited";
    file.growth = "10%";
    return file;
}

/// tempdb holds nothing that outlives the server.
void RemoveTempdb(const std::filesystem::path& root) {
    for (const std::string_view companion : {"", "-wal", "-shm", "-journal"}) {
        std::error_code ignored;
        std::filesystem::remove(root / ("tempdb.mdf" + std::string(companion)), ignored);
    }
}

void CreateFiles(const std::string& name, const std::array<DatabaseFile, 2>& files) {
    if (name != "master" && !std::filesystem::exists(files[0].path)) {
        SqliteConnection file(files[0].path);
        if (name == "tempdb") { // Nothing in it is kept, so nothing waits for the disk.
            file.Execute("PRAGMA synchronous=OFF");
        }
        file.Execute("BEGIN IMMEDIATE");
        Catalogue(file, "main").Create();
        file.Execute("COMMIT");
    }
    if (!std::filesystem::exists(files[1].path)) {
        std::ofstream(files[1].path) << "Log file of a database of the development server.\r\n";
    }
}

/// Enters the database into master's list, or its files where the root has been moved.
void ListSystemDatabase(SqliteConnection& master, const std::string& name,
                        const std::array<DatabaseFile, 2>& files) {
    std::optional<DatabaseInfo> info = FindDatabase(master, name);
    if (!info) {
        DatabaseInfo made;
        made.name = name;
        made.owner = "sa";
        made.files = {files.begin(), files.end()};
        made.options["RECOVERY"] = "SIMPLE";
        AddDatabase(master, made);
    } else if (info->files[0].path != files[0].path) {
        info->files = {files.begin(), files.end()};
        UpdateDatabase(master, *info);
    }
}

void ListOwnServer(SqliteConnection& master, const std::string& name) {
    const std::string quoted = QuoteText(name);
    master.Execute("INSERT OR IGNORE INTO devsql_servers(id, name, product, provider, source) VALUES(0, " +
                   quoted + ", 'SQL Server', 'SQLOLEDB', " + quoted + ")");
    master.Execute("UPDATE devsql_servers SET name = " + quoted + " WHERE id = 0");
}

void ListLogins(SqliteConnection& master, const std::map<std::string, std::string>& logins) {
    for (const auto& [name, password] : logins) {
        const std::optional<LoginInfo> known = FindLogin(master, name);
        SaveLogin(master, {known ? known->name : name, "", known ? known->database : "master", true});
    }
    if (!FindLogin(master, "sa")) {
        SaveLogin(master, {"sa", "", "master", true});
    }
}

bool BootstrapIsCurrent(const std::filesystem::path& master) {
    SqliteConnection connection(master);
    SqliteStatement row = connection.Prepare("SELECT value FROM devsql_settings WHERE name = 'bootstrap'");
    return row.Step() && row.Int(0) == embedded::kBootstrapVersion;
}

} // namespace

void CreateSystemDatabases(const EngineOptions& options) {
    SqliteConnection master(SystemFile(options.root, "master", false).path);
    const bool fresh = !master.Prepare("SELECT 1 FROM sqlite_master WHERE name = 'devsql_objects'").Step();
    master.Execute("BEGIN IMMEDIATE");
    CreateDatabaseList(master);
    CreateServerList(master);
    CreatePublicationList(master);
    if (fresh) {
        Catalogue(master, "main").Create();
    }
    RemoveTempdb(options.root);
    for (const std::string name : {"master", "tempdb", "model", "msdb"}) {
        const std::array<DatabaseFile, 2> files = {SystemFile(options.root, name, false),
                                                   SystemFile(options.root, name, true)};
        CreateFiles(name, files);
        ListSystemDatabase(master, name, files);
    }
    ListOwnServer(master, options.server_name);
    ListLogins(master, options.logins);
    master.Execute("COMMIT");
}

void RunBootstrap(Server& server) {
    if (BootstrapIsCurrent(server.MasterFile())) {
        return;
    }
    ClientSession session(server, {1, "sa", "", "", ""});
    BootstrapSink sink;
    for (const std::string_view file :
         {embedded::kMsdbProcedures, embedded::kMasterProcedures, embedded::kDriverProcedures}) {
        for (const std::string_view batch : embedded::Batches(file)) {
            session.ExecuteBatch(batch.substr(batch.find_first_not_of('\n')), sink);
            if (!sink.error.empty()) {
                throw std::runtime_error("bootstrap: " + sink.error + " in " +
                                         std::string(batch.substr(0, 200)));
            }
        }
    }
    SqliteConnection master(server.MasterFile());
    master.Execute("INSERT OR REPLACE INTO devsql_settings VALUES('bootstrap', " +
                   std::to_string(embedded::kBootstrapVersion) + "); UPDATE devsql_objects SET shipped = 1");
    SqliteConnection msdb(server.options().root / "msdb.mdf");
    msdb.Execute("UPDATE devsql_objects SET shipped = 1");
}

void SettleFiles(const std::filesystem::path& master) {
    SqliteConnection connection(master);
    for (const DatabaseInfo& info : ListDatabases(connection)) {
        std::error_code ignored;
        const std::filesystem::path& file = info.DataFile().path;
        if (std::filesystem::exists(PathOf(Utf8(file) + "-wal"), ignored) &&
            std::filesystem::exists(file, ignored) && file != master) {
            const SqliteConnection last(file);
        }
    }
}

} // namespace devsql
