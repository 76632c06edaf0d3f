// Reads a .reg file line by line into keys and values. A line that it cannot read is an error.
#include "registry/linux/reg_parser.h"

#include <array>
#include <utility>

#include "text/escaped.h"
#include "text/text.h"
#include "text/utf8.h"

namespace registry {
namespace {

struct Header {
    std::u16string_view text;
    bool version5;
};

constexpr std::array kHeaders = {Header{u"Windows Registry Editor Version 5.00", true},
                                 Header{u"REGEDIT4", false}};

int HexDigit(char16_t c) {
    if (c >= u'0' && c <= u'9') {
        return c - u'0';
    }
    if (c >= u'a' && c <= u'f') {
        return c - u'a' + 10;
    }
    if (c >= u'A' && c <= u'F') {
        return c - u'A' + 10;
    }
    return -1;
}

} // namespace

bool IsRegText(std::uint32_t type) {
    return type == kRegTypeText || type == kRegTypeExpandText || type == kRegTypeMultiText;
}

void RegParser::Run() {
    const auto nul = text_.find(u'\0');
    if (nul != std::u16string_view::npos) {
        FailAt(nul, "a NUL character");
    }
    ReadHeader();
    while (!AtEnd()) {
        ReadLine();
    }
}

void RegParser::ReadHeader() {
    for (const auto& header : kHeaders) {
        if (text_.starts_with(header.text)) {
            position_ = header.text.size();
            SkipBlanks();
            if (!AtLineEnd()) {
                break;
            }
            file_.version5_ = header.version5;
            SkipLineEnd();
            return;
        }
    }
    FailAt(0, "not the first line of a registry file");
}

void RegParser::ReadLine() {
    SkipBlanks();
    if (AtChar(u';')) {
        SkipToLineEnd();
    } else if (AtChar(u'[')) {
        ReadSection();
    } else if (AtChar(u'"') || AtChar(u'@')) {
        ReadValue();
    } else if (!AtLineEnd()) {
        Fail("neither a key nor a value nor a comment");
    }
    SkipLineEnd();
}

/// Reads a line "[name]". The name may contain "]": it ends at the first "]" after which the line has only
/// blanks or a comment.
void RegParser::ReadSection() {
    const std::size_t begin = position_ + 1;
    for (;;) {
        while (!AtLineEnd() && !AtChar(u']')) {
            ++position_;
        }
        if (AtLineEnd()) {
            FailAt(begin, "a key without its closing bracket");
        }
        const std::size_t end = position_++;
        SkipBlanks();
        if (!AtLineEnd() && !AtChar(u';')) {
            continue;
        }
        SkipToLineEnd();
        const std::u16string_view name = text_.substr(begin, end - begin);
        if (name.starts_with(u'-')) {
            DeleteSection(name.substr(1));
        } else {
            OpenSection(name);
        }
        return;
    }
}

std::u16string RegParser::SectionPath(std::u16string_view name) const {
    const auto separator = name.find(u'\\');
    const std::u16string_view hive = HiveName(name.substr(0, separator));
    if (hive.empty()) {
        Fail("a key of an unknown hive");
    }
    const auto below =
        separator == std::u16string_view::npos ? std::u16string_view{} : name.substr(separator);
    std::u16string path(hive);
    std::size_t begin = 0;
    while (begin < below.size()) {
        auto end = std::min(below.find(u'\\', begin), below.size());
        if (end > begin) {
            path += u'\\';
            path += below.substr(begin, end - begin);
        }
        begin = end + 1;
    }
    return text::UpperCase(path);
}

void RegParser::OpenSection(std::u16string_view name) {
    const std::u16string path = SectionPath(name);
    // A key implies all keys above it.
    for (auto end = path.find(u'\\'); end != std::u16string::npos; end = path.find(u'\\', end + 1)) {
        file_.keys_[path.substr(0, end)];
    }
    in_section_ = true;
    key_ = &file_.keys_[path];
    key_->last_line_end = position_;
}

void RegParser::DeleteSection(std::u16string_view name) {
    const std::u16string path = SectionPath(name);
    file_.keys_.erase(path);
    const std::u16string below = path + u'\\';
    auto first = file_.keys_.lower_bound(below);
    auto last = first;
    while (last != file_.keys_.end() && last->first.starts_with(below)) {
        ++last;
    }
    file_.keys_.erase(first, last);
    in_section_ = true;
    key_ = nullptr;
}

void RegParser::ReadValue() {
    if (!in_section_) {
        Fail("a value without a key");
    }
    std::u16string name;
    if (AtChar(u'@')) {
        ++position_;
    } else {
        name = text::UpperCase(ReadQuoted());
    }
    SkipBlanks();
    if (!AtChar(u'=')) {
        Fail("a value without an equals sign");
    }
    ++position_;
    SkipBlanks();
    RegFile::Entry entry;
    entry.data_begin = position_;
    const bool deleted = AtChar(u'-');
    if (deleted) {
        ++position_;
    } else {
        entry.value = ReadData();
    }
    entry.data_end = position_;
    EndLine();
    if (key_ == nullptr) {
        return;
    }
    key_->last_line_end = position_;
    if (deleted) {
        key_->values.erase(name);
    } else {
        key_->values[name] = std::move(entry);
    }
}

RegValue RegParser::ReadData() {
    if (AtChar(u'"')) {
        return {kRegTypeText, text::EscapedFromUtf16(ReadQuoted()) + '\0'};
    }
    if (TakeWord(u"dword:")) {
        return ReadNumber();
    }
    if (TakeWord(u"hex")) {
        return ReadHex();
    }
    Fail("a value of an unknown kind");
}

RegValue RegParser::ReadNumber() {
    constexpr std::size_t kDigits = 8;
    constexpr unsigned kBytes = 4;
    const unsigned number = ReadHexDigits(kDigits);
    std::string bytes;
    for (unsigned i = 0; i < kBytes; ++i) {
        bytes += static_cast<char>((number >> (8U * i)) & 0xFFU);
    }
    return {kRegTypeNumber, bytes};
}

RegValue RegParser::ReadHex() {
    constexpr std::size_t kTypeDigits = 8;
    constexpr std::size_t kByteDigits = 2;
    RegValue value{kRegTypeBinary, {}};
    if (AtChar(u'(')) {
        ++position_;
        value.type = ReadHexDigits(kTypeDigits);
        if (!AtChar(u')')) {
            Fail("a value type without its closing bracket");
        }
        ++position_;
    }
    if (!AtChar(u':')) {
        Fail("a value type without its colon");
    }
    ++position_;
    SkipBlanks();
    bool more = !AtLineEnd() && !AtChar(u';');
    while (more) {
        SkipBlanks();
        if (AtChar(u'\\')) { // the data continues in the next line
            ++position_;
            SkipBlanks();
            if (AtEnd() || !AtLineEnd()) {
                Fail("a broken line without its next");
            }
            SkipLineEnd();
            continue;
        }
        value.bytes += static_cast<char>(ReadHexDigits(kByteDigits));
        const std::size_t end = position_;
        SkipBlanks();
        more = AtChar(u',');
        position_ = more ? position_ + 1 : end;
    }
    if (file_.version5_ && IsRegText(value.type)) {
        // Version 5.00 writes the bytes of a text as UTF-16; RegValue has text in the code page.
        value.bytes = text::EscapedFromUtf16(text::FromUtf16Bytes(value.bytes));
    }
    return value;
}

/// Reads a text between quotes. Windows writes the line ends of a text as they are, so a text may span
/// several lines. A text without its closing quote ends at the first quote of the next value, and what
/// follows there is then reported as an error.
std::u16string RegParser::ReadQuoted() {
    const std::size_t begin = position_++;
    std::u16string content;
    while (!AtEnd() && !AtChar(u'"')) {
        const bool escape = AtChar(u'\\') && position_ + 1 < text_.size() &&
                            (text_[position_ + 1] == u'\\' || text_[position_ + 1] == u'"');
        position_ += escape ? 1 : 0;
        content += text_[position_++];
    }
    if (AtEnd()) {
        FailAt(begin, "an unterminated quote");
    }
    ++position_;
    return content;
}

unsigned RegParser::ReadHexDigits(std::size_t max_count) {
    unsigned number = 0;
    std::size_t count = 0;
    while (!AtEnd() && HexDigit(text_[position_]) >= 0) {
        if (++count > max_count) {
            Fail("too many hexadecimal digits");
        }
        number = number * 16U + static_cast<unsigned>(HexDigit(text_[position_++]));
    }
    if (count == 0) {
        Fail("no hexadecimal digit");
    }
    return number;
}

bool RegParser::TakeWord(std::u16string_view word) {
    if (text::UpperCase(text_.substr(position_, word.size())) != text::UpperCase(word)) {
        return false;
    }
    position_ += word.size();
    return true;
}

void RegParser::SkipBlanks() {
    while (AtChar(u' ') || AtChar(u'\t')) {
        ++position_;
    }
}

void RegParser::SkipLineEnd() {
    if (AtChar(u'\r')) {
        ++position_;
    }
    if (AtChar(u'\n')) {
        ++position_;
    }
}

void RegParser::SkipToLineEnd() {
    while (!AtLineEnd()) {
        ++position_;
    }
}

void RegParser::EndLine() {
    SkipBlanks();
    if (AtChar(u';')) {
        SkipToLineEnd();
    }
    if (!AtLineEnd()) {
        Fail("text after a value");
    }
}

void RegParser::FailAt(std::size_t position, const char* problem) const {
    std::size_t line = 1;
    for (std::size_t i = 0; i < position; ++i) {
        const bool pair = text_[i] == u'\r' && i + 1 < text_.size() && text_[i + 1] == u'\n';
        if ((text_[i] == u'\n' || text_[i] == u'\r') && !pair) {
            ++line;
        }
    }
    throw RegDamage(line, problem);
}

} // namespace registry
