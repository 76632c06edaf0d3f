// Answers as the SQL Browser does (the SQL Server Resolution Protocol): tells by UDP on which port an
// instance listens, so that clients reach it as HOST\INSTANCE. Knows nothing of TDS.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

#include "devserver/tds/socket.h"

namespace devsql::tds {

inline constexpr std::uint16_t kBrowserPort = 1434;

/// What there is to tell of an instance.
struct BrowserEntry {
    std::string server_name; ///< HOST or HOST\INSTANCE
    std::uint16_t port = 0;
};

/// The answer to one request; none to what is no request, to one for another instance, and to one for the
/// dedicated administrator connection, which this server has not: the protocol has silence for that.
std::optional<std::string> BrowserAnswer(std::string_view request, const BrowserEntry& entry);

class Browser {
  public:
    /// Answers on 127.0.0.1 from here on, until destroyed. `port` 0 takes a free one. Throws
    /// std::runtime_error when the port can't be had: one program on a machine is the browser.
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
    std::thread thread_; ///< begins when all above stands
};

} // namespace devsql::tds
