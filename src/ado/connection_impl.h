// The state of a connection. Internal to the layer, for the sources that run statements on a connection.
#pragma once

#include <functional>
#include <memory>

#include "ado/connection.h"
#include "odbc/odbc.h"

namespace ado {

/// Exists from Open to Close.
struct Session {
    odbc::Environment environment;
    odbc::Connection connection{environment};
    bool drops_results_after_error = false;
};

/// The work of one statement.
struct Work {
    using Step = std::function<void(odbc::Statement&)>;

    std::int32_t timeout = 0; ///< seconds; 0: no limit
    /// True if the results after an error are read too. A call of the catalogue has only one result.
    bool results_after_error = false;
    Step start;
    /// Called when all results have been read, unless the work has failed.
    Step finish{};
};

struct Connection::Impl {
    std::int32_t cursor_location = adUseServer;
    std::string connection_string;
    std::int32_t connection_timeout = 15; // seconds, as is the next one; both are ADO's defaults
    std::int32_t command_timeout = 30;
    ado::Errors errors;
    std::unique_ptr<Session> session;

    /// Throws kObjectClosed or kObjectOpen unless the connection is open (true) or closed (false) as wanted.
    void CheckOpen(bool wanted) const;
    std::unique_ptr<Session> Connect() const;
    /// Does the work on a new statement, to the end of its last result. Returns the first result and stores
    /// what was reported in `errors`. Throws CallError. The connection must be open.
    std::unique_ptr<Recordset> Run(const Work& work, std::int64_t& records_affected);
    /// Stores what the database reported in `errors` and throws the first of them.
    [[noreturn]] void Fail(const odbc::OdbcError& error);
};

} // namespace ado
