// The differences between POSIX and Winsock, for Windows: both systems' headers declare the same names, and
// sockets.cpp uses them. Only the files of this service include it.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstddef>
#include <limits>

#include "devserver/system/sockets.h"

namespace devsql::system::native {

inline constexpr int kSendFlags = 0;
/// Winsock has no such flag. The caller has waited until bytes are there.
inline constexpr int kNoWaitFlags = 0;
inline constexpr int kSendingEnd = SD_SEND;
inline constexpr int kBothEnds = SD_BOTH;

inline SOCKET Of(const SocketHandle& socket) {
    return static_cast<SOCKET>(socket.get());
}
/// The size in the type that the socket calls expect.
inline int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
}

/// Throws SocketError with the name of the failed call and the system's reason.
[[noreturn]] void Fail(const char* call);
/// Returns an IPv4 socket that is ready to be bound. `kind` is SOCK_STREAM or SOCK_DGRAM. The handle is not
/// valid if the system refuses.
SocketHandle Open(int kind);
void Close(SocketHandle::Native socket) noexcept;
/// Returns the next client. The handle is not valid if there is no client, or no socket left for it.
SocketHandle Accept(const SocketHandle& listener);
/// Switches the option on.
void SetOption(const SocketHandle& socket, int level, int option) noexcept;

} // namespace devsql::system::native
