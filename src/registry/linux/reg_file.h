// The content of a .reg file, as Windows exports it and people edit it. Finds keys and values, and changes
// them so that every other line stays as it is. Reads and writes no files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "registry/linux/reg_text.h"

namespace registry {

/// The path of a key: the hive's full name and the names of the keys below it, with one "\" between two
/// names, as in "HKEY_LOCAL_MACHINE\SOFTWARE". Letter case is ignored in comparisons.
using RegPath = std::u16string;

/// Joins a hive's full name and a key's name. A run of "\" in `subkey` counts as one, and "\" at its ends is
/// ignored.
RegPath MakeRegPath(std::u16string_view hive, std::string_view subkey);

/// The content of a value.
struct RegValue {
    std::uint32_t type = 0; ///< the system's number, such as kRegSz
    /// Text is in code page 1252, with escapes for other characters (text/escaped.h) and with its NUL. The
    /// bytes of all other types are as they are stored.
    std::string bytes;
};

/// The text of a file, and the keys and values in it.
class RegFile {
  public:
    /// Makes a file without keys, in the format that Windows exports: "Version 5.00" in UTF-16.
    RegFile();
    /// Parses the content of a file. Throws RegDamage if it is not that of a .reg file.
    explicit RegFile(std::string_view bytes);

    bool HasKey(const RegPath& key) const;
    /// Returns the value, which is valid until the next change; null if there is no such value. An empty name
    /// means the key's default value.
    const RegValue* Find(const RegPath& key, std::string_view name) const;

    // Both changes throw RegDamage for a name that cannot be written in this format; the object must not be
    // used afterwards.

    /// Adds the key unless it exists. The format has no place for the class, so it is written as a comment
    /// above the key.
    void AddKey(const RegPath& key, std::string_view key_class);
    /// Sets the value, and adds the key if it is missing. The `data` of a text has no NUL.
    void SetValue(const RegPath& key, std::string_view name, std::uint32_t type, std::string_view data);

    /// Returns the content of the file. Throws RegDamage if the file's encoding lacks a character.
    std::string Bytes() const;

  private:
    friend class RegParser;

    // Positions are indexes into text_.characters.

    struct Entry {
        RegValue value;
        std::size_t data_begin = 0; ///< where the text of the data begins, after the "="
        std::size_t data_end = 0;
    };
    struct Key {
        std::map<std::u16string, Entry> values; ///< by name in upper case
        /// The end of the last line about this key; nothing if the file only names keys below it.
        std::optional<std::size_t> last_line_end;
    };

    /// Fills keys_ from the text. Throws RegDamage.
    void Parse();
    /// Replaces the text from `begin` to before `end`, and parses the whole text again.
    void ReplaceText(std::size_t begin, std::size_t end, std::u16string_view replacement);
    /// Adds an empty section for the key at the end of the text.
    void AppendSection(const RegPath& key, std::string_view key_class);
    /// Returns the line end of the file's first line.
    std::u16string LineEnd() const;

    RegText text_;
    bool version5_ = true;               ///< false for a file of the older format REGEDIT4
    std::map<std::u16string, Key> keys_; ///< by path in upper case
};

/// Returns the full name of a hive. `name` may be the full name or the abbreviation, such as HKLM, in any
/// letter case. Empty if it is not a hive.
std::u16string_view HiveName(std::u16string_view name);

} // namespace registry
