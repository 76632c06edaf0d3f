#include "ado/error_numbers.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

namespace ado {
namespace {

constexpr std::int32_t kErrorsInCommand = -2147217900; // 0x80040E14
constexpr std::int32_t kNoTable = -2147217865;         // 0x80040E37
constexpr std::int32_t kIntegrity = -2147217873;       // 0x80040E2F
constexpr std::int32_t kCannotConvert = -2147217913;   // 0x80040E07
constexpr std::int32_t kDataOverflow = -2147217833;    // 0x80040E57
constexpr std::int32_t kTimeOut = -2147217871;         // 0x80040E31
constexpr std::int32_t kLoginFailed = -2147217843;     // 0x80040E4D
constexpr std::int32_t kNoCommandText = -2147217908;   // 0x80040E0C
constexpr std::int32_t kUnspecified = -2147467259;     // 0x80004005
constexpr std::int32_t kRaisedMessage = 265946;        // 0x00040EDA: success, and there is something to read

/// Numbers from here on belong to scripts and procedures (RAISERROR), those below to the server.
constexpr std::int32_t kFirstRaised = 50000;

struct StateNumber {
    std::string_view sql_state;
    std::int32_t number;
};

/// States that are not here are unspecified errors. 37000 and S0002 are what drivers of ODBC 2 say.
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

std::int32_t NumberOf(std::string_view sql_state) {
    const auto* const row = std::ranges::find(kNumbers, sql_state, &StateNumber::sql_state);
    return row != kNumbers.end() ? row->number : kUnspecified;
}

std::int32_t NumberOf(const platform::odbc::Diagnostic& diagnostic) {
    if (!diagnostic.error) {
        return diagnostic.native_error >= kFirstRaised ? kRaisedMessage : 0;
    }
    return NumberOf(diagnostic.sql_state);
}

/// The group of the collection that an entry belongs to.
enum class Rank : std::uint8_t { Error, Raised, Message };

Rank RankOf(std::int32_t number) {
    return number == 0 ? Rank::Message : number == kRaisedMessage ? Rank::Raised : Rank::Error;
}

/// The last of the bracketed names in front of a message.
std::string SourceOf(std::string_view message) {
    const std::string_view text = platform::odbc::WithoutOrigin(message);
    std::string_view origin = message.substr(0, message.size() - text.size());
    if (origin.empty()) {
        return "ODBC";
    }
    origin.remove_suffix(1);
    return std::string(origin.substr(origin.rfind('[') + 1));
}

} // namespace

Error ErrorOf(const platform::odbc::Diagnostic& diagnostic) {
    Error error;
    error.Number = NumberOf(diagnostic);
    error.Description = diagnostic.message;
    error.Source = SourceOf(diagnostic.message);
    error.NativeError = diagnostic.native_error;
    error.SQLState = diagnostic.sql_state;
    return error;
}

Error NoCommandText() {
    Error error;
    error.Number = kNoCommandText;
    error.Description = "Command text was not set for the command object.";
    error.Source = "ODBC";
    return error;
}

Error RefusalOf(const char* sql_state, const std::string& text) {
    Error error;
    error.Number = NumberOf(sql_state);
    error.Description = text;
    error.Source = "ADODB.Command";
    error.SQLState = sql_state;
    return error;
}

Errors ErrorsOf(const std::vector<platform::odbc::Diagnostic>& diagnostics) {
    std::vector<Error> entries;
    std::ranges::transform(diagnostics, std::back_inserter(entries), ErrorOf);
    std::ranges::stable_sort(entries, {}, [](const Error& entry) { return RankOf(entry.Number); });
    return Errors(std::move(entries));
}

} // namespace ado
