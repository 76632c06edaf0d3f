// The calls that POSIX and Winsock share. The differences are in native_sockets.h, which the build takes from
// the folder of the system.
#include "devserver/system/sockets.h"

#include "native_sockets.h"

namespace devsql::system {
namespace {

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

/// The socket calls take the addresses of all families as this type.
sockaddr* Generic(sockaddr_in& address) {
    return reinterpret_cast<sockaddr*>(&address);
}

SocketHandle Bound(int kind, std::uint16_t port) {
    SocketHandle socket = native::Open(kind);
    if (!socket.valid()) {
        native::Fail("socket");
    }
    sockaddr_in address = Loopback(port);
    if (bind(native::Of(socket), Generic(address), sizeof address) != 0) {
        native::Fail("bind");
    }
    return socket;
}

} // namespace

SocketHandle::~SocketHandle() {
    if (valid()) {
        native::Close(native_);
    }
}

SocketHandle ListenOnLoopback(std::uint16_t port) {
    SocketHandle socket = Bound(SOCK_STREAM, port);
    if (listen(native::Of(socket), SOMAXCONN) != 0) {
        native::Fail("listen");
    }
    return socket;
}

SocketHandle DatagramsOnLoopback(std::uint16_t port) {
    return Bound(SOCK_DGRAM, port);
}

SocketHandle SelfConnected() {
    SocketHandle socket = Bound(SOCK_DGRAM, 0);
    sockaddr_in address = Loopback(PortOf(socket));
    if (connect(native::Of(socket), Generic(address), sizeof address) != 0) {
        native::Fail("connect");
    }
    return socket;
}

std::uint16_t PortOf(const SocketHandle& socket) {
    sockaddr_in address{};
    socklen_t length = sizeof address;
    if (getsockname(native::Of(socket), Generic(address), &length) != 0) {
        native::Fail("getsockname");
    }
    return ntohs(address.sin_port);
}

std::optional<SocketHandle> AcceptClient(const SocketHandle& listener) {
    SocketHandle client = native::Accept(listener);
    if (!client.valid()) {
        return std::nullopt;
    }
    // Answers are written in whole packets; waiting for more would only cost time.
    native::SetOption(client, IPPROTO_TCP, TCP_NODELAY);
    native::SetOption(client, SOL_SOCKET, SO_KEEPALIVE);
    return client;
}

void EndSending(const SocketHandle& socket) noexcept {
    shutdown(native::Of(socket), native::kSendingEnd);
}

void EndBoth(const SocketHandle& socket) noexcept {
    shutdown(native::Of(socket), native::kBothEnds);
}

std::optional<Datagram> ReceiveDatagram(const SocketHandle& socket, std::size_t longest) {
    Datagram datagram;
    datagram.bytes.resize(longest);
    sockaddr_in sender{};
    socklen_t length = sizeof sender;
    const auto got = recvfrom(native::Of(socket), datagram.bytes.data(), native::Length(longest),
                              native::kNoWaitFlags, Generic(sender), &length);
    if (got < 0) {
        return std::nullopt;
    }
    datagram.bytes.resize(static_cast<std::size_t>(got));
    datagram.sender_port = ntohs(sender.sin_port);
    return datagram;
}

void SendDatagram(const SocketHandle& socket, std::string_view bytes, std::uint16_t port) noexcept {
    sockaddr_in address = Loopback(port);
    sendto(native::Of(socket), bytes.data(), native::Length(bytes.size()), native::kSendFlags,
           Generic(address), sizeof address);
}

} // namespace devsql::system
