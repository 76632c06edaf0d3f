// The working thread of a connection: takes requests one by one and runs them. See connection.h.
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

void Connection::Work() {
    std::unique_lock lock(mutex_);
    while (!closing_) {
        if (attention_) {
            // Nothing runs. A request that was waiting is cancelled, and still gets an answer.
            const bool taken_back = !waiting_.empty();
            waiting_.clear();
            attention_ = false;
            cancelled_ = false;
            lock.unlock();
            Response response = MakeResponse();
            if (taken_back) {
                response.Finish(true);
            }
            response.Acknowledge();
            lock.lock();
        } else if (!waiting_.empty()) {
            const ClientMessage message = std::move(waiting_.front());
            waiting_.pop_front();
            busy_ = true;
            lock.unlock();
            const bool stays = Serve(message);
            lock.lock();
            closing_ = closing_ || !stays;
        } else {
            changed_.wait(lock);
        }
    }
    waiting_.clear();
    work_ended_ = true;
    changed_.notify_all();
}

bool Connection::Serve(const ClientMessage& message) {
    Response response = MakeResponse();
    bool stays = true;
    try {
        RunRequest(message, response);
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

bool Connection::FinishRequest(Response& response) {
    bool interrupted = false;
    bool ended = false;
    {
        const std::lock_guard lock(mutex_);
        busy_ = false;
        interrupted = attention_; // Acknowledged after this answer, see Work.
        cancelled_ = closing_;
        ended = session_ == nullptr || session_->Ended();
    }
    response.Finish(interrupted);
    return !ended && !response.lost();
}

void Connection::RunRequest(const ClientMessage& message, Response& response) {
    if (message.ignore) {
        // Taken back by the client before it was whole; it waits for a DONE that says so.
        response.Fail();
        return;
    }
    constexpr std::uint8_t kReset = packet_status::kResetConnection | packet_status::kResetKeepTransaction;
    if ((message.first_status & kReset) != 0 && !ResetSession(response)) {
        return;
    }
    switch (message.type) {
    case PacketType::SqlBatch:
        return RunBatch(message, response);
    case PacketType::Rpc:
        return RunCalls(message, response);
    case PacketType::BulkLoad:
        return RunBulk(message, response);
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

void Connection::RunBulk(const ClientMessage& message, Response& response) {
    response.Begin(Response::Kind::Batch);
    BulkReader rows(*message.rows, tokens_.version());
    session_->LoadRows(rows, response);
    // The client writes to the end before it reads: what a load that failed has left is dropped first. A
    // session that was thrown out does not wait for a client that may never write again.
    auto state = PacketChannel::State::Open;
    while (state == PacketChannel::State::Open && !session_->Ended()) {
        state = message.rows->Drain();
    }
    if (state == PacketChannel::State::TakenBack) {
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
    QuietSink quiet; // The client has asked for one step and reads one end.
    session_->ExecuteBatch(statement, quiet);
    if (quiet.error()) {
        response.Send(*quiet.error());
    }
    return !quiet.error();
}

void Connection::TellTransaction(Response& response, Environment ended_by) {
    // Only 7.2 and later know of it. What is not told now, since nobody listens, is told after the next
    // request.
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

bool Connection::ResetSession(Response& response) {
    std::unique_ptr<Session> old;
    {
        const std::lock_guard lock(mutex_);
        old = std::move(session_);
    }
    const std::string database = old->Database();
    // The old session's temporary tables and transaction go before the new one comes, as if the client had
    // gone and come again.
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
        // Clients of the older library expect "text" in double quotes to be a text.
        QuietSink quiet;
        session->ExecuteBatch("SET QUOTED_IDENTIFIER OFF", quiet);
    }
    return session;
}

} // namespace devsql::tds
