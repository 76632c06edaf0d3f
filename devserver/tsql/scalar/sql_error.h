// The error that every layer of the server raises, and the one table of message texts by number.
// Knows nothing of procedures and lines: who catches an error adds where it happened.
#pragma once

#include <cstdint>
#include <exception>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace devsql {

/// An error on its way to the client: what SQL Server would report, without procedure and line.
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

/// The text of a message with its arguments put in. An argument that is missing leaves nothing in its place.
/// A number that the table doesn't have throws std::logic_error.
std::string MessageText(std::int32_t number, std::initializer_list<std::string_view> arguments = {});

/// An error by number. A number that the table doesn't have throws std::logic_error.
SqlError MakeError(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                   std::uint8_t state = 1);

/// Throws MakeError(number, arguments, state).
[[noreturn]] void Raise(std::int32_t number, std::initializer_list<std::string_view> arguments = {},
                        std::uint8_t state = 1);

} // namespace devsql
