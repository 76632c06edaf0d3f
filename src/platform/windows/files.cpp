// The file services on Windows, over the system's ANSI calls.
#include "platform/files.h"

#include <algorithm>
#include <memory>
#include <utility>

#include "platform/windows/lean_windows.h"

namespace platform {
namespace {

FileFault FaultOf(DWORD error) {
    switch (error) {
    case ERROR_FILE_NOT_FOUND:
        return FileFault::NotFound;
    case ERROR_PATH_NOT_FOUND:
    case ERROR_BAD_NETPATH:
    case ERROR_BAD_NET_NAME:
    case ERROR_INVALID_DRIVE:
    case ERROR_DIRECTORY:
        return FileFault::PathNotFound;
    case ERROR_ACCESS_DENIED:
    case ERROR_WRITE_PROTECT:
        return FileFault::AccessDenied;
    case ERROR_SHARING_VIOLATION:
    case ERROR_LOCK_VIOLATION:
        return FileFault::InUse;
    case ERROR_ALREADY_EXISTS:
    case ERROR_FILE_EXISTS:
        return FileFault::AlreadyExists;
    case ERROR_DISK_FULL:
    case ERROR_HANDLE_DISK_FULL:
        return FileFault::DiskFull;
    default:
        return FileFault::Other;
    }
}

[[noreturn]] void Fail(const std::string& path, DWORD error) {
    throw FileError(FaultOf(error), path, static_cast<std::int64_t>(error));
}

class FileHandle {
  public:
    FileHandle(const std::string& path, DWORD access, DWORD disposition, DWORD share = FILE_SHARE_READ)
        : path_(path) {
        handle_ =
            ::CreateFileA(path.c_str(), access, share, nullptr, disposition, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (handle_ == INVALID_HANDLE_VALUE) {
            Fail(path, ::GetLastError());
        }
    }
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    ~FileHandle() {
        if (handle_ != INVALID_HANDLE_VALUE) {
            ::CloseHandle(handle_);
        }
    }

    HANDLE Get() const { return handle_; }

    void Write(std::string_view content) const {
        // One call writes less than 4 GiB, and to a share on another computer much less.
        constexpr std::size_t kPiece = std::size_t{1} << 24U;
        while (!content.empty()) {
            DWORD written = 0;
            const auto size = static_cast<DWORD>(std::min(content.size(), kPiece));
            if (::WriteFile(handle_, content.data(), size, &written, nullptr) == 0) {
                Fail(path_, ::GetLastError());
            }
            content.remove_prefix(written);
        }
    }

    void Close() {
        if (::CloseHandle(std::exchange(handle_, INVALID_HANDLE_VALUE)) == 0) {
            Fail(path_, ::GetLastError());
        }
    }

  private:
    std::string path_;
    HANDLE handle_ = INVALID_HANDLE_VALUE;
};

std::string ExecutablePath() {
    std::string buffer(MAX_PATH, '\0');
    for (;;) {
        const DWORD length = ::GetModuleFileNameA(nullptr, buffer.data(), static_cast<DWORD>(buffer.size()));
        if (length == 0) {
            Fail("the executable", ::GetLastError());
        }
        if (length < buffer.size()) {
            buffer.resize(length);
            return buffer;
        }
        buffer.resize(buffer.size() * 2);
    }
}

DWORD Attributes(const std::string& path) {
    return ::GetFileAttributesA(path.c_str());
}

} // namespace

std::string ExecutableFolder() {
    const std::string path = ExecutablePath();
    return path.substr(0, path.find_last_of('\\'));
}

std::string ExecutableName() {
    const std::string path = ExecutablePath();
    const std::string name = path.substr(path.find_last_of('\\') + 1);
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

bool FileExists(const std::string& path) {
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) == 0;
}

bool FolderExists(const std::string& path) {
    const DWORD attributes = Attributes(path);
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

bool FolderHoldsFile(const std::string& folder) {
    const bool separated = !folder.empty() && (folder.back() == '\\' || folder.back() == '/');
    WIN32_FIND_DATAA data{};
    const HANDLE search = ::FindFirstFileA((folder + (separated ? "*" : "\\*")).c_str(), &data);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    const std::unique_ptr<void, decltype(&::FindClose)> owner(search, &::FindClose);
    do {
        if ((data.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) {
            return true;
        }
    } while (::FindNextFileA(search, &data) != 0);
    return false;
}

void CreateFolder(const std::string& path) {
    if (::CreateDirectoryA(path.c_str(), nullptr) == 0) {
        Fail(path, ::GetLastError());
    }
}

void CopyFileOver(const std::string& from, const std::string& to) {
    if (::CopyFileA(from.c_str(), to.c_str(), FALSE) == 0) {
        Fail(to, ::GetLastError());
    }
}

void DeleteFileAt(const std::string& path) {
    if (::DeleteFileA(path.c_str()) == 0) {
        Fail(path, ::GetLastError());
    }
}

std::string ReadWholeFile(const std::string& path) {
    const FileHandle file(path, GENERIC_READ, OPEN_EXISTING);
    LARGE_INTEGER size{};
    if (::GetFileSizeEx(file.Get(), &size) == 0) {
        Fail(path, ::GetLastError());
    }
    std::string content(static_cast<std::size_t>(size.QuadPart), '\0');
    std::size_t filled = 0;
    while (filled < content.size()) {
        constexpr std::size_t kPiece = std::size_t{1} << 24U;
        const auto wanted = static_cast<DWORD>(std::min(content.size() - filled, kPiece));
        DWORD count = 0;
        if (::ReadFile(file.Get(), content.data() + filled, wanted, &count, nullptr) == 0) {
            Fail(path, ::GetLastError());
        }
        if (count == 0) {
            break;
        }
        filled += count;
    }
    content.resize(filled);
    return content;
}

void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    FileHandle file(path, GENERIC_WRITE, CREATE_ALWAYS);
    file.Write(content);
    file.Write(tail);
    file.Close();
}

void MakePrivateFile(const std::string& path) {
    WriteWholeFile(path, {}); // it has the rights of its folder
}

void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    const std::string beside = path + "." + std::to_string(::GetCurrentProcessId()) + ".new";
    try {
        WriteWholeFile(beside, content, tail);
        if (::MoveFileExA(beside.c_str(), path.c_str(), MOVEFILE_REPLACE_EXISTING) == 0) {
            Fail(path, ::GetLastError());
        }
    } catch (const FileError& error) {
        ::DeleteFileA(beside.c_str());
        throw FileError(error.Fault(), path, error.SystemError());
    }
}

void AppendToFile(const std::string& path, std::string_view content) {
    // Without GENERIC_WRITE every write goes to the current end of the file, so that several processes may
    // append to it.
    FileHandle file(path, FILE_APPEND_DATA, OPEN_ALWAYS,
                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE);
    file.Write(content);
    file.Close();
}

} // namespace platform
