// The error that every layer of the server raises, and the table of messages by number (messages.txt). It
// knows nothing of procedures and lines: the code that catches an error adds where it happened.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace devsql {

/// An error on its way to the client, as SQL Server would report it, but without procedure and line.
class SqlError : public std::exception {
  public:
    SqlError(std::int32_t number, std::uint8_t severity, std::uint8_t state, std::string text)
        : number_(number), severity_(severity), state_(state), text_(std::move(text)) {}

    std::int32_t number() const noexcept { return number_; }
    std::uint8_t severity() const noexcept { return severity_; }
    std::uint8_t state() const noexcept { return state_; }
    /// UTF-8.
    const std::string& text() const noexcept { return text_; }
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    std::int32_t number_;
    std::uint8_t severity_;
    std::uint8_t state_;
    std::string text_;
};

/// One row of the message table.
struct MessageTemplate {
    std::int32_t number = 0;
    std::uint8_t severity = 0;
    std::string_view text; ///< UTF-8; "%1" to "%9" stand for the arguments
};

/// The message of that number; null if the table has none.
const MessageTemplate* FindMessage(std::int32_t number);

/// The whole table, ascending by number (sysmessages reads it).
std::span<const MessageTemplate> AllMessages();

/// A text with its arguments put in. An argument that is missing leaves nothing in its place.
std::string Filled(std::string_view text, std::span<const std::string_view> arguments);

/// An error by number. A number that the table doesn't have throws std::logic_error. What the server does not
/// support is 40510 ("Statement '%1' is not supported") or 40517 ("Keyword or statement option '%1' is not
/// supported").
SqlError ErrorOf(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                 std::uint8_t state = 1);
/// Throws ErrorOf(number, arguments, state).
[[noreturn]] void RaiseError(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                             std::uint8_t state = 1);
/// The same where the condition holds.
inline void RaiseIf(bool condition, std::int32_t number,
                    std::initializer_list<std::string_view> arguments = {}, std::uint8_t state = 1) {
    if (condition) {
        RaiseError(number, arguments, state);
    }
}

} // namespace devsql
