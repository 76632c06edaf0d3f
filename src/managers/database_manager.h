// What the manager classes that use a connection share: the connection string, the standard open sequence,
// the form of every statement and the standard failure path, each written once. Knows no operation.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "ado/command.h"
#include "ado/connection.h"
#include "managers/db_errors.h"
#include "managers/server_pair_settings.h"

namespace kv {

/// Seconds for a statement and for connecting, unless an operation says otherwise.
inline constexpr std::int32_t kTimeoutSeconds = 300;

class DatabaseManager;

/// An operation while it runs: its one connection, as its steps use it. Failures go to its failure path.
class Operation {
  public:
    explicit Operation(DatabaseManager& manager) : manager_(manager) {}

    /// The standard open sequence. `seconds` is both time-outs.
    void OpenStandard(const std::string& strDatabase, std::int32_t seconds = kTimeoutSeconds);

    // Its pieces, for an operation with an order of its own.

    /// A new connection with its results on the client's side.
    void Create();
    void SetTimeouts(std::int32_t seconds);
    void SetDatabase(const std::string& strDatabase);
    void Open();
    void Close();

    // Each collects what the server reported. Null if no recordset came back.

    std::unique_ptr<ado::Recordset> Execute(const std::string& statement,
                                            std::int32_t options = ado::adCmdText);
    std::unique_ptr<ado::Recordset> OpenSchema(std::int32_t schema);
    /// Runs the command, whose connection is this operation's.
    std::unique_ptr<ado::Recordset> Execute(ado::Command& command);

    /// For a command. There is one from OpenStandard or Create on.
    ado::Connection& Connection() { return *connection_; }

    /// Raises a failure of the operation's own, with the class as its source.
    [[noreturn]] void Fail(const std::string& description) const;

  private:
    friend class DatabaseManager;

    void Collect();
    /// Collects, closes and releases, if there is a connection.
    void CleanUp();

    DatabaseManager& manager_;
    std::unique_ptr<ado::Connection> connection_;
};

/// The base of the four classes. There to be written once, not to be used as a type of its own.
class DatabaseManager : public ManagerErrors, public ServerPairSettings {
  protected:
    /// `class_name` is a literal: the source of raised failures and the head of every log line.
    explicit DatabaseManager(const char* class_name);
    ~DatabaseManager() = default;

    using Steps = std::function<void(Operation&)>;

    /// Runs an operation: its steps, the standard success end, or the standard failure path with the class's
    /// name and `error_source` in the log. True if the steps ran to their end. A failure inside the failure
    /// path goes to the caller; the connection is then released without being closed first.
    bool RunOperation(const std::string& error_source, const Steps& steps);

    /// The connection string for the database on the selected server; empty if that server has no name or no
    /// user. Nothing is escaped: a "#" in a value takes the place of the next one, a ";" ends it.
    std::string BuildConnectionString(const std::string& strDatabase) const;

  private:
    friend class Operation;

    const char* class_name_;
};

/// "::Operation('one')" and "::Operation('one', 'two')", as log lines name an operation.
std::string ErrorSource(const char* operation, const std::string& argument);
std::string ErrorSource(const char* operation, const std::string& first, const std::string& second);

} // namespace kv
