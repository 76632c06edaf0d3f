// Splits the input into lines and recognises the commands of the tool.
#include "querytool/script_reader.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>

#include "text/code_page.h"
#include "text/text.h"
#include "text/utf8.h"

namespace querytool {
namespace {

/// Converts UTF-8 to the code page. A byte that is not valid UTF-8 becomes "?", and so does a character that
/// the code page lacks.
std::string FromUtf8(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        const auto character = text::TakeUtf8(bytes);
        if (!character) {
            bytes.remove_prefix(1);
        }
        text += character ? text::NarrowCharacter(*character).value_or('?') : '?';
    }
    return text;
}

constexpr std::string_view kBlanks = " \t\r\n";

std::string_view Trim(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(kBlanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(kBlanks) - begin + 1);
}

bool BeginsWithWord(std::string_view text, std::string_view word) {
    return text::SameIgnoringCase(text.substr(0, word.size()), word);
}

struct WordRow {
    std::string_view word;
    LineKind kind;
};

/// Commands without arguments, which are the whole line.
constexpr std::array kWords = {
    WordRow{"RESET", LineKind::Reset},
    WordRow{"QUIT", LineKind::Quit},
    WordRow{"EXIT", LineKind::Quit},
    WordRow{"ED", LineKind::Refused},
};

/// The beginnings of commands with arguments that are not supported.
constexpr std::array<std::string_view, 2> kRefusedPrefixes = {":r", "!!"};

/// Reads GO, or GO and a number. Returns nothing for any other line.
std::optional<LineMeaning> AsTerminator(std::string_view line, std::string_view terminator) {
    if (!BeginsWithWord(line, terminator)) {
        return std::nullopt;
    }
    const std::string_view rest = line.substr(terminator.size());
    if (rest.empty()) {
        return LineMeaning{LineKind::Run, 1, {}};
    }
    const std::string_view number = Trim(rest);
    LineMeaning meaning{LineKind::Run, 1, {}};
    const char* const end = number.data() + number.size();
    const auto [stop, error] = std::from_chars(number.data(), end, meaning.count);
    const bool blank_before = kBlanks.find(rest.front()) != std::string_view::npos;
    return blank_before && error == std::errc() && stop == end ? std::optional(meaning) : std::nullopt;
}

/// Reads EXIT(query) or EXIT(). Returns nothing for any other line.
std::optional<LineMeaning> AsExitRun(std::string_view line) {
    constexpr std::string_view kExit = "EXIT";
    if (!BeginsWithWord(line, kExit)) {
        return std::nullopt;
    }
    const std::string_view rest = Trim(line.substr(kExit.size()));
    if (rest.size() < 2 || rest.front() != '(' || rest.back() != ')') {
        return std::nullopt;
    }
    return LineMeaning{LineKind::ExitRun, 1, Trim(rest.substr(1, rest.size() - 2))};
}

} // namespace

std::string ToCodePage(std::string content) {
    const std::string_view view = content;
    if (view.starts_with("\xEF\xBB\xBF")) {
        return FromUtf8(view.substr(3));
    }
    if (view.starts_with("\xFF\xFE")) {
        return text::Narrow(text::FromUtf16Bytes(view.substr(2), std::endian::little));
    }
    if (view.starts_with("\xFE\xFF")) {
        return text::Narrow(text::FromUtf16Bytes(view.substr(2), std::endian::big));
    }
    return content;
}

TextLines::TextLines(std::string text) : text_(std::move(text)) {
    std::ranges::replace(text_, '\0', ' ');
}

std::optional<std::string_view> TextLines::Next() {
    if (at_ >= text_.size()) {
        return std::nullopt;
    }
    const std::string_view rest = std::string_view(text_).substr(at_);
    const std::size_t end = rest.find_first_of("\r\n");
    if (end == std::string_view::npos) {
        at_ = text_.size();
        return rest;
    }
    const bool carriage_return = rest[end] == '\r';
    const bool both = carriage_return && end + 1 < rest.size() && rest[end + 1] == '\n';
    const std::size_t length = end + (both ? 2 : 1);
    at_ += length;
    if (carriage_return && !both) {
        line_with_crlf_.assign(rest.substr(0, length)).push_back('\n');
        return line_with_crlf_;
    }
    return rest.substr(0, length);
}

std::optional<std::string_view> StreamLines::Next() {
    if (!std::getline(stream_, line_)) {
        return std::nullopt;
    }
    std::ranges::replace(line_, '\0', ' ');
    line_.push_back('\n');
    return line_;
}

void BatchLexer::Advance(std::string_view line) {
    for (std::size_t at = 0; at < line.size();) {
        Step(line, at);
    }
}

void BatchLexer::Step(std::string_view line, std::size_t& at) {
    const std::string_view rest = line.substr(at);
    if (state_ == State::Comment || state_ == State::Plain) {
        if (rest.starts_with("/*")) {
            state_ = State::Comment;
            ++comment_depth_;
            at += 2;
            return;
        }
        if (state_ == State::Comment && rest.starts_with("*/")) {
            state_ = --comment_depth_ == 0 ? State::Plain : State::Comment;
            at += 2;
            return;
        }
    }
    if (state_ == State::Bracketed && rest.starts_with("]]")) {
        at += 2;
        return;
    }
    if (state_ == State::Plain && rest.starts_with("--")) {
        at = line.size();
        return;
    }
    struct Quote {
        char opens;
        char closes;
        State state;
    };
    static constexpr std::array kQuotes = {Quote{'\'', '\'', State::String},
                                           Quote{'"', '"', State::DoubleQuoted},
                                           Quote{'[', ']', State::Bracketed}};
    for (const Quote& quote : kQuotes) {
        if (state_ == State::Plain && rest.front() == quote.opens) {
            state_ = quote.state;
            break;
        }
        // A doubled quote is read as the end of one string and the beginning of the next. The result is the
        // same.
        if (state_ == quote.state && rest.front() == quote.closes) {
            state_ = State::Plain;
            break;
        }
    }
    ++at;
}

LineMeaning ClassifyLine(std::string_view line, std::string_view terminator) {
    const std::string_view text = Trim(line);
    if (const auto run = AsTerminator(text, terminator)) {
        return *run;
    }
    if (const auto exit = AsExitRun(text)) {
        return *exit;
    }
    for (const WordRow& row : kWords) {
        if (text::SameIgnoringCase(text, row.word)) {
            return {row.kind, 1, row.word};
        }
    }
    for (const std::string_view prefix : kRefusedPrefixes) {
        if (BeginsWithWord(text, prefix)) {
            return {LineKind::Refused, 1, prefix};
        }
    }
    return {};
}

} // namespace querytool
