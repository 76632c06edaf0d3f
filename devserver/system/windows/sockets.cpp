// Winsock. Its calls are those of POSIX with other types, other names for errors, and a start of its own.
#include "devserver/system/sockets.h"

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <array>
#include <limits>
#include <system_error>

namespace devsql::system {

namespace {

using Clock = std::chrono::steady_clock;

[[noreturn]] void Fail(const char* call) {
    throw SocketError(std::string(call) + ": " + std::system_category().message(WSAGetLastError()));
}

SOCKET Of(const SocketHandle& socket) {
    return static_cast<SOCKET>(socket.get());
}

/// The calls count in int.
int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

/// Once for the process; the system undoes it with its end.
void StartWinsock() {
    static const int result = [] {
        WSADATA data{};
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    if (result != 0) {
        throw SocketError("WSAStartup: " + std::system_category().message(result));
    }
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

void SetOption(const SocketHandle& socket, int level, int option) {
    const BOOL on = TRUE;
    setsockopt(Of(socket), level, option, reinterpret_cast<const char*>(&on), sizeof on);
}

SocketHandle Bound(int kind, std::uint16_t port) {
    StartWinsock();
    SocketHandle socket(static_cast<SocketHandle::Native>(::socket(AF_INET, kind, 0)));
    if (!socket.valid()) {
        Fail("socket");
    }
    // Without this another program could take the port as well; a port in TIME_WAIT is free here anyway.
    SetOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE);
    sockaddr_in address = Loopback(port);
    if (bind(Of(socket), Generic(address), sizeof address) != 0) {
        Fail("bind");
    }
    return socket;
}

} // namespace

SocketHandle::~SocketHandle() {
    if (valid()) {
        closesocket(static_cast<SOCKET>(native_));
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
    int length = sizeof address;
    if (getsockname(Of(socket), Generic(address), &length) != 0) {
        Fail("getsockname");
    }
    return ntohs(address.sin_port);
}

std::optional<SocketHandle> AcceptClient(const SocketHandle& listener) {
    SocketHandle client(static_cast<SocketHandle::Native>(accept(Of(listener), nullptr, nullptr)));
    if (!client.valid()) {
        return std::nullopt;
    }
    // Answers are written in whole packets; waiting for more would only cost time.
    SetOption(client, IPPROTO_TCP, TCP_NODELAY);
    SetOption(client, SOL_SOCKET, SO_KEEPALIVE);
    return client;
}

Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout) {
    std::array<WSAPOLLFD, 2> entries{
        WSAPOLLFD{Of(first), POLLRDNORM, 0},
        WSAPOLLFD{second != nullptr ? Of(*second) : INVALID_SOCKET, POLLRDNORM, 0}};
    const ULONG count = second != nullptr ? 2 : 1;
    const auto milliseconds =
        timeout ? static_cast<int>(std::clamp<std::int64_t>(timeout->count(), 0, 3'600'000)) : -1;
    const int ready = WSAPoll(entries.data(), count, milliseconds);
    if (ready == SOCKET_ERROR) {
        Fail("WSAPoll");
    }
    if (ready == 0) {
        return Readable::Nothing;
    }
    return count == 2 && entries[1].revents != 0 ? Readable::Second : Readable::First;
}

std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size) {
    const int got = recv(Of(socket), buffer, Length(size), 0);
    if (got == SOCKET_ERROR) {
        Fail("recv");
    }
    return static_cast<std::size_t>(got);
}

std::size_t Send(const SocketHandle& socket, std::string_view bytes) {
    const int sent = send(Of(socket), bytes.data(), Length(bytes.size()), 0);
    if (sent == SOCKET_ERROR) {
        Fail("send");
    }
    return static_cast<std::size_t>(sent);
}

void EndSending(const SocketHandle& socket) noexcept {
    shutdown(Of(socket), SD_SEND);
}

void EndBoth(const SocketHandle& socket) noexcept {
    shutdown(Of(socket), SD_BOTH);
}

std::optional<Datagram> ReceiveDatagram(const SocketHandle& socket, std::size_t longest) {
    Datagram datagram;
    datagram.bytes.resize(longest);
    sockaddr_in sender{};
    int length = sizeof sender;
    const int got = recvfrom(Of(socket), datagram.bytes.data(), Length(longest), 0, Generic(sender), &length);
    if (got == SOCKET_ERROR) {
        return std::nullopt;
    }
    datagram.bytes.resize(static_cast<std::size_t>(got));
    datagram.sender_port = ntohs(sender.sin_port);
    return datagram;
}

void SendDatagram(const SocketHandle& socket, std::string_view bytes, std::uint16_t port) noexcept {
    sockaddr_in address = Loopback(port);
    sendto(Of(socket), bytes.data(), Length(bytes.size()), 0, Generic(address), sizeof address);
}

} // namespace devsql::system
