// POSIX sockets behind socket.h.
#include "devserver/tds/socket.h"

#include <algorithm>
#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstring>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <string>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

namespace devsql::tds {

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::chrono::milliseconds kLinger{1000};
/// How long the listener rests when the system has no descriptor left for a client.
constexpr std::chrono::milliseconds kAcceptPause{50};

std::string SystemText(int error) {
    return std::generic_category().message(error);
}

/// True when something can be read before `deadline`.
bool Poll(int descriptor, Clock::time_point deadline) {
    for (;;) {
        const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now()).count();
        pollfd entry{descriptor, POLLIN, 0};
        const int ready = poll(&entry, 1, static_cast<int>(std::clamp<std::int64_t>(left, 0, 3'600'000)));
        if (ready > 0) {
            return true;
        }
        if (ready == 0) {
            return false;
        }
        if (errno != EINTR) {
            throw ConnectionLost("poll: " + SystemText(errno));
        }
    }
}

sockaddr_in Loopback(std::uint16_t port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

} // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    std::swap(descriptor_, other.descriptor_);
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (valid()) {
        close(descriptor_);
    }
}

bool Socket::WaitReadable(std::chrono::milliseconds timeout) const {
    return Poll(descriptor_.get(), Clock::now() + timeout);
}

bool Socket::ReadExactly(char* buffer, std::size_t size, std::optional<Clock::time_point> deadline) const {
    std::size_t done = 0;
    while (done < size) {
        if (deadline && !Poll(descriptor_.get(), *deadline)) {
            throw ConnectionLost("the peer was silent for too long");
        }
        const ssize_t got = recv(descriptor_.get(), buffer + done, size - done, 0);
        if (got > 0) {
            done += static_cast<std::size_t>(got);
        } else if (got == 0) {
            if (done == 0) {
                return false;
            }
            throw ConnectionLost("the peer closed in the middle of a packet");
        } else if (errno != EINTR) {
            throw ConnectionLost("recv: " + SystemText(errno));
        }
    }
    return true;
}

void Socket::Write(std::string_view bytes) const {
    while (!bytes.empty()) {
        const ssize_t sent = send(descriptor_.get(), bytes.data(), bytes.size(), MSG_NOSIGNAL);
        if (sent >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        } else if (errno != EINTR) {
            throw ConnectionLost("send: " + SystemText(errno));
        }
    }
}

void Socket::Shutdown() const {
    shutdown(descriptor_.get(), SHUT_RDWR);
}

void Socket::FinishWriting() const {
    shutdown(descriptor_.get(), SHUT_WR);
    const auto deadline = Clock::now() + kLinger;
    std::array<char, 4096> dropped{};
    while (Poll(descriptor_.get(), deadline)) {
        const ssize_t got = recv(descriptor_.get(), dropped.data(), dropped.size(), 0);
        if (got == 0 || (got < 0 && errno != EINTR) || Clock::now() >= deadline) {
            return;
        }
    }
}

Listener::Listener(std::uint16_t port)
    : descriptor_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)), wake_(eventfd(0, EFD_CLOEXEC)) {
    const std::string where = "127.0.0.1:" + std::to_string(port);
    if (!descriptor_.valid() || !wake_.valid()) {
        throw std::runtime_error("cannot make a socket: " + SystemText(errno));
    }
    // A server that was just stopped leaves the port in TIME_WAIT; without this its successor could not
    // start.
    const int on = 1;
    setsockopt(descriptor_.get(), SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address = Loopback(port);
    socklen_t length = sizeof address;
    // The socket calls take every family's address under this one type.
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (bind(descriptor_.get(), generic, length) != 0 || listen(descriptor_.get(), SOMAXCONN) != 0 ||
        getsockname(descriptor_.get(), generic, &length) != 0) {
        throw std::runtime_error("cannot listen on " + where + ": " + SystemText(errno));
    }
    port_ = ntohs(address.sin_port);
}

std::optional<Socket> Listener::Accept() const {
    for (;;) {
        std::array<pollfd, 2> entries{pollfd{descriptor_.get(), POLLIN, 0}, pollfd{wake_.get(), POLLIN, 0}};
        if (poll(entries.data(), entries.size(), -1) < 0) {
            continue;
        }
        if (entries[1].revents != 0) {
            return std::nullopt;
        }
        FileDescriptor client(accept4(descriptor_.get(), nullptr, nullptr, SOCK_CLOEXEC));
        if (!client.valid()) {
            std::this_thread::sleep_for(kAcceptPause);
            continue;
        }
        // Answers are written in whole packets; waiting for more would only cost time.
        const int on = 1;
        setsockopt(client.get(), IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
        setsockopt(client.get(), SOL_SOCKET, SO_KEEPALIVE, &on, sizeof on);
        return Socket(std::move(client));
    }
}

void Listener::Wake() const {
    const std::uint64_t one = 1;
    // The counter of a fresh eventfd takes this write in any case.
    [[maybe_unused]] const ssize_t written = write(wake_.get(), &one, sizeof one);
}

} // namespace devsql::tds
