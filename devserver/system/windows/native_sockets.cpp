// Sockets by Winsock. Its calls are those of POSIX, but have other types and error numbers, and Winsock must
// be started first.
#include "native_sockets.h"

#include <array>
#include <system_error>

namespace devsql::system {
namespace native {
namespace {

/// Starts Winsock once for the process. The system stops it when the process ends.
void StartWinsock() {
    static const int result = [] {
        WSADATA data{};
        return WSAStartup(MAKEWORD(2, 2), &data);
    }();
    if (result != 0) {
        throw SocketError("WSAStartup: " + std::system_category().message(result));
    }
}

} // namespace

void Fail(const char* call) {
    throw SocketError(std::string(call) + ": " + std::system_category().message(WSAGetLastError()));
}

SocketHandle Open(int kind) {
    StartWinsock();
    SocketHandle socket(static_cast<SocketHandle::Native>(::socket(AF_INET, kind, 0)));
    if (socket.valid()) {
        // Without this another program could bind the same port. SO_REUSEADDR, which POSIX needs for a port
        // in TIME_WAIT, is not needed here.
        SetOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE);
    }
    return socket;
}

void Close(SocketHandle::Native socket) noexcept {
    closesocket(static_cast<SOCKET>(socket));
}

SocketHandle Accept(const SocketHandle& listener) {
    return SocketHandle(static_cast<SocketHandle::Native>(accept(Of(listener), nullptr, nullptr)));
}

void SetOption(const SocketHandle& socket, int level, int option) noexcept {
    const BOOL on = TRUE;
    setsockopt(Of(socket), level, option, reinterpret_cast<const char*>(&on), sizeof on);
}

} // namespace native

Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout) {
    std::array<WSAPOLLFD, 2> entries{
        WSAPOLLFD{native::Of(first), POLLRDNORM, 0},
        WSAPOLLFD{second != nullptr ? native::Of(*second) : INVALID_SOCKET, POLLRDNORM, 0}};
    const ULONG count = second != nullptr ? 2 : 1;
    // At most an hour, which fits an int; -1 waits for ever.
    const auto milliseconds =
        timeout ? static_cast<int>(std::clamp<std::int64_t>(timeout->count(), 0, 3'600'000)) : -1;
    const int ready = WSAPoll(entries.data(), count, milliseconds);
    if (ready == SOCKET_ERROR) {
        native::Fail("WSAPoll");
    }
    if (ready == 0) {
        return Readable::Nothing;
    }
    return count == 2 && entries[1].revents != 0 ? Readable::Second : Readable::First;
}

std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size, bool keep) {
    const int got = recv(native::Of(socket), buffer, native::Length(size), keep ? MSG_PEEK : 0);
    if (got == SOCKET_ERROR) {
        native::Fail("recv");
    }
    return static_cast<std::size_t>(got);
}

std::size_t Send(const SocketHandle& socket, std::string_view bytes) {
    const int sent = send(native::Of(socket), bytes.data(), native::Length(bytes.size()), native::kSendFlags);
    if (sent == SOCKET_ERROR) {
        native::Fail("send");
    }
    return static_cast<std::size_t>(sent);
}

} // namespace devsql::system
