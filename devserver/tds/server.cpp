// A thread for each client, and one that listens and watches the requests of all clients. See server.h.
#include "devserver/tds/server.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "devserver/tds/connection.h"

namespace devsql::tds {

namespace {

/// The number of clients beyond the limit that are served at the same time, only to tell them the error. The
/// connections of further clients are closed without an answer.
constexpr std::size_t kRefusedAtATime = 32;
/// The time between two looks at the clients: while a request of any of them runs, and while none runs. So a
/// request is cancelled at most this long after its client has asked for it.
constexpr std::chrono::milliseconds kBusyTick{20};
constexpr std::chrono::milliseconds kIdleTick{100};

} // namespace

/// A client and its thread. The destructor waits for the thread's end.
struct Server::Client {
    Client(Socket socket, Engine& engine, bool refused, std::chrono::milliseconds login_time)
        : connection(std::move(socket), engine, refused, login_time), thread([this] {
              connection.Run();
              ended = true;
          }) {}
    ~Client() { thread.join(); }
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;

    const std::chrono::steady_clock::time_point since = std::chrono::steady_clock::now();
    std::atomic<bool> ended = false; ///< the thread has finished with the connection
    Connection connection;
    std::thread thread; ///< last, since it uses the members above
};

Server::Server(Engine& engine, const ServerOptions& options)
    : engine_(engine), options_(options), listener_(options.port) {}

Server::~Server() = default;

void Server::Run() {
    while (!stopped_) {
        if (std::optional<Socket> socket = listener_.Accept(Watch())) {
            Serve(std::move(*socket));
        }
    }
    End(clients_.begin(), clients_.end());
}

void Server::Stop() {
    stopped_ = true;
    listener_.Wake();
}

std::optional<std::chrono::milliseconds> Server::Watch() {
    if (Reap() == 0) {
        return std::nullopt;
    }
    bool busy = false;
    for (const std::unique_ptr<Client>& client : clients_) {
        busy = client->connection.Watch() || busy;
    }
    return busy ? kBusyTick : kIdleTick;
}

void Server::Serve(Socket socket) {
    std::size_t present = Reap();
    while (present >= options_.connection_limit && MakeRoom()) {
        --present;
    }
    if (present >= options_.connection_limit + kRefusedAtATime) {
        return;
    }
    try {
        clients_.push_back(std::make_unique<Client>(
            std::move(socket), engine_, present >= options_.connection_limit, options_.login_time));
    } catch (const std::system_error&) {
        // The system has no thread left for this client. The others go on.
        return;
    }
}

std::size_t Server::Reap() {
    clients_.remove_if([](const std::unique_ptr<Client>& client) { return client->ended.load(); });
    return clients_.size();
}

bool Server::MakeRoom() {
    const auto latest = std::chrono::steady_clock::now() - options_.login_grace;
    const auto silent = std::ranges::find_if(clients_, [&](const std::unique_ptr<Client>& client) {
        return !client->connection.logged_in() && client->since <= latest;
    });
    if (silent == clients_.end()) {
        return false;
    }
    End(silent, std::next(silent));
    return true;
}

void Server::End(Clients::iterator first, Clients::iterator last) {
    for (auto client = first; client != last; ++client) {
        (*client)->connection.Stop();
    }
    for (auto client = first; client != last; ++client) {
        while (!(*client)->ended) {
            (*client)->connection.Watch();
            std::this_thread::sleep_for(kBusyTick);
        }
    }
    clients_.erase(first, last);
}

} // namespace devsql::tds
