// Decodes and encodes the text of a .reg file, in the encodings in which Windows writes such files and people
// edit them. Knows nothing of keys and values.
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace registry {

/// Thrown for a .reg file that cannot be read, and for a change that cannot be written.
class RegDamage : public std::exception {
  public:
    RegDamage(std::size_t line, std::string what) : line_(line), what_(std::move(what)) {}

    /// The line of the error, counted from 1; 0 for a change that cannot be written.
    std::size_t Line() const { return line_; }
    const char* what() const noexcept override { return what_.c_str(); }

  private:
    std::size_t line_;
    std::string what_;
};

enum class RegEncoding : unsigned char {
    Utf16, ///< little-endian with a byte order mark, as Windows exports "Version 5.00"
    Utf8,  ///< as editors of other systems save it
    Utf8WithMark,
    CodePage1252 ///< as Windows exports REGEDIT4
};

/// The text of a file without its byte order mark.
struct RegText {
    RegEncoding encoding = RegEncoding::Utf16;
    std::u16string characters;
};

/// Finds the encoding and decodes the text. Throws RegDamage if the bytes are not text in any of the
/// encodings. EncodeRegText converts the result back to the same bytes, also half surrogate pairs.
RegText DecodeRegText(std::string_view bytes);
/// Encodes the text. Throws RegDamage for a character that the encoding lacks.
std::string EncodeRegText(const RegText& text);

} // namespace registry
