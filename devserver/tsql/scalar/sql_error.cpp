// Finding messages by number and putting their arguments in.
#include "devserver/tsql/scalar/sql_error.h"

#include <algorithm>
#include <stdexcept>
#include <vector>

#include "devserver/tsql/scalar/message_table.h"

namespace devsql {

namespace {

std::vector<MessageTemplate> JoinTables() {
    std::vector<MessageTemplate> all;
    for (const auto& half : {LanguageMessages(), ServerMessages()}) {
        all.insert(all.end(), half.begin(), half.end());
    }
    return all;
}

const MessageTemplate& RequireMessage(std::int32_t number) {
    const MessageTemplate* message = FindMessage(number);
    if (message == nullptr) {
        throw std::logic_error("no message text for error " + std::to_string(number));
    }
    return *message;
}

std::string PutIn(std::string_view text, std::initializer_list<std::string_view> arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool placeholder =
            text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
        if (!placeholder) {
            result += text[i];
            continue;
        }
        const auto index = static_cast<std::size_t>(text[++i] - '1');
        if (index < arguments.size()) {
            result += *(arguments.begin() + index);
        }
    }
    return result;
}

} // namespace

std::span<const MessageTemplate> AllMessages() {
    static const std::vector<MessageTemplate> all = JoinTables();
    return all;
}

const MessageTemplate* FindMessage(std::int32_t number) {
    const auto all = AllMessages();
    const auto found =
        std::lower_bound(all.begin(), all.end(), number,
                         [](const MessageTemplate& m, std::int32_t n) { return m.number < n; });
    return found != all.end() && found->number == number ? &*found : nullptr;
}

std::string MessageText(std::int32_t number, std::initializer_list<std::string_view> arguments) {
    return PutIn(RequireMessage(number).text, arguments);
}

SqlError MakeError(std::int32_t number, std::initializer_list<std::string_view> arguments,
                   std::uint8_t state) {
    const MessageTemplate& message = RequireMessage(number);
    return {number, message.severity, state, PutIn(message.text, arguments)};
}

void Raise(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    throw MakeError(number, arguments, state);
}

} // namespace devsql
