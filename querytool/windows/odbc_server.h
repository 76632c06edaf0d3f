// Implements Server over ODBC.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "odbc/odbc.h"
#include "querytool/server.h"

namespace querytool {

/// Returns the connection string. Values that would break it are enclosed in braces.
std::string ConnectionString(const LoginSettings& settings);

class OdbcServer : public Server {
  public:
    bool Connect(const LoginSettings& settings, ResultSink& sink) override;
    bool Run(const std::string& batch, ResultSink& sink) override;

  private:
    /// Returns a statement on which to run the batch.
    odbc::Statement TakeStatement(const std::string& batch);
    /// Sends the current result and its messages to the sink.
    void SendResult(odbc::Statement& statement, ResultSink& sink);
    /// Runs a step of a batch and sends its errors to the sink. Returns false if the connection is lost.
    template <class Step>
    bool RunStep(ResultSink& sink, Step&& step);

    std::optional<odbc::Environment> environment_;
    std::optional<odbc::Connection> connection_;
    std::vector<odbc::Statement> prepared_; ///< for TakeStatement; must be destroyed before the connection
    unsigned query_timeout_ = 0;            ///< in seconds; 0 means no limit
};

} // namespace querytool
