// The file services of the operating system. Paths are text of code page 1252, on Linux with escapes
// (text/escaped.h); both "\" and "/" separate folders on every system. A relative path begins at the current
// folder. Every function that can fail throws FileError.
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

/// A failed file service.
class FileError : public std::exception {
  public:
    FileError(FileFault fault, std::string path, std::int64_t system_error);

    FileFault Fault() const { return fault_; }
    /// The path that the failed call was about.
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

/// Returns the folder of the running executable, without a separator at its end.
std::string ExecutableFolder();
/// Returns the name of the running executable without folder and extension.
std::string ExecutableName();

// These three do not throw. They return false if the system does not let the program look.

/// True if the path names a plain file.
bool FileExists(const std::string& path);
/// True if the path names a folder; it may end in a separator.
bool FolderExists(const std::string& path);
/// True if the folder contains at least one plain file.
bool FolderHoldsFile(const std::string& folder);

/// Makes one folder. Throws PathNotFound if the parent folder is missing, AlreadyExists if the path exists.
void CreateFolder(const std::string& path);
/// Copies the file `from` to `to`, which is replaced if it exists. On Linux the copy has the source's rights,
/// and `to` is replaced when the copy is complete, so that a failure leaves it as it was. On Windows the
/// system's CopyFile does the work.
void CopyFileOver(const std::string& from, const std::string& to);
/// Deletes a file. Throws NotFound if there is no such file.
void DeleteFileAt(const std::string& path);

/// Returns the whole content of a file, byte for byte.
std::string ReadWholeFile(const std::string& path);
/// Makes or empties the file, and writes `content` and then `tail`. The text is passed in two parts so that a
/// caller need not copy a large text to add an end to it.
void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// Does the same in one step: no other program ever finds a part of the new content, and a failure leaves the
/// old file. A new file may contain passwords: on Linux only its owner can read it.
void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// Makes an empty file to which text with passwords may be appended: on Linux only its owner can read it. A
/// plain file with that name is deleted first, or emptied if it cannot be deleted. On Windows the file has
/// the rights of its folder.
void MakePrivateFile(const std::string& path);
/// Appends to the file, which is made if it is missing. Other programs may have it open. On Linux no part of
/// the content is in the file after a failure.
void AppendToFile(const std::string& path, std::string_view content);

} // namespace platform
