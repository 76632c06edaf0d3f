// The file services (platform/files.h) in memory, linked instead of the system's. They fail on demand.
#pragma once

#include <functional>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "platform/files.h"

namespace fakes {

/// Paths are kept with "/" and without a separator at their end; both separators are accepted.
class FakeFiles {
  public:
    /// An empty file system with the program's own folder and the folders above it.
    FakeFiles();
    FakeFiles(const FakeFiles&) = delete;
    FakeFiles& operator=(const FakeFiles&) = delete;
    ~FakeFiles();

    /// The instance that the services use. Ends the test program if there is no instance.
    static FakeFiles& Current();

    void AddFolder(const std::string& path);
    void AddFile(const std::string& path, const std::string& content);
    bool HasFolder(const std::string& path) const;
    bool HasFile(const std::string& path) const;
    /// Throws std::out_of_range if there is no such file.
    const std::string& Content(const std::string& path) const;

    /// The next call of the operation ("read", "write", "append", "delete", "copy", "create folder") on the
    /// path fails.
    void FailNext(const std::string& operation, const std::string& path, platform::FileFault fault);

    /// Every call that changes files or folders, as "operation path", in order.
    const std::vector<std::string>& Log() const { return log_; }

    /// The form in which paths are stored.
    static std::string Plain(std::string path);
    // For the services: Check throws the failure that a test has set, Record adds a line to the log.
    void Check(const std::string& operation, const std::string& path);
    void Record(const std::string& operation, const std::string& path);

    /// Called whenever the existence of a folder is checked. Writing the log begins with that check, so here
    /// a test can read the current error of a failure handler.
    std::function<void()> on_folder_asked;
    std::string executable_folder = R"(C:\Lotkeeper\Server)";
    std::string executable_name = "KVLSQLDbMgr";
    std::map<std::string, std::string> files;
    std::set<std::string> folders;

  private:
    std::map<std::pair<std::string, std::string>, platform::FileFault> failures_;
    std::vector<std::string> log_;
};

} // namespace fakes
