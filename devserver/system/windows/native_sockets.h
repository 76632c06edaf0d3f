// Winsock's calls by the names that sockets.cpp has for what the systems do differently. Known to the files
// of this service alone.
#pragma once

#include <winsock2.h>
#include <ws2tcpip.h>

#include <algorithm>
#include <cstddef>
#include <limits>

#include "devserver/system/sockets.h"

namespace devsql::system::native {

inline constexpr int kSendFlags = 0;
/// There is no flag of that kind; whoever asks has waited for bytes before.
inline constexpr int kNoWaitFlags = 0;
inline constexpr int kSendingEnd = SD_SEND;
inline constexpr int kBothEnds = SD_BOTH;

inline SOCKET Of(const SocketHandle& socket) {
    return static_cast<SOCKET>(socket.get());
}
/// What the calls count bytes in.
inline int Length(std::size_t size) {
    return static_cast<int>(std::min<std::size_t>(size, std::numeric_limits<int>::max()));
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
