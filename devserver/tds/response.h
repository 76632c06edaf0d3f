// Writes the results of a request in the order and with the DONE tokens that clients expect. A DONE ends each
// statement and says whether more results follow, whether it failed, and how many rows it had. Knows nothing
// of how requests are run.
#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"
#include "devserver/tds/tokens.h"

namespace devsql::tds {

/// Takes the results of one request from the language. Errors of the network are not thrown into the
/// language: once the client is gone or has cancelled, further results are dropped and `stop` is called.
class Response : public ResultSink {
  public:
    enum class Kind : std::uint8_t { Batch, Procedure };

    /// `cancelled` turns true when the client asks to stop; `stop` asks the language to end soon.
    Response(TokenWriter& tokens, PacketWriter& packets, const std::atomic<bool>& cancelled,
             std::function<void()> stop)
        : tokens_(tokens), packets_(packets), cancelled_(cancelled), stop_(std::move(stop)) {}

    void Columns(const std::vector<Column>& columns) override;
    void Row(const std::vector<Value>& values) override;
    void StatementDone(Command command, std::optional<std::int64_t> rows, bool in_procedure) override;
    void Send(const Message& message) override;
    void DatabaseChanged(const std::string& from, const std::string& to) override;
    void OutputParameter(const std::string& name, const Type& type, const Value& value) override;
    void ReturnStatus(std::int32_t status) override;
    void Flush() override;

    /// Begins a part of the request: the batch, or one of its procedure calls.
    void Begin(Kind kind);
    /// Begins a call. Remembers the places of its output parameters, because they are sent with the values.
    void BeginCall(const RpcCall& call);
    /// Ends the part. For a call, writes the return status, the output parameters and the token that ends a
    /// procedure.
    void End();
    /// Marks the next DONE as failed, for an error without a message.
    void Fail() { statement_error_ = true; }
    /// Writes a token that belongs to the statement whose DONE may be held back, such as an environment
    /// change.
    void Write(const std::function<void(TokenWriter&)>& write);
    /// Ends the answer. If the client has `interrupted` it, the last DONE has no error bit: jTDS would report
    /// an error of the server instead of the cancel that its user asked for.
    void Finish(bool interrupted = false);
    /// Acknowledges an attention. The answer that it interrupted must be finished before: drivers read that
    /// to its end, and then wait for a message with nothing but the acknowledgement.
    void Acknowledge();
    /// True if an error was sent since Begin.
    bool failed() const { return failed_; }
    /// True if the connection was lost while the answer was written.
    bool lost() const { return lost_; }

  private:
    /// A DONE that is held back until it is known whether more follows.
    struct PendingDone {
        DoneToken token;
        std::uint16_t status;
        Command command;
        std::int64_t rows;
    };
    struct Output {
        std::string name;
        Type type;
        Value value;
    };

    /// A parameter of the call that was passed for output.
    struct Passed {
        std::string name;
        std::uint16_t place; ///< among all parameters of the call, from 0
    };

    /// Runs `write` unless the client is gone or has asked to stop.
    template <class Writing>
    void Guarded(Writing write);
    /// Runs `write` and ends the message, unless the client is gone.
    template <class Writing>
    void EndMessage(Writing write);
    /// Writes the DONE that is held back, if there is one; `more` says whether more follows.
    void WritePending(bool more);
    /// Holds a DONE back; writes the one that was held back before.
    void Hold(DoneToken token, std::uint16_t status, Command command, std::int64_t rows);
    /// If a statement has failed and has had no DONE yet, gives it one. Called before something else begins.
    void EndFailedStatement();
    DoneToken StatementToken(bool in_procedure) const;
    /// The place in the call of the output parameter that the language reports as number `ordinal`, from 0.
    std::uint16_t PlaceOf(const std::string& name, std::size_t ordinal) const;
    void WriteProcedureEnd();

    TokenWriter& tokens_;
    PacketWriter& packets_;
    const std::atomic<bool>& cancelled_;
    std::function<void()> stop_;

    Kind kind_ = Kind::Batch;
    std::optional<PendingDone> pending_;
    std::vector<Passed> passed_;
    std::vector<Output> outputs_;
    std::optional<std::int32_t> return_status_;
    bool rows_open_ = false;       ///< a result set has begun and has not ended
    bool statement_error_ = false; ///< an error was sent that no DONE has reported yet
    bool failed_ = false;
    bool lost_ = false;
};

} // namespace devsql::tds
