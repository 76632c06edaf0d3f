// The session that the protocol drives: keeps the session's state, and makes an interpreter for each request.
#pragma once

#include <functional>
#include <string>

#include "devserver/engine/engine.h"
#include "devserver/tsql/session/session_core.h"

namespace devsql {

class ClientSession : public Session {
  public:
    ClientSession(Server& server, ClientInfo client) : core_(server, std::move(client)) {}

    void ExecuteBatch(std::string_view sql, ResultSink& sink) override;
    void ExecuteProcedure(const RpcCall& call, ResultSink& sink) override;
    void LoadRows(BulkRows& rows, ResultSink& sink) override;
    void Cancel() override { core_.Cancel(); }
    std::string Database() const override { return core_.databases().own(); }
    std::int32_t Id() const override { return core_.id(); }
    bool Ended() const override { return core_.interruption().session_ended(); }
    std::int32_t TransactionCount() const override { return core_.transactions().count(); }

    /// Enters the database that the login asks for. Raises 911.
    void Enter(const std::string& database, ResultSink& sink);

  private:
    /// Runs a request whose results go to `sink`. Sends the message 596 instead if the session has been
    /// ended.
    void Run(ResultSink& sink, const std::function<void()>& work);
    /// As Run, for any request but LoadRows. Sends the error 4022 instead if an INSERT BULK still waits for
    /// its rows.
    void RunOther(ResultSink& sink, const std::function<void()>& work);

    SessionCore core_;
};

} // namespace devsql
