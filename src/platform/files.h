// The file services of the operating system. Paths are 8-bit text; both "\" and "/" separate folders on every
// system. Failures are thrown as FileError.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// The kinds of failure that callers distinguish.
enum class FileFault : std::uint8_t {
    NotFound,     ///< the file is not there
    PathNotFound, ///< a folder of the path is not there
    AccessDenied, ///< missing rights, a read-only file, a folder instead of a file
    InUse,        ///< another program has it open
    AlreadyExists,
    DiskFull,
    Other,
};

class FileError : public std::exception {
  public:
    FileError(FileFault fault, std::string path, std::int64_t system_error);

    FileFault Fault() const { return fault_; }
    const std::string& Path() const { return path_; }
    /// errno on Linux, GetLastError on Windows.
    std::int64_t SystemError() const { return system_error_; }
    const char* what() const noexcept override { return text_.c_str(); }

  private:
    FileFault fault_;
    std::string path_;
    std::int64_t system_error_;
    std::string text_;
};

/// The folder of the running executable, without a separator at its end.
std::string ExecutableFolder();
/// The name of the running executable without folder and extension.
std::string ExecutableName();

/// True if the path names a plain file.
bool FileExists(const std::string& path);
/// True if the path names a folder; it may end in a separator.
bool FolderExists(const std::string& path);
/// True if the folder holds at least one plain file.
bool FolderHoldsFile(const std::string& folder);

/// One level only; the parent must exist.
void CreateFolder(const std::string& path);
/// The copy has the source's rights. `to` is replaced when the copy is complete; a failure leaves it as it
/// was.
void CopyFileOver(const std::string& from, const std::string& to);
void DeleteFileAt(const std::string& path);

/// The whole content, byte for byte.
std::string ReadWholeFile(const std::string& path);
/// Makes or empties the file, and writes `content` and `tail` one after the other.
void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// The same in one step: no other program ever finds a part of the new content, and a failure leaves the old
/// file. A new file may contain passwords: on Linux only its owner can read it.
void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// Makes an empty file that text with passwords may be appended to: on Linux only its owner can read it. A
/// plain file with that name is deleted first, or emptied if it cannot be deleted.
void MakePrivateFile(const std::string& path);
/// Appends to the file, which is made if it is absent. Other programs may have it open. After a failure no
/// part of the content is in the file.
void AppendToFile(const std::string& path, std::string_view content);

} // namespace platform
