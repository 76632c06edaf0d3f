// The log and the settings with the system's real files and registry. Only the clock is a fake.
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "base/error_log.h"
#include "base/registry_locations.h"
#include "base/registry_settings.h"
#include "fakes/fake_clock.h"
#include "platform/files.h"
#include "registry/registry_fixture.h"

namespace {

using namespace kv;
using registry::kHkeyCurrentUser;
using registry::kHkeyLocalMachine;
namespace fs = std::filesystem;

constexpr const char* kLine = "2006-05-12 14:03:22 : Error in ";

/// The log key is the real one of the program, of which a system has only one. If it has no value, the test
/// does not set one.
class ThisSystem : public testing::Test {
  public:
    ThisSystem()
        : start_(fs::current_path()),
          folder_(fs::temp_directory_path() / ("kv_startup_" + std::to_string(std::random_device{}()))) {
        registry_.OwnLocalMachine();
        fs::create_directories(folder_ / "Log");
        fs::create_directories(folder_ / "Current");
        fs::current_path(folder_ / "Current");
        const auto key =
            registry::CreateKey(kHkeyLocalMachine, registry_locations::kLogKey, "", registry::kKeyAllAccess);
        registry::CloseKey(key.key);
    }
    ~ThisSystem() override {
        fs::current_path(start_);
        fs::remove_all(folder_);
    }

  protected:
    std::string Log() const {
        std::ifstream file(folder_ / "Log" / (platform::ExecutableName() + ".log"), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    fakes::FakeClock clock_;
    registry_tests::TestRegistry registry_;
    fs::path start_;
    fs::path folder_;
};

TEST_F(ThisSystem, WithoutALogValueTheLogIsBesideTheCurrentFolderAndTheDataFolderIsMade) {
    WriteErrorLog("CUpgradeDbMgr::RemoveDatabase('Batch')");
    WriteErrorLog("Z\xFCrich");
    EXPECT_EQ(Log(),
              std::string(kLine) + "CUpgradeDbMgr::RemoveDatabase('Batch')\r\n" + kLine + "Z\xFCrich\r\n");
    EXPECT_TRUE(platform::FolderExists(platform::ExecutableFolder() + "\\Data"));
}

TEST_F(ThisSystem, ALogFolderThatIsNotThereFails) {
    fs::remove_all(folder_ / "Log");
    EXPECT_THROW(WriteErrorLog("a"), platform::FileError);
    EXPECT_FALSE(fs::exists(folder_ / "Log"));
}

TEST_F(ThisSystem, SavesAndGetsAValueInBothHives) {
    for (const auto hive : {kHkeyCurrentUser, kHkeyLocalMachine}) {
        const std::string text = "Z\xFCrich \x80 " + std::to_string(hive);
        EXPECT_TRUE(SaveLocalSetting(hive, registry_.Key("A"), "Name", text));
        EXPECT_EQ(GetLocalSetting(hive, registry_.Key("A"), "NAME", "x"), text);
    }
    EXPECT_EQ(registry_.ClassOf(kHkeyLocalMachine, registry_.Key("A")), "Name");
    EXPECT_EQ(Log(), "");
}

TEST_F(ThisSystem, GetsTheDefaultForAMissingValueAndNothingForAMissingKey) {
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "", "default value"));
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "", "x"), "default value");
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "Missing", "x"), "x");
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("B"), "Missing", "x"), "");
    const std::string text = registry::SystemMessage(registry::error::kFileNotFound, 200);
    const std::string tail =
        "'" + registry_.Key("B") + "', 'Missing'): " + std::to_string(text.size()) + " - " + text;
    EXPECT_EQ(Log(), std::string(kLine) + "mRegistry::GetStringKey(" + tail + kLine +
                         "mRegistry::GetLocalSetting('-2147483646', " + tail);
}

TEST_F(ThisSystem, GetsAValueOf399CharactersWholeAndFailsAt400) {
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", std::string(399, 'v')));
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", "x"), std::string(399, 'v'));
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", std::string(400, 'v')));
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", "x"), "");
}

TEST_F(ThisSystem, KeepsTheBlanksOfAValueWithANulAndTrimsOneThatFillsTheBuffer) {
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", " a  "));
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "V", "x"), " a  ");
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "W", registry::kRegSz, " a" + std::string(398, ' '));
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "W", "x"), " a");
}

TEST_F(ThisSystem, GetsTheRawBytesOfANumber) {
    constexpr std::uint32_t kNumber = 4;
    registry_.Put(kHkeyLocalMachine, registry_.Key("A"), "N", kNumber, "1234");
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_.Key("A"), "N", "x"), "1234");
}

TEST_F(ThisSystem, ReportsAComputerThatIsNotThereWithOneLine) {
    EXPECT_EQ(GetRemoteSetting("\\\\kv-no-such-computer", kHkeyLocalMachine, "A", "V", "x"), "");
    const std::string line =
        std::string(kLine) +
        R"(mRegistry::GetRemoteSetting('\\kv-no-such-computer', '-2147483646', 'A', 'V'): )";
    // The text depends on how the system reports that there is no network.
    EXPECT_EQ(Log().substr(0, line.size()), line);
    EXPECT_EQ(Log().find("\r\n"), Log().size() - 2);
}

} // namespace
