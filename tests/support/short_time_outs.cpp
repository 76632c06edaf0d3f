// Replaces functions of the ODBC driver manager, so that the time-out of a message that hangs is short and a
// test need not wait five minutes. It works because the functions of the executable are found before those of
// a shared library.
#include "support/short_time_outs.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <utility>

#include <dlfcn.h>

#include "odbc/odbc_api.h"

namespace support {
namespace {

/// In seconds. The driver waits as long once more for the answer to its cancelling.
constexpr std::uintptr_t kShort = 5;

std::set<std::uintptr_t>& Seen() {
    static std::set<std::uintptr_t> seen;
    return seen;
}

/// The driver manager's own function of this name.
template <class Function>
Function Next(const char* name) {
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

/// If the next message hangs, returns the batch that does not count as a message; otherwise nothing.
std::optional<std::string> IgnoredBeforeHang() {
    const char* const path = std::getenv(kHangAheadVariable);
    std::ifstream file(path == nullptr ? "" : path, std::ios::binary);
    if (!file) {
        return std::nullopt;
    }
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void Record(SQLPOINTER seconds) {
    Seen().insert(reinterpret_cast<std::uintptr_t>(seconds));
}

void Shorten(SQLHSTMT statement) {
    static const auto set = Next<decltype(&SQLSetStmtAttrW)>("SQLSetStmtAttrW");
    set(statement, SQL_ATTR_QUERY_TIMEOUT, reinterpret_cast<SQLPOINTER>(kShort), SQL_IS_UINTEGER);
}

bool IsSame(const SQLWCHAR* text, SQLINTEGER length, const std::string& wanted) {
    return std::equal(text, text + length, wanted.begin(), wanted.end(),
                      [](SQLWCHAR one, char other) { return one == static_cast<unsigned char>(other); });
}

} // namespace

std::set<std::uintptr_t> TakeTimeOuts() {
    return std::exchange(Seen(), {});
}

} // namespace support

extern "C" {

SQLRETURN SQL_API SQLSetStmtAttrW(SQLHSTMT statement, SQLINTEGER attribute, SQLPOINTER value,
                                  SQLINTEGER length) {
    static const auto next = support::Next<decltype(&SQLSetStmtAttrW)>("SQLSetStmtAttrW");
    if (attribute == SQL_ATTR_QUERY_TIMEOUT) {
        support::Record(value);
    }
    return next(statement, attribute, value, length);
}

SQLRETURN SQL_API SQLSetConnectAttrW(SQLHDBC connection, SQLINTEGER attribute, SQLPOINTER value,
                                     SQLINTEGER length) {
    static const auto next = support::Next<decltype(&SQLSetConnectAttrW)>("SQLSetConnectAttrW");
    if (attribute == SQL_ATTR_LOGIN_TIMEOUT) {
        support::Record(value);
        if (support::IgnoredBeforeHang()) {
            value = reinterpret_cast<SQLPOINTER>(support::kShort);
        }
    }
    return next(connection, attribute, value, length);
}

SQLRETURN SQL_API SQLExecDirectW(SQLHSTMT statement, SQLWCHAR* text, SQLINTEGER length) {
    static const auto next = support::Next<decltype(&SQLExecDirectW)>("SQLExecDirectW");
    const std::optional<std::string> ignored = support::IgnoredBeforeHang();
    if (ignored && !support::IsSame(text, length, *ignored)) {
        support::Shorten(statement);
    }
    return next(statement, text, length);
}

SQLRETURN SQL_API SQLExecute(SQLHSTMT statement) {
    static const auto next = support::Next<decltype(&SQLExecute)>("SQLExecute");
    if (support::IgnoredBeforeHang()) {
        support::Shorten(statement);
    }
    return next(statement);
}
}
