// Fakes for the tests of the query tool: a server that sends the answer which a test has set for each batch
// and records the batches, and an output that keeps the text.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "querytool/output.h"
#include "querytool/server.h"

namespace querytool_tests {

class ScriptedServer : public querytool::Server {
  public:
    /// The answer to a batch; returns false if the connection is lost.
    using Answer = std::function<bool(querytool::ResultSink&)>;

    bool Connect(const querytool::LoginSettings& settings, querytool::ResultSink& sink) override {
        login = settings;
        for (const querytool::Diagnostic& refusal : refusals) {
            sink.Message(refusal);
        }
        return refusals.empty();
    }

    /// Sends the whole answer, even after the sink has asked for the end: the sink must ignore the rest.
    bool Run(const std::string& batch, querytool::ResultSink& sink) override {
        batches.push_back(batch);
        const auto answer = answers.find(batch);
        return answer == answers.end() || answer->second(sink);
    }

    std::map<std::string, Answer> answers;       ///< a batch without an answer has no results
    std::vector<querytool::Diagnostic> refusals; ///< connecting fails with these; empty if it succeeds
    std::vector<std::string> batches;
    querytool::LoginSettings login;
};

/// Stores the written text.
class TextOutput : public querytool::Output {
  public:
    void Write(std::string_view text) override { written += text; }
    void WriteError(std::string_view text) override { errors += text; }
    void Flush() override { ++flushes; }

    std::string written;
    std::string errors;
    int flushes = 0;
};

inline querytool::Diagnostic Error(std::int32_t number, std::string text) {
    querytool::Diagnostic error;
    error.sql_state = "42000";
    error.native_error = number;
    error.message = std::move(text);
    error.server = "SRV";
    error.line = 3;
    error.severity = 16;
    return error;
}

inline querytool::Diagnostic Message(std::int32_t number, std::string text) {
    querytool::Diagnostic message = Error(number, std::move(text));
    message.sql_state = "01000";
    message.error = false;
    message.severity.reset();
    return message;
}

} // namespace querytool_tests
