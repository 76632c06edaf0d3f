// POSIX sockets. Calls that a signal interrupts are made again.
#include "native_sockets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <poll.h>
#include <system_error>
#include <unistd.h>

namespace devsql::system {
namespace native {

void Fail(const char* call) {
    throw SocketError(std::string(call) + ": " + std::generic_category().message(errno));
}

SocketHandle Open(int kind) {
    SocketHandle socket(::socket(AF_INET, kind | SOCK_CLOEXEC, 0));
    if (socket.valid() && kind == SOCK_STREAM) {
        // A server that has just ended leaves its port in TIME_WAIT for a while. Without this option the next
        // server could not listen on the port.
        SetOption(socket, SOL_SOCKET, SO_REUSEADDR);
    }
    return socket;
}

void Close(SocketHandle::Native socket) noexcept {
    close(static_cast<int>(socket));
}

SocketHandle Accept(const SocketHandle& listener) {
    return SocketHandle(accept4(Of(listener), nullptr, nullptr, SOCK_CLOEXEC));
}

void SetOption(const SocketHandle& socket, int level, int option) noexcept {
    const int on = 1;
    setsockopt(Of(socket), level, option, &on, sizeof on);
}

} // namespace native

Readable WaitReadable(const SocketHandle& first, const SocketHandle* second,
                      std::optional<std::chrono::milliseconds> timeout) {
    using Clock = std::chrono::steady_clock;
    const Clock::time_point deadline = Clock::now() + timeout.value_or(std::chrono::milliseconds(0));
    std::array<pollfd, 2> entries{pollfd{native::Of(first), POLLIN, 0},
                                  pollfd{second != nullptr ? native::Of(*second) : -1, POLLIN, 0}};
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
            native::Fail("poll");
        }
    }
}

std::size_t Receive(const SocketHandle& socket, char* buffer, std::size_t size, bool keep) {
    for (;;) {
        const ssize_t got = recv(native::Of(socket), buffer, size, keep ? MSG_PEEK : 0);
        if (got >= 0) {
            return static_cast<std::size_t>(got);
        }
        if (errno != EINTR) {
            native::Fail("recv");
        }
    }
}

std::size_t Send(const SocketHandle& socket, std::string_view bytes) {
    for (;;) {
        const ssize_t sent = send(native::Of(socket), bytes.data(), bytes.size(), native::kSendFlags);
        if (sent >= 0) {
            return static_cast<std::size_t>(sent);
        }
        if (errno != EINTR) {
            native::Fail("send");
        }
    }
}

} // namespace devsql::system
