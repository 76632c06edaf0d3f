// Splits T-SQL text (UTF-8) into tokens. Knows comments, brackets, both quotes and every form of literal;
// knows nothing of grammar, types or names.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace devsql {

enum class TokenKind : std::uint8_t {
    Word,          ///< identifier or keyword, unquoted; also #temp and ##temp
    Bracketed,     ///< [identifier]
    DoubleQuoted,  ///< "…": an identifier or a string, by SET QUOTED_IDENTIFIER
    Variable,      ///< @name and @@name
    String,        ///< '…'
    UnicodeString, ///< N'…'
    Integer,
    Decimal, ///< digits with a point
    Float,   ///< with an exponent
    Money,   ///< $1.50
    Binary,  ///< 0x1F
    Symbol,  ///< operators and punctuation, one or two characters
    End,
};

struct Token {
    TokenKind kind = TokenKind::End;
    std::string text; ///< the content without quotes, with doubled quotes made single; for numbers the digits
    std::int32_t line = 1;
    std::size_t begin = 0; ///< the token's first byte in the source
    std::size_t end = 0;   ///< the byte after its last
};

/// The tokens of `source`, the last one of kind End. Throws LocatedError 105 (open quotation mark), 113 (open
/// comment), 102 (a character that begins no token), 103 (an identifier longer than 128 characters).
std::vector<Token> Tokenize(std::string_view source);

} // namespace devsql
