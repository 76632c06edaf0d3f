// Parses the text of a .reg file, from its first line to its last. The keys and values are those that the
// registry would have after an import of the file, so lines that delete a key or a value count.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "registry/linux/reg_file.h"

namespace registry {

/// The system's numbers of the types of values.
inline constexpr std::uint32_t kRegTypeText = 1;
inline constexpr std::uint32_t kRegTypeExpandText = 2;
inline constexpr std::uint32_t kRegTypeBinary = 3;
inline constexpr std::uint32_t kRegTypeNumber = 4;
inline constexpr std::uint32_t kRegTypeMultiText = 7;

/// True for the three types whose bytes are text.
bool IsRegText(std::uint32_t type);

/// Parses one file. The file must outlive the parser.
class RegParser {
  public:
    explicit RegParser(RegFile& file) : file_(file), text_(file.text_.characters) {}

    /// Fills the file's keys. Throws RegDamage at the first line that cannot be read.
    void Run();

  private:
    void ReadHeader();
    void ReadLine();
    void ReadSection();
    void ReadValue();
    RegValue ReadData();
    RegValue ReadNumber();
    RegValue ReadHex();
    std::u16string ReadQuoted();
    /// Reads one to `max_count` digits.
    unsigned ReadHexDigits(std::size_t max_count);

    bool AtEnd() const { return position_ == text_.size(); }
    bool AtLineEnd() const { return AtEnd() || text_[position_] == u'\r' || text_[position_] == u'\n'; }
    bool AtChar(char16_t c) const { return !AtEnd() && text_[position_] == c; }
    /// Moves past the word if it is next, in any letter case. Returns false if it is not.
    bool TakeWord(std::u16string_view word);
    void SkipBlanks();
    void SkipLineEnd();
    void SkipToLineEnd();
    /// Moves to the end of the line. Throws RegDamage if anything but blanks and a comment is in between.
    void EndLine();

    /// Makes the key current, adding it if it is new. `name` is the text in the brackets.
    void OpenSection(std::u16string_view name);
    /// Deletes the key and all keys below it.
    void DeleteSection(std::u16string_view name);
    /// Returns the path of the key in upper case.
    std::u16string SectionPath(std::u16string_view name) const;
    [[noreturn]] void Fail(const char* problem) const { FailAt(position_, problem); }
    [[noreturn]] void FailAt(std::size_t position, const char* problem) const;

    RegFile& file_;
    std::u16string_view text_;
    std::size_t position_ = 0;
    bool in_section_ = false;
    RegFile::Key* key_ = nullptr; ///< the current key; null in a section that deletes its key
};

} // namespace registry
