#include "devserver/tsql/errors.h"

#include <array>
#include <string>

namespace devsql {
namespace {

constexpr std::array<MessageTemplate, 6> kOwnMessages = {{
    {321, 15, "\"%1\" is not a recognized table hints option. If it is intended as a parameter to a table-valued "
              "function or to the CHANGETABLE function, ensure that your database compatibility mode is set to 90."},
    {1222, 16, "Lock request time out period exceeded."},
    {8624, 16, "Internal error of the development server: %1"},
    {14262, 16, "The specified %1 ('%2') does not exist."},
    {40510, 16, "Statement '%1' is not supported in this version of SQL Server."},
    {40517, 16, "Keyword or statement option '%1' is not supported in this version of SQL Server."},
}};

std::string Filled(std::string_view text, std::initializer_list<std::string_view> arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9') {
            const auto index = static_cast<std::size_t>(text[++i] - '1');
            result += index < arguments.size() ? *(arguments.begin() + index) : std::string_view();
        } else {
            result += text[i];
        }
    }
    return result;
}

} // namespace

SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    if (FindMessage(number) == nullptr) {
        for (const MessageTemplate& message : kOwnMessages) {
            if (message.number == number) {
                return SqlError(number, message.severity, state, Filled(message.text, arguments));
            }
        }
    }
    return MakeError(number, arguments, state);
}

void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    throw ErrorOf(number, arguments, state);
}

} // namespace devsql
