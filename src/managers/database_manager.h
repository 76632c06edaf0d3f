// The base of the manager classes that use a connection: it builds the connection string, opens the
// connection in the standard order, runs statements and handles failures in the standard way. Contains no
// operation itself.
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

/// The time in seconds that a statement or connecting may take, unless an operation sets another.
inline constexpr std::int32_t kTimeoutSeconds = 300;

class DatabaseManager;

/// A running operation of a manager and its one connection. Every member may throw a Failure or an exception
/// of the database layer; RunOperation handles it.
class Operation {
  public:
    explicit Operation(DatabaseManager& manager) : manager_(manager) {}

    /// Makes a connection and opens it for the database, in the standard order. `seconds` is the time-out of
    /// connecting and of each statement.
    void OpenStandard(const std::string& strDatabase, std::int32_t seconds = kTimeoutSeconds);

    // The steps of OpenStandard, for operations that need another order.

    /// Makes a closed connection with client-side results.
    void Create();
    void SetTimeouts(std::int32_t seconds);
    /// Sets the connection string for the database on the manager's selected server.
    void SetDatabase(const std::string& strDatabase);
    void Open();
    void Close();

    // Each of these asks the server, adds its errors to the manager's errors and returns the first result.
    // The operations check the recordset for null, although the database layer always returns one.

    std::unique_ptr<ado::Recordset> Execute(const std::string& statement,
                                            std::int32_t options = ado::adCmdText);
    std::unique_ptr<ado::Recordset> OpenSchema(std::int32_t schema);
    /// Runs the command, which must use this operation's connection.
    std::unique_ptr<ado::Recordset> Execute(ado::Command& command);

    /// Returns the connection, for a command. It exists after OpenStandard or Create.
    ado::Connection& Connection() { return *connection_; }

    /// Raises a kProgramFailure whose source is the manager's class.
    [[noreturn]] void Fail(const std::string& description) const;

  private:
    friend class DatabaseManager;

    /// Adds the errors of the last call to the manager's errors.
    void CollectErrors();
    /// If there is a connection, collects its errors, closes it and releases it.
    void CleanUp();

    DatabaseManager& manager_;
    std::unique_ptr<ado::Connection> connection_;
};

/// The base of the four manager classes that use a connection. Not used as a type of its own.
class DatabaseManager : public ManagerErrors, public ServerPairSettings {
  protected:
    /// `class_name` is a literal; it is not copied. It is the source of raised failures and the beginning of
    /// every log line.
    explicit DatabaseManager(const char* class_name);
    ~DatabaseManager() = default;

    using Steps = std::function<void(Operation&)>;

    /// Forgets earlier errors, runs the steps of an operation and closes its connection. Returns true if all
    /// steps succeeded. If a step fails, it collects the errors, closes the connection, writes a log line
    /// with the class's name and `error_source`, and returns false. A failure in that goes to the caller; the
    /// connection is then released without being closed first.
    bool RunOperation(const std::string& error_source, const Steps& steps);

    /// Returns the connection string for the database on the selected server; empty if that server has no
    /// name or no user. Nothing is escaped: a "#" in a value is replaced by the next value, and a ";" ends
    /// the value.
    std::string BuildConnectionString(const std::string& strDatabase) const;

  private:
    friend class Operation;

    const char* class_name_;
};

/// Return "::Operation('one')" and "::Operation('one', 'two')", as log lines name an operation.
std::string ErrorSource(const char* operation, const std::string& argument);
std::string ErrorSource(const char* operation, const std::string& first, const std::string& second);

} // namespace kv
