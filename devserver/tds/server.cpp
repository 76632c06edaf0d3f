// A thread for each client. See server.h.
#include "devserver/tds/server.h"

#include <algorithm>
#include <optional>
#include <system_error>
#include <thread>
#include <utility>

#include "devserver/tds/connection.h"

namespace devsql::tds {

namespace {

/// Clients beyond the limit that get an error at the same time; further clients are closed without one.
constexpr std::size_t kRefusedAtATime = 32;

} // namespace

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
    std::atomic<bool> ended = false;
    Connection connection;
    std::thread thread; ///< last, since it uses the members above
};

Server::Server(Engine& engine, const ServerOptions& options)
    : engine_(engine), options_(options), listener_(options.port) {}

Server::~Server() = default;

void Server::Run() {
    while (std::optional<Socket> socket = listener_.Accept()) {
        Serve(std::move(*socket));
    }
    for (const std::unique_ptr<Client>& client : clients_) {
        client->connection.Stop();
    }
    clients_.clear();
}

void Server::Stop() {
    listener_.Wake();
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
    (*silent)->connection.Stop();
    clients_.erase(silent); // Waits for its thread, which has nothing more to do.
    return true;
}

} // namespace devsql::tds
