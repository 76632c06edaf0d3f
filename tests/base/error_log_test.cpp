#include "base/error_log.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "base/registry_locations.h"
#include "fakes/fake_clock.h"
#include "fakes/fake_files.h"
#include "fakes/fake_registry.h"

namespace {

using namespace kv;
namespace places = registry_locations;
using fakes::RegistryCall;

constexpr const char* kDataFolder = R"(C:\Lotkeeper\Server\Data)";
constexpr const char* kLogFile = R"(D:\Log\KVLSQLDbMgr.log)";

class ErrorLog : public testing::Test {
  protected:
    ErrorLog() {
        files_.AddFolder("D:\\Log");
        registry_.AddText(places::kHkeyLocalMachine, places::kLogKey, "", "D:\\Log");
    }

    fakes::FakeClock clock_;
    fakes::FakeFiles files_;
    fakes::FakeRegistry registry_;
};

TEST_F(ErrorLog, WritesTheShortLine) {
    WriteErrorLog("CUpgradeDbMgr::RemoveDatabase('Batch')");
    EXPECT_EQ(files_.Content(kLogFile),
              "2006-05-12 14:03:22 : Error in CUpgradeDbMgr::RemoveDatabase('Batch')\r\n");
}

TEST_F(ErrorLog, WritesTheDateInTwoDigitsAndTwentyFourHours) {
    EXPECT_EQ(ErrorLogLine({2026, 1, 2, 3, 4, 5}, "x", {}), "2026-01-02 03:04:05 : Error in x");
    EXPECT_EQ(ErrorLogLine({987, 12, 31, 23, 59, 59}, "x", {}), "0987-12-31 23:59:59 : Error in x");
}

TEST_F(ErrorLog, WritesTheTimeOfTheLine) {
    clock_.Set({2026, 1, 2, 3, 4, 5});
    WriteErrorLog("a");
    EXPECT_EQ(files_.Content(kLogFile), "2026-01-02 03:04:05 : Error in a\r\n");
}

TEST_F(ErrorLog, HasALongLineWithNumberAndDescriptionForACurrentError) {
    EXPECT_EQ(ErrorLogLine({2006, 5, 12, 14, 3, 22}, "x", {kProgramFailure, "s", "what happened"}),
              "2006-05-12 14:03:22 : Error in x : -2147221503, what happened");
}

TEST_F(ErrorLog, WritesTheShortLineOfAFailureToo) {
    WithFailureHandler([] { RaiseFailure(kProgramFailure, "modMain", "not for the log"); },
                       [](const Failure&) {
                           EXPECT_NE(CurrentError().number, 0);
                           WriteErrorLog("modMain::DoAutomaticUpgrade");
                           EXPECT_EQ(CurrentError().number, 0);
                       });
    EXPECT_EQ(files_.Content(kLogFile), "2006-05-12 14:03:22 : Error in modMain::DoAutomaticUpgrade\r\n");
}

TEST_F(ErrorLog, AppendsLineByLine) {
    files_.AddFile(kLogFile, "an older line\r\n");
    WriteErrorLog("a");
    WriteErrorLog("b");
    EXPECT_EQ(files_.Content(kLogFile),
              "an older line\r\n2006-05-12 14:03:22 : Error in a\r\n2006-05-12 14:03:22 : Error in b\r\n");
}

TEST_F(ErrorLog, KeepsItsTextByteForByte) {
    WriteErrorLog("Z\xFCrich\r\n%s");
    EXPECT_EQ(files_.Content(kLogFile), "2006-05-12 14:03:22 : Error in Z\xFCrich\r\n%s\r\n");
}

TEST_F(ErrorLog, MakesTheDataFolderBeforeTheLine) {
    WriteErrorLog("a");
    EXPECT_EQ(files_.Log(), (std::vector<std::string>{std::string("create folder ") + kDataFolder,
                                                      std::string("append ") + kLogFile}));
}

TEST_F(ErrorLog, MakesTheDataFolderBeforeItReadsTheRegistry) {
    files_.FailNext("create folder", kDataFolder, platform::FileFault::AccessDenied);
    EXPECT_THROW(WriteErrorLog("a"), platform::FileError);
    EXPECT_TRUE(registry_.Calls().empty());
    EXPECT_FALSE(files_.HasFile(kLogFile));
}

TEST_F(ErrorLog, LeavesADataFolderThatIsThere) {
    files_.AddFolder(kDataFolder);
    WriteErrorLog("a");
    EXPECT_EQ(files_.Log(), (std::vector<std::string>{std::string("append ") + kLogFile}));
}

TEST_F(ErrorLog, TakesAPlainFileForTheDataFolder) {
    files_.AddFile(kDataFolder, "");
    WriteErrorLog("a");
    EXPECT_EQ(files_.Log(), (std::vector<std::string>{std::string("append ") + kLogFile}));
}

TEST_F(ErrorLog, TakesADataFolderThatAnotherProcessMadeMeanwhile) {
    files_.FailNext("create folder", kDataFolder, platform::FileFault::AlreadyExists);
    WriteErrorLog("a");
    EXPECT_TRUE(files_.HasFile(kLogFile));
}

TEST_F(ErrorLog, ReadsTheDefaultValueOfTheLogKeyOnce) {
    WriteErrorLog("a");
    EXPECT_EQ(registry_.Calls(),
              (std::vector<std::string>{R"(Open HKLM\SOFTWARE\ORVIK\QUORLEN\Log 1)", "Query ", "Close"}));
}

TEST_F(ErrorLog, IsNamedAfterTheExecutable) {
    files_.executable_name = "Renamed";
    WriteErrorLog("a");
    EXPECT_TRUE(files_.HasFile(R"(D:\Log\Renamed.log)"));
}

TEST_F(ErrorLog, DoesNotMakeTheLogFolderAndFailsToItsCaller) {
    registry_.AddText(places::kHkeyLocalMachine, places::kLogKey, "", "E:\\Nowhere");
    EXPECT_THROW(WriteErrorLog("a"), platform::FileError);
    EXPECT_FALSE(files_.HasFolder("E:\\Nowhere"));
}

TEST_F(ErrorLog, WritesAgainAfterALineThatFailed) {
    files_.FailNext("append", kLogFile, platform::FileFault::DiskFull);
    EXPECT_THROW(WriteErrorLog("lost"), platform::FileError);
    WriteErrorLog("kept");
    EXPECT_EQ(files_.Content(kLogFile), "2006-05-12 14:03:22 : Error in kept\r\n");
}

TEST_F(ErrorLog, ALineThatFailsInsideAHandlerIsTheFailureOfTheNextRoutineUp) {
    files_.FailNext("append", kLogFile, platform::FileFault::PathNotFound);
    std::int32_t number = 0;
    WithFailureHandler(
        [] {
            WithFailureHandler([] { RaiseFailure(kProgramFailure, "", ""); },
                               [](const Failure&) { WriteErrorLog("inner"); });
        },
        [&](const Failure& failure) { number = failure.Number(); });
    EXPECT_EQ(number, run_time::kPathNotFound);
}

TEST(ErrorLogFolder, IsTheDefaultForAMissingValueOfAnExistingKey) {
    const fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    registry.AddKey(places::kHkeyLocalMachine, places::kLogKey);
    files.AddFolder("..\\Log");
    WriteErrorLog("a");
    EXPECT_EQ(files.Content(R"(..\Log\KVLSQLDbMgr.log)"), "2006-05-12 14:03:22 : Error in a\r\n");
    EXPECT_TRUE(files.HasFolder(kDataFolder));
}

TEST(ErrorLogFolder, IsTheRootForAnEmptyValue) {
    const fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    registry.AddText(places::kHkeyLocalMachine, places::kLogKey, "", "");
    WriteErrorLog("a");
    EXPECT_EQ(files.Log().back(), R"(append \KVLSQLDbMgr.log)");
}

TEST(ErrorLogFolder, KeepsTheValueUnchanged) {
    const fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    registry.AddText(places::kHkeyLocalMachine, places::kLogKey, "", "D:\\Log\\");
    files.folders.insert("D:/Log/");
    WriteErrorLog("a");
    EXPECT_EQ(files.Log().back(), R"(append D:\Log\\KVLSQLDbMgr.log)");
}

class UnreadableLogKey : public testing::TestWithParam<RegistryCall> {};

/// A failure to read the key is reported to the log, which reads the key again.
TEST_P(UnreadableLogKey, EndsTheRecursionAtTheSecondEntry) {
    const fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    registry.AddText(places::kHkeyLocalMachine, places::kLogKey, "", "D:\\Log");
    registry.Fail(GetParam(), registry::error::kAccessDenied);
    WriteErrorLog("a");
    // The folder is read once, and only the outer call writes a line. A folder that cannot be read counts as
    // empty.
    EXPECT_EQ(std::count_if(registry.Calls().begin(), registry.Calls().end(),
                            [](const std::string& call) { return call.starts_with("Open"); }),
              1);
    EXPECT_EQ(files.Log(), (std::vector<std::string>{std::string("create folder ") + kDataFolder,
                                                     R"(append \KVLSQLDbMgr.log)"}));
    EXPECT_EQ(files.Content(R"(\KVLSQLDbMgr.log)"), "2006-05-12 14:03:22 : Error in a\r\n");
}

INSTANTIATE_TEST_SUITE_P(EachWay, UnreadableLogKey, testing::Values(RegistryCall::Open, RegistryCall::Query));

TEST(ErrorLogRecursion, EndsForEveryLineIfTheKeyIsMissing) {
    const fakes::FakeClock clock;
    fakes::FakeFiles files;
    fakes::FakeRegistry registry;
    WriteErrorLog("a");
    WriteErrorLog("b");
    EXPECT_EQ(files.Content(R"(\KVLSQLDbMgr.log)"),
              "2006-05-12 14:03:22 : Error in a\r\n2006-05-12 14:03:22 : Error in b\r\n");
}

} // namespace
