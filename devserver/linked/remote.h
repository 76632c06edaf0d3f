// The interface to another server: a connection that runs T-SQL there and hands the results back in order.
// Knows nothing of ODBC, nor of the use that the language makes of it.
#pragma once

#include <cstdint>
#include <exception>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "devserver/engine/engine.h"

namespace devsql {

/// Where another server is and who logs in there. Texts are UTF-8.
struct RemoteSource {
    std::string address;         ///< HOST, "HOST,PORT", HOST\INSTANCE
    std::string provider_string; ///< attributes of a connection string, added after the others
    std::string catalog;         ///< the database; empty: the login's default
    std::string user;
    std::string password;
    std::string application; ///< the application name of the connection
    unsigned connect_seconds = 15;
    unsigned query_seconds = 600; ///< 0: no limit
};

/// Takes the results of a batch at the other server, in order.
class RemoteSink {
  public:
    virtual ~RemoteSink() = default;
    /// Begins a result set.
    virtual void Columns(const std::vector<Column>& columns) = 0;
    virtual void Row(const std::vector<Value>& values) = 0;
    /// The number of rows that a statement without a result set has changed.
    virtual void Count(std::int64_t rows) = 0;
    /// Takes an error or a message of the other server.
    virtual void Said(const Message& message) = 0;
};

/// The other server cannot be reached or used: the message of the driver or of the server.
class RemoteFailure : public std::exception {
  public:
    enum class Kind : std::uint8_t {
        NoDriver,    ///< this system has no driver for such a server
        Refused,     ///< the server refused the login: `message` is its error
        Unreachable, ///< no server answered, or it did not answer in time
        Lost,        ///< the connection broke while it was used
        TimedOut,    ///< a batch took too long, or was cancelled; the connection can still be used
    };
    RemoteFailure(Kind kind, Message message) : kind_(kind), message_(std::move(message)) {}
    Kind kind() const { return kind_; }
    const Message& message() const { return message_; }
    const char* what() const noexcept override { return message_.text.c_str(); }

  private:
    Kind kind_;
    Message message_;
};

/// One connection; used by one thread at a time, except Cancel.
class RemoteConnection {
  public:
    virtual ~RemoteConnection() = default;
    /// Runs a batch to its end. Errors of the other server go to the sink. Throws RemoteFailure. An exception
    /// of the sink is passed on and ends the batch at the other server.
    virtual void Run(const std::string& sql, RemoteSink& sink) = 0;
    /// Asks the running batch to end soon. May be called from any thread, at any time.
    virtual void Cancel() = 0;
};

/// Connects to a server. Throws RemoteFailure.
using RemoteConnector = std::function<std::unique_ptr<RemoteConnection>(const RemoteSource&)>;

} // namespace devsql
