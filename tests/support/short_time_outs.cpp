// Replaces two functions of the ODBC driver manager, so that every time-out that the program sets is two
// seconds long and a test need not wait five minutes. It works because the functions of the executable are
// found before those of a shared library.
#include "support/short_time_outs.h"

#include <cstdlib>
#include <set>
#include <utility>

#include <dlfcn.h>

#include "odbc/odbc_api.h"

namespace support {
namespace {

std::set<std::uintptr_t>& Seen() {
    static std::set<std::uintptr_t> seen;
    return seen;
}

/// The driver manager's own function of this name.
template <class Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

int& FullTimeOutsInUse() {
    static int count = 0;
    return count;
}

/// Records a time-out and returns two seconds; 0, which means no limit, stays 0.
SQLPOINTER Shortened(SQLPOINTER value) {
    if (FullTimeOutsInUse() > 0) {
        return value;
    }
    const auto seconds = reinterpret_cast<std::uintptr_t>(value);
    Seen().insert(seconds);
    return reinterpret_cast<SQLPOINTER>(seconds == 0 ? std::uintptr_t{0} : std::uintptr_t{2});
}

} // namespace

FullTimeOuts::FullTimeOuts() {
    ++FullTimeOutsInUse();
}

FullTimeOuts::~FullTimeOuts() {
    --FullTimeOutsInUse();
}

std::set<std::uintptr_t> TakeTimeOuts() {
    return std::exchange(Seen(), {});
}

} // namespace support

extern "C" {

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT statement, SQLINTEGER attribute, SQLPOINTER value,
                                  SQLINTEGER length) {
    static const auto next = support::Next<decltype(&SQLSetStmtAttrW)>("SQLSetStmtAttrW");
    return next(statement, attribute, attribute == SQL_ATTR_QUERY_TIMEOUT ? support::Shortened(value) : value,
                length);
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                                     SQLINTEGER length) {
    static const auto next = support::Next<decltype(&SQLSetConnectAttrW)>("SQLSetConnectAttrW");
    return next(connection, attribute,
                attribute == SQL_ATTR_LOGIN_TIMEOUT ? support::Shortened(value) : value, length);
}
}
