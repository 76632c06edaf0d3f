// What the tool needs of a server: a login, and batches whose results come in order. windows/ implements it
// by ODBC, linux/ by FreeTDS's DB-Library; a test plays a script.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "odbc/odbc.h"

namespace querytool {

using platform::odbc::Column;
using platform::odbc::Diagnostic;
using platform::odbc::Value;

/// Takes what a batch gives, in the order in which it comes.
class ResultSink {
  public:
    virtual ~ResultSink() = default;
    /// A result with columns begins; its rows and ResultEnd follow.
    virtual void ResultBegin(const std::vector<Column>& columns) = 0;
    virtual void Row(const std::vector<Value>& values) = 0;
    /// Ends a result; `rows` as counted by the server, below 0 where nothing was counted.
    virtual void ResultEnd(std::int64_t rows) = 0;
    /// An error or a message. Its text is the server's own, without the names of drivers in front.
    virtual void Message(const Diagnostic& diagnostic) = 0;
    /// True from a message on that ends the tool: nothing further of the batch is wanted.
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
    /// False: not connected; the reasons went to the sink as messages.
    virtual bool Connect(const LoginSettings& settings, ResultSink& sink) = 0;
    /// Runs a batch to its end, errors or not, or until the sink has ended. False: the connection is lost.
    virtual bool Run(const std::string& batch, ResultSink& sink) = 0;
};

/// The system's. There is one at a time.
std::unique_ptr<Server> MakeServer();

} // namespace querytool
