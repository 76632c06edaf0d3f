// A lock is a socket bound to an abstract name: only one process can bind it, no file is made, and the name
// is free again when the process ends.
#include "platform/named_lock.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <functional>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "platform/linux/descriptor.h"

namespace platform {
namespace {

class SocketLock : public NamedLock {
  public:
    explicit SocketLock(Descriptor socket) : socket_(std::move(socket)) {}

  private:
    Descriptor socket_;
};

/// Returns the socket's abstract name: a NUL and `name`. The length is limited, so of a long name the
/// beginning and a hash of the whole are used.
std::string AbstractName(const std::string& name) {
    constexpr std::size_t kMost = sizeof(sockaddr_un::sun_path) - 1;
    if (name.size() <= kMost) {
        return '\0' + name;
    }
    const std::string sum = std::to_string(std::hash<std::string>{}(name));
    return '\0' + name.substr(0, kMost - sum.size()) + sum;
}

[[noreturn]] void Fail() {
    throw std::system_error(errno, std::generic_category(), "a lock could not be made");
}

} // namespace

std::unique_ptr<NamedLock> TryLock(const std::string& name) {
    Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (socket.Get() < 0) {
        Fail();
    }
    const std::string path = AbstractName(name);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::copy(path.begin(), path.end(), std::begin(address.sun_path));
    const auto length = static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + path.size());
    if (::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), length) == 0) {
        return std::make_unique<SocketLock>(std::move(socket));
    }
    if (errno != EADDRINUSE) {
        Fail();
    }
    return nullptr;
}

} // namespace platform
