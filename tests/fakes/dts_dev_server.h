// A development server for one test: started on a free port in a fresh folder, then stopped and deleted.
#pragma once

#include <filesystem>
#include <string>

#include <sys/types.h>

namespace fakes {

/// One login: sa, with the password "Test-1".
class DevServer {
  public:
    /// Throws std::runtime_error when the server is not ready after a minute.
    DevServer();
    /// Starts on a copy of a stopped server's folder, which takes a quarter of the time of an empty one.
    explicit DevServer(const std::filesystem::path& model);
    DevServer(const DevServer&) = delete;
    DevServer& operator=(const DevServer&) = delete;
    ~DevServer();

    /// "127.0.0.1,port", as a connection string names it.
    std::string Name() const { return "127.0.0.1," + std::to_string(port_); }
    int Port() const { return port_; }
    /// A folder for the test beside the server's root, deleted with the server.
    const std::filesystem::path& Folder() const { return folder_; }
    void Stop();
    /// Kills the server. To be called once for each start, from any thread.
    void Kill();
    /// Starts the server again after Stop or Kill, with the data that it left and on a new port.
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
