// The tool's connection to a server: a login, and batches whose results and messages come in the server's
// order. windows/ implements it with ODBC, linux/ with FreeTDS's DB-Library. Tests replace it. Text is in
// code page 1252.
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
    /// Called when a result with columns begins. Calls of Row and one of ResultEnd follow.
    virtual void ResultBegin(const std::vector<Column>& columns) = 0;
    /// Called for each row, with a value for each column.
    virtual void Row(const std::vector<Value>& values) = 0;
    /// Called at the end of a result, also of one without columns. `rows` is the server's count of rows; it
    /// is negative if the server did not count.
    virtual void ResultEnd(std::int64_t rows) = 0;
    /// Called for an error or a message. Its text is without the names of drivers at the beginning.
    virtual void Message(const Diagnostic& diagnostic) = 0;
    /// True after a message that ends the tool. The server then drops the rest of the batch.
    virtual bool Ended() const = 0;
};

/// The settings for Server::Connect.
struct LoginSettings {
    std::string server; ///< "name", "name\instance" or "name,port"
    std::string user;
    std::string password;
    std::string database;       ///< empty: the login's default
    std::string workstation;    ///< the name of this computer for the server; empty: the driver's default
    unsigned login_timeout = 0; ///< in seconds; 0 means no limit
    unsigned query_timeout = 0; ///< in seconds for each batch; 0 means no limit
    unsigned packet_size = 0;   ///< in bytes; 0 means the driver's default
};

/// A connection to a server. The destructor disconnects.
class Server {
  public:
    virtual ~Server() = default;
    /// Connects. Returns false if that fails; the reasons are sent to the sink as messages.
    virtual bool Connect(const LoginSettings& settings, ResultSink& sink) = 0;
    /// Runs a batch to its end, even if there are errors, or until the sink's Ended is true. Errors are sent
    /// to the sink. Returns false if the connection is lost. Must be called only after Connect has returned
    /// true.
    virtual bool Run(const std::string& batch, ResultSink& sink) = 0;
};

/// Makes a server that is not connected yet. Only one may exist at a time.
std::unique_ptr<Server> MakeServer();

} // namespace querytool
