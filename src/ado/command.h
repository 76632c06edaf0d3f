// Calls stored procedures, with the interface of ADO's Command. Callers do not see ODBC.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/connection.h"
#include "ado/parameter.h"

namespace ado {

inline constexpr std::int32_t adCmdStoredProc = 4;

/// The call of one stored procedure: its name, its parameters and its time-out. Every failure is a CallError.
/// Errors and messages of the server or the driver are in the connection's Errors, as after a call of the
/// connection itself.
class Command {
  public:
    Command();
    Command(const Command&) = delete; // its Parameters hold a pointer to it
    Command& operator=(const Command&) = delete;
    ~Command();

    /// Sets the connection, which must live as long as members of the command are called.
    void ActiveConnection(Connection& connection);
    /// Sets the procedure's name as the server accepts it, optionally with an owner before it and ";number"
    /// after it.
    void CommandText(const std::string& value);
    const std::string& CommandText() const { return command_text_; }
    /// Must be set to adCmdStoredProc. Any other value fails with kFeatureNotAvailable.
    void CommandType(std::int32_t value);
    /// Sets how long Execute may take; 0 means no limit.
    void CommandTimeout(std::int32_t seconds);

    ado::Parameters& Parameters() { return parameters_; }

    /// Calls the procedure with the values of Parameters and returns the first result, as Connection::Execute
    /// does; never returns null. An input parameter that is Empty is left out of the call, so that the
    /// procedure's default applies; an input/output parameter that is Empty is passed as NULL. After the call
    /// the return value and the output parameters have the values that the server returned.
    /// `records_affected` receives the same number as with Connection::Execute. `options` must be
    /// adOptionUnspecified.
    std::unique_ptr<Recordset> Execute(std::int64_t& records_affected, std::int32_t options);

  private:
    friend class ado::Parameters;

    /// Returns the connection. Throws CallError if it is not set or not open, if the command's type is not
    /// set or if its text is empty.
    Connection& RequireReady() const;

    Connection* connection_ = nullptr;
    std::string command_text_;
    std::int32_t command_type_ = 0;
    std::int32_t command_timeout_ = 30; // ADO's default
    ado::Parameters parameters_{*this};
};

} // namespace ado
