// A connection to a server, with the interface of ADO: client-side results, fields by position, a collection
// of errors. Callers do not see ODBC.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/errors.h"
#include "ado/recordset.h"

namespace ado {

inline constexpr std::int32_t adUseServer = 2;
inline constexpr std::int32_t adUseClient = 3;
/// Options of a call: unspecified, and that the command is text.
inline constexpr std::int32_t adOptionUnspecified = -1;
inline constexpr std::int32_t adCmdText = 1;
/// The catalogue of the stored procedures.
inline constexpr std::int32_t adSchemaProcedures = 16;

/// Every failure is a CallError: the first entry of Errors if the server or the driver reported it, or one of
/// the layer's own numbers (errors.h) if the call itself was wrong.
class Connection {
  public:
    Connection();
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;
    /// Closes.
    ~Connection();

    // To be set before Open.

    /// Only adUseClient is supported: results are held on the client's side. Other values fail with
    /// kFeatureNotAvailable.
    void CursorLocation(std::int32_t value);
    /// Passed to the driver unchanged.
    void ConnectionString(const std::string& value);
    /// Seconds that connecting may take; 0: no limit.
    void ConnectionTimeout(std::int32_t seconds);

    /// Seconds that a statement may take; 0: no limit. Applies to the statements that follow.
    void CommandTimeout(std::int32_t seconds);

    /// A connection string that is not empty replaces the property. A separate user or password, and any
    /// option other than adOptionUnspecified, is refused.
    void Open(const std::string& connection_string, const std::string& user, const std::string& password,
              std::int32_t options);
    /// Runs the text to the end of its last result. Returns the first result: a closed recordset if it has no
    /// columns or if there is no result. An error before the first result or among its rows fails the call.
    /// An error after it fails the call if the first result has no columns, and otherwise is only kept in
    /// Errors. `records_affected` receives the number of rows that the first result touched, or -1 if the
    /// server did not count them. `options` must be adCmdText or adOptionUnspecified. Never returns null.
    std::unique_ptr<Recordset> Execute(const std::string& command_text, std::int64_t& records_affected,
                                       std::int32_t options);
    /// A catalogue of the database. Only adSchemaProcedures is supported, with the fields PROCEDURE_CATALOG,
    /// PROCEDURE_SCHEMA and PROCEDURE_NAME ("name;1"); other numbers fail with kFeatureNotAvailable.
    std::unique_ptr<Recordset> OpenSchema(std::int32_t schema);
    /// adStateOpen from Open to Close, also if the connection is lost in between.
    std::int32_t State() const;
    /// Recordsets and Errors stay valid.
    void Close();
    /// The errors and messages of the last call that asked the server: Open, Execute, OpenSchema, or a call
    /// of a command.
    const ado::Errors& Errors() const;

  private:
    friend class Command;
    friend class Parameters;

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace ado
