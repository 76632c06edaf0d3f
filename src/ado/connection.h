// A connection to a server, with the interface of ADO's Connection. Results are held on the client's side.
// Callers do not see ODBC.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/errors.h"
#include "ado/recordset.h"

namespace ado {

/// Values of CursorLocation: results stay on the server, or are copied to the client.
inline constexpr std::int32_t adUseServer = 2;
inline constexpr std::int32_t adUseClient = 3;
/// Options of a call: nothing is specified, or the command is the text of a statement.
inline constexpr std::int32_t adOptionUnspecified = -1;
inline constexpr std::int32_t adCmdText = 1;
/// The schema for OpenSchema that lists the stored procedures.
inline constexpr std::int32_t adSchemaProcedures = 16;

/// Every failure is a CallError. If the server or the driver reported it, it is the first entry of Errors. If
/// the call itself was wrong, it has one of the layer's own numbers (errors.h), and Errors does not change.
class Connection {
  public:
    Connection();
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;
    /// Closes the connection.
    ~Connection();

    // These three must be called before Open; they fail with kObjectOpen after it.

    /// Must be set to adUseClient. Other values fail with kFeatureNotAvailable.
    void CursorLocation(std::int32_t value);
    /// Sets the connection string of ODBC, which is passed to the driver unchanged.
    void ConnectionString(const std::string& value);
    /// Sets how long Open may take; 0 means no limit.
    void ConnectionTimeout(std::int32_t seconds);

    /// Sets how long each of the following statements may take; 0 means no limit.
    void CommandTimeout(std::int32_t seconds);

    /// Connects. If `connection_string` is not empty, it replaces the property. `user` and `password` must be
    /// empty (kFeatureNotAvailable), and `options` must be adOptionUnspecified (kArgumentsInConflict).
    void Open(const std::string& connection_string, const std::string& user, const std::string& password,
              std::int32_t options);
    /// Runs the text to the end of its last result and returns the first result; never returns null. The
    /// recordset is closed if the first result has no columns or if there is no result. An error before the
    /// first result or among its rows makes the call fail. An error after it makes the call fail if the first
    /// result has no columns; otherwise the error is only added to Errors. `records_affected` receives the
    /// number of rows that the first result has changed, or -1 if it has columns or the server did not count
    /// them. `options` must be adCmdText or adOptionUnspecified.
    std::unique_ptr<Recordset> Execute(const std::string& command_text, std::int64_t& records_affected,
                                       std::int32_t options);
    /// Returns a catalogue of the current database; never null. `schema` must be adSchemaProcedures; other
    /// numbers fail with kFeatureNotAvailable. The fields are PROCEDURE_CATALOG, PROCEDURE_SCHEMA and
    /// PROCEDURE_NAME ("name;1").
    std::unique_ptr<Recordset> OpenSchema(std::int32_t schema);
    /// Returns adStateOpen from Open to Close, also if the connection is lost in between; otherwise
    /// adStateClosed.
    std::int32_t State() const;
    /// Disconnects. Recordsets and Errors stay valid.
    void Close();
    /// Returns the errors and messages of the last call that asked the server: Open, Execute, OpenSchema, or
    /// a call of a command. The reference is valid as long as the connection; its content changes with the
    /// next call.
    const ado::Errors& Errors() const;

  private:
    friend class Command;
    friend class Parameters;

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace ado
