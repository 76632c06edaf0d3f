// Parses the text of a .reg file, from its first line to its last, into the keys and values that result from
// it.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "registry/linux/reg_file.h"

namespace registry {

/// Value types whose bytes are text.
inline constexpr std::uint32_t kRegTypeText = 1;
inline constexpr std::uint32_t kRegTypeExpandText = 2;
inline constexpr std::uint32_t kRegTypeBinary = 3;
inline constexpr std::uint32_t kRegTypeNumber = 4;
inline constexpr std::uint32_t kRegTypeMultiText = 7;

bool IsRegText(std::uint32_t type);

class RegParser {
  public:
    explicit RegParser(RegFile& file) : file_(file), text_(file.text_.characters) {}

    /// Fills the file's keys. Throws RegDamage.
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
    unsigned ReadHexDigits(std::size_t most);

    bool AtEnd() const { return position_ == text_.size(); }
    bool AtLineEnd() const { return AtEnd() || text_[position_] == u'\r' || text_[position_] == u'\n'; }
    bool AtChar(char16_t c) const { return !AtEnd() && text_[position_] == c; }
    bool TakeWord(std::u16string_view word); ///< in any case
    void SkipBlanks();
    void SkipLineEnd();
    void SkipToLineEnd();
    /// Nothing but blanks and a comment may follow.
    void EndLine();

    void OpenSection(std::u16string_view name);
    void DeleteSection(std::u16string_view name);
    std::u16string SectionPath(std::u16string_view name) const;
    [[noreturn]] void Fail(const char* what) const { FailAt(position_, what); }
    [[noreturn]] void FailAt(std::size_t position, const char* what) const;

    RegFile& file_;
    std::u16string_view text_;
    std::size_t position_ = 0;
    bool in_section_ = false;
    RegFile::Key* key_ = nullptr; ///< null in a section that deletes its key
};

} // namespace registry
