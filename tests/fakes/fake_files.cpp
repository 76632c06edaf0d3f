// Implements platform/files.h on maps in memory.
#include "fakes/fake_files.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

namespace fakes {
namespace {
FakeFiles* current = nullptr;

std::string Parent(const std::string& plain) {
    const auto slash = plain.rfind('/');
    return slash == std::string::npos ? std::string() : plain.substr(0, slash);
}
} // namespace

FakeFiles::FakeFiles() {
    current = this;
    for (std::string folder = Plain(executable_folder); !folder.empty(); folder = Parent(folder)) {
        folders.insert(folder);
    }
}

FakeFiles::~FakeFiles() {
    current = nullptr;
}

FakeFiles& FakeFiles::Current() {
    if (current == nullptr) {
        std::fputs("a file service was called, and the test has no FakeFiles\n", stderr);
        std::abort();
    }
    return *current;
}

std::string FakeFiles::Plain(std::string path) {
    std::replace(path.begin(), path.end(), '\\', '/');
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    return path;
}

void FakeFiles::AddFolder(const std::string& path) {
    folders.insert(Plain(path));
}

void FakeFiles::AddFile(const std::string& path, const std::string& content) {
    files[Plain(path)] = content;
}

bool FakeFiles::HasFolder(const std::string& path) const {
    return folders.count(Plain(path)) == 1;
}

bool FakeFiles::HasFile(const std::string& path) const {
    return files.count(Plain(path)) == 1;
}

const std::string& FakeFiles::Content(const std::string& path) const {
    return files.at(Plain(path));
}

void FakeFiles::FailNext(const std::string& operation, const std::string& path, platform::FileFault fault) {
    failures_[{operation, Plain(path)}] = fault;
}

void FakeFiles::Check(const std::string& operation, const std::string& path) {
    if (const auto found = failures_.find({operation, Plain(path)}); found != failures_.end()) {
        const platform::FileFault fault = found->second;
        failures_.erase(found);
        throw platform::FileError(fault, path, 0);
    }
    const std::string parent = Parent(Plain(path));
    const bool makes = operation == "write" || operation == "append" || operation == "create folder";
    if (makes && !parent.empty() && folders.count(parent) == 0) {
        throw platform::FileError(platform::FileFault::PathNotFound, path, 0);
    }
    if (!makes && files.count(Plain(path)) == 0) {
        throw platform::FileError(platform::FileFault::NotFound, path, 0);
    }
}

void FakeFiles::Record(const std::string& operation, const std::string& path) {
    log_.push_back(operation + " " + path);
}

} // namespace fakes

namespace platform {

using fakes::FakeFiles;

std::string ExecutableFolder() {
    return FakeFiles::Current().executable_folder;
}

std::string ExecutableName() {
    return FakeFiles::Current().executable_name;
}

bool FileExists(const std::string& path) {
    return FakeFiles::Current().HasFile(path);
}

bool FolderExists(const std::string& path) {
    if (FakeFiles::Current().on_folder_asked) {
        FakeFiles::Current().on_folder_asked();
    }
    return FakeFiles::Current().HasFolder(path);
}

bool FolderHoldsFile(const std::string& folder) {
    const std::string plain = FakeFiles::Plain(folder);
    const std::string prefix = plain == "/" ? plain : plain + "/";
    const auto& files = FakeFiles::Current().files;
    return std::any_of(files.begin(), files.end(), [&](const auto& file) {
        return file.first.compare(0, prefix.size(), prefix) == 0 &&
               file.first.find('/', prefix.size()) == std::string::npos;
    });
}

void CreateFolder(const std::string& path) {
    FakeFiles::Current().Check("create folder", path);
    FakeFiles::Current().Record("create folder", path);
    FakeFiles::Current().AddFolder(path);
}

void CopyFileOver(const std::string& from, const std::string& to) {
    FakeFiles::Current().Check("copy", from);
    FakeFiles::Current().Record("copy", from + " " + to);
    FakeFiles::Current().AddFile(to, FakeFiles::Current().Content(from));
}

void DeleteFileAt(const std::string& path) {
    FakeFiles::Current().Check("delete", path);
    FakeFiles::Current().Record("delete", path);
    FakeFiles::Current().files.erase(FakeFiles::Plain(path));
}

std::string ReadWholeFile(const std::string& path) {
    FakeFiles::Current().Check("read", path);
    return FakeFiles::Current().Content(path);
}

void WriteWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    FakeFiles::Current().Check("write", path);
    FakeFiles::Current().Record("write", path);
    FakeFiles::Current().AddFile(path, std::string(content).append(tail));
}

void ReplaceWholeFile(const std::string& path, std::string_view content, std::string_view tail) {
    WriteWholeFile(path, content, tail);
}

void AppendToFile(const std::string& path, std::string_view content) {
    FakeFiles::Current().Check("append", path);
    FakeFiles::Current().Record("append", path);
    FakeFiles::Current().files[FakeFiles::Plain(path)].append(content);
}

} // namespace platform
