// Lines of input, and what each of them means to the tool: a part of the batch, its end, or a command.
// Knows nothing of servers.
#pragma once

#include <cstdint>
#include <istream>
#include <optional>
#include <string>
#include <string_view>

namespace querytool {

/// Where lines come from.
class LineSource {
  public:
    virtual ~LineSource() = default;
    /// The next line with its end, valid until the next call; none at the end of the input.
    virtual std::optional<std::string_view> Next() = 0;
};

/// The lines of a text. CR LF, LF and CR alone all end a line. A CR alone becomes CR LF, since the server
/// does not take it for a line's end, and a comment would go on to the end of the batch.
class TextLines : public LineSource {
  public:
    explicit TextLines(std::string text);
    std::optional<std::string_view> Next() override;

  private:
    std::string text_;
    std::size_t at_ = 0;
    std::string mended_;
};

/// The lines of a stream, each asked for when it is needed. NUL bytes become blanks here too.
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

/// Follows a batch through its strings, quoted names and comments, in which a line is no command: a GO in a
/// text or in a part that was commented out belongs to the batch.
class BatchLexer {
  public:
    /// True when the next line begins outside all of them.
    bool AtCommands() const { return state_ == State::Plain; }
    /// Goes on behind a line of the batch, which stands here with its end.
    void Take(std::string_view line);
    /// A new batch begins: what an error left open does not reach into it.
    void Reset() { *this = BatchLexer(); }

  private:
    enum class State : std::uint8_t { Plain, String, DoubleQuoted, Bracketed, Comment };

    /// Takes what begins or goes on at `at`, and moves behind it.
    void Step(std::string_view line, std::size_t& at);

    State state_ = State::Plain;
    unsigned comment_depth_ = 0; ///< comments stand in one another
};

/// `terminator` is the word that ends a batch. Blanks around commands count for nothing.
LineMeaning MeaningOf(std::string_view line, std::string_view terminator);

} // namespace querytool
