#include "devserver/tsql/linked/remote_servers.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <random>

#include "devserver/tsql/scalar/text.h"
#include "devserver/tsql/server/server.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {
namespace {

constexpr std::size_t kServerParts = 4;
constexpr std::string_view kSavepoint = "devsql_statement";

/// A name for a connection that no other one has, in any process: a session of this server that bears it is
/// the connection's other end.
std::string UniqueApplication() {
    static const unsigned process = std::random_device()();
    static std::atomic<unsigned> count = 0;
    return "devsqlserver linked server " + std::to_string(process) + "." + std::to_string(++count);
}

unsigned Seconds(const LinkedServer& server, const std::string& option, unsigned otherwise) {
    const std::string text = server.Option(option);
    unsigned seconds = 0;
    std::from_chars(text.data(), text.data() + text.size(), seconds);
    return seconds == 0 ? otherwise : seconds;
}

[[noreturn]] void RaiseMessage(const Message& message) {
    throw SqlError(message.number, message.severity, message.state, message.text);
}

} // namespace

void RemoteAnswer::Said(const Message& message) {
    constexpr std::uint8_t kFirstError = 11;
    if (message.severity >= kFirstError && !error) {
        error = message;
    }
}

void RemoteAnswer::RequireSuccess() const {
    if (error) {
        RaiseMessage(*error);
    }
}

bool RemoteServers::Means(const ast::Name& name) const {
    return name.parts.size() == kServerParts && !name.parts[0].empty() &&
           Folded(name.parts[0]) != Folded(session_.server.ServerName());
}

LinkedServer RemoteServers::Find(const std::string& name) const {
    std::optional<LinkedServer> server = FindServer(session_.connection, name);
    if (!server || server->id == 0) {
        RaiseError(7202, {name}, 2);
    }
    return *std::move(server);
}

std::string RemoteServers::Key(const std::string& name) {
    return Folded(name);
}

RemoteSource RemoteServers::SourceOf(const LinkedServer& server) const {
    constexpr unsigned kConnectSeconds = 15;
    constexpr unsigned kQuerySeconds = 600;
    LinkedLogins logins(session_.connection, session_.server.LinkedKeyFile());
    const std::optional<LinkedLogin> login = logins.Find(server.id, session_.login);
    if (!login) {
        RaiseError(7416, {}, 2);
    }
    RemoteSource source;
    source.address = server.source;
    source.provider_string = server.Option("provider string");
    source.catalog = server.Option("catalog");
    source.user = login->own ? session_.login : login->remote_user;
    source.password = login->own ? session_.password : login->password;
    source.application = UniqueApplication();
    source.connect_seconds = Seconds(server, "connect timeout", kConnectSeconds);
    source.query_seconds = Seconds(server, "query timeout", kQuerySeconds);
    return source;
}

RemoteServers::Link& RemoteServers::Connect(const LinkedServer& server) {
    const std::string key = Key(server.name);
    if (const auto found = links_.find(key); found != links_.end()) {
        return found->second;
    }
    const RemoteConnector& connect = session_.server.options().connect_remote;
    if (!connect) {
        RaiseError(7403, {server.provider}, 2);
    }
    const RemoteSource source = SourceOf(server);
    Link link;
    try {
        link.connection = connect(source);
    } catch (const RemoteFailure& failure) {
        Raise(server, failure);
    }
    for (const DatabaseUsers::SessionInfo& session : session_.server.users().Sessions()) {
        link.loopback = link.loopback || session.application == source.application;
    }
    return links_.emplace(key, std::move(link)).first->second;
}

void RemoteServers::Raise(const LinkedServer& server, const RemoteFailure& failure) {
    if (session_.cancelled) {
        throw Cancelled{};
    }
    const auto tell = [&](const std::string& text) {
        session_.Info(7412, {server.provider, server.name, text});
    };
    switch (failure.kind()) {
    case RemoteFailure::Kind::Refused:
        RaiseMessage(failure.message());
    case RemoteFailure::Kind::NoDriver:
        tell(failure.message().text);
        RaiseError(7403, {server.provider}, 2);
    case RemoteFailure::Kind::Unreachable:
        tell(failure.message().text);
        RaiseError(7303, {server.provider, server.name});
    case RemoteFailure::Kind::TimedOut:
        tell("Query timeout expired");
        RaiseError(7399, {server.provider, server.name,
                          "Execution terminated by the provider because a resource limit was reached."});
    case RemoteFailure::Kind::Lost:
        break;
    }
    tell(failure.message().text);
    RaiseError(7399, {server.provider, server.name, "The connection to the server is lost."});
}

void RemoteServers::RunOn(Link& link, const LinkedServer& server, const std::string& sql, RemoteSink& sink) {
    const auto set_running = [this](RemoteConnection* connection) {
        const std::lock_guard lock(mutex_);
        running_ = connection;
    };
    session_.CheckCancelled();
    set_running(link.connection.get());
    try {
        link.connection->Run(sql, sink);
    } catch (const RemoteFailure& failure) {
        set_running(nullptr);
        if (failure.kind() == RemoteFailure::Kind::Lost) {
            // What it had changed there in the transaction is gone.
            session_.doomed = session_.doomed || link.in_transaction;
            links_.erase(Key(server.name));
        }
        Raise(server, failure);
    } catch (...) {
        set_running(nullptr);
        throw;
    }
    set_running(nullptr);
}

void RemoteServers::Run(const LinkedServer& server, const std::string& sql, RemoteSink& sink) {
    RunOn(Connect(server), server, sql, sink);
}

std::int64_t RemoteServers::Execute(const LinkedServer& server, const std::string& sql) {
    RemoteAnswer answer;
    Run(server, sql, answer);
    answer.RequireSuccess();
    return answer.count;
}

// ------------------------------------------------------------------ transactions

void RemoteServers::Join(const LinkedServer& server) {
    Link& link = Connect(server);
    if (session_.transaction_count() == 0 || link.in_transaction) {
        return;
    }
    if (link.loopback) {
        RaiseError(3910, {}, 2);
    }
    if (session_.has_savepoints()) {
        RaiseError(3933);
    }
    Execute(server, "BEGIN TRANSACTION");
    links_.at(Key(server.name)).in_transaction = true;
}

/// An error there may have ended the transaction: then nothing of ours can be committed any more.
void RemoteServers::NoticeEnd(Link& link, const LinkedServer& server) {
    RemoteAnswer answer;
    RunOn(link, server, "SELECT @@TRANCOUNT", answer);
    if (answer.rows.size() == 1 && answer.rows[0][0] == Value(std::int64_t{0})) {
        links_.at(Key(server.name)).in_transaction = false;
        session_.doomed = true;
    }
}

void RemoteServers::Change(const LinkedServer& server, const std::function<void()>& work) {
    Join(server);
    const bool shared = links_.at(Key(server.name)).in_transaction;
    const std::string savepoint(kSavepoint);
    Execute(server, shared ? "SAVE TRANSACTION " + savepoint : "BEGIN TRANSACTION");
    try {
        work();
    } catch (const Cancelled&) {
        Forget(server.name); // With the connection goes all that it has begun.
        throw;
    } catch (const SqlError&) {
        const auto link = links_.find(Key(server.name));
        if (link != links_.end()) {
            Execute(server, "IF @@TRANCOUNT > 0 ROLLBACK TRANSACTION" + (shared ? " " + savepoint : ""));
            if (shared) {
                NoticeEnd(link->second, server);
            }
        }
        throw;
    } catch (...) {
        Forget(server.name);
        session_.doomed = session_.doomed || shared;
        throw;
    }
    if (!shared) {
        Execute(server, "COMMIT TRANSACTION");
    }
}

bool RemoteServers::InTransaction() const {
    return std::ranges::any_of(links_, [](const auto& entry) { return entry.second.in_transaction; });
}

void RemoteServers::Commit() {
    std::vector<std::string> names;
    for (const auto& [name, link] : links_) {
        if (link.in_transaction) {
            names.push_back(name);
        }
    }
    for (const std::string& name : names) {
        Execute(Find(name), "COMMIT TRANSACTION");
        links_.at(name).in_transaction = false;
    }
}

void RemoteServers::Rollback() noexcept {
    for (auto link = links_.begin(); link != links_.end();) {
        // A connection that goes takes its transaction back; a server that is gone has done so.
        link = link->second.in_transaction ? links_.erase(link) : std::next(link);
    }
}

void RemoteServers::Release() {
    std::erase_if(links_, [](const auto& entry) { return !entry.second.in_transaction; });
}

void RemoteServers::Cancel() {
    const std::lock_guard lock(mutex_);
    if (running_ != nullptr) {
        running_->Cancel();
    }
}

} // namespace devsql
