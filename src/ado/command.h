// A stored procedure, its parameters and its execution, with the interface of ADO. Callers do not see ODBC.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/connection.h"
#include "ado/parameter.h"

namespace ado {

inline constexpr std::int32_t adCmdStoredProc = 4;

/// Every failure is a CallError. What the server or the driver reported is in the connection's Errors, as
/// after a call of the connection itself.
class Command {
  public:
    Command();
    Command(const Command&) = delete; // its Parameters hold a pointer to it
    Command& operator=(const Command&) = delete;
    ~Command();

    /// The connection must outlive the command's last call.
    void ActiveConnection(Connection& connection);
    /// The procedure's name as the server accepts it, optionally with an owner before it and ";number" after
    /// it.
    void CommandText(const std::string& value);
    const std::string& CommandText() const { return command_text_; }
    /// adCmdStoredProc; anything else is refused with kFeatureNotAvailable.
    void CommandType(std::int32_t value);
    /// Seconds; 0: no limit.
    void CommandTimeout(std::int32_t seconds);

    ado::Parameters& Parameters() { return parameters_; }

    /// Calls the procedure with the values of Parameters and returns the first result, as Connection::Execute
    /// does. An input parameter that is Empty is left out of the call, so that the procedure's default
    /// applies; an Empty parameter of both directions is passed as NULL. Afterwards the return value and the
    /// output parameters have the values that the server returned. `options` must be adOptionUnspecified.
    /// Never returns null.
    std::unique_ptr<Recordset> Execute(std::int64_t& records_affected, std::int32_t options);

  private:
    friend class ado::Parameters;

    /// The connection. Throws if it is not open or if the command lacks something that it needs.
    Connection& Ready() const;

    Connection* connection_ = nullptr;
    std::string command_text_;
    std::int32_t command_type_ = 0;
    std::int32_t command_timeout_ = 30; // ADO's default
    ado::Parameters parameters_{*this};
};

} // namespace ado
