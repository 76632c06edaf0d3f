// POSIX's socket calls by the names that sockets.cpp has for what the systems do differently. Known to the
// files of this service alone.
#pragma once

#include <arpa/inet.h>
#include <cstddef>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "devserver/system/sockets.h"

namespace devsql::system::native {

/// A client that goes while it is written to is an error of that write, not a signal to the process.
inline constexpr int kSendFlags = MSG_NOSIGNAL;
inline constexpr int kNoWaitFlags = MSG_DONTWAIT;
inline constexpr int kSendingEnd = SHUT_WR;
inline constexpr int kBothEnds = SHUT_RDWR;

inline int Of(const SocketHandle& socket) {
    return static_cast<int>(socket.get());
}
/// What the calls count bytes in.
inline std::size_t Length(std::size_t size) {
    return size;
}

/// The call's own reason, as SocketError.
[[noreturn]] void Fail(const char* call);
/// A socket of IPv4 that is ready to be bound; no valid one where the system refuses.
SocketHandle Open(int kind);
void Close(SocketHandle::Native socket) noexcept;
/// No valid one where there is no client, or no socket for it.
SocketHandle Accept(const SocketHandle& listener);
void SetOption(const SocketHandle& socket, int level, int option) noexcept;

} // namespace devsql::system::native
