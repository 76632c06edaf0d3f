// Reads messages.txt, finds messages by number and puts their arguments in.
#include "devserver/tsql/scalar/sql_error.h"

#include <algorithm>
#include <charconv>
#include <stdexcept>
#include <vector>

namespace devsql {
namespace embedded {
extern const std::string_view kMessages;
} // namespace embedded

namespace {

/// Takes the number at the beginning of a line, and the blank after it.
int TakeNumber(std::string_view& line) {
    int number = 0;
    std::from_chars(line.data(), line.data() + line.size(), number);
    line.remove_prefix(line.find(' ') + 1);
    return number;
}

std::vector<MessageTemplate> LoadMessages() {
    std::vector<MessageTemplate> messages;
    std::string_view rest = embedded::kMessages;
    while (!rest.empty()) {
        std::string_view line = rest.substr(0, rest.find('\n'));
        rest.remove_prefix(line.size() + 1);
        if (!line.starts_with('#')) {
            const int number = TakeNumber(line);
            const auto severity = static_cast<std::uint8_t>(TakeNumber(line));
            messages.push_back({number, severity, line});
        }
    }
    return messages;
}

} // namespace

std::span<const MessageTemplate> AllMessages() {
    static const std::vector<MessageTemplate> all = LoadMessages();
    return all;
}

const MessageTemplate* FindMessage(std::int32_t number) {
    const auto all = AllMessages();
    const auto found = std::ranges::lower_bound(all, number, {}, &MessageTemplate::number);
    return found != all.end() && found->number == number ? &*found : nullptr;
}

std::string Filled(std::string_view text, std::span<const std::string_view> arguments) {
    std::string result;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool place = text[i] == '%' && i + 1 < text.size() && text[i + 1] >= '1' && text[i + 1] <= '9';
        if (!place) {
            result += text[i];
            continue;
        }
        const auto index = static_cast<std::size_t>(text[++i] - '1');
        result += index < arguments.size() ? arguments[index] : std::string_view();
    }
    return result;
}

SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    const MessageTemplate* message = FindMessage(number);
    if (message == nullptr) {
        throw std::logic_error("no message text for error " + std::to_string(number));
    }
    return {number, message->severity, state, Filled(message->text, arguments)};
}

void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments, std::uint8_t state) {
    throw ErrorOf(number, arguments, state);
}

} // namespace devsql
