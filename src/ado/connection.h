// One connection to a server and what runs on it, in the ways of ADO: client-side results, positional fields,
// a collection of errors. Knows no program above; ODBC stays behind it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/errors.h"
#include "ado/recordset.h"

namespace ado {

inline constexpr std::int32_t adUseServer = 2;
inline constexpr std::int32_t adUseClient = 3;
/// The option that says nothing, and the one that says that a command is text.
inline constexpr std::int32_t adOptionUnspecified = -1;
inline constexpr std::int32_t adCmdText = 1;
/// The catalogue of the stored procedures.
inline constexpr std::int32_t adSchemaProcedures = 16;

/// Every failure is a CallError: the first of Errors where the server or the driver reported it, one of the
/// layer's own numbers where the call itself was wrong.
class Connection {
  public:
    Connection();
    Connection(Connection&&) noexcept;
    Connection& operator=(Connection&&) noexcept;
    /// Closes.
    ~Connection();

    // To be set before Open.

    /// Results are held on the client's side (adUseClient) only; the other side is refused with
    /// kFeatureNotAvailable.
    void CursorLocation(std::int32_t value);
    std::int32_t CursorLocation() const;
    /// Goes to the driver as it is.
    void ConnectionString(const std::string& value);
    const std::string& ConnectionString() const;
    /// Seconds that connecting may take; 0: no limit.
    void ConnectionTimeout(std::int32_t seconds);
    std::int32_t ConnectionTimeout() const;

    /// Seconds that a statement may take; 0: no limit. Counts for the statements that follow.
    void CommandTimeout(std::int32_t seconds);
    std::int32_t CommandTimeout() const;

    /// A connection string that is not empty takes the property's place. A user or a password beside it, and
    /// an option but adOptionUnspecified, are refused.
    void Open(const std::string& connection_string, const std::string& user, const std::string& password,
              std::int32_t options);
    /// Runs the text to the end of its last result. Gives the first result, a closed recordset if that has
    /// no columns or if there is none. An error before the first result or amid its rows fails the call; one
    /// behind it fails the call if the first result has no columns, and else stays in Errors.
    /// `records_affected` gets the rows that the first result touched, -1 where nothing was counted.
    /// `options` is adCmdText or adOptionUnspecified. Null is no answer of a server; callers that were taught
    /// to look for it may.
    std::unique_ptr<Recordset> Execute(const std::string& command_text, std::int64_t& records_affected,
                                       std::int32_t options);
    /// A catalogue of the database: adSchemaProcedures, of which the fields PROCEDURE_CATALOG,
    /// PROCEDURE_SCHEMA and PROCEDURE_NAME ("name;1") are promised. Other numbers are refused with
    /// kFeatureNotAvailable.
    std::unique_ptr<Recordset> OpenSchema(std::int32_t schema);
    /// adStateOpen from Open to Close, also when the server has gone meanwhile.
    std::int32_t State() const;
    /// Recordsets stay. Errors too.
    void Close();
    /// What the last call that asked the server left: Open, Execute, OpenSchema, or one of a command.
    const ado::Errors& Errors() const;

  private:
    friend class Command;
    friend class Parameters;

    struct Impl;
    std::unique_ptr<Impl> impl_;
};

} // namespace ado
