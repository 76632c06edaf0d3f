// Reads and answers the few messages of the resolution protocol. See browser.h.
#include "devserver/tds/browser.h"

#include "devserver/tds/bytes.h"
#include "devserver/tds/server_version.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::tds {

namespace {

constexpr std::uint8_t kBroadcastAll = 0x02;
constexpr std::uint8_t kAll = 0x03;
constexpr std::uint8_t kOneInstance = 0x04;
constexpr std::uint8_t kAnswer = 0x05;
/// A request is at most a byte and an instance's name of 32 bytes with its NUL.
constexpr std::size_t kLongestRequest = 64;
constexpr std::string_view kDefaultInstance = "MSSQLSERVER";

std::string_view HostOf(std::string_view server_name) {
    return server_name.substr(0, server_name.find('\\'));
}

std::string_view InstanceOf(std::string_view server_name) {
    const std::size_t slash = server_name.find('\\');
    return slash == std::string_view::npos ? kDefaultInstance : server_name.substr(slash + 1);
}

std::string Description(const BrowserEntry& entry) {
    return "ServerName;" + std::string(HostOf(entry.server_name)) + ";InstanceName;" +
           std::string(InstanceOf(entry.server_name)) + ";IsClustered;No;Version;" +
           std::to_string(kServerMajor) + "." + std::to_string(kServerMinor) + "." +
           std::to_string(kServerBuild) + ".0;tcp;" + std::to_string(entry.port) + ";;";
}

system::SocketHandle DatagramsOn(std::uint16_t port) {
    try {
        return system::DatagramsOnLoopback(port);
    } catch (const system::SocketError& error) {
        throw std::runtime_error("cannot answer as the browser on UDP 127.0.0.1:" + std::to_string(port) +
                                 ": " + error.what());
    }
}

} // namespace

std::optional<std::string> BrowserAnswer(std::string_view request, const BrowserEntry& entry) {
    if (request.empty()) {
        return std::nullopt;
    }
    const auto kind = static_cast<std::uint8_t>(request.front());
    const bool asks_all = (kind == kAll || kind == kBroadcastAll) && request.size() == 1;
    // Some clients omit the NUL after the name.
    const std::string_view name = request.substr(1, request.find('\0', 1) - 1);
    if (!asks_all && !(kind == kOneInstance && AsciiEqual(name, InstanceOf(entry.server_name)))) {
        return std::nullopt;
    }
    const std::string text = Description(entry);
    std::string answer;
    AppendByte(answer, kAnswer);
    AppendLe(answer, static_cast<std::uint16_t>(text.size()));
    return answer + text;
}

Browser::Browser(BrowserEntry entry, std::uint16_t port)
    : entry_(std::move(entry)), handle_(DatagramsOn(port)), thread_([this] { Run(); }) {}

Browser::~Browser() {
    wake_.Wake();
    thread_.join();
}

void Browser::Run() const {
    while (system::WaitReadable(handle_, &wake_.handle(), std::nullopt) != system::Readable::Second) {
        const std::optional<system::Datagram> request = system::ReceiveDatagram(handle_, kLongestRequest);
        if (!request) {
            continue;
        }
        if (const std::optional<std::string> answer = BrowserAnswer(request->bytes, entry_)) {
            system::SendDatagram(handle_, *answer, request->sender_port);
        }
    }
}

} // namespace devsql::tds
