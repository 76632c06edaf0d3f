// The server over ODBC.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "odbc/odbc.h"
#include "querytool/server.h"

namespace querytool {

/// The connection string for the server; values that would break it are enclosed in braces.
std::string ConnectionString(const LoginSettings& settings);

class OdbcServer : public Server {
  public:
    bool Connect(const LoginSettings& settings, ResultSink& sink) override;
    bool Run(const std::string& batch, ResultSink& sink) override;

  private:
    odbc::Statement NextStatement(const std::string& batch);
    void TakeResult(odbc::Statement& statement, ResultSink& sink);
    template <class Step>
    bool Try(ResultSink& sink, Step&& step);

    std::optional<odbc::Environment> environment_;
    std::optional<odbc::Connection> connection_;
    std::vector<odbc::Statement> stock_; ///< destroyed before the connection
    unsigned query_timeout_ = 0;
};

} // namespace querytool
