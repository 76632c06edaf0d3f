// Sends the results of a call to the session's client: rows, messages, and the ends of statements.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string_view>
#include <utility>

#include "devserver/engine/engine.h"

namespace devsql {

class CallStack;
struct Options;
struct Status;

class Results {
  public:
    Results(const Options& options, const Status& status, const CallStack& calls)
        : options_(options), status_(status), calls_(calls) {}

    ResultSink& sink() { return *sink_; }
    /// False between calls, and while a session is opened or closed.
    bool open() const { return sink_ != nullptr; }
    /// Sets the sink, which may be null and is not owned. Returns the previous one.
    ResultSink* Exchange(ResultSink* sink) { return std::exchange(sink_, sink); }

    /// Sends a message or an error.
    void Print(const Message& message);
    /// A message of the message table, in the name of the running statement.
    void Info(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
              std::uint8_t state = 1);
    /// Ends a statement. Under NOCOUNT its rows are not counted.
    void Done(Command command, std::optional<std::int64_t> rows);
    /// Called before and after each statement. EndStatement sends the statement's end if Done has not been
    /// called since BeginStatement. In a procedure under NOCOUNT it sends nothing.
    void BeginStatement() { statement_ended_ = false; }
    void EndStatement();

  private:
    const Options& options_;
    const Status& status_;
    const CallStack& calls_;
    ResultSink* sink_ = nullptr;
    bool statement_ended_ = false;
};

} // namespace devsql
