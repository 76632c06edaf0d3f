// Runs the requests of one client, one at a time.
#include "devserver/tsql/server/client_session.h"

#include <utility>

#include "devserver/tsql/parse/ast.h"
#include "devserver/tsql/run/interpreter.h"
#include "devserver/tsql/server/procedure_list.h"

namespace devsql {

void ClientSession::Run(ResultSink& sink, const std::function<void()>& work) {
    const std::lock_guard lock(core_.interruption().running());
    // Reset must come before session_ended() is read. A session that ends this one calls EndSession first and
    // requests the stop after it, so a request that Reset drops is noticed below.
    core_.interruption().Reset();
    core_.results().Exchange(&sink);
    if (core_.interruption().session_ended()) {
        core_.status().line = 1;
        core_.results().Info(596);
        core_.results().Exchange(nullptr);
        return;
    }
    work();
    core_.results().Exchange(nullptr);
    core_.remote().Release();
    if (core_.transactions().count() == 0) {
        core_.databases().ReleaseOthers();
    }
}

void ClientSession::ExecuteBatch(std::string_view sql, ResultSink& sink) {
    RunOther(sink, [&] { Interpreter(core_, FindSystemProcedure).RunBatch(sql); });
}

void ClientSession::ExecuteProcedure(const RpcCall& call, ResultSink& sink) {
    RunOther(sink, [&] { Interpreter(core_, FindSystemProcedure).RunCall(call); });
}

void ClientSession::RunOther(ResultSink& sink, const std::function<void()>& work) {
    if (std::exchange(core_.status().bulk, nullptr)) {
        sink.Send(
            {4022, 16, 1, "Bulk load data was expected but not sent. The batch will be terminated.", "", 1});
        return;
    }
    Run(sink, work);
}

void ClientSession::LoadRows(BulkRows& rows, ResultSink& sink) {
    const std::shared_ptr<const ast::InsertBulkStatement> bulk = std::exchange(core_.status().bulk, nullptr);
    if (!bulk) {
        sink.Send(
            {4002, 16, 1,
             "The incoming tabular data stream (TDS) protocol stream is incorrect. Rows of a bulk load came "
             "without an INSERT BULK before them.",
             "", 1});
        return;
    }
    Run(sink, [&] { Interpreter(core_, FindSystemProcedure).RunBulk(*bulk, rows); });
}

void ClientSession::Enter(const std::string& database, ResultSink& sink) {
    const std::lock_guard lock(core_.interruption().running());
    core_.results().Exchange(&sink);
    try {
        core_.databases().Use(database);
    } catch (const Cancelled&) {
        core_.results().Exchange(nullptr);
        RaiseError(596);
    } catch (...) {
        core_.results().Exchange(nullptr);
        throw;
    }
    core_.results().Exchange(nullptr);
}

} // namespace devsql
