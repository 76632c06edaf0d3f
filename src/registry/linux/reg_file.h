// The content of a .reg file, as Windows exports it and people edit it: its keys and values, and changes to
// them that leave every other line as it is. Reads and writes no files.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "registry/linux/reg_text.h"

namespace registry {

/// The hive's full name and the key below it, with one "\" between names: "HKEY_LOCAL_MACHINE\SOFTWARE".
/// Letter case is ignored in comparisons.
using RegPath = std::u16string;

/// `hive` is the hive's full name; a run of "\" in `subkey` counts as one, and those at its ends are ignored.
RegPath MakeRegPath(std::u16string_view hive, std::string_view subkey);

struct RegValue {
    std::uint32_t type = 0;
    /// Text in code page 1252, with escapes for other characters (text/escaped.h) and with its NUL; all other
    /// types as they are stored.
    std::string bytes;
};

class RegFile {
  public:
    /// A file without keys, in the format that Windows exports: "Version 5.00" in UTF-16.
    RegFile();
    /// Throws RegDamage if the text is not that of a .reg file.
    explicit RegFile(std::string_view bytes);

    bool HasKey(const RegPath& key) const;
    /// Null if there is no such value; the empty name is the key's default value. Valid until the next
    /// change.
    const RegValue* Find(const RegPath& key, std::string_view name) const;

    // Both changes throw RegDamage for a name that the file cannot hold; the object must not be used
    // afterwards.

    /// The format has no place for the class, so it is written as a comment above the key.
    void AddKey(const RegPath& key, std::string_view key_class);
    /// `data` of a text has no NUL. The key is made if it is absent.
    void SetValue(const RegPath& key, std::string_view name, std::uint32_t type, std::string_view data);

    /// The content of the file. Throws RegDamage for a text that the file's encoding cannot hold.
    std::string Bytes() const;

  private:
    friend class RegParser;

    struct Entry {
        RegValue value;
        std::size_t begin = 0; ///< where its data begins in the text
        std::size_t end = 0;
    };
    struct Key {
        std::map<std::u16string, Entry> values;
        /// The end of the last line about this key; nothing if the file only names keys below it.
        std::optional<std::size_t> last_line_end;
    };

    void Index();
    void Splice(std::size_t begin, std::size_t end, std::u16string_view replacement);
    void AppendSection(const RegPath& key, std::string_view key_class);
    std::u16string LineEnd() const;

    RegText text_;
    bool version5_ = true;
    std::map<std::u16string, Key> keys_; ///< by path in upper case
};

/// The full name of a hive, given in full or abbreviated, in any letter case; empty if it is not a hive.
std::u16string_view HiveName(std::u16string_view name);

} // namespace registry
