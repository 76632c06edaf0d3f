#include "devserver/tsql/server/client_session.h"

#include <utility>

#include "devserver/tsql/run/interpreter.h"

namespace devsql {

ClientSession::ClientSession(Server& server, std::int32_t id, const LoginRequest& request,
                             const std::string& login)
    : core_(server, id, login) {
    core_.host_name = request.host_name;
    core_.application = request.application;
    core_.password = request.password;
}

void ClientSession::Run(ResultSink& sink, const std::function<void()>& work) {
    const std::lock_guard lock(core_.running);
    core_.cancelled = false; // Before it is asked: who ends the session sets `ended` first.
    core_.ExchangeSink(&sink);
    if (core_.ended) {
        core_.line = 1;
        core_.Info(596);
        core_.ExchangeSink(nullptr);
        return;
    }
    work();
    core_.ExchangeSink(nullptr);
    core_.remote().Release();
    if (core_.transaction_count() == 0) {
        core_.ReleaseDatabases();
    }
}

void ClientSession::ExecuteBatch(std::string_view sql, ResultSink& sink) {
    RunOther(sink, [&] { Interpreter(core_).RunBatch(sql); });
}

void ClientSession::ExecuteProcedure(const RpcCall& call, ResultSink& sink) {
    RunOther(sink, [&] { Interpreter(core_).RunCall(call); });
}

void ClientSession::RunOther(ResultSink& sink, const std::function<void()>& work) {
    if (std::exchange(core_.bulk, nullptr)) {
        sink.Send(
            {4022, 16, 1, "Bulk load data was expected but not sent. The batch will be terminated.", "", 1});
        return;
    }
    Run(sink, work);
}

void ClientSession::LoadRows(BulkRows& rows, ResultSink& sink) {
    const std::shared_ptr<const ast::InsertBulkStatement> bulk = std::exchange(core_.bulk, nullptr);
    if (!bulk) {
        sink.Send(
            {4002, 16, 1,
             "The incoming tabular data stream (TDS) protocol stream is incorrect. Rows of a bulk load came "
             "without an INSERT BULK before them.",
             "", 1});
        return;
    }
    Run(sink, [&] { Interpreter(core_).RunBulk(*bulk, rows); });
}

void ClientSession::Enter(const std::string& database, ResultSink& sink) {
    const std::lock_guard lock(core_.running);
    core_.ExchangeSink(&sink);
    try {
        core_.Use(database);
    } catch (const Cancelled&) {
        core_.ExchangeSink(nullptr);
        RaiseError(596);
    } catch (...) {
        core_.ExchangeSink(nullptr);
        throw;
    }
    core_.ExchangeSink(nullptr);
}

} // namespace devsql
