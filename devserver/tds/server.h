// The listening server: takes clients, gives each a connection, ends them all.
// Knows nothing of what they say.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <list>
#include <memory>
#include <optional>

#include "devserver/engine/engine.h"
#include "devserver/tds/socket.h"

namespace devsql::tds {

struct ServerOptions {
    std::uint16_t port = 0;             ///< 0 takes a free one
    std::size_t connection_limit = 200; ///< further clients get an error
    std::chrono::milliseconds login_time = std::chrono::seconds(30);
    /// When all places are taken, a client that has not logged in for this long gives its place to a new
    /// client.
    std::chrono::milliseconds login_grace = std::chrono::seconds(3);
};

class Server {
  public:
    /// Listens from here on. `engine` must outlive the server. Throws std::runtime_error when the port can't
    /// be had.
    Server(Engine& engine, const ServerOptions& options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::uint16_t port() const { return listener_.port(); }
    /// Serves until Stop, and comes back when the last connection has ended.
    void Run();
    /// Ends Run. May be called from any thread, once or more.
    void Stop();

  private:
    struct Client;
    using Clients = std::list<std::unique_ptr<Client>>;

    void Serve(Socket socket);
    /// Watches the clients' requests. Returns after which time that is to be repeated: nothing if there is no
    /// client.
    std::optional<std::chrono::milliseconds> Watch();
    /// Forgets the clients that are gone. Returns how many are left.
    std::size_t Reap();
    /// Ends a client that holds a place and does not log in. Returns false if there is no such client.
    bool MakeRoom();
    /// Ends these clients, also one that runs a request, and forgets them.
    void End(Clients::iterator first, Clients::iterator last);

    Engine& engine_;
    ServerOptions options_;
    Listener listener_;
    std::atomic<bool> stopped_ = false;
    Clients clients_; ///< touched by the thread in Run alone
};

} // namespace devsql::tds
