// POSIX sockets.
#include "devserver/system/sockets.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>

namespace devsql::system {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char* call) {
    throw SocketError(std::string(call) + ": " + std::generic_category().message(errno));
}

int Of(const SocketHandle& socket) {
    return static_cast<int>(socket.get());
}

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// The socket calls take every family's address under this one type.
sockaddr* Generic(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

SocketHandle Bound(int kind, std::uint16_t port) {
    SocketHandle socket(::socket(AF_INET, kind | SOCK_CLOEXEC, 0));
    if (!socket.valid()) {
        Fail("socket");
    }
    if (kind == SOCK_STREAM) {
        // A server that was just stopped leaves the port in TIME_WAIT; without this its successor could not
        // start.
        const int on = 1;
        setsockopt(Of(socket), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    }
    sockaddr_in address = Loopback(port);
    if (bind(Of(socket), Generic(address), sizeof address) != 0) {
        Fail("bind");
    }
    return socket;
}

} // namespace

SocketHandle::~SocketHandle() {
    if (valid()) {
        close(static_cast<int>(native_));
    }
}

SocketHandle ListenOnLoopback(std::uint16_t port) {
    SocketHandle socket = Bound(SOCK_STREAM, port);
    if (listen(Of(socket), SOMAXCONN) != 0) {
        Fail("listen");
    }
    return socket;
}

SocketHandle DatagramsOnLoopback(std::uint16_t port) {
    return Bound(SOCK_DGRAM, port);
}

SocketHandle SelfConnected() {
    SocketHandle socket = Bound(SOCK_DGRAM, 0);
    sockaddr_in address = Loopback(PortOf(socket));
    if (connect(Of(socket), Generic(address), sizeof address) != 0) {
        Fail("connect");
    }
    return socket;
}

std::uint16_t PortOf(const SocketHandle& socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (getsockname(Of(socket), Generic(address), &length) != 0) {
        Fail("getsockname");
    }
    return ntohs(address.sin_port);
}

std::optional<SocketHandle> AcceptClient(const SocketHandle& listener) {
    SocketHandle client(accept4(Of(listener), nullptr, nullptr, SOCK_CLOEXEC));
    if (!client.valid()) {
        return std::nullopt;
    }
    // Answers are written in whole packets; waiting for more would only cost time.
    const int on = 1;
    setsockopt(Of(client), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    setsockopt(Of(client), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
    return client;
}

Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout) {
    const Clock::time_point deadline = Clock::now() + timeout.value_or(std::chrono::milliseconds(0));
    std::array<pollfd, 2> entries{pollfd{Of(first), POLLIN, 0},
                                  pollfd{second != nullptr ? Of(*second) : -1, POLLIN, 0}};
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        const int ready = poll(entries.data(), entries.size(),
                               timeout ? static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000)) : -1);
        if (ready > 0) {
            return entries[1].revents != 0 ? Readable::Second : Readable::First;
        }
        if (ready == 0) {
            return Readable::Nothing;
        }
        if (errno != EINTR) {
            Fail("poll");
        }
    }
}

std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size) {
    for (;;) {
        const ssize_t got = recv(Of(socket), buffer, size, 0);
        if (got >= 0) {
            return static_cast<std::size_t>(got);
        }
        if (errno != EINTR) {
            Fail("recv");
        }
    }
}

std::size_t Send(const SocketHandle& socket, std::string_view bytes) {
    for (;;) {
        // A client that goes while it is written to is an error of that write, not a signal to the process.
        const ssize_t sent = send(Of(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            return static_cast<std::size_t>(sent);
        }
        if (errno != EINTR) {
            Fail("send");
        }
    }
}

void EndSending(const SocketHandle& socket) noexcept {
    shutdown(Of(socket), SHUT_WR);
}

void EndBoth(const SocketHandle& socket) noexcept {
    shutdown(Of(socket), SHUT_RDWR);
}

std::optional<Datagram> ReceiveDatagram(const SocketHandle& socket, std::size_t longest) {
    Datagram datagram;
    datagram.bytes.resize(longest);
    sockaddr_in sender{};
    socklen_t length = sizeof sender;
    const ssize_t got =
        recvfrom(Of(socket), datagram.bytes.data(), longest, MSG_DONTWAIT, Generic(sender), &length);
    if (got < 0) {
        return std::nullopt;
    }
    datagram.bytes.resize(static_cast<std::size_t>(got));
    datagram.sender_port = ntohs(sender.sin_port);
    return datagram;
}

void SendDatagram(const SocketHandle& socket, std::string_view bytes, std::uint16_t port) noexcept {
    sockaddr_in address = Loopback(port);
    sendto(Of(socket), bytes.data(), bytes.size(), MSG_NOSIGNAL, Generic(address), sizeof address);
}

} // namespace devsql::system
