// Builds the lines of the error log and appends them to its file.
#include "base/error_log.h"

#include <array>
#include <cstdio>

#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "platform/files.h"

namespace kv {
namespace {

/// True while WriteErrorLog runs. Reading the log folder reports its failures to the log as well: without
/// this mark a missing log key would lead to endless recursion.
bool writing = false;

class WritingMark {
  public:
    WritingMark() { writing = true; }
    WritingMark(const WritingMark&) = delete;
    WritingMark& operator=(const WritingMark&) = delete;
    ~WritingMark() { writing = false; }
};

/// Makes the folder Data beside the program. Does nothing if a folder or a plain file has that name. Another
/// process may make the folder after the lookup, so AlreadyExists is not an error.
void MakeDataFolder() {
    const std::string folder = platform::ExecutableFolder() + "\\Data";
    if (platform::FolderExists(folder) || platform::FileExists(folder)) {
        return;
    }
    try {
        platform::CreateFolder(folder);
    } catch (const platform::FileError& error) {
        if (error.Fault() != platform::FileFault::AlreadyExists) {
            throw;
        }
    }
}

std::string DateAndTime(const platform::LocalTime& time) {
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "%04d-%02d-%02d %02d:%02d:%02d", time.year, time.month, time.day,
                  time.hour, time.minute, time.second);
    return text.data();
}

} // namespace

std::string ErrorLogLine(const platform::LocalTime& time, const std::string& strSource,
                         const ErrorState& error) {
    std::string line = DateAndTime(time) + " : Error in " + strSource;
    if (error.number != 0) {
        line += " : " + std::to_string(error.number) + ", " + error.description;
    }
    return line;
}

void WriteErrorLog(const std::string& strSource) {
    if (writing) {
        return;
    }
    const WritingMark mark;
    MakeDataFolder();
    // Reading the setting clears the current error, so the line below has the short form, without number and
    // description. Programs that read the log rely on that.
    const std::string folder =
        GetLocalSetting(registry_locations::kHkeyLocalMachine, registry_locations::kLogKey,
                        registry_locations::kLogValue, registry_locations::kLogDefault);
    platform::AppendToFile(folder + "\\" + platform::ExecutableName() + ".log",
                           ErrorLogLine(platform::Now(), strSource, CurrentError()) + "\r\n");
}

} // namespace kv
