// The server's start, its logins, and who uses which database.
#include "devserver/tsql/server/server.h"

#include <array>
#include <fstream>
#include <stdexcept>

#include "devserver/storage/catalogue.h"
#include "devserver/storage/linked_servers.h"
#include "devserver/storage/paths.h"
#include "devserver/storage/publications.h"
#include "devserver/tsql/catalogue/bootstrap.h"
#include "devserver/tsql/scalar/errors.h"
#include "devserver/tsql/server/client_session.h"

namespace devsql {
namespace {

/// Takes what the bootstrap's statements say, and keeps the first error.
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

} // namespace

Server::Server(EngineOptions options) : options_(std::move(options)) {
    std::error_code error;
    options_.root = std::filesystem::absolute(options_.root);
    std::filesystem::create_directories(options_.root, error);
    if (!std::filesystem::is_directory(options_.root)) {
        throw std::runtime_error("the root folder " + Utf8(options_.root) + " can't be made");
    }
    // It holds the data of all users and the hashes of their passwords.
    std::filesystem::permissions(options_.root, std::filesystem::perms::owner_all, error);
    try {
        CreateSystemDatabases();
        users_ = std::make_unique<DatabaseUsers>(MasterFile());
        RunBootstrap();
    } catch (const std::exception& failure) {
        throw std::runtime_error("the system databases in " + Utf8(options_.root) +
                                 " can't be opened: " + failure.what());
    }
}

Server::~Server() {
    try {
        SettleFiles();
    } catch (const std::exception&) { // The next one to open the file does it.
        return;
    }
}

void Server::SettleFiles() {
    SqliteConnection master(MasterFile());
    for (const DatabaseInfo& info : ListDatabases(master)) {
        std::error_code ignored;
        const std::filesystem::path& file = info.DataFile().path;
        if (std::filesystem::exists(PathOf(Utf8(file) + "-wal"), ignored) &&
            std::filesystem::exists(file, ignored) && file != MasterFile()) {
            const SqliteConnection last(file);
        }
    }
}

void Server::CreateSystemDatabases() {
    SqliteConnection connection(MasterFile());
    const bool fresh =
        !connection.Prepare("SELECT 1 FROM sqlite_master WHERE name = 'devsql_objects'").Step();
    connection.Execute("BEGIN IMMEDIATE");
    CreateDatabaseList(connection);
    CreateServerList(connection);
    CreatePublicationList(connection);
    if (fresh) {
        Catalogue(connection, "main").Create();
    }
    // tempdb holds nothing that outlives the server.
    for (const std::string_view companion : {"", "-wal", "-shm", "-journal"}) {
        std::error_code ignored;
        std::filesystem::remove(options_.root / ("tempdb.mdf" + std::string(companion)), ignored);
    }
    for (const std::string name : {"master", "tempdb", "model", "msdb"}) {
        const std::array<DatabaseFile, 2> files = {SystemFile(options_.root, name, false),
                                                   SystemFile(options_.root, name, true)};
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
        std::optional<DatabaseInfo> info = FindDatabase(connection, name);
        if (!info) {
            DatabaseInfo made;
            made.name = name;
            made.owner = "sa";
            made.files = {files.begin(), files.end()};
            made.options["RECOVERY"] = "SIMPLE";
            AddDatabase(connection, made);
        } else if (info->files[0].path != files[0].path) { // The root has been moved.
            info->files = {files.begin(), files.end()};
            UpdateDatabase(connection, *info);
        }
    }
    connection.Execute(
        "INSERT OR IGNORE INTO devsql_servers(id, name, product, provider, source) VALUES(0, " +
        QuoteText(options_.server_name) + ", 'SQL Server', 'SQLOLEDB', " + QuoteText(options_.server_name) +
        ")");
    connection.Execute("UPDATE devsql_servers SET name = " + QuoteText(options_.server_name) +
                       " WHERE id = 0");
    for (const auto& [name, password] : options_.logins) {
        const std::optional<LoginInfo> known = FindLogin(connection, name);
        SaveLogin(connection, {known ? known->name : name, "", known ? known->database : "master", true});
    }
    if (!FindLogin(connection, "sa")) {
        SaveLogin(connection, {"sa", "", "master", true});
    }
    connection.Execute("COMMIT");
}

/// The procedures and tables of msdb and master that are T-SQL, at the first start of this version.
void Server::RunBootstrap() {
    {
        SqliteConnection connection(MasterFile());
        SqliteStatement row =
            connection.Prepare("SELECT value FROM devsql_settings WHERE name = 'bootstrap'");
        if (row.Step() && row.Int(0) == kBootstrapVersion) {
            return;
        }
    }
    LoginRequest request;
    request.user = "sa";
    ClientSession session(*this, 1, request, "sa");
    BootstrapSink sink;
    for (const auto& batches : {BootstrapBatches(), HelpBatches()}) {
        for (const std::string_view batch : batches) {
            session.ExecuteBatch(batch.substr(batch.find_first_not_of('\n')), sink);
            if (!sink.error.empty()) {
                throw std::runtime_error("bootstrap: " + sink.error + " in " +
                                         std::string(batch.substr(0, 200)));
            }
        }
    }
    SqliteConnection connection(MasterFile());
    connection.Execute("INSERT OR REPLACE INTO devsql_settings VALUES('bootstrap', " +
                       std::to_string(kBootstrapVersion) + "); UPDATE devsql_objects SET shipped = 1");
    SqliteConnection msdb(options_.root / "msdb.mdf");
    msdb.Execute("UPDATE devsql_objects SET shipped = 1");
}

// ------------------------------------------------------------------ logins

bool Server::PasswordFits(SqliteConnection& connection, const LoginRequest& request) const {
    for (const auto& [name, password] : options_.logins) {
        if (Folded(name) == Folded(request.user)) {
            return password == request.password;
        }
    }
    const std::optional<LoginInfo> login = FindLogin(connection, request.user);
    return login && !login->password_hash.empty() && PasswordMatches(request.password, login->password_hash);
}

std::unique_ptr<Session> Server::Login(const LoginRequest& request, ResultSink& sink) {
    const auto send = [&](const SqlError& error) {
        sink.Send({error.number(), error.severity(), error.state(), error.text(), "", 1});
    };
    std::optional<LoginInfo> login;
    {
        SqliteConnection connection(MasterFile());
        if (!PasswordFits(connection, request)) {
            send(ErrorOf(18456, {request.user}, 1));
            return nullptr;
        }
        login = FindLogin(connection, request.user);
    }
    auto session = std::make_unique<ClientSession>(*this, users_->NewSessionId(), request,
                                                   login ? login->name : request.user);
    const std::string database = !request.database.empty()           ? request.database
                                 : login && !login->database.empty() ? login->database
                                                                     : "master";
    try {
        session->Enter(database, sink);
    } catch (const SqlError&) {
        if (request.database.empty() && database != "master") { // A default database that has gone.
            send(ErrorOf(4064, {}, 1));
        } else {
            send(ErrorOf(4060, {database}, 1));
        }
        send(ErrorOf(18456, {request.user}, 1));
        return nullptr;
    }
    const SqlError language = ErrorOf(5703, {"us_english"}, 1);
    sink.Send({5703, 0, 1, language.text(), "", 1});
    return session;
}

std::unique_ptr<Engine> OpenEngine(EngineOptions options) {
    return std::make_unique<Server>(std::move(options));
}

} // namespace devsql
