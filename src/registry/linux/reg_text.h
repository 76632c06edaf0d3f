// Decodes and encodes the text of a .reg file, in the encodings in which Windows writes such files and people
// edit them. Knows nothing of keys and values.
#pragma once

#include <cstddef>
#include <exception>
#include <string>
#include <string_view>

namespace registry {

/// A .reg file is damaged.
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
    Utf16, ///< little-endian with a byte order mark, as Windows exports "Version 5.00"
    Utf8,  ///< as editors of other systems save it
    Utf8WithMark,
    CodePage1252 ///< as Windows exports REGEDIT4
};

struct RegText {
    RegEncoding encoding = RegEncoding::Utf16;
    std::u16string characters;
};

/// Throws RegDamage if the bytes are not text in any of the encodings. EncodeRegText writes every character
/// back as it was, half surrogate pairs included.
RegText DecodeRegText(std::string_view bytes);
/// Throws RegDamage for a character that the encoding lacks.
std::string EncodeRegText(const RegText& text);

} // namespace registry
