// A server with the fake engine on a free port. It runs as long as the object exists.
#pragma once

#include <memory>
#include <sys/socket.h>
#include <thread>
#include <utility>

#include "devserver/tds/server.h"
#include "devserver/tests/tds/client.h"
#include "devserver/tests/tds/fake_engine.h"

namespace devsql::fakes {

class RunningServer {
  public:
    explicit RunningServer(tds::ServerOptions options = {})
        : server_(engine, options), thread_([this] { server_.Run(); }) {}
    ~RunningServer() { Stop(); }
    RunningServer(const RunningServer&) = delete;
    RunningServer& operator=(const RunningServer&) = delete;

    std::uint16_t Port() const { return server_.port(); }
    TdsClient Connect() const { return TdsClient::Connect(server_.port()); }
    /// A client that has logged in.
    TdsClient LoggedIn(const LoginFields& fields = {}) const {
        TdsClient client = Connect();
        client.LogIn(fields);
        return client;
    }
    void Stop() {
        server_.Stop();
        if (thread_.joinable()) {
            thread_.join();
        }
    }
    /// Waits until no session is open; false after a minute.
    bool WaitForNoSession() const {
        for (int i = 0; i < 6000 && engine.script.open_sessions != 0; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return engine.script.open_sessions == 0;
    }

    FakeEngine engine;

  private:
    tds::Server server_;
    std::thread thread_;
};

/// Two sockets that are connected with each other.
inline std::pair<tds::Socket, tds::Socket> SocketPair() {
    int ends[2] = {-1, -1};
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends) != 0) {
        throw std::runtime_error("no socket pair");
    }
    return {tds::Socket(system::SocketHandle(ends[0])), tds::Socket(system::SocketHandle(ends[1]))};
}

} // namespace devsql::fakes
