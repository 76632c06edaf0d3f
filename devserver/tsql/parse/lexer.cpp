// Splits T-SQL text into tokens; see lexer.h.
#include "devserver/tsql/parse/lexer.h"

#include <algorithm>

#include "devserver/tsql/parse/located_error.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsHexDigit(char c) {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

bool BeginsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '#' ||
           static_cast<unsigned char>(c) >= 0x80;
}

bool ContinuesName(char c) {
    return BeginsName(c) || IsDigit(c) || c == '@' || c == '$';
}

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r') || c == '\x1A';
}

constexpr std::string_view kPairs[] = {"<=", ">=", "<>", "!=", "!<", "!>",
                                       "+=", "-=", "*=", "/=", "%=", "::"};
constexpr std::string_view kLoneSymbols = "=<>+-*/%&|^~(),.;:{}";

class Lexer {
  public:
    explicit Lexer(std::string_view source) : source_(source) {}

    std::vector<Token> Run() {
        if (source_.substr(0, 3) == "\xEF\xBB\xBF") {
            position_ = 3;
        }
        while (true) {
            SkipBlanksAndComments();
            begin_ = position_;
            if (position_ >= source_.size()) {
                Add(TokenKind::End, "");
                return std::move(tokens_);
            }
            Next();
        }
    }

    /// The line on which the current token begins.
    std::int32_t line() const { return begin_line_; }

  private:
    char At(std::size_t offset = 0) const {
        return position_ + offset < source_.size() ? source_[position_ + offset] : '\0';
    }

    void Advance(std::size_t count = 1) {
        for (; count > 0 && position_ < source_.size(); --count, ++position_) {
            if (source_[position_] == '\n') {
                ++line_;
            }
        }
    }

    void Add(TokenKind kind, std::string text) {
        tokens_.push_back({kind, std::move(text), begin_line_, begin_, position_});
    }

    void SkipBlanksAndComments() {
        while (position_ < source_.size()) {
            if (IsBlank(At()) || (At() == '\0' && position_ < source_.size())) {
                Advance();
            } else if (At() == '\xC2' && At(1) == '\xA0') {
                Advance(2); // A no-break space, which text copied from documents contains.
            } else if (At() == '-' && At(1) == '-') {
                while (position_ < source_.size() && At() != '\n') {
                    Advance();
                }
            } else if (At() == '/' && At(1) == '*') {
                SkipBlockComment();
            } else {
                break;
            }
        }
        begin_line_ = line_;
    }

    /// Block comments nest.
    void SkipBlockComment() {
        int depth = 0;
        do {
            if (position_ >= source_.size()) {
                RaiseError(113);
            }
            if (At() == '/' && At(1) == '*') {
                ++depth;
                Advance(2);
            } else if (At() == '*' && At(1) == '/') {
                --depth;
                Advance(2);
            } else {
                Advance();
            }
        } while (depth > 0);
    }

    void Next() {
        const char c = At();
        if ((c == 'N' || c == 'n') && At(1) == '\'') {
            Advance();
            Add(TokenKind::UnicodeString, Quoted('\''));
        } else if (c == '\'') {
            Add(TokenKind::String, Quoted('\''));
        } else if (c == '"') {
            Add(TokenKind::DoubleQuoted, Quoted('"'));
        } else if (c == '[') {
            Add(TokenKind::Bracketed, CheckedName(Quoted(']')));
        } else if (c == '@') {
            Add(TokenKind::Variable, CheckedName(Name()));
        } else if (BeginsName(c)) {
            Add(TokenKind::Word, CheckedName(Name()));
        } else if (IsDigit(c) || (c == '.' && IsDigit(At(1)))) {
            Number();
        } else if (c == '$') {
            Money();
        } else {
            Symbol();
        }
    }

    /// Reads from the opening quotation mark to the closing one. A doubled mark is a part of the text.
    std::string Quoted(char close) {
        Advance();
        std::string text;
        while (true) {
            if (position_ >= source_.size()) {
                RaiseError(105, {std::string_view(text)});
            }
            const char c = At();
            if (c == close) {
                Advance();
                if (At() != close) {
                    return text;
                }
            } else if (c == '\\' && close != ']' && (At(1) == '\n' || (At(1) == '\r' && At(2) == '\n'))) {
                Advance(At(1) == '\n' ? 2 : 3); // A backslash before a line end joins the lines.
                continue;
            }
            text += c;
            Advance();
        }
    }

    std::string Name() {
        const std::size_t start = position_;
        while (ContinuesName(At())) {
            Advance();
        }
        return std::string(source_.substr(start, position_ - start));
    }

    static std::string CheckedName(std::string name) {
        if (TextLength(name) > 128) {
            RaiseError(103, {"identifier", SubText(name, 0, 128), "128"});
        }
        return name;
    }

    void Digits() {
        while (IsDigit(At())) {
            Advance();
        }
    }

    void Number() {
        if (At() == '0' && (At(1) == 'x' || At(1) == 'X')) {
            Advance(2);
            while (IsHexDigit(At()) || (At() == '\\' && (At(1) == '\n' || At(1) == '\r'))) {
                Advance(At() == '\\' ? (At(1) == '\r' ? 3 : 2) : 1);
            }
            std::string digits(source_.substr(begin_, position_ - begin_));
            std::erase_if(digits, [](char c) { return c == '\\' || c == '\r' || c == '\n'; });
            Add(TokenKind::Binary, std::move(digits));
            return;
        }
        TokenKind kind = TokenKind::Integer;
        Digits();
        if (At() == '.') {
            kind = TokenKind::Decimal;
            Advance();
            Digits();
        }
        if (At() == 'e' || At() == 'E') {
            kind = TokenKind::Float;
            Advance();
            if (At() == '+' || At() == '-') {
                Advance();
            }
            Digits();
        }
        Add(kind, std::string(source_.substr(begin_, position_ - begin_)));
    }

    void Money() {
        Advance();
        // A comma groups thousands: "$1,000.50". Elsewhere it ends the number, as in "($19.00,17)".
        const auto groups = [this] {
            return At() == ',' && IsDigit(At(1)) && IsDigit(At(2)) && IsDigit(At(3)) && !IsDigit(At(4));
        };
        while (IsDigit(At()) || groups()) {
            Advance();
        }
        if (At() == '.') {
            Advance();
            Digits();
        }
        Add(TokenKind::Money, std::string(source_.substr(begin_, position_ - begin_)));
    }

    void Symbol() {
        const bool pair = std::ranges::count(kPairs, source_.substr(position_, 2)) != 0;
        const std::string text(source_.substr(position_, pair ? 2 : 1));
        if (!pair && kLoneSymbols.find(At()) == std::string_view::npos) {
            RaiseError(102, {text});
        }
        Advance(text.size());
        Add(TokenKind::Symbol, text);
    }

    std::string_view source_;
    std::size_t position_ = 0;
    std::size_t begin_ = 0;
    std::int32_t line_ = 1;
    std::int32_t begin_line_ = 1;
    std::vector<Token> tokens_;
};

} // namespace

std::vector<Token> Tokenize(std::string_view source) {
    Lexer lexer(source);
    try {
        return lexer.Run();
    } catch (const SqlError& error) {
        throw LocatedError(error, lexer.line());
    }
}

} // namespace devsql
