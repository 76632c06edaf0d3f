// The two threads of a connection and the way into it. What requests do is in connection_requests.cpp.
#include "devserver/tds/connection.h"

#include <algorithm>
#include <thread>

#include "devserver/tds/prelogin.h"

namespace devsql::tds {

namespace {

/// How often the reading thread checks, while nothing arrives, whether the session was ended by another.
constexpr std::chrono::milliseconds kIdleTick{250};
/// How often a running call is asked again to end: it may have begun just after the last request.
constexpr std::chrono::milliseconds kCancelTick{20};
/// How long a call that was told to end may still write before the connection is cut.
constexpr std::chrono::milliseconds kCancelPatience{1000};
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
            std::thread worker([this] { Work(); });
            ReadRequests();
            EndWork();
            worker.join();
        }
        socket_.FinishWriting();
    } catch (const std::exception&) {
        // The client is gone, or the system has no thread left for it: nobody would get an error.
        socket_.Shutdown();
    }
    const std::lock_guard lock(mutex_);
    session_.reset();
}

void Connection::Stop() {
    const std::lock_guard lock(mutex_);
    closing_ = true;
    CancelRunning();
    socket_.Shutdown();
    changed_.notify_all();
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
        // A client of before 7.0 would read an error in another layout: it gets the end and no answer.
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

void Connection::ReadRequests() {
    try {
        std::optional<ClientPacket> first;
        do {
            first = ReadPacket(socket_, wait_);
        } while (first && ReadRequest(std::move(*first)));
    } catch (const ConnectionLost&) {
        return;
    } catch (const ProtocolError& error) {
        // The stream has no next message. What runs is ended first: only then nobody else writes.
        EndWork();
        Refuse(error);
    }
}

bool Connection::ReadRequest(ClientPacket first) {
    if (first.type == PacketType::BulkLoad) {
        return ReadBulk(std::move(first));
    }
    return Deliver(ReadRest(socket_, std::move(first), kLargestMessage, wait_));
}

bool Connection::ReadBulk(ClientPacket first) {
    using State = PacketChannel::State;
    const auto packets = std::make_shared<PacketChannel>();
    // The message's end of the channel: once the message is gone, served or not, nobody waits for its rows.
    std::shared_ptr<PacketChannel> taken(packets.get(), [packets](PacketChannel* rows) { rows->Close(); });
    if (!Deliver({first.type, first.status, false, {}, std::move(taken)})) {
        return false;
    }
    try {
        for (ClientPacket packet = std::move(first);;
             packet = ReadNextPacket(socket_, PacketType::BulkLoad, wait_)) {
            packets->Put(packet.data);
            if (packet.IsLast()) {
                packets->End(packet.IsIgnored() ? State::TakenBack : State::Whole);
                return true;
            }
        }
    } catch (...) {
        packets->End(State::Lost);
        throw;
    }
}

bool Connection::WaitForInput() {
    for (;;) {
        std::chrono::milliseconds tick = kIdleTick;
        {
            const std::lock_guard lock(mutex_);
            if (closing_ || (!busy_ && session_ && session_->Ended())) {
                return false;
            }
            if (attention_ && busy_) {
                CancelRunning();
                tick = kCancelTick;
            }
        }
        if (socket_.WaitReadable(tick)) {
            return true;
        }
    }
}

bool Connection::Deliver(ClientMessage message) {
    const std::lock_guard lock(mutex_);
    if (message.type == PacketType::Attention) {
        attention_ = true;
        cancelled_ = true;
        if (busy_) {
            CancelRunning();
        }
    } else if (waiting_.empty()) {
        waiting_.push_back(std::move(message));
    } else {
        // One request may arrive early. A client that sends more without reading would fill the memory.
        return false;
    }
    changed_.notify_all();
    return true;
}

void Connection::EndWork() {
    const auto patience = std::chrono::steady_clock::now() + kCancelPatience;
    std::unique_lock lock(mutex_);
    closing_ = true;
    cancelled_ = true;
    changed_.notify_all();
    while (!changed_.wait_for(lock, kCancelTick, [this] { return work_ended_; })) {
        CancelRunning();
        if (std::chrono::steady_clock::now() > patience) {
            // The worker may be waiting for a client that does not read.
            socket_.Shutdown();
        }
    }
    cancelled_ = false;
}

} // namespace devsql::tds
