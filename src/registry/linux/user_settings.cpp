// The file has "[section]" lines with "key=text" lines below them. A text begins after the "=" and ends with
// the line, blanks included; its bytes are kept as they are.
#include "registry/user_settings.h"

#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <vector>

#include <sys/stat.h>

#include "platform/linux/descriptor.h"
#include "platform/linux/file_replacement.h"
#include "registry/linux/config_folder.h"

namespace registry {
namespace {

using Lines = std::vector<std::string>;

std::filesystem::path FolderOf(const std::string& application) {
    const std::string folder = ConfigFolder();
    return folder.empty() ? std::filesystem::path() : std::filesystem::path(folder) / application;
}

/// Reads the lines of the file; a missing file has no lines. Returns nothing if a file cannot be read to its
/// end.
std::optional<Lines> ReadLines(const std::filesystem::path& file) {
    Lines lines;
    std::error_code error;
    if (!std::filesystem::exists(file, error)) {
        return error ? std::nullopt : std::optional(lines);
    }
    std::ifstream stream(file, std::ios::binary);
    for (std::string line; std::getline(stream, line);) {
        lines.push_back(line);
    }
    return stream.eof() ? std::optional(lines) : std::nullopt;
}

/// The lines of a section without its heading: from `begin` to before `end`.
struct Range {
    std::size_t begin;
    std::size_t end;
};

std::optional<Range> FindSection(const Lines& lines, const std::string& section) {
    const std::string head = "[" + section + "]";
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (lines[i] == head) {
            std::size_t end = i + 1;
            while (end < lines.size() && (lines[end].empty() || lines[end].front() != '[')) {
                ++end;
            }
            return Range{i + 1, end};
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> FindKey(const Lines& lines, const Range& range, const std::string& key) {
    const std::string beginning = key + "=";
    for (std::size_t i = range.begin; i < range.end; ++i) {
        if (lines[i].compare(0, beginning.size(), beginning) == 0) {
            return i;
        }
    }
    return std::nullopt;
}

void SetLine(Lines& lines, const std::string& section, const std::string& key, const std::string& value) {
    auto range = FindSection(lines, section);
    if (!range) {
        lines.push_back("[" + section + "]");
        range = Range{lines.size(), lines.size()};
    }
    const std::string line = key + "=" + value;
    if (const auto found = FindKey(lines, *range, key)) {
        lines[*found] = line;
    } else {
        lines.insert(lines.begin() + static_cast<std::ptrdiff_t>(range->end), line);
    }
}

/// Replaces the file; false if that fails. The file contains passwords in clear text, so only its user can
/// read it, from its first byte on, whatever the rights of the file that it replaces.
bool ReplaceFile(const std::filesystem::path& file, const Lines& lines) {
    constexpr mode_t kOwnerOnly = S_IRUSR | S_IWUSR;
    std::string content;
    for (const std::string& line : lines) {
        content += line + '\n';
    }
    try {
        platform::FileReplacement replacement(file.string(), kOwnerOnly);
        replacement.File().Write(content);
        replacement.Commit(platform::FileReplacement::Durability::Unsynced);
        return true;
    } catch (const platform::SystemFault&) {
        return false;
    }
}

} // namespace

std::string ReadUserSetting(const std::string& application, const std::string& section,
                            const std::string& key, const std::string& otherwise) {
    const auto lines = ReadLines(FolderOf(application) / "settings.ini");
    const auto range = lines ? FindSection(*lines, section) : std::nullopt;
    const auto found = range ? FindKey(*lines, *range, key) : std::nullopt;
    return found ? (*lines)[*found].substr(key.size() + 1) : otherwise;
}

bool WriteUserSetting(const std::string& application, const std::string& section, const std::string& key,
                      const std::string& value) {
    const std::filesystem::path folder = FolderOf(application);
    if (folder.empty() || value.find_first_of("\r\n") != std::string::npos) {
        return false;
    }
    std::error_code ignored;
    if (std::filesystem::create_directories(folder, ignored)) {
        std::filesystem::permissions(folder, std::filesystem::perms::owner_all, ignored);
    }
    const std::filesystem::path file = folder / "settings.ini";
    auto lines = ReadLines(file);
    if (!lines) {
        return false; // a new file would lose all other settings
    }
    SetLine(*lines, section, key, value);
    return ReplaceFile(file, *lines);
}

} // namespace registry
