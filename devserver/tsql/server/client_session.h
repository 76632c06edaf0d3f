// The session that the protocol drives: one core, one interpreter, one request at a time.
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
    void Run(ResultSink& sink, const std::function<void()>& work);
    /// A request that is not the rows that INSERT BULK has announced.
    void RunOther(ResultSink& sink, const std::function<void()>& work);

    SessionCore core_;
};

} // namespace devsql
