#include "devserver/tsql/run/session.h"

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
    if (core_.ended) {
        sink.Send(
            {596, 21, 1, "Cannot continue the execution because the session is in the kill state.", "", 1});
        return;
    }
    core_.cancelled = false;
    core_.ExchangeSink(&sink);
    work();
    core_.ExchangeSink(nullptr);
    core_.remote().Release();
    if (core_.transaction_count() == 0) {
        core_.ReleaseDatabases();
    }
}

void ClientSession::ExecuteBatch(std::string_view sql, ResultSink& sink) {
    Run(sink, [&] { Interpreter(core_).RunBatch(sql); });
}

void ClientSession::ExecuteProcedure(const RpcCall& call, ResultSink& sink) {
    Run(sink, [&] { Interpreter(core_).RunCall(call); });
}

void ClientSession::Enter(const std::string& database, ResultSink& sink) {
    core_.ExchangeSink(&sink);
    try {
        core_.Use(database);
    } catch (...) {
        core_.ExchangeSink(nullptr);
        throw;
    }
    core_.ExchangeSink(nullptr);
}

} // namespace devsql
