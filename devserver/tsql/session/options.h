// The SET options of a session.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "devserver/tsql/scalar/date_parser.h"

namespace devsql {

/// A procedure runs with a copy, so that its changes end with it.
struct Options {
    bool nocount = false;
    bool xact_abort = false;
    bool ansi_nulls = true;
    bool quoted_identifier = true;
    bool concat_null_yields_null = true;
    bool implicit_transactions = false; ///< a statement that reads or writes begins a transaction
    bool cursor_close_on_commit = false;
    bool noexec = false;
    bool parseonly = false;
    bool fmtonly = false;
    std::int16_t isolation_level = 2;   ///< by the catalogue's number; kept and shown, without effect
    std::int64_t rowcount = 0;          ///< the most rows of a statement; 0: no limit
    std::int64_t textsize = 2147483647; ///< bytes
    std::int64_t lock_timeout = -1;     ///< milliseconds; -1: not set (Transactions::LockTime)
    DateSettings dates;
    std::map<std::string, std::string> others; ///< accepted and kept, without effect
};

} // namespace devsql
