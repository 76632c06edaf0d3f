// The state of a connection, for the sources that run statements on it. Internal to the layer.
#pragma once

#include <functional>
#include <memory>

#include "ado/connection.h"
#include "odbc/odbc.h"

namespace ado {

/// The handles of an open connection. Exists from Open to Close.
struct Session {
    odbc::Environment environment;
    odbc::Connection connection{environment};
    bool drops_results_after_error = false; ///< odbc::Connection::DropsResultsAfterError
};

/// Says how one statement is run.
struct Work {
    using Step = std::function<void(odbc::Statement&)>;

    std::int32_t timeout = 0; ///< in seconds; 0 means no limit
    /// True if the results after an error are to be read too. A call of the catalogue has only one result.
    bool results_after_error = false;
    /// Executes the statement.
    Step start;
    /// Called when all results have been read, unless the work has failed.
    Step finish{};
};

struct Connection::Impl {
    std::int32_t cursor_location = adUseServer;
    std::string connection_string;
    std::int32_t connection_timeout = 15; ///< in seconds; ADO's default
    std::int32_t command_timeout = 30;    ///< in seconds; ADO's default
    ado::Errors errors;
    std::unique_ptr<Session> session; ///< null if the connection is closed

    /// Throws kObjectClosed unless the connection is open.
    void RequireOpen() const;
    /// Throws kObjectOpen unless the connection is closed.
    void RequireClosed() const;
    /// Throws OdbcError.
    std::unique_ptr<Session> Connect() const;
    /// Does the work on a new statement, to the end of its last result, and returns the first result. Stores
    /// all reported errors and messages in `errors`. Throws CallError. The connection must be open.
    std::unique_ptr<Recordset> Run(const Work& work, std::int64_t& records_affected);
    /// Stores the records of the error in `errors` and throws the first as a CallError.
    [[noreturn]] void Fail(const odbc::OdbcError& error);
};

} // namespace ado
