// The program with a damaged .reg file: the failure paths of the registry are taken, and the log names the
// file and the line.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"

namespace {

using namespace kv;
using registry::kHkeyLocalMachine;
namespace fs = std::filesystem;

const std::string kDamaged = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\A]\r\n\"V\"=\"half a val";
const std::string kSound =
    "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\ORVIK\\QUORLEN\\Log]\r\n@=\"D:\\\\Log\"\r\n";

class DamagedRegistry : public testing::Test {
  public:
    DamagedRegistry() {
        std::string pattern = (fs::temp_directory_path() / "kv_damaged_XXXXXX").string();
        folder_ = ::mkdtemp(pattern.data());
        fs::create_directory(folder_ / "computers");
        ::setenv("KVLSQLDBMGR_REGISTRY", (folder_ / "registry.reg").c_str(), 1);
        files_.AddFolder("D:\\Log");
    }
    ~DamagedRegistry() override {
        ::unsetenv("KVLSQLDBMGR_REGISTRY");
        fs::remove_all(folder_);
    }

  protected:
    void Put(const std::string& name, const std::string& bytes) const {
        std::ofstream(folder_ / name, std::ios::binary) << bytes;
    }
    std::string Get(const std::string& name) const {
        std::ifstream file(folder_ / name, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    /// The line that `call` leaves when the file `name` is found damaged.
    std::string LineOf(const std::string& call, const std::string& name) const {
        const std::string text =
            "The configuration registry database is corrupt: " + (folder_ / name).string() +
            ", line 4: an unterminated quote";
        return "2006-05-12 14:03:22 : Error in mRegistry::" + call + ": " + std::to_string(text.size() + 2) +
               " - " + text + "\r\n";
    }

    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fs::path folder_;
};

TEST_F(DamagedRegistry, OfAnotherComputerReturnsNothingAndLogsTwoLinesWithFileAndLine) {
    Put("registry.reg", kSound);
    Put("computers/ServerB.reg", kDamaged);
    EXPECT_EQ(GetRemoteSetting("ServerB", kHkeyLocalMachine, "SOFTWARE\\A", "V", "x"), "");
    EXPECT_EQ(files_.Content("D:\\Log\\KVLSQLDbMgr.log"),
              LineOf("GetStringKey('SOFTWARE\\A', 'V')", "computers/ServerB.reg") +
                  LineOf("GetRemoteSetting('ServerB', '-2147483646', 'SOFTWARE\\A', 'V')",
                         "computers/ServerB.reg"));
}

TEST_F(DamagedRegistry, OfThisComputerLeavesNoLogFolderAndIsNotChanged) {
    Put("registry.reg", kDamaged);
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, "SOFTWARE\\A", "V", "x"), "");
    EXPECT_FALSE(SaveLocalSetting(kHkeyLocalMachine, "SOFTWARE\\A", "V", "new"));
    EXPECT_EQ(files_.Content("\\KVLSQLDbMgr.log"),
              LineOf("GetStringKey('SOFTWARE\\A', 'V')", "registry.reg") +
                  LineOf("GetLocalSetting('-2147483646', 'SOFTWARE\\A', 'V')", "registry.reg") +
                  LineOf("SetStringKey('SOFTWARE\\A', 'V', 'new')", "registry.reg") +
                  LineOf("SaveLocalSetting('-2147483646', 'SOFTWARE\\A', 'V', 'new')", "registry.reg"));
    EXPECT_EQ(Get("registry.reg"), kDamaged);
}

} // namespace
