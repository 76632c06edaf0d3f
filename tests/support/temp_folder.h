// A new folder for one test.
#pragma once

#include <atomic>
#include <chrono>
#include <filesystem>
#include <string>

namespace support {

/// Makes a new, empty folder and deletes it with its content when the object is destroyed. The constructor
/// throws std::filesystem::filesystem_error if the folder cannot be made.
class TempFolder {
  public:
    TempFolder() {
        static std::atomic<int> counter{0};
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        path_ = std::filesystem::temp_directory_path() /
                ("kv-test-" + std::to_string(now) + "-" + std::to_string(counter++));
        std::filesystem::create_directories(path_);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;
    ~TempFolder() {
        std::error_code ignored;
        std::filesystem::permissions(path_, std::filesystem::perms::owner_all, ignored);
        std::filesystem::remove_all(path_, ignored);
    }

    const std::filesystem::path& Path() const { return path_; }
    /// The path of a file in the folder, as the program writes paths: with "\" before the name.
    std::string operator/(const std::string& name) const { return path_.string() + "\\" + name; }

  private:
    std::filesystem::path path_;
};

} // namespace support
