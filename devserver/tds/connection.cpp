// The login of a client, and how its connection is watched and ended. Requests are in
// connection_requests.cpp.
#include "devserver/tds/connection.h"

#include <algorithm>

#include "devserver/tds/prelogin.h"

namespace devsql::tds {

namespace {

/// How often a connection that waits for its client checks whether its session was ended by another.
constexpr std::chrono::milliseconds kIdleTick{250};
constexpr const char* kLanguage = "us_english";

std::size_t PacketSizeFor(std::uint32_t asked) {
    return asked == 0 ? kLoginPacket : std::clamp<std::size_t>(asked, kSmallestPacket, kLargestPacket);
}

ProtocolError TooManyConnections() {
    return {error_number::kTooManyConnections, kFatalSeverity,
            "Could not connect because the maximum number of user connections has already been reached. The "
            "connection has been closed."};
}

ProtocolError BeforeLogin() {
    return {error_number::kLoginInvalid, kFatalSeverity,
            "A login is expected before anything else; the connection has been closed."};
}

} // namespace

Connection::Connection(Socket socket, Engine& engine, bool refused, std::chrono::milliseconds login_time)
    : socket_(std::move(socket)),
      engine_(engine),
      refused_(refused),
      login_time_(login_time),
      packets_(socket_),
      tokens_(packets_, engine.ServerName()) {}

void Connection::Run() {
    try {
        if (Enter()) {
            ServeRequests();
        }
        socket_.FinishWriting();
    } catch (const std::exception&) {
        // The client is gone, so nobody would get an error.
        socket_.Shutdown();
    }
    std::unique_ptr<Session> session; // Ended without the lock, because that may take long.
    const std::lock_guard lock(mutex_);
    session = std::move(session_);
}

bool Connection::Watch() {
    const std::lock_guard lock(mutex_);
    if (closing_ || (watched_ && IsCancelled())) {
        cancelled_ = true;
        CancelRunning();
    }
    return watched_;
}

bool Connection::IsCancelled() const {
    try {
        return socket_.Peek() == static_cast<char>(PacketType::Attention);
    } catch (const ConnectionLost&) {
        // The request's thread may be waiting for the client to read.
        socket_.Shutdown();
        return true;
    }
}

void Connection::Stop() {
    closing_ = true;
    socket_.Shutdown();
}

void Connection::CancelRunning() {
    if (session_) {
        session_->Cancel();
    }
}

Response Connection::MakeResponse() {
    return {tokens_, packets_, cancelled_, [this] {
                const std::lock_guard lock(mutex_);
                CancelRunning();
            }};
}

void Connection::Refuse(const ProtocolError& error) {
    Response response = MakeResponse();
    response.Send(ErrorMessage(error));
    response.End();
    response.Finish();
}

bool Connection::Enter() {
    try {
        const std::optional<ClientMessage> message =
            ReadLogin(Until(std::chrono::steady_clock::now() + login_time_));
        return message && LogIn(*message);
    } catch (const ProtocolError& error) {
        Refuse(error);
    } catch (const ConnectionLost&) {
        throw;
    } catch (const std::exception& error) {
        Refuse(InternalError(error));
    }
    return false;
}

std::optional<ClientMessage> Connection::ReadLogin(const ReadWait& wait) {
    std::optional<ClientMessage> message = ReadMessage(socket_, kLargestLoginMessage, wait);
    // A client of 7.1 may begin with its login.
    if (message && message->type == PacketType::PreLogin) {
        ParsePreLogin(message->data);
        packets_.Append(PreLoginAnswer());
        packets_.EndMessage();
        message = ReadMessage(socket_, kLargestLoginMessage, wait);
    }
    if (message && message->type == PacketType::OldLogin) {
        // A client of a version before 7.0 expects errors in another layout, so it gets no answer.
        return std::nullopt;
    }
    if (message && message->type != PacketType::Login) {
        throw BeforeLogin();
    }
    return message;
}

bool Connection::LogIn(const ClientMessage& message) {
    Version version = Version::V74;
    Login login;
    try {
        login = ParseLogin(message.data, version);
    } catch (const ProtocolError&) {
        tokens_.SetVersion(version);
        throw;
    }
    tokens_.SetVersion(version);
    if (refused_) {
        throw TooManyConnections();
    }
    login_request_ = {login.user, login.password, login.database, login.host_name, login.application};
    ansi_ = login.odbc;
    Response response = MakeResponse();
    std::unique_ptr<Session> session = OpenSession(response);
    if (!session) {
        response.End();
        response.Finish();
        return false;
    }
    packets_.SetSessionId(session->Id());
    logged_in_ = true;
    {
        const std::lock_guard lock(mutex_);
        session_ = std::move(session);
    }
    AnswerLogin(login, response);
    return !response.lost();
}

void Connection::AnswerLogin(const Login& login, Response& response) {
    const std::size_t packet_size = PacketSizeFor(login.packet_size);
    response.Write([&](TokenWriter& tokens) {
        tokens.WriteCollation();
        tokens.WriteLanguage(kLanguage);
        tokens.WriteLoginAck();
        tokens.WritePacketSize(kLoginPacket, packet_size);
    });
    // The new size holds from the next answer on.
    response.Finish();
    packets_.SetPacketSize(packet_size);
}

void Connection::ServeRequests() {
    try {
        std::optional<ClientPacket> first;
        do {
            first = ReadPacket(socket_, wait_);
        } while (first && Serve(std::move(*first)));
    } catch (const ConnectionLost&) {
        return;
    } catch (const ProtocolError& error) {
        // Where the next message would begin is not known, so the connection ends.
        Refuse(error);
    }
}

bool Connection::WaitForInput() {
    do {
        if (closing_ || session_->Ended()) {
            return false;
        }
    } while (!socket_.WaitReadable(kIdleTick));
    return true;
}

} // namespace devsql::tds
