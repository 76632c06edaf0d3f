// Finds keys and values, and changes the text of the file in place.
#include "registry/linux/reg_file.h"

#include <algorithm>
#include <array>
#include <utility>

#include "registry/linux/reg_parser.h"
#include "text/escaped.h"
#include "text/text.h"
#include "text/utf8.h"

namespace registry {
namespace {

struct Hive {
    std::u16string_view name;
    std::u16string_view short_name;
};

constexpr std::array kHives = {Hive{u"HKEY_CLASSES_ROOT", u"HKCR"}, Hive{u"HKEY_CURRENT_USER", u"HKCU"},
                               Hive{u"HKEY_LOCAL_MACHINE", u"HKLM"}, Hive{u"HKEY_USERS", u"HKU"},
                               Hive{u"HKEY_CURRENT_CONFIG", u"HKCC"}};

std::u16string Quoted(std::u16string_view content) {
    std::u16string quoted = u"\"";
    for (const char16_t c : content) {
        if (c == u'\\' || c == u'"') {
            quoted += u'\\';
        }
        quoted += c;
    }
    return quoted + u'"';
}

char16_t HexCharacter(unsigned digit) {
    return u"0123456789abcdef"[digit & 0xFU];
}

/// Returns the bytes as the file writes them, "hex(7):61,00".
std::u16string Hex(std::uint32_t type, std::string_view bytes) {
    std::u16string text = u"hex";
    if (type != kRegTypeBinary) {
        std::u16string digits;
        for (std::uint32_t rest = type; rest != 0 || digits.empty(); rest >>= 4U) {
            digits.insert(digits.begin(), HexCharacter(rest));
        }
        text += u'(' + digits + u')';
    }
    text += u':';
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<unsigned char>(bytes[i]);
        text += i == 0 ? u"" : u",";
        text += HexCharacter(byte >> 4U);
        text += HexCharacter(byte);
    }
    return text;
}

/// True if the text can be written between quotes. A control character there would end the line or be lost in
/// an editor.
bool FitsInQuotes(std::string_view data) {
    return std::none_of(data.begin(), data.end(), [](char c) { return static_cast<unsigned char>(c) < ' '; });
}

/// Returns the text after the "=" of a value.
std::u16string DataText(bool version5, std::uint32_t type, std::string_view data) {
    if (type == kRegTypeText && FitsInQuotes(data)) {
        return Quoted(text::Utf16FromEscaped(data));
    }
    std::string bytes(data);
    if (IsRegText(type)) {
        bytes += '\0';
        if (version5) {
            bytes = text::ToUtf16Bytes(text::Utf16FromEscaped(bytes));
        }
    }
    return Hex(type, bytes);
}

} // namespace

std::u16string_view HiveName(std::u16string_view name) {
    const std::u16string folded = text::UpperCase(name);
    const auto* hive = std::find_if(kHives.begin(), kHives.end(), [&](const Hive& h) {
        return folded == h.name || folded == h.short_name;
    });
    return hive == kHives.end() ? std::u16string_view{} : hive->name;
}

RegPath MakeRegPath(std::u16string_view hive, std::string_view subkey) {
    RegPath path(hive);
    bool separated = false;
    for (const char16_t c : text::Utf16FromEscaped(subkey)) {
        if (c == u'\\') {
            separated = true;
            continue;
        }
        if (separated || path.size() == hive.size()) {
            path += u'\\';
            separated = false;
        }
        path += c;
    }
    return path;
}

RegFile::RegFile() {
    text_.characters = u"Windows Registry Editor Version 5.00\r\n";
}

RegFile::RegFile(std::string_view bytes) : text_(DecodeRegText(bytes)) {
    Parse();
}

void RegFile::Parse() {
    keys_.clear();
    RegParser(*this).Run();
}

bool RegFile::HasKey(const RegPath& key) const {
    return keys_.contains(text::UpperCase(key));
}

const RegValue* RegFile::Find(const RegPath& key, std::string_view name) const {
    const auto found = keys_.find(text::UpperCase(key));
    if (found == keys_.end()) {
        return nullptr;
    }
    const auto& values = found->second.values;
    const auto value = values.find(text::UpperCase(text::Utf16FromEscaped(name)));
    return value == values.end() ? nullptr : &value->second.value;
}

void RegFile::AddKey(const RegPath& key, std::string_view key_class) {
    if (!HasKey(key)) {
        AppendSection(key, key_class);
    }
}

void RegFile::SetValue(const RegPath& key, std::string_view name, std::uint32_t type, std::string_view data) {
    const std::u16string folded = text::UpperCase(key);
    if (!keys_[folded].last_line_end) {
        AppendSection(key, {});
    }
    const Key& section = keys_[folded];
    const std::u16string wide_name = text::Utf16FromEscaped(name);
    const std::u16string text = DataText(version5_, type, data);
    const auto value = section.values.find(text::UpperCase(wide_name));
    if (value != section.values.end()) {
        ReplaceText(value->second.data_begin, value->second.data_end, text);
        return;
    }
    const std::u16string name_text = name.empty() ? u"@" : Quoted(wide_name);
    const std::size_t end = *section.last_line_end;
    ReplaceText(end, end, LineEnd() + name_text + u'=' + text);
}

std::string RegFile::Bytes() const {
    return EncodeRegText(text_);
}

void RegFile::ReplaceText(std::size_t begin, std::size_t end, std::u16string_view replacement) {
    text_.characters.replace(begin, end - begin, replacement);
    Parse();
}

void RegFile::AppendSection(const RegPath& key, std::string_view key_class) {
    const std::u16string line_end = LineEnd();
    std::u16string section;
    if (!text_.characters.ends_with(u'\n') && !text_.characters.ends_with(u'\r')) {
        section += line_end;
    }
    section += line_end;
    if (!key_class.empty() && FitsInQuotes(key_class)) {
        section += u"; class " + Quoted(text::Utf16FromEscaped(key_class)) + line_end;
    }
    section += u'[' + key + u']' + line_end;
    ReplaceText(text_.characters.size(), text_.characters.size(), section);
    if (!HasKey(key)) {
        throw RegDamage(0, "a key's name that the file cannot hold");
    }
}

std::u16string RegFile::LineEnd() const {
    const auto end = text_.characters.find_first_of(u"\r\n");
    if (end == std::u16string::npos) {
        return u"\r\n";
    }
    const bool pair = text_.characters.compare(end, 2, u"\r\n") == 0;
    return pair ? u"\r\n" : std::u16string(1, text_.characters[end]);
}

} // namespace registry
