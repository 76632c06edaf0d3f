// The listening server: accepts clients, serves each in a thread of its own, watches their running requests,
// and ends them all. Knows nothing of the protocol.
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
    std::uint16_t port = 0;                                          ///< 0 takes a free one
    std::size_t connection_limit = 200;                              ///< further clients get an error
    std::chrono::milliseconds login_time = std::chrono::seconds(30); ///< how long a client may take to log in
    /// When all places are taken, a client that has not logged in for this long gives its place to a new
    /// client.
    std::chrono::milliseconds login_grace = std::chrono::seconds(3);
};

class Server {
  public:
    /// Begins to listen. `engine` must outlive the server. Throws std::runtime_error if it cannot listen on
    /// the port.
    Server(Engine& engine, const ServerOptions& options);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    std::uint16_t port() const { return listener_.port(); }
    /// Serves clients until Stop is called. Returns when the last connection has ended.
    void Run();
    /// Makes Run end. May be called from any thread, more than once too.
    void Stop();

  private:
    struct Client;
    using Clients = std::list<std::unique_ptr<Client>>;

    /// Makes a client for the socket, or drops it if there are too many.
    void Serve(Socket socket);
    /// Cancels the running requests of clients that ask for it or have gone. Returns the time until the next
    /// look; nothing if there is no client.
    std::optional<std::chrono::milliseconds> Watch();
    /// Removes the clients whose threads have ended. Returns how many are left.
    std::size_t Reap();
    /// Ends a client that holds a place and does not log in. Returns false if there is no such client.
    bool MakeRoom();
    /// Ends these clients and removes them. A running request is cancelled again and again until it ends.
    void End(Clients::iterator first, Clients::iterator last);

    Engine& engine_;
    ServerOptions options_;
    Listener listener_;
    std::atomic<bool> stopped_ = false;
    Clients clients_; ///< used only by the thread that calls Run
};

} // namespace devsql::tds
