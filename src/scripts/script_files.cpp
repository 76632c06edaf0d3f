#include "scripts/script_files.h"

#include <algorithm>
#include <string_view>

#include "platform/files.h"

namespace kv {
namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// Calls `take` with every line of the text, without its line end.
template <class Take>
void ForEachLine(std::string_view text, Take&& take) {
    std::size_t at = 0;
    std::size_t carriage_return = text.find('\r');
    std::size_t line_feed = text.find('\n');
    while (at < text.size()) {
        const std::size_t stop = std::min(carriage_return, line_feed);
        take(text.substr(at, stop == std::string_view::npos ? stop : stop - at));
        if (stop == std::string_view::npos) {
            return;
        }
        // A carriage return and a line feed right after it are one line end.
        at = carriage_return < line_feed && line_feed == carriage_return + 1 ? line_feed + 1 : stop + 1;
        if (carriage_return < at) {
            carriage_return = text.find('\r', at);
        }
        if (line_feed < at) {
            line_feed = text.find('\n', at);
        }
    }
}

} // namespace

std::string DataFolder() {
    return platform::ExecutableFolder() + "\\Data";
}

std::string ReadFileContent(const std::string& path) {
    std::string raw = platform::ReadWholeFile(path);
    std::size_t size = 0;
    bool is_ended_by_cr_lf = true;
    ForEachLine(raw, [&](std::string_view line) {
        size += line.size() + kLineEnd.size();
        const auto end = static_cast<std::size_t>(line.data() - raw.data()) + line.size();
        is_ended_by_cr_lf = is_ended_by_cr_lf && raw.compare(end, kLineEnd.size(), kLineEnd) == 0;
    });
    if (is_ended_by_cr_lf) {
        return raw; // the usual template: nothing to change, so a large one is not copied
    }
    std::string content;
    content.reserve(size);
    ForEachLine(raw, [&](std::string_view line) { content.append(line).append(kLineEnd); });
    return content;
}

void WriteDataFile(const std::string& strFileContent, const std::string& strFile) {
    const std::string folder = DataFolder();
    if (!platform::FolderExists(folder)) {
        platform::CreateFolder(folder);
    }
    const std::string path = folder + "\\" + strFile;
    if (platform::FileExists(path)) {
        platform::DeleteFileAt(path);
    }
    // The product adds one more line end. The file is written in one step, so that the query tool never finds
    // an incomplete script under its name.
    platform::ReplaceWholeFile(path, strFileContent, kLineEnd);
}

} // namespace kv
