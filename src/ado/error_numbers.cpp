// Gives each diagnostic record its number and its source, and sorts the entries.
#include "ado/error_numbers.h"

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string_view>
#include <utility>

#include "odbc/error_number.h"

namespace ado {
namespace {

constexpr std::int32_t kNoCommandText = -2147217908; // 0x80040E0C
constexpr std::int32_t kRaisedMessage = 265946;      // 0x00040EDA: success with a message

/// Scripts and procedures raise errors with this number and higher ones (RAISERROR). Lower ones are the
/// server's.
constexpr std::int32_t kFirstRaised = 50000;

std::int32_t NumberOf(const odbc::Diagnostic& diagnostic) {
    if (!diagnostic.error) {
        return diagnostic.native_error >= kFirstRaised ? kRaisedMessage : 0;
    }
    return odbc::ErrorNumberOf(diagnostic.sql_state);
}

/// The groups of the collection's entries, in the order in which they are sorted.
enum class EntryGroup : std::uint8_t { Error, RaisedMessage, ServerMessage };

EntryGroup GroupOf(std::int32_t number) {
    if (number == 0) {
        return EntryGroup::ServerMessage;
    }
    return number == kRaisedMessage ? EntryGroup::RaisedMessage : EntryGroup::Error;
}

/// Returns the last of the bracketed names before a message: "SQL Server" for "[FreeTDS][SQL Server]...".
std::string SourceOf(std::string_view message) {
    const std::string_view text = odbc::WithoutOrigin(message);
    std::string_view origin = message.substr(0, message.size() - text.size());
    if (origin.empty()) {
        return "ODBC";
    }
    origin.remove_suffix(1); // the last "]"
    return std::string(origin.substr(origin.rfind('[') + 1));
}

} // namespace

Error ErrorOf(const odbc::Diagnostic& diagnostic) {
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
    error.Number = odbc::ErrorNumberOf(sql_state);
    error.Description = text;
    error.Source = "ADODB.Command";
    error.SQLState = sql_state;
    return error;
}

Errors ErrorsOf(const std::vector<odbc::Diagnostic>& diagnostics) {
    std::vector<Error> entries;
    std::ranges::transform(diagnostics, std::back_inserter(entries), ErrorOf);
    std::ranges::stable_sort(entries, {}, [](const Error& entry) { return GroupOf(entry.Number); });
    return Errors(std::move(entries));
}

} // namespace ado
