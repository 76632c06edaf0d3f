// The table of ADO's numbers.
#include "odbc/error_number.h"

#include <algorithm>
#include <array>

namespace odbc {
namespace {

constexpr std::int32_t kErrorsInCommand = -2147217900; // 0x80040E14
constexpr std::int32_t kNoTable = -2147217865;         // 0x80040E37
constexpr std::int32_t kIntegrity = -2147217873;       // 0x80040E2F
constexpr std::int32_t kCannotConvert = -2147217913;   // 0x80040E07
constexpr std::int32_t kDataOverflow = -2147217833;    // 0x80040E57
constexpr std::int32_t kTimeOut = -2147217871;         // 0x80040E31
constexpr std::int32_t kLoginFailed = -2147217843;     // 0x80040E4D
constexpr std::int32_t kUnspecified = -2147467259;     // 0x80004005

struct StateNumber {
    std::string_view sql_state;
    std::int32_t number;
};

/// 37000 and S0002 are states of ODBC 2, which some drivers report.
constexpr std::array kNumbers = {
    StateNumber{"21S01", kErrorsInCommand}, StateNumber{"22001", kDataOverflow},
    StateNumber{"22003", kDataOverflow},    StateNumber{"22005", kCannotConvert},
    StateNumber{"22007", kCannotConvert},   StateNumber{"22008", kCannotConvert},
    StateNumber{"22018", kCannotConvert},   StateNumber{"23000", kIntegrity},
    StateNumber{"28000", kLoginFailed},     StateNumber{"37000", kErrorsInCommand},
    StateNumber{"42000", kErrorsInCommand}, StateNumber{"42S01", kErrorsInCommand},
    StateNumber{"42S02", kNoTable},         StateNumber{"42S22", kErrorsInCommand},
    StateNumber{"HYT00", kTimeOut},         StateNumber{"S0002", kNoTable},
};

} // namespace

std::int32_t ErrorNumberOf(std::string_view sql_state) {
    const auto* const row = std::ranges::find(kNumbers, sql_state, &StateNumber::sql_state);
    return row != kNumbers.end() ? row->number : kUnspecified;
}

} // namespace odbc
