#include "base/registry_settings.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/failure.h"
#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"

namespace {

using namespace kv;
using fakes::RegistryCall;
using registry::kHkeyCurrentUser;
using registry::kHkeyLocalMachine;
using namespace registry::error;

constexpr const char* kKey = R"(SOFTWARE\Key)";
// The text has 22 characters with its line end and 20 without it: the logged number is 22.
constexpr const char* kText = "Something went wrong\r\n";
constexpr const char* kLogged = "22 - Something went wrong";
constexpr const char* kDate = "2006-05-12 14:03:22 : Error in ";

class RegistrySettings : public testing::Test {
  protected:
    RegistrySettings() {
        files_.AddFolder("D:\\Log");
        registry_.AddText(kHkeyLocalMachine, registry_locations::kLogKey, "", "D:\\Log");
        for (const auto error : {kFileNotFound, kAccessDenied, kBadNetPath, kMoreData}) {
            registry_.SetSystemMessage(error, kText);
        }
    }

    /// The lines of the log, without dates.
    std::vector<std::string> LogLines() const {
        std::vector<std::string> lines;
        if (!files_.HasFile(R"(D:\Log\KVLSQLDbMgr.log)")) {
            return lines;
        }
        const std::string& log = files_.Content(R"(D:\Log\KVLSQLDbMgr.log)");
        for (std::size_t begin = 0; begin < log.size();) {
            const auto end = log.find("\r\n", begin);
            std::string line = log.substr(begin, end - begin);
            EXPECT_TRUE(line.starts_with(kDate)) << line;
            lines.push_back(line.substr(std::string(kDate).size()));
            begin = end + 2;
        }
        return lines;
    }

    std::string GetLocal(const std::string& name, const std::string& fallback = "x") const {
        return GetLocalSetting(kHkeyLocalMachine, kKey, name, fallback);
    }

    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
};

using Lines = std::vector<std::string>;

std::string In(const std::string& call) {
    return call + ": " + kLogged;
}

TEST_F(RegistrySettings, GetsAValue) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "value");
    EXPECT_EQ(GetLocal("Name"), "value");
    EXPECT_EQ(registry_.Calls(), (Lines{R"(Open HKLM\SOFTWARE\Key 1)", "Query Name", "Close"}));
    EXPECT_EQ(registry_.OpenHandles(), 0U);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RegistrySettings, GetsAnEmptyValueAsEmptyAndNotAsTheDefault) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "");
    EXPECT_EQ(GetLocal("Name"), "");
}

TEST_F(RegistrySettings, GetsTheDefaultForAMissingValueOfAnExistingKeyWithoutALogLine) {
    registry_.AddKey(kHkeyLocalMachine, kKey);
    EXPECT_EQ(GetLocal("Name"), "x");
    EXPECT_EQ(registry_.OpenHandles(), 0U);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RegistrySettings, GetsTheEmptyStringAndNotTheDefaultForAMissingKeyWithTwoLogLines) {
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(LogLines(),
              (Lines{In(R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'))"),
                     In(R"(mRegistry::GetLocalSetting('-2147483646', 'SOFTWARE\Key', 'Name'))")}));
}

TEST_F(RegistrySettings, GetsTheEmptyStringForAKeyThatCannotBeOpenedWithTwoLogLines) {
    registry_.AddText(kHkeyCurrentUser, kKey, "Name", "value");
    registry_.Fail(RegistryCall::Open, kAccessDenied);
    registry_.SetSystemMessage(kAccessDenied, "No\r\n");
    files_.AddFolder("");
    EXPECT_EQ(GetLocalSetting(kHkeyCurrentUser, kKey, "Name", "x"), "");
    // The log's own key cannot be opened either, so the lines go to the file for an empty log folder.
    EXPECT_EQ(files_.Content("\\KVLSQLDbMgr.log"),
              std::string(kDate) + R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'): 4 - No)" + "\r\n" +
                  kDate + R"(mRegistry::GetLocalSetting('-2147483647', 'SOFTWARE\Key', 'Name'): 4 - No)" +
                  "\r\n");
}

TEST_F(RegistrySettings, GetsAValueOf399CharactersWhole) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", std::string(399, 'v'));
    EXPECT_EQ(GetLocal("Name"), std::string(399, 'v'));
}

TEST_F(RegistrySettings, FailsOnAValueOf400CharactersWithTwoLogLinesAndTheKeyLeftOpen) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", std::string(400, 'v'));
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(LogLines(),
              (Lines{In(R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'))"),
                     In(R"(mRegistry::GetLocalSetting('-2147483646', 'SOFTWARE\Key', 'Name'))")}));
    EXPECT_EQ(registry_.OpenHandles(), 1U);
}

TEST_F(RegistrySettings, KeepsTheBlanksOfAValueThatEndsInANul) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "  ");
    EXPECT_EQ(GetLocal("Name"), "  ");
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", " a ");
    EXPECT_EQ(GetLocal("Name"), " a ");
}

TEST_F(RegistrySettings, TrimsTheRightOfAValueThatFillsTheBufferWithoutANul) {
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", "  a" + std::string(397, ' '));
    EXPECT_EQ(GetLocal("Name"), "  a");
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", std::string(400, 'v'));
    EXPECT_EQ(GetLocal("Name"), std::string(400, 'v'));
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", std::string(399, 'v') + "\t");
    EXPECT_EQ(GetLocal("Name"), std::string(399, 'v') + "\t");
}

TEST_F(RegistrySettings, EndsAValueAtItsFirstNul) {
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", std::string("a\0b\0", 4));
    EXPECT_EQ(GetLocal("Name"), "a");
}

TEST_F(RegistrySettings, GetsTheRawBytesOfAValueThatIsNotText) {
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", "\x31\x32\x33\x34");
    EXPECT_EQ(GetLocal("Name"), "1234");
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", std::string("\1\0\0\0", 4));
    EXPECT_EQ(GetLocal("Name"), "\1");
    registry_.AddBytes(kHkeyLocalMachine, kKey, "Name", "");
    EXPECT_EQ(GetLocal("Name"), "");
}

TEST_F(RegistrySettings, ReadsAndWritesTheDefaultValueByTheEmptyName) {
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, kKey, "", "the default"));
    EXPECT_EQ(GetLocal(""), "the default");
    EXPECT_EQ(registry_.TextOf(kHkeyLocalMachine, kKey, ""), "the default");
}

TEST_F(RegistrySettings, FindsTheKeyThatTheProgramWritesWithDoubledSeparators) {
    registry_.AddText(kHkeyLocalMachine,
                      R"(SOFTWARE\Microsoft\Microsoft SQL Server\KV_BATCH\MSSQLServer\CurrentVersion)",
                      "CurrentVersion", "9.00.1399");
    EXPECT_EQ(GetLocalSetting(kHkeyLocalMachine, registry_locations::kCurrentVersionKey,
                              registry_locations::kCurrentVersionValue, registry_locations::kNoDefault),
              "9.00.1399");
    EXPECT_NE(std::string(registry_locations::kCurrentVersionKey).find(R"(SOFTWARE\\Microsoft\\)"),
              std::string::npos);
}

/// Other programs read and write these settings, so no name may change.
TEST(RegistryLocations, HaveExactlyTheseNames) {
    using namespace registry_locations;
    struct Place {
        const char* in_the_program;
        const char* written_out;
    };
    for (const Place& place : {
             Place{kLogKey, R"(SOFTWARE\ORVIK\QUORLEN\Log)"},
             Place{kLogValue, ""},
             Place{kLogDefault, R"(..\Log)"},
             Place{kLoginKey, R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\Login)"},
             Place{kServerNameValue, "ServerName"},
             Place{kUserIdValue, "UserID"},
             Place{kPasswordValue, "PWD"},
             Place{kRedundancyKey, R"(SOFTWARE\Orvik\Quorlen\Redundancy\Lotkeeper)"},
             Place{kBackupNodeValue, "BackupNode"},
             Place{kCustomFunctionsKey, R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\CustomFunctions)"},
             Place{kUseTransactionalReplicationValue, "UseTransactionalReplication"},
             Place{kSqlServerInstalledValue, "SqlServerInstalled"},
             Place{kInstallationKey, R"(SOFTWARE\Orvik\Quorlen\Lotkeeper\Installation)"},
             Place{kSqlDomainValue, "SqlDomain"},
             Place{kCurrentVersionKey,
                   R"(SOFTWARE\\Microsoft\\Microsoft SQL Server\\KV_BATCH\\MSSQLServer\\CurrentVersion)"},
             Place{kCurrentVersionValue, "CurrentVersion"},
             Place{kClientSetup80Key, R"(SOFTWARE\Microsoft\Microsoft SQL Server\80\Tools\ClientSetup)"},
             Place{kClientSetup90Key, R"(SOFTWARE\Microsoft\Microsoft SQL Server\90\Tools\ClientSetup)"},
             Place{kClientSetup120Key, R"(SOFTWARE\Microsoft\Microsoft SQL Server\120\Tools\ClientSetup)"},
             Place{kClientSetup140Key, R"(SOFTWARE\Microsoft\Microsoft SQL Server\140\Tools\ClientSetup)"},
             Place{kSqlPathValue, "SQLPath"},
             Place{kNoDefault, ""},
         }) {
        EXPECT_STREQ(place.in_the_program, place.written_out);
    }
}

TEST_F(RegistrySettings, SavesIntoANewKeyWithTheValuesNameAsItsClass) {
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, kKey, "Name", "value"));
    EXPECT_EQ(registry_.Calls(),
              (Lines{R"(Create HKLM\SOFTWARE\Key Name 983103)", "Set Name 1 value", "Close"}));
    EXPECT_EQ(registry_.ClassOf(kHkeyLocalMachine, kKey), "Name");
    EXPECT_EQ(registry_.TextOf(kHkeyLocalMachine, kKey, "Name"), "value");
    EXPECT_EQ(registry_.OpenHandles(), 0U);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RegistrySettings, SavesOverAnOldValue) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "old");
    EXPECT_TRUE(SaveLocalSetting(kHkeyLocalMachine, kKey, "name", ""));
    EXPECT_EQ(GetLocal("Name"), "");
}

TEST_F(RegistrySettings, ReportsAKeyThatCannotBeMadeWithTwoLogLinesAndFalse) {
    registry_.Fail(RegistryCall::Create, kAccessDenied);
    EXPECT_FALSE(SaveLocalSetting(kHkeyLocalMachine, kKey, "Name", "value"));
    EXPECT_EQ(LogLines(),
              (Lines{In(R"(mRegistry::SetStringKey('SOFTWARE\Key', 'Name', 'value'))"),
                     In(R"(mRegistry::SaveLocalSetting('-2147483646', 'SOFTWARE\Key', 'Name', 'value'))")}));
    EXPECT_EQ(registry_.OpenHandles(), 0U);
}

TEST_F(RegistrySettings, ReportsAValueThatCannotBeSetWithTwoLogLinesAndFalseAndTheKeyLeftOpen) {
    registry_.Fail(RegistryCall::Set, kAccessDenied);
    EXPECT_FALSE(SaveLocalSetting(kHkeyCurrentUser, kKey, "Name", "value"));
    EXPECT_EQ(LogLines(),
              (Lines{In(R"(mRegistry::SetStringKey('SOFTWARE\Key', 'Name', 'value'))"),
                     In(R"(mRegistry::SaveLocalSetting('-2147483647', 'SOFTWARE\Key', 'Name', 'value'))")}));
    EXPECT_EQ(registry_.OpenHandles(), 1U);
}

TEST_F(RegistrySettings, GetsAValueOfAnotherComputerAndLeavesItsRootOpen) {
    registry_.OnComputer("ServerB");
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "of B");
    registry_.OnComputer("");
    EXPECT_EQ(GetRemoteSetting("ServerB", kHkeyLocalMachine, kKey, "Name", "x"), "of B");
    EXPECT_EQ(registry_.Calls(),
              (Lines{"Connect ServerB HKLM", R"(Open handle\SOFTWARE\Key 1)", "Query Name", "Close"}));
    EXPECT_EQ(registry_.OpenHandles(), 1U);
    EXPECT_EQ(GetRemoteSetting("ServerB", kHkeyLocalMachine, kKey, "Other", "x"), "x");
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(RegistrySettings, ReportsAComputerThatIsNotReachableWithOneLogLine) {
    EXPECT_EQ(GetRemoteSetting("ServerC", kHkeyLocalMachine, kKey, "Name", "x"), "");
    EXPECT_EQ(
        LogLines(),
        (Lines{In(R"(mRegistry::GetRemoteSetting('ServerC', '-2147483646', 'SOFTWARE\Key', 'Name'))")}));
}

TEST_F(RegistrySettings, ReportsAMissingKeyOfAnotherComputerWithTwoLogLines) {
    registry_.OnComputer("ServerB");
    registry_.AddKey(kHkeyLocalMachine, "SOFTWARE\\Other");
    registry_.OnComputer("");
    EXPECT_EQ(GetRemoteSetting("ServerB", kHkeyLocalMachine, kKey, "Name", "x"), "");
    EXPECT_EQ(
        LogLines(),
        (Lines{In(R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'))"),
               In(R"(mRegistry::GetRemoteSetting('ServerB', '-2147483646', 'SOFTWARE\Key', 'Name'))")}));
}

TEST_F(RegistrySettings, ReportsAnErrorWithoutATextAsAnInvalidCall) {
    registry_.SetSystemMessage(kFileNotFound, "");
    EXPECT_EQ(GetLocal("Name"), "");
    const std::string invalid = ": 5 - Invalid procedure call or argument";
    EXPECT_EQ(LogLines(),
              (Lines{R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'))" + invalid,
                     R"(mRegistry::GetLocalSetting('-2147483646', 'SOFTWARE\Key', 'Name'))" + invalid}));
    registry_.SetSystemMessage(kFileNotFound, "x"); // shorter than a line end
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(LogLines()[2], R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'))" + invalid);
}

TEST_F(RegistrySettings, ReportsAnErrorWhoseTextDoesNotFitAsAnInvalidCall) {
    registry_.SetSystemMessage(kFileNotFound, std::string(198, 't') + "\r\n");
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(LogLines()[0],
              R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'): 5 - Invalid procedure call or argument)");
    registry_.SetSystemMessage(kFileNotFound, std::string(197, 't') + "\r\n");
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(LogLines()[2],
              R"(mRegistry::GetStringKey('SOFTWARE\Key', 'Name'): 199 - )" + std::string(197, 't'));
}

TEST_F(RegistrySettings, RaisesFailuresOfTheInnerLayerUnchanged) {
    try {
        GetStringKey(kHkeyLocalMachine, kKey, "Name", "x");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), 22);
        EXPECT_EQ(failure.Source(), "mRegistry::GetStringKey");
        EXPECT_EQ(failure.Description(), "Something went wrong");
    }
    EXPECT_EQ(CurrentError().number, 22);
    registry_.Fail(RegistryCall::Create, kAccessDenied);
    try {
        SetStringKey(kHkeyLocalMachine, kKey, "Name", "x");
        FAIL();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), 22);
        EXPECT_EQ(failure.Source(), "mRegistry::SetStringKey");
    }
    EXPECT_EQ(LogLines().size(), 2U);
}

TEST_F(RegistrySettings, ClearsTheCurrentErrorOnEveryWayOut) {
    registry_.AddText(kHkeyLocalMachine, kKey, "Name", "value");
    for (const std::string name : {"Name", "Other"}) {
        EXPECT_THROW(RaiseFailure(1, "", ""), Failure);
        GetLocal(name);
        EXPECT_EQ(CurrentError().number, 0);
    }
    EXPECT_THROW(RaiseFailure(1, "", ""), Failure);
    GetLocalSetting(kHkeyLocalMachine, "SOFTWARE\\Missing", "Name", "x");
    EXPECT_EQ(CurrentError().number, 0);
}

TEST_F(RegistrySettings, PassesAFailureOfTheLogOnToTheCaller) {
    // Writing the inner routine's line fails, and the outer routine handles that failure: it writes its own
    // line.
    files_.FailNext("append", R"(D:\Log\KVLSQLDbMgr.log)", platform::FileFault::PathNotFound);
    EXPECT_EQ(GetLocal("Name"), "");
    EXPECT_EQ(
        LogLines(),
        (Lines{R"(mRegistry::GetLocalSetting('-2147483646', 'SOFTWARE\Key', 'Name'): 76 - Path not found)"}));
    registry_.AddText(kHkeyLocalMachine, registry_locations::kLogKey, "", "E:\\Nowhere");
    EXPECT_THROW(GetLocal("Name"), platform::FileError);
}

} // namespace
