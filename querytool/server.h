// The tool's connection to a server: a login, and batches whose results come in order. windows/ implements it
// with ODBC, linux/ with FreeTDS's DB-Library; tests replace it by a script.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "odbc/odbc.h"

namespace querytool {

using odbc::Column;
using odbc::Diagnostic;
using odbc::Value;

/// Receives the results and messages of a batch, in the order in which they come.
class ResultSink {
  public:
    virtual ~ResultSink() = default;
    /// A result with columns begins; its rows and ResultEnd follow.
    virtual void ResultBegin(const std::vector<Column>& columns) = 0;
    virtual void Row(const std::vector<Value>& values) = 0;
    /// Ends a result. `rows` is the server's count, or below 0 if it did not count.
    virtual void ResultEnd(std::int64_t rows) = 0;
    /// An error or a message. Its text is the server's own, without the names of drivers before it.
    virtual void Message(const Diagnostic& diagnostic) = 0;
    /// True after a message that ends the tool: the rest of the batch is not needed.
    virtual bool Ended() const = 0;
};

struct LoginSettings {
    std::string server;
    std::string user;
    std::string password;
    std::string database; ///< empty: the login's default
    std::string workstation;
    unsigned login_timeout = 0; ///< seconds, 0: no limit
    unsigned query_timeout = 0;
    unsigned packet_size = 0; ///< bytes, 0: the driver's own
};

class Server {
  public:
    virtual ~Server() = default;
    /// False if it could not connect; the reasons are sent to the sink as messages.
    virtual bool Connect(const LoginSettings& settings, ResultSink& sink) = 0;
    /// Runs a batch to its end, even if there are errors, or until the sink has ended. False if the
    /// connection is lost.
    virtual bool Run(const std::string& batch, ResultSink& sink) = 0;
};

/// The server of this system. Only one may exist at a time.
std::unique_ptr<Server> MakeServer();

} // namespace querytool
