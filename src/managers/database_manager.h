// The base of the manager classes that use a connection: the connection string, the standard open sequence,
// how a statement is run, and the standard failure path. Contains no operation.
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

/// A running operation and its one connection. A failure in one of its steps starts its failure path.
class Operation {
  public:
    explicit Operation(DatabaseManager& manager) : manager_(manager) {}

    /// The standard open sequence. `seconds` is both time-outs.
    void OpenStandard(const std::string& strDatabase, std::int32_t seconds = kTimeoutSeconds);

    // The steps of that sequence, for operations that need another order.

    /// A new connection with its results on the client's side.
    void Create();
    void SetTimeouts(std::int32_t seconds);
    void SetDatabase(const std::string& strDatabase);
    void Open();
    void Close();

    // Each collects the errors that the server reported, and returns null if there is no recordset.

    std::unique_ptr<ado::Recordset> Execute(const std::string& statement,
                                            std::int32_t options = ado::adCmdText);
    std::unique_ptr<ado::Recordset> OpenSchema(std::int32_t schema);
    /// Runs the command, whose connection is this operation's.
    std::unique_ptr<ado::Recordset> Execute(ado::Command& command);

    /// The connection, for a command. It exists after OpenStandard or Create.
    ado::Connection& Connection() { return *connection_; }

    /// Raises a failure with the class as its source.
    [[noreturn]] void Fail(const std::string& description) const;

  private:
    friend class DatabaseManager;

    void Collect();
    /// Collects the errors, then closes and releases the connection, if there is one.
    void CleanUp();

    DatabaseManager& manager_;
    std::unique_ptr<ado::Connection> connection_;
};

/// The base of the four manager classes. Not used as a type of its own.
class DatabaseManager : public ManagerErrors, public ServerPairSettings {
  protected:
    /// `class_name` is a literal: the source of raised failures and the beginning of every log line.
    explicit DatabaseManager(const char* class_name);
    ~DatabaseManager() = default;

    using Steps = std::function<void(Operation&)>;

    /// Runs the steps of an operation and closes its connection. If a step fails, runs the standard failure
    /// path, which writes the class's name and `error_source` to the log. True if all steps succeeded. A
    /// failure inside the failure path goes to the caller; the connection is then released without being
    /// closed first.
    bool RunOperation(const std::string& error_source, const Steps& steps);

    /// The connection string for the database on the selected server; empty if that server has no name or no
    /// user. Nothing is escaped: a "#" in a value is replaced by the next value, and a ";" ends the value.
    std::string BuildConnectionString(const std::string& strDatabase) const;

  private:
    friend class Operation;

    const char* class_name_;
};

/// "::Operation('one')" and "::Operation('one', 'two')", as log lines name an operation.
std::string ErrorSource(const char* operation, const std::string& argument);
std::string ErrorSource(const char* operation, const std::string& first, const std::string& second);

} // namespace kv
