// The differences between POSIX and Winsock, for Linux: both systems' headers declare the same names, and
// sockets.cpp uses them. Only the files of this service include it.
#pragma once

#include <arpa/inet.h>
#include <cstddef>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>

#include "devserver/system/sockets.h"

namespace devsql::system::native {

/// If a client goes while it is written to, the write fails; without the flag a signal would end the process.
inline constexpr int kSendFlags = MSG_NOSIGNAL;
inline constexpr int kNoWaitFlags = MSG_DONTWAIT;
inline constexpr int kSendingEnd = SHUT_WR;
inline constexpr int kBothEnds = SHUT_RDWR;

inline int Of(const SocketHandle& socket) {
    return static_cast<int>(socket.get());
}
/// The size in the type that the socket calls expect.
inline std::size_t Length(std::size_t size) {
    return size;
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
