// A development server for one test, started on a free port and with a new folder. Linux only.
#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

namespace fakes {

/// Owns the server's process and its folder; the destructor ends the one and deletes the other. The server
/// has one login: sa, with the password "Test-1".
class DevServer {
  public:
    /// Throws std::runtime_error if the server is not ready after a minute.
    DevServer();
    /// Starts on a copy of the folder of a stopped server, which takes a quarter of the time of an empty
    /// folder.
    explicit DevServer(const std::filesystem::path& model);
    DevServer(const DevServer&) = delete;
    DevServer& operator=(const DevServer&) = delete;
    ~DevServer();

    /// The name in a connection string, "127.0.0.1,port".
    std::string Name() const { return "127.0.0.1," + std::to_string(port_); }
    int Port() const { return port_; }
    /// A folder for the test beside the server's root, deleted with the server.
    const std::filesystem::path& Folder() const { return folder_; }
    /// Ends the server in order and waits for its end.
    void Stop();
    /// Kills the server. May be called from any thread, but only once after each start.
    void Kill();
    /// Starts the server again after Stop or Kill, with its data and on a new port.
    void StartAgain();

  private:
    void Prepare();
    void StartAndWait();
    void End(int signal_number);
    int Start(const std::filesystem::path& logins);

    std::filesystem::path folder_;
    pid_t process_ = 0;
    int port_ = 0;
};

} // namespace fakes
