// The engine that the protocol drives: the server's start and end, and the logins of clients.
#include "devserver/engine/engine.h"

#include <filesystem>
#include <stdexcept>

#include "devserver/storage/paths.h"
#include "devserver/tsql/run/function_runner.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/server/client_session.h"
#include "devserver/tsql/server/procedure_list.h"
#include "devserver/tsql/server/system_databases.h"
#include "devserver/tsql/session/server.h"

namespace devsql {
namespace {

void SendError(ResultSink& sink, const SqlError& error) {
    sink.Send({error.number(), error.severity(), error.state(), error.text(), "", 1});
}

class ServerEngine : public Engine {
  public:
    /// Throws std::runtime_error.
    explicit ServerEngine(EngineOptions options);
    ~ServerEngine() override;

    std::unique_ptr<Session> Login(const LoginRequest& request, ResultSink& sink) override;
    const std::string& ServerName() const override { return server_->name(); }

  private:
    static bool PasswordFits(const std::optional<LoginInfo>& login,
                             const std::map<std::string, std::string>& configured,
                             const LoginRequest& request);

    FunctionRunner functions_{FindSystemProcedure};
    std::unique_ptr<Server> server_;
};

ServerEngine::ServerEngine(EngineOptions options) {
    std::error_code error;
    options.root = std::filesystem::absolute(options.root);
    std::filesystem::create_directories(options.root, error);
    if (!std::filesystem::is_directory(options.root)) {
        throw std::runtime_error("the root folder " + Utf8(options.root) + " can't be made");
    }
    // It holds the data of all users and the hashes of their passwords.
    std::filesystem::permissions(options.root, std::filesystem::perms::owner_all, error);
    const std::string root = Utf8(options.root);
    try {
        CreateSystemDatabases(options);
        server_ = std::make_unique<Server>(std::move(options), functions_);
        RunBootstrap(*server_);
    } catch (const std::exception& failure) {
        throw std::runtime_error("the system databases in " + root + " can't be opened: " + failure.what());
    }
}

ServerEngine::~ServerEngine() {
    try {
        SettleFiles(server_->MasterFile());
    } catch (const std::exception&) { // The next one to open the file does it.
        return;
    }
}

bool ServerEngine::PasswordFits(const std::optional<LoginInfo>& login,
                                const std::map<std::string, std::string>& configured,
                                const LoginRequest& request) {
    for (const auto& [name, password] : configured) {
        if (Folded(name) == Folded(request.user)) {
            return password == request.password;
        }
    }
    return login && !login->password_hash.empty() && PasswordMatches(request.password, login->password_hash);
}

std::unique_ptr<Session> ServerEngine::Login(const LoginRequest& request, ResultSink& sink) {
    std::optional<LoginInfo> login;
    {
        SqliteConnection connection(server_->MasterFile());
        login = FindLogin(connection, request.user);
    }
    if (!PasswordFits(login, server_->options().logins, request)) {
        SendError(sink, ErrorOf(18456, {request.user}, 1));
        return nullptr;
    }
    auto session = std::make_unique<ClientSession>(
        *server_, ClientInfo{server_->users().NewSessionId(), login ? login->name : request.user,
                             request.host_name, request.application, request.password});
    const std::string database = !request.database.empty()           ? request.database
                                 : login && !login->database.empty() ? login->database
                                                                     : "master";
    try {
        session->Enter(database, sink);
    } catch (const SqlError&) {
        const bool default_has_gone = request.database.empty() && database != "master";
        SendError(sink, default_has_gone ? ErrorOf(4064, {}, 1) : ErrorOf(4060, {database}, 1));
        SendError(sink, ErrorOf(18456, {request.user}, 1));
        return nullptr;
    }
    const SqlError language = ErrorOf(5703, {"us_english"}, 1);
    sink.Send({5703, 0, 1, language.text(), "", 1});
    return session;
}

} // namespace

std::unique_ptr<Engine> OpenEngine(EngineOptions options) {
    return std::make_unique<ServerEngine>(std::move(options));
}

} // namespace devsql
