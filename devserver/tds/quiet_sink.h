// A sink for statements that the protocol itself runs: it keeps the first error and drops everything else.
// Knows nothing of the network.
#pragma once

#include <optional>

#include "devserver/engine/engine.h"

namespace devsql::tds {

class QuietSink : public ResultSink {
  public:
    const std::optional<Message>& error() const { return error_; }

    void Columns(const std::vector<Column>&) override {}
    void Row(const std::vector<Value>&) override {}
    void StatementDone(Command, std::optional<std::int64_t>, bool) override {}
    void Send(const Message& message) override {
        constexpr std::uint8_t kFirstError = 11;
        if (message.severity >= kFirstError && !error_) {
            error_ = message;
        }
    }
    void DatabaseChanged(const std::string&, const std::string&) override {}
    void OutputParameter(const std::string&, const Type&, const Value&) override {}
    void ReturnStatus(std::int32_t) override {}

  private:
    std::optional<Message> error_;
};

} // namespace devsql::tds
