// The text of a .reg file: how its bytes become characters and come back, in the encodings in which Windows
// writes such files and people edit them. Knows nothing of keys and values.
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace platform {

/// A .reg file cannot be what it says it is.
class RegDamage : public std::exception {
  public:
    RegDamage(std::size_t line, std::string what) : line_(line), what_(std::move(what)) {}

    /// The first line is 1.
    std::size_t Line() const { return line_; }
    const char* what() const noexcept override { return what_.c_str(); }

  private:
    std::size_t line_;
    std::string what_;
};

enum class RegEncoding : unsigned char {
    Utf16, ///< little-endian with its mark, as Windows exports "Version 5.00"
    Utf8,  ///< as people save it who edit it elsewhere
    Utf8WithMark,
    CodePage1252 ///< as Windows exports REGEDIT4
};

struct RegText {
    RegEncoding encoding = RegEncoding::Utf16;
    std::u16string characters;
};

/// Throws RegDamage if the bytes are no text in any of the encodings. Every character that an encoding has
/// comes back as it was, half surrogate pairs included.
RegText DecodeRegText(std::string_view bytes);
std::string EncodeRegText(const RegText& text);

/// Code page 1252 as Windows maps it: all 256 bytes have a character. A character that has no byte is "?".
std::u16string FromCodePage1252(std::string_view bytes);
std::string ToCodePage1252(std::u16string_view characters);

/// The same text for names that differ in upper and lower case only, for the letters of code page 1252.
std::u16string FoldCase(std::u16string_view name);

} // namespace platform
