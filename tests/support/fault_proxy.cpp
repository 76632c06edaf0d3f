// Reads the packets of TDS only as far as it must: their kind, their length and the text of a batch.
#include "support/fault_proxy.h"

#include <array>
#include <chrono>
#include <fstream>
#include <optional>
#include <stdexcept>
#include <utility>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace support {
namespace {

// The header of a TDS packet: its size, the kinds of messages (byte 0), and the flag of the last packet (byte
// 1).
constexpr std::size_t kHeaderSize = 8;
constexpr unsigned char kBatch = 0x01;
constexpr unsigned char kCall = 0x03;
constexpr unsigned char kAttention = 0x06;
constexpr unsigned char kLogin = 0x10;
constexpr unsigned char kEndOfMessage = 0x01;
constexpr std::chrono::milliseconds kSlow{50};
constexpr int kPollMilliseconds = 50; ///< how often a link checks whether the proxy is being destroyed

/// Owns a socket.
class Socket {
  public:
    explicit Socket(int fd) : fd_(fd) {}
    Socket(Socket&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    Socket& operator=(Socket&&) = delete;
    ~Socket() {
        if (fd_ >= 0) {
            close(fd_);
        }
    }
    int Get() const { return fd_; }
    /// Closing the socket will reset the connection instead of ending it in order.
    void ResetWhenClosed() const {
        const linger at_once{1, 0};
        setsockopt(fd_, SOL_SOCKET, SO_LINGER, &at_once, sizeof at_once);
    }

    /// False if the other end is closed.
    bool Send(const std::string& bytes) const {
        for (std::size_t at = 0; at < bytes.size();) {
            const ssize_t sent = send(fd_, bytes.data() + at, bytes.size() - at, MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            at += static_cast<std::size_t>(sent);
        }
        return true;
    }

  private:
    int fd_;
};

sockaddr_in Loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// One end of a link, with the received bytes that have not been used yet.
struct End {
    explicit End(Socket taken) : socket(std::move(taken)) {}

    /// Reads the bytes that have arrived. False if the connection is closed.
    bool Read() {
        std::array<char, 65536> buffer{};
        const ssize_t count = recv(socket.Get(), buffer.data(), buffer.size(), 0);
        if (count <= 0) {
            return false;
        }
        pending.append(buffer.data(), static_cast<std::size_t>(count));
        return true;
    }

    /// Takes a complete message with all its packets; nothing if it is not complete yet.
    std::optional<std::string> TakeMessage() {
        std::size_t at = 0;
        while (pending.size() >= at + kHeaderSize) {
            const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(pending[at + i]); };
            const bool last = (byte(1) & kEndOfMessage) != 0;
            const std::size_t length = std::size_t{byte(2)} << 8U | byte(3);
            if (length < kHeaderSize || pending.size() < at + length) {
                return std::nullopt;
            }
            at += length;
            if (last) {
                std::string message = pending.substr(0, at);
                pending.erase(0, at);
                return message;
            }
        }
        return std::nullopt;
    }

    Socket socket;
    std::string pending;
};

unsigned char KindOf(const std::string& message) {
    return static_cast<unsigned char>(message.front());
}

/// The text of a batch: the low byte of each UTF-16 unit, because the statements of the tests are ASCII.
std::string TextOf(const std::string& message) {
    std::string body;
    for (std::size_t at = 0; at + kHeaderSize <= message.size();) {
        const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(message[at + i]); };
        const std::size_t length = std::size_t{byte(2)} << 8U | byte(3);
        body.append(message, at + kHeaderSize, length - kHeaderSize);
        at += length;
    }
    // From version 7.2 of TDS on, headers come before the text; they begin with their total length.
    const std::size_t headers = body.size() >= 4 ? static_cast<unsigned char>(body[0]) : 0;
    std::string text;
    for (std::size_t at = headers; at + 1 < body.size(); at += 2) {
        text += body[at];
    }
    return text;
}

void Put(std::string& bytes, std::uint64_t number, int size) {
    for (int i = 0; i < size; ++i) {
        bytes += static_cast<char>(number >> (8U * static_cast<unsigned>(i)) & 0xFFU);
    }
}

/// The answer of a server that refuses a message: an error and the end of the answer, as in TDS 7.2 and
/// later.
std::string Refusal(Fault fault, unsigned char kind) {
    struct Error {
        std::uint32_t number;
        std::uint8_t severity;
        const char* text;
    };
    constexpr Error kNoLogin{18456, 14, "Login failed for user 'sa'."};
    constexpr Error kNoRight{229, 14, "The permission was denied."};
    constexpr Error kFullDisk{1105, 17, "Could not allocate space because the filegroup is full."};
    const Error& error = fault == Fault::RefuseRoom ? kFullDisk : kind == kLogin ? kNoLogin : kNoRight;
    std::string body;
    Put(body, error.number, 4);
    Put(body, 1, 1); // state
    Put(body, error.severity, 1);
    const std::string_view text(error.text);
    Put(body, text.size(), 2);
    for (const char character : text) {
        Put(body, static_cast<unsigned char>(character), 2);
    }
    Put(body, 0, 2); // neither a server nor a procedure
    Put(body, 1, 4); // line
    std::string tokens;
    Put(tokens, 0xAA, 1); // ERROR
    Put(tokens, body.size(), 2);
    tokens += body;
    Put(tokens, 0xFD, 1); // DONE, with an error, and no rows
    Put(tokens, 2, 2);
    Put(tokens, 0, 2);
    Put(tokens, 0, 8);
    const std::size_t size = kHeaderSize + tokens.size();
    std::string message = {0x04,
                           static_cast<char>(kEndOfMessage),
                           static_cast<char>(size >> 8U),
                           static_cast<char>(size),
                           0,
                           0,
                           1,
                           0};
    return message + tokens;
}

/// The name of a message as an event; empty if it is not an event.
std::string EventOf(const std::string& message) {
    switch (KindOf(message)) {
    case kLogin:
        return "login";
    case kCall:
        return "call";
    case kBatch:
        return TextOf(message);
    default:
        return {};
    }
}

} // namespace

const char* NameOf(Fault fault) {
    constexpr std::array kNames = {"none",
                                   "slow",
                                   "cut before",
                                   "cut after",
                                   "hang before",
                                   "hang after",
                                   "kill before",
                                   "kill after",
                                   "reset before",
                                   "reset after",
                                   "kill of the program before",
                                   "kill of the program after",
                                   "kill of the program under its query tool",
                                   "no right",
                                   "full disk"};
    return kNames.at(static_cast<std::size_t>(fault));
}

/// One connection of a client and its connection to the server.
class FaultProxy::Link {
  public:
    Link(FaultProxy& proxy, Socket client, Socket server)
        : proxy_(proxy), client_(std::move(client)), server_(std::move(server)) {}

    void Run() {
        while (!proxy_.ending_ && Turn()) {
        }
    }

  private:
    /// Waits for messages and passes them on. False if the link has ended.
    bool Turn() {
        std::array<pollfd, 2> waiting = {pollfd{client_.socket.Get(), POLLIN, 0},
                                         pollfd{server_.socket.Get(), POLLIN, 0}};
        if (poll(waiting.data(), waiting.size(), kPollMilliseconds) <= 0) {
            return true;
        }
        if (waiting[1].revents != 0 && (!server_.Read() || !FromServer())) {
            return false;
        }
        if (waiting[0].revents != 0) {
            if (!client_.Read()) {
                return false;
            }
            while (const std::optional<std::string> message = client_.TakeMessage()) {
                if (!FromClient(*message)) {
                    return false;
                }
            }
        }
        return true;
    }

    bool FromServer() {
        switch (fault_) {
        case Fault::HangAfter:
            return true; // the answer stays in `pending`
        case Fault::CutAfter:
        case Fault::KillAfter:
        case Fault::ResetAfter:
        case Fault::KillProgramAfter:
            if (!server_.TakeMessage()) {
                return true;
            }
            InjectFault(); // the answer is complete, so the server has executed the message
            return false;
        default:
            return client_.socket.Send(std::exchange(server_.pending, {}));
        }
    }

    bool FromClient(const std::string& message) {
        if (KindOf(message) == kAttention) {
            return Cancelled(message);
        }
        if (const std::string event = EventOf(message); !event.empty()) {
            fault_ = proxy_.Note(event);
        }
        switch (fault_) {
        case Fault::CutBefore:
        case Fault::KillBefore:
        case Fault::ResetBefore:
        case Fault::KillProgramBefore:
            InjectFault();
            return false;
        case Fault::RefuseRight:
        case Fault::RefuseRoom:
            return client_.socket.Send(Refusal(std::exchange(fault_, Fault::None), KindOf(message)));
        case Fault::HangBefore:
            return true;
        case Fault::KillStarter:
            InjectFault();
            return server_.socket.Send(message);
        case Fault::Slow:
            std::this_thread::sleep_for(kSlow);
            [[fallthrough]];
        default:
            return server_.socket.Send(message);
        }
    }

    /// The client cancels its message, so the message or answer that the fault held back is not needed any
    /// more. After HangAfter the server has executed the message: its answer is awaited before the server is
    /// told, however long it takes.
    bool Cancelled(const std::string& message) {
        if (std::exchange(fault_, Fault::None) == Fault::HangAfter) {
            std::optional<std::string> answer = server_.TakeMessage();
            for (; !answer; answer = server_.TakeMessage()) {
                if (!server_.Read()) {
                    return false;
                }
            }
            if (!client_.socket.Send(*answer)) {
                return false;
            }
        }
        return server_.socket.Send(message);
    }

    void InjectFault() {
        if (fault_ == Fault::KillBefore || fault_ == Fault::KillAfter) {
            proxy_.kill_server_();
        } else if (fault_ == Fault::KillProgramBefore || fault_ == Fault::KillProgramAfter ||
                   fault_ == Fault::KillStarter) {
            proxy_.kill_program_();
        } else if (fault_ == Fault::ResetBefore || fault_ == Fault::ResetAfter) {
            client_.socket.ResetWhenClosed();
            server_.socket.ResetWhenClosed();
        }
    }

    FaultProxy& proxy_;
    End client_;
    End server_;
    Fault fault_ = Fault::None; ///< the fault of the latest message
};

FaultProxy::FaultProxy(int server_port, std::function<void()> kill_server)
    : kill_server_(std::move(kill_server)), server_port_(server_port) {
    listener_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address = Loopback(0);
    socklen_t size = sizeof address;
    auto* const raw = reinterpret_cast<sockaddr*>(&address);
    if (listener_ < 0 || bind(listener_, raw, size) != 0 || listen(listener_, SOMAXCONN) != 0 ||
        getsockname(listener_, raw, &size) != 0) {
        throw std::runtime_error("no port can be had for a proxy");
    }
    port_ = ntohs(address.sin_port);
    acceptor_ = std::thread([this] { Accept(); });
}

FaultProxy::~FaultProxy() {
    ending_ = true;
    acceptor_.join();
    close(listener_);
    for (std::thread& link : links_) {
        link.join();
    }
}

void FaultProxy::Accept() {
    while (!ending_) {
        pollfd waiting{listener_, POLLIN, 0};
        if (poll(&waiting, 1, kPollMilliseconds) != 1) {
            continue;
        }
        Socket client(accept4(listener_, nullptr, nullptr, SOCK_CLOEXEC));
        Socket server(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0));
        sockaddr_in address = Loopback(server_port_);
        if (connect(server.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0) {
            continue; // no server: the client's connection is closed
        }
        links_.emplace_back([this, client = std::move(client), server = std::move(server)]() mutable {
            Link(*this, std::move(client), std::move(server)).Run();
        });
    }
}

void FaultProxy::Arm(std::size_t first, std::size_t last, Fault fault) {
    const std::lock_guard lock(mutex_);
    first_armed_ = first;
    last_armed_ = last;
    armed_fault_ = fault;
    AnnounceHang();
}

std::vector<std::string> FaultProxy::Events() const {
    const std::lock_guard lock(mutex_);
    return events_;
}

void FaultProxy::Ignore(std::string text) {
    const std::lock_guard lock(mutex_);
    ignored_ = std::move(text);
}

void FaultProxy::AnnounceHangs(std::filesystem::path file) {
    const std::lock_guard lock(mutex_);
    announcement_ = std::move(file);
}

void FaultProxy::AnnounceHang() const {
    if (announcement_.empty() || (armed_fault_ != Fault::HangBefore && armed_fault_ != Fault::HangAfter)) {
        return;
    }
    if (events_.size() == first_armed_) {
        std::ofstream(announcement_, std::ios::binary) << ignored_;
    } else {
        std::filesystem::remove(announcement_);
    }
}

Fault FaultProxy::Note(std::string event) {
    const std::lock_guard lock(mutex_);
    if (event == ignored_) {
        return Fault::None;
    }
    events_.push_back(std::move(event));
    AnnounceHang();
    const std::size_t number = events_.size() - 1;
    if (number < first_armed_ || number > last_armed_ || armed_fault_ == Fault::None) {
        return Fault::None;
    }
    struck_ = true;
    return armed_fault_;
}

} // namespace support
