// Fuzzes the settings file of a user. The input is the file. A setting that is written must be read back,
// other settings must stay, and nothing may be thrown.
#include <filesystem>
#include <fstream>

#include <unistd.h>

#include "fuzz/input.h"
#include "registry/user_settings.h"

namespace {

constexpr char kApplication[] = "Program";
constexpr char kSection[] = "Settings";

/// The folder of the settings file: in memory if the system has a file system for that, because each input
/// replaces the file, and writing to a disk would take most of the time.
std::filesystem::path FastFolder() {
    const std::filesystem::path memory = "/dev/shm";
    return ::access(memory.c_str(), W_OK) == 0 ? memory : std::filesystem::temp_directory_path();
}

/// A folder for this process, removed at its end.
class Folder {
  public:
    Folder() : path_(FastFolder() / ("kv-fuzz-" + std::to_string(::getpid()))) {
        std::filesystem::create_directories(path_ / kApplication);
        ::setenv("XDG_CONFIG_HOME", path_.c_str(), 1);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    std::filesystem::path File() const { return path_ / kApplication / "settings.ini"; }

  private:
    std::filesystem::path path_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t size) {
    static const Folder folder;
    std::ofstream(folder.File(), std::ios::binary)
        .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(size));
    const std::string before = registry::ReadUserSetting(kApplication, kSection, "other", "none");
    fuzz::Require(registry::WriteUserSetting(kApplication, kSection, "edtPassword0", "a=[b]"),
                  "a setting can be written");
    fuzz::Require(registry::ReadUserSetting(kApplication, kSection, "edtPassword0", "none") == "a=[b]",
                  "what was written comes back");
    fuzz::Require(registry::ReadUserSetting(kApplication, kSection, "other", "none") == before,
                  "the other settings stay");
    return 0;
}
