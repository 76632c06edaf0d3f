// A stored procedure, its parameters and its execution, in the ways of ADO. ODBC stays behind it.
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "ado/connection.h"
#include "ado/parameter.h"

namespace ado {

inline constexpr std::int32_t adCmdStoredProc = 4;

/// Every failure is a CallError; what the server or the driver reported stands in the connection's Errors, as
/// after a call of the connection itself.
class Command {
  public:
    Command();
    Command(const Command&) = delete; // its parameters know it
    Command& operator=(const Command&) = delete;
    ~Command();

    /// The connection must outlive the command's last call.
    void ActiveConnection(Connection& connection);
    /// The procedure's name as the server takes it; an owner in front and a number behind ";" are understood.
    void CommandText(const std::string& value);
    const std::string& CommandText() const { return command_text_; }
    /// adCmdStoredProc; anything else is refused with kFeatureNotAvailable.
    void CommandType(std::int32_t value);
    /// Seconds; 0: no limit.
    void CommandTimeout(std::int32_t seconds);

    ado::Parameters& Parameters() { return parameters_; }

    /// Calls the procedure with the values of Parameters: the first result, as Connection::Execute gives it.
    /// An empty value is left to the procedure's default, also where the parameter gives one back. When all
    /// results have been read, the return value and the parameters that give something back have what came.
    /// `options` is adOptionUnspecified. Null is no answer of a server.
    std::unique_ptr<Recordset> Execute(std::int64_t& records_affected, std::int32_t options);

  private:
    friend class ado::Parameters;

    /// The connection, which must be open, of a command that can be run.
    Connection& Ready() const;

    Connection* connection_ = nullptr;
    std::string command_text_;
    std::int32_t command_type_ = 0;
    std::int32_t command_timeout_ = 30; // what it is when nobody sets it
    ado::Parameters parameters_{*this};
};

} // namespace ado
