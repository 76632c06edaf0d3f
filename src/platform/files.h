// The file services of the operating system. Paths are 8-bit text; both "\" and "/" separate folders on every
// system. A failure is a FileError; nothing here knows the program.
#pragma once

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <string_view>

namespace platform {

/// What went wrong, in the meanings that callers tell apart.
enum class FileFault : std::uint8_t {
    NotFound,     ///< the file is not there
    PathNotFound, ///< a folder on the way is not there
    AccessDenied, ///< rights, a read-only file, a folder where a file is wanted
    InUse,        ///< another program holds it
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
/// The copy has the source's rights. `to` is replaced when the copy is whole; a failure leaves it as it was.
void CopyFileOver(const std::string& from, const std::string& to);
void DeleteFileAt(const std::string& path);

/// The whole content, byte for byte.
std::string ReadWholeFile(const std::string& path);
/// Makes the file or cuts it to nothing, and writes the pieces one after the other.
void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// The same in one step: nobody finds a part of the new content at the path, and a failure leaves what was
/// there. A new file may hold passwords: on Linux only its owner may read it.
void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail = {});
/// Makes an empty file for text that may hold passwords, to be appended to: on Linux only its owner may read
/// it. A plain file of that name is deleted first, whoever it belongs to, or else cut to nothing.
void MakePrivateFile(const std::string& path);
/// Opens the file for appending, making it if it is absent, writes and closes it. Others may have it open. A
/// failure leaves no part of the content.
void AppendToFile(const std::string& path, std::string_view content);

} // namespace platform
