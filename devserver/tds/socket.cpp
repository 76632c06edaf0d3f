// Streams and the listener over the system's sockets. See socket.h.
#include "devserver/tds/socket.h"

#include <algorithm>
#include <array>
#include <string>
#include <thread>

namespace devsql::tds {

namespace {

using Clock = std::chrono::steady_clock;
using system::Readable;
using system::SocketError;

/// The longest time that FinishWriting waits for the peer's end.
constexpr std::chrono::milliseconds kLinger{1000};
/// How long Accept waits if the system has no descriptor left for a client; otherwise the listening thread
/// would try again without end.
constexpr std::chrono::milliseconds kAcceptPause{50};

bool Wait(const system::SocketHandle& handle, std::chrono::milliseconds timeout) {
    try {
        return system::WaitReadable(handle, nullptr, timeout) != Readable::Nothing;
    } catch (const SocketError& error) {
        throw ConnectionLost(error.what());
    }
}

/// True when something can be read before `deadline`.
bool WaitUntil(const Socket& socket, Clock::time_point deadline) {
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(deadline - Clock::now());
    return socket.WaitReadable(std::max(left, std::chrono::milliseconds(0)));
}

system::SocketHandle ListenOn(std::uint16_t port) {
    try {
        return system::ListenOnLoopback(port);
    } catch (const SocketError& error) {
        throw std::runtime_error("cannot listen on 127.0.0.1:" + std::to_string(port) + ": " + error.what());
    }
}

} // namespace

bool Socket::WaitReadable(std::chrono::milliseconds timeout) const {
    return Wait(handle_, timeout);
}

ReadWait Until(Clock::time_point deadline) {
    return [deadline](const Socket& socket) {
        if (!WaitUntil(socket, deadline)) {
            throw ConnectionLost("the peer was silent for too long");
        }
        return true;
    };
}

bool Socket::ReadExactly(char* buffer, std::size_t size, const ReadWait& wait) const {
    std::size_t done = 0;
    while (done < size) {
        std::size_t got = 0;
        try {
            if (!wait || wait(*this)) {
                got = system::Receive(handle_, buffer + done, size - done);
            }
        } catch (const SocketError& error) {
            throw ConnectionLost(error.what());
        }
        if (got == 0) {
            if (done == 0) {
                return false;
            }
            throw ConnectionLost("the end came in the middle of a packet");
        }
        done += got;
    }
    return true;
}

std::optional<char> Socket::Peek() const {
    if (!WaitReadable(std::chrono::milliseconds(0))) {
        return std::nullopt;
    }
    char byte = 0;
    try {
        if (system::Receive(handle_, &byte, 1, true) == 1) {
            return byte;
        }
    } catch (const SocketError& error) {
        throw ConnectionLost(error.what());
    }
    throw ConnectionLost("the peer has closed the connection");
}

void Socket::Write(std::string_view bytes) const {
    try {
        while (!bytes.empty()) {
            bytes.remove_prefix(system::Send(handle_, bytes));
        }
    } catch (const SocketError& error) {
        throw ConnectionLost(error.what());
    }
}

void Socket::Shutdown() const {
    system::EndBoth(handle_);
}

void Socket::FinishWriting() const {
    system::EndSending(handle_);
    const auto deadline = Clock::now() + kLinger;
    std::array<char, 4096> dropped{};
    try {
        while (Clock::now() < deadline && WaitUntil(*this, deadline)) {
            if (system::Receive(handle_, dropped.data(), dropped.size()) == 0) {
                return;
            }
        }
    } catch (const SocketError&) {
        // The peer has closed the connection, which is what this waits for.
        return;
    }
}

Listener::Listener(std::uint16_t port) : handle_(ListenOn(port)), port_(system::PortOf(handle_)) {}

std::optional<Socket> Listener::Accept(std::optional<std::chrono::milliseconds> patience) const {
    if (system::WaitReadable(handle_, &wake_.handle(), patience) != Readable::First) {
        return std::nullopt;
    }
    if (std::optional<system::SocketHandle> client = system::AcceptClient(handle_)) {
        return Socket(std::move(*client));
    }
    std::this_thread::sleep_for(kAcceptPause);
    return std::nullopt;
}

} // namespace devsql::tds
