// What stands behind a connection: inner header of the layer, for the sources that run something on one.
#pragma once

#include <functional>
#include <memory>

#include "ado/connection.h"
#include "odbc/odbc.h"

namespace ado {

/// What is there from Open to Close.
struct Session {
    platform::odbc::Environment environment;
    platform::odbc::Connection connection{environment};
    bool drops_results_behind_error = false;
};

/// One thing that a statement does.
struct Work {
    using Step = std::function<void(platform::odbc::Statement&)>;

    std::int32_t timeout = 0; ///< seconds; 0: no limit
    /// The results behind an error are wanted too. A call of the catalogue has none.
    bool results_behind_error = false;
    Step start;
    /// Called when all results have been read, unless the work has failed.
    Step finish{};
};

struct Connection::Impl {
    std::int32_t cursor_location = adUseServer;
    std::string connection_string;
    std::int32_t connection_timeout = 15; // seconds, as the next one: what they are when nobody sets them
    std::int32_t command_timeout = 30;
    ado::Errors errors;
    std::unique_ptr<Session> session;

    /// Throws kObjectClosed or kObjectOpen.
    void CheckOpen(bool wanted) const;
    std::unique_ptr<Session> Connect() const;
    /// Does the work on a statement of its own to the end of its last result. Gives the first result; leaves
    /// what was reported in `errors`. Throws CallError. The connection must be open.
    std::unique_ptr<Recordset> Run(const Work& work, std::int64_t& records_affected);
    /// What the database reported becomes the errors and, the first of it, the failure.
    [[noreturn]] void Fail(const platform::odbc::OdbcError& error);
};

} // namespace ado
