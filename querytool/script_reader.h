// Reads lines of input and finds what each of them is: a part of the batch, its end, or a command. Knows
// nothing of servers.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace querytool {

/// The content of a script as 8-bit text, code page 1252. A file that begins with the mark of UTF-8 or UTF-16
/// is converted: a character that the code page lacks, and a byte that is not UTF-8, becomes "?". All other
/// files stay as they are, byte for byte.
std::string ToCodePage(std::string content);

/// Where lines come from.
class LineSource {
  public:
    virtual ~LineSource() = default;
    /// The next line with its line end, valid until the next call; nothing at the end of the input.
    virtual std::optional<std::string_view> Next() = 0;
};

/// The lines of a text. CR LF, LF and CR alone all end a line. A CR alone becomes CR LF: the server does not
/// accept it as a line end, and a comment would continue to the end of the batch.
class TextLines : public LineSource {
  public:
    explicit TextLines(std::string text);
    std::optional<std::string_view> Next() override;

  private:
    std::string text_;
    std::size_t at_ = 0;
    std::string mended_;
};

/// The lines of a stream, each read when it is needed. NUL bytes become blanks, as in TextLines.
class StreamLines : public LineSource {
  public:
    explicit StreamLines(std::istream& stream) : stream_(stream) {}
    std::optional<std::string_view> Next() override;

  private:
    std::istream& stream_;
    std::string line_;
};

enum class LineKind : std::uint8_t {
    Text,    ///< belongs to the batch
    Run,     ///< GO: run the batch `count` times
    Reset,   ///< drop the batch
    Quit,    ///< end without running the batch
    ExitRun, ///< EXIT(query): add the query, run, and end with its first value as exit code
    Refused, ///< a command of the tool that is not supported
};

struct LineMeaning {
    LineKind kind = LineKind::Text;
    unsigned count = 1;
    std::string_view text; ///< the query of EXIT(...), or the name of a refused command
};

/// Follows the strings, quoted names and comments of a batch. A line inside one of them is not a command: a
/// GO in a string or in a comment belongs to the batch.
class BatchLexer {
  public:
    /// True if the next line begins outside all of them.
    bool AtCommands() const { return state_ == State::Plain; }
    /// Moves past a line of the batch, which is given with its line end.
    void Take(std::string_view line);
    /// Begins a new batch. A string or comment that the last batch left open does not continue in it.
    void Reset() { *this = BatchLexer(); }

  private:
    enum class State : std::uint8_t { Plain, String, DoubleQuoted, Bracketed, Comment };

    /// Handles the character or characters at `at`, and moves `at` past them.
    void Step(std::string_view line, std::size_t& at);

    State state_ = State::Plain;
    unsigned comment_depth_ = 0; ///< comments can be nested
};

/// `terminator` is the word that ends a batch. Blanks around commands are ignored.
LineMeaning MeaningOf(std::string_view line, std::string_view terminator);

} // namespace querytool
