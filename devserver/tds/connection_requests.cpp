// Reads, runs and answers the requests of a client. See connection.h.
#include "devserver/tds/bulk_load.h"
#include "devserver/tds/connection.h"
#include "devserver/tds/quiet_sink.h"

namespace devsql::tds {

namespace {

ProtocolError NotServed(PacketType type) {
    return {error_number::kInputStream, kFatalSeverity,
            "A packet of the type " + std::to_string(static_cast<unsigned>(type)) +
                " is not expected from a client that has logged in. The session will be terminated."};
}

} // namespace

bool Connection::Serve(ClientPacket first) {
    Response response = MakeResponse();
    if (first.type == PacketType::Attention) {
        // The request that it should cancel has ended and has been answered.
        response.Acknowledge();
        return !response.lost();
    }
    bool stays = true;
    try {
        RunRequest(std::move(first), response);
    } catch (const ConnectionLost&) {
        return false;
    } catch (const ProtocolError& error) {
        response.Send(ErrorMessage(error));
        stays = error.severity() < kFatalSeverity;
    } catch (const std::exception& error) {
        response.Send(ErrorMessage(InternalError(error)));
    }
    TellTransaction(response, Environment::RollbackTransaction);
    response.End();
    return FinishRequest(response) && stays;
}

void Connection::BeginWatch() {
    const std::lock_guard lock(mutex_);
    watched_ = true;
}

bool Connection::FinishRequest(Response& response) {
    bool interrupted = false;
    {
        const std::lock_guard lock(mutex_);
        watched_ = false;
        interrupted = cancelled_.exchange(false);
    }
    response.Finish(interrupted);
    return !response.lost() && session_ != nullptr && !session_->Ended();
}

void Connection::RunRequest(ClientPacket first, Response& response) {
    if (first.type == PacketType::BulkLoad) {
        return RunBulk(std::move(first), response);
    }
    const ClientMessage message = ReadRest(socket_, std::move(first), kLargestMessage, wait_);
    BeginWatch();
    if (message.ignore) {
        // The client has taken the message back with its last packet. It waits for a DONE with the error bit.
        response.Fail();
        return;
    }
    if (!ResetIfAsked(message.first_status, response)) {
        return;
    }
    switch (message.type) {
    case PacketType::SqlBatch:
        return RunBatch(message, response);
    case PacketType::Rpc:
        return RunCalls(message, response);
    case PacketType::TransactionManager:
        return RunTransaction(message, response);
    default:
        throw NotServed(message.type);
    }
}

void Connection::RunBatch(const ClientMessage& message, Response& response) {
    response.Begin(Response::Kind::Batch);
    session_->ExecuteBatch(ParseBatch(message.data, tokens_.version()), response);
}

void Connection::RunCalls(const ClientMessage& message, Response& response) {
    const RpcRequest request = ParseRpc(message.data, tokens_.version());
    for (std::size_t i = 0; i < request.calls.size() && !cancelled_.load() && !response.lost(); ++i) {
        if (i > 0) {
            response.End();
        }
        response.BeginCall(request.calls[i]);
        session_->ExecuteProcedure(request.calls[i], response);
    }
    if (request.error) {
        response.End();
        response.Begin(Response::Kind::Procedure);
        throw ProtocolError(*request.error);
    }
}

void Connection::RunBulk(ClientPacket first, Response& response) {
    if (!ResetIfAsked(first.status, response)) {
        return;
    }
    std::optional<ClientPacket> next = std::move(first);
    const auto next_packet = [&] {
        ClientPacket packet = next ? std::move(*next) : ReadNextPacket(socket_, PacketType::BulkLoad, wait_);
        next.reset();
        if (packet.IsLast()) {
            BeginWatch();
        }
        return packet;
    };
    response.Begin(Response::Kind::Batch);
    BulkReader rows(next_packet, tokens_.version());
    session_->LoadRows(rows, response);
    // The client reads no answer before it has written all rows. So if the load has failed, the rest of the
    // rows is read and dropped first.
    if (rows.Drain() == BulkReader::State::TakenBack) {
        response.Fail();
    } else if (rows.error()) {
        throw ProtocolError(*rows.error());
    }
}

void Connection::RunTransaction(const ClientMessage& message, Response& response) {
    const TransactionRequest request = ParseTransaction(message.data, tokens_.version());
    response.Begin(Response::Kind::Batch);
    if (SetIsolation(request.isolation, response)) {
        session_->ExecuteBatch(request.statement, response);
    }
    TellTransaction(response, request.ended_by);
    // Also after a commit without a transaction: otherwise the driver would believe that one is open.
    if (!request.next_statement.empty() && session_->TransactionCount() == 0 &&
        SetIsolation(request.next_isolation, response)) {
        session_->ExecuteBatch(request.next_statement, response);
    }
}

bool Connection::SetIsolation(const std::string& statement, Response& response) {
    if (statement.empty()) {
        return true;
    }
    QuietSink quiet; // The client has asked for one step, so it expects a single DONE.
    session_->ExecuteBatch(statement, quiet);
    if (quiet.error()) {
        response.Send(*quiet.error());
    }
    return !quiet.error();
}

void Connection::TellTransaction(Response& response, Environment ended_by) {
    // Clients before 7.2 do not know this message. If the request was cancelled, its answer is dropped; the
    // client is then told after its next request.
    if (!Has72(tokens_.version()) || session_ == nullptr || cancelled_.load()) {
        return;
    }
    const bool open = session_->TransactionCount() > 0;
    if (open == (known_transaction_ != 0)) {
        return;
    }
    const std::uint64_t number = open ? ++last_transaction_ : known_transaction_;
    known_transaction_ = open ? number : 0;
    response.Write([&](TokenWriter& tokens) {
        // A commit that has failed has rolled the transaction back.
        const Environment end = response.failed() ? Environment::RollbackTransaction : ended_by;
        tokens.WriteTransaction(open ? Environment::BeginTransaction : end, number);
    });
}

bool Connection::ResetIfAsked(std::uint8_t first_status, Response& response) {
    constexpr std::uint8_t kReset = packet_status::kResetConnection | packet_status::kResetKeepTransaction;
    if ((first_status & kReset) == 0) {
        return true;
    }
    std::unique_ptr<Session> old;
    {
        const std::lock_guard lock(mutex_);
        old = std::move(session_);
    }
    const std::string database = old->Database();
    // The old session's temporary tables and transaction must end before the new session begins, as if the
    // client had connected again.
    old.reset();
    QuietSink sink;
    std::unique_ptr<Session> fresh = OpenSession(sink);
    if (!fresh) {
        response.Send(sink.error().value_or(Message{
            error_number::kLoginFailed, kFatalSeverity, 1, "The connection could not be reset.", {}, 1}));
        return false;
    }
    const std::string now = fresh->Database();
    packets_.SetSessionId(fresh->Id());
    {
        const std::lock_guard lock(mutex_);
        session_ = std::move(fresh);
    }
    response.Write([&](TokenWriter& tokens) {
        tokens.WriteResetAcknowledged();
        if (now != database) {
            tokens.WriteDatabaseChange(database, now);
        }
    });
    return true;
}

std::unique_ptr<Session> Connection::OpenSession(ResultSink& sink) {
    std::unique_ptr<Session> session = engine_.Login(login_request_, sink);
    if (session && !ansi_) {
        // Clients that use db-lib write string literals in double quotes.
        QuietSink quiet;
        session->ExecuteBatch("SET QUOTED_IDENTIFIER OFF", quiet);
    }
    return session;
}

} // namespace devsql::tds
