// Opens connections to linked servers, runs batches on them, and commits or rolls back their transactions.
#include "devserver/tsql/linked/remote_servers.h"

#include <algorithm>
#include <atomic>
#include <charconv>
#include <random>

#include "devserver/engine/cancelled.h"
#include "devserver/tsql/scalar/required.h"
#include "devserver/tsql/scalar/sql_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

constexpr std::size_t kServerParts = 4;
constexpr std::string_view kSavepoint = "devsql_statement";

/// An application name that no other connection has, in any process. A session of this server with that name
/// is the other end of the connection: the linked server is this server.
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
           Folded(name.parts[0]) != Folded(owner_.server_name());
}

LinkedServer RemoteServers::Find(const std::string& name) const {
    LinkedServer server = Required(FindServer(owner_.connection(), name), 7202, {name}, 2);
    RaiseIf(server.id == 0, 7202, {name}, 2);
    return server;
}

std::string RemoteServers::Key(const std::string& name) {
    return Folded(name);
}

RemoteSource RemoteServers::SourceOf(const LinkedServer& server) const {
    constexpr unsigned kConnectSeconds = 15;
    constexpr unsigned kQuerySeconds = 600;
    const LinkedLogin login = Required(owner_.Logins().Find(server.id, owner_.login()), 7416, {}, 2);
    RemoteSource source;
    source.address = server.source;
    source.provider_string = server.Option("provider string");
    source.catalog = server.Option("catalog");
    source.user = login.own ? owner_.login() : login.remote_user;
    source.password = login.own ? owner_.password() : login.password;
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
    const RemoteConnector& connect = owner_.connector();
    RaiseIf(!connect, 7403, {server.provider}, 2);
    const RemoteSource source = SourceOf(server);
    Link link;
    try {
        link.connection = connect(source);
    } catch (const RemoteFailure& failure) {
        RaiseRemote(server, failure);
    }
    link.loopback = owner_.HasSession(source.application);
    return links_.emplace(key, std::move(link)).first->second;
}

void RemoteServers::RaiseRemote(const LinkedServer& server, const RemoteFailure& failure) {
    owner_.CheckCancelled();
    const auto tell = [&](const std::string& text) {
        owner_.Inform(7412, {server.provider, server.name, text});
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
    owner_.CheckCancelled();
    set_running(link.connection.get());
    try {
        link.connection->Run(sql, sink);
    } catch (const RemoteFailure& failure) {
        set_running(nullptr);
        if (failure.kind() == RemoteFailure::Kind::Lost) {
            // The changes that the transaction has made at that server are lost.
            if (link.in_transaction) {
                owner_.DoomTransaction();
            }
            links_.erase(Key(server.name));
        }
        RaiseRemote(server, failure);
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
    if (!owner_.InTransaction() || link.in_transaction) {
        return;
    }
    RaiseIf(link.loopback, 3910, {}, 2);
    RaiseIf(owner_.HasSavepoints(), 3933);
    Execute(server, "BEGIN TRANSACTION");
    links_.at(Key(server.name)).in_transaction = true;
}

/// An error at the other server may have ended the transaction there. It cannot be committed here then
/// either.
void RemoteServers::NoticeEnd(Link& link, const LinkedServer& server) {
    RemoteAnswer answer;
    RunOn(link, server, "SELECT @@TRANCOUNT", answer);
    if (answer.rows.size() == 1 && answer.rows[0][0] == Value(std::int64_t{0})) {
        links_.at(Key(server.name)).in_transaction = false;
        owner_.DoomTransaction();
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
        Forget(server.name); // Closing the connection rolls back what it began.
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
        if (shared) {
            owner_.DoomTransaction();
        }
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
        // Closing the connection rolls its transaction back, also at a server that has ended.
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
