// Reads package files. The numbers of its errors are those that the structured storage of Windows gives for
// the same faults, since a package's file on Windows is such a storage.
#include "packages/package_file.h"

#include <array>
#include <cctype>
#include <string_view>
#include <utility>

#include "packages/packages.h"
#include "platform/files.h"

namespace packages {
namespace {

constexpr std::int32_t StorageError(std::uint32_t code) {
    return static_cast<std::int32_t>(code);
}

constexpr std::int32_t kFileNotFound = StorageError(0x80030002U);
constexpr std::int32_t kPathNotFound = StorageError(0x80030003U);
constexpr std::int32_t kAccessDenied = StorageError(0x80030005U);
constexpr std::int32_t kReadFault = StorageError(0x8003001EU);
constexpr std::int32_t kDamagedFile = StorageError(0x80030109U);

constexpr const char* kSource = "Package file";
constexpr std::string_view kFirstLine = "LKDTS 1";
// In characters; the server stores a name as sysname.
constexpr std::size_t kMaxName = 128;
constexpr std::size_t kMaxDescription = 255;

[[noreturn]] void FailDamaged(const std::string& path, const std::string& reason) {
    throw PackageError(kDamagedFile, kSource, "The package file " + path + " is damaged: " + reason);
}

std::int32_t NumberOf(platform::FileFault fault) {
    switch (fault) {
    case platform::FileFault::NotFound:
        return kFileNotFound;
    case platform::FileFault::PathNotFound:
        return kPathNotFound;
    case platform::FileFault::AccessDenied:
    case platform::FileFault::InUse:
        return kAccessDenied;
    case platform::FileFault::AlreadyExists:
    case platform::FileFault::DiskFull:
    case platform::FileFault::Other:
        break;
    }
    return kReadFault;
}

/// Reads the lines of the head, one after the other. Throws PackageError with the number of the line. Both
/// arguments must outlive it.
class HeadReader {
  public:
    HeadReader(const std::string& path, std::string_view content) : path_(path), rest_(content) {}

    /// Returns the next line without its line end.
    std::string_view NextLine() {
        ++line_;
        const std::size_t end = rest_.find('\n');
        if (end == std::string_view::npos) {
            Fail("it ends inside the head");
        }
        std::string_view line = rest_.substr(0, end);
        rest_.remove_prefix(end + 1);
        if (line.ends_with('\r')) {
            line.remove_suffix(1);
        }
        return line;
    }

    /// Reads the next line, which must be "label: value", and returns the value.
    std::string Field(std::string_view label) {
        std::string_view line = NextLine();
        if (!line.starts_with(label) || !line.substr(label.size()).starts_with(':')) {
            FailExpecting(std::string(label).append(": "));
        }
        line.remove_prefix(label.size() + 1);
        if (line.starts_with(' ')) {
            line.remove_prefix(1);
        }
        if (line.find('\0') != std::string_view::npos) {
            Fail(std::string(label) + " holds a NUL byte");
        }
        return std::string(line);
    }

    /// Fails because the current line is not `text`.
    [[noreturn]] void FailExpecting(std::string_view text) const {
        Fail(std::string("\"").append(text).append("\" is expected"));
    }

    [[noreturn]] void Fail(const std::string& reason) const {
        FailDamaged(path_, "line " + std::to_string(line_) + ": " + reason);
    }

  private:
    const std::string& path_;
    std::string_view rest_;
    int line_ = 0;
};

bool IsGuid(std::string_view text) {
    constexpr std::string_view kForm = "{xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx}";
    if (text.size() != kForm.size()) {
        return false;
    }
    for (std::size_t i = 0; i < kForm.size(); ++i) {
        const bool fits =
            kForm[i] == 'x' ? std::isxdigit(static_cast<unsigned char>(text[i])) != 0 : text[i] == kForm[i];
        if (!fits) {
            return false;
        }
    }
    return true;
}

std::string ReadId(HeadReader& head, std::string_view label) {
    std::string id = head.Field(label);
    if (!IsGuid(id)) {
        head.Fail(std::string(label) + " is not of the form {8-4-4-4-12 hexadecimal digits}");
    }
    return id;
}

std::string ReadText(HeadReader& head, std::string_view label, std::size_t longest) {
    std::string text = head.Field(label);
    if (text.size() > longest) {
        head.Fail(std::string(label) + " is longer than " + std::to_string(longest) + " characters");
    }
    return text;
}

} // namespace

PackageFile ParsePackageFile(const std::string& path, std::string content) {
    PackageFile file;
    HeadReader head(path, content);
    if (head.NextLine() != kFirstLine) {
        head.FailExpecting(kFirstLine);
    }
    file.name = ReadText(head, "Name", kMaxName);
    if (file.name.empty()) {
        head.Fail("Name is empty");
    }
    file.description = ReadText(head, "Description", kMaxDescription);
    file.package_id = ReadId(head, "PackageId");
    file.version_id = ReadId(head, "VersionId");
    if (!head.NextLine().empty()) {
        head.Fail("an empty line is expected after the head");
    }
    file.content = std::move(content);
    return file;
}

PackageFile ReadPackageFile(const std::string& path) {
    std::string content;
    try {
        content = platform::ReadWholeFile(path);
    } catch (const platform::FileError& error) {
        throw PackageError(NumberOf(error.Fault()), kSource,
                           std::string("The package file can't be read: ") + error.what());
    }
    return ParsePackageFile(path, std::move(content));
}

} // namespace packages
