// Reads the input line by line, and finds out whether a line belongs to the batch, ends it, or is a command
// of the tool. Knows nothing of servers.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace querytool {

/// Converts the content of a script file to code page 1252 if it begins with the byte order mark of UTF-8 or
/// UTF-16. A character that the code page lacks, and a byte that is not valid UTF-8, becomes "?". The content
/// of all other files is returned unchanged.
std::string ToCodePage(std::string content);

/// Provides the lines of the input. NUL bytes in them are replaced by blanks.
class LineSource {
  public:
    virtual ~LineSource() = default;
    /// Returns the next line with its line end, valid until the next call; nothing at the end of the input.
    virtual std::optional<std::string_view> Next() = 0;
};

/// Provides the lines of a text. CR LF, LF and a single CR end a line. A single CR becomes CR LF: the server
/// does not accept it as a line end, so a comment would continue to the end of the batch.
class TextLines : public LineSource {
  public:
    explicit TextLines(std::string text);
    std::optional<std::string_view> Next() override;

  private:
    std::string text_;
    std::size_t at_ = 0;         ///< the position of the next line
    std::string line_with_crlf_; ///< the last line if its CR became CR LF
};

/// Provides the lines of a stream, each read when it is needed. LF ends a line.
class StreamLines : public LineSource {
  public:
    /// The stream must outlive this object.
    explicit StreamLines(std::istream& stream) : stream_(stream) {}
    std::optional<std::string_view> Next() override;

  private:
    std::istream& stream_;
    std::string line_;
};

/// The kinds of lines.
enum class LineKind : std::uint8_t {
    Text,    ///< a part of the batch
    Run,     ///< GO: runs the batch
    Reset,   ///< RESET: drops the batch
    Quit,    ///< QUIT or EXIT: ends the tool without running the batch
    ExitRun, ///< EXIT(query): adds the query to the batch, runs it and ends the tool with its first value as
             ///< exit code
    Refused, ///< a command of OSQL that is not supported
};

/// The kind of a line and the command's arguments.
struct LineMeaning {
    LineKind kind = LineKind::Text;
    unsigned count = 1;    ///< of GO: how many times the batch is run
    std::string_view text; ///< the query of EXIT(query), or the name of a refused command
};

/// Follows the strings, quoted names and comments of a batch. A line inside one of them is not a command: a
/// GO in a string or in a comment belongs to the batch.
class BatchLexer {
  public:
    /// True if the next line begins outside all of them, so that it can be a command.
    bool NextMayBeCommand() const { return state_ == State::Plain; }
    /// Reads a line of the batch, which must have its line end.
    void Advance(std::string_view line);
    /// Begins a new batch. A string or comment that the last batch left open does not continue in it.
    void Reset() { *this = BatchLexer(); }

  private:
    enum class State : std::uint8_t { Plain, String, DoubleQuoted, Bracketed, Comment };

    /// Reads the character, or the two characters that belong together, at `at`, and moves `at` past them.
    void Step(std::string_view line, std::size_t& at);

    State state_ = State::Plain;
    unsigned comment_depth_ = 0; ///< the number of open comments, which can be nested
};

/// Finds the kind of a line that begins outside strings and comments. `terminator` is the word that ends a
/// batch, usually GO. Blanks around commands and letter case are ignored. The result may refer to `line`.
LineMeaning ClassifyLine(std::string_view line, std::string_view terminator);

} // namespace querytool
