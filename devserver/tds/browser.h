// Answers as the SQL Browser does (the SQL Server Resolution Protocol): reports by UDP on which port an
// instance listens, so that clients reach it as HOST\INSTANCE. Knows nothing of TDS.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "devserver/tds/socket.h"

namespace devsql::tds {

/// The UDP port at which clients ask the SQL Browser.
inline constexpr std::uint16_t kBrowserPort = 1434;

/// The instance that the answers describe.
struct BrowserEntry {
    std::string server_name; ///< HOST or HOST\INSTANCE
    std::uint16_t port = 0;
};

/// Returns the answer to one request. Returns nothing, since the protocol then asks for silence, for bytes
/// that are not a request, for another instance, and for the dedicated administrator connection, which this
/// server does not have.
std::optional<std::string> BrowserAnswer(std::string_view request, const BrowserEntry& entry);

/// Answers requests in a thread of its own.
class Browser {
  public:
    /// Answers on 127.0.0.1 until the object is destroyed. `port` 0 takes a free one. Throws
    /// std::runtime_error if the port is taken: only one program on a machine can be the browser.
    Browser(BrowserEntry entry, std::uint16_t port);
    ~Browser();
    Browser(const Browser&) = delete;
    Browser& operator=(const Browser&) = delete;

    std::uint16_t port() const { return system::PortOf(handle_); }

  private:
    void Run() const;

    BrowserEntry entry_;
    system::SocketHandle handle_;
    WakeUp wake_;
    std::thread thread_; ///< last, since it uses the members above
};

} // namespace devsql::tds
