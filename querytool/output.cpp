// Writes to the standard channels or, in large pieces, to a file.
#include "querytool/output.h"

#include <iostream>

#include "platform/files.h"

namespace querytool {
namespace {

/// Pending text of this size is written to the file.
constexpr std::size_t kPendingBytes = 256 * 1024;

} // namespace

void StandardOutput::Write(std::string_view text) {
    std::cout << text;
}

void StandardOutput::WriteError(std::string_view text) {
    std::cout.flush();
    std::cerr << text;
}

void StandardOutput::Flush() {
    std::cout.flush();
}

FileOutput::FileOutput(std::string path) : path_(std::move(path)) {
    platform::MakePrivateFile(path_);
}

void FileOutput::Write(std::string_view text) {
    for (const char c : text) {
        if (c == '\n') {
            pending_ += '\r';
        }
        pending_ += c;
    }
    if (pending_.size() >= kPendingBytes) {
        Flush();
    }
}

void FileOutput::WriteError(std::string_view text) {
    std::cerr << text;
}

void FileOutput::Flush() {
    if (!pending_.empty()) {
        platform::AppendToFile(path_, pending_);
        pending_.clear();
    }
}

} // namespace querytool
