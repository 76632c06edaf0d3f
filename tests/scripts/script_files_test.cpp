// Reading templates and writing modified scripts.
#include "scripts/script_files.h"

#include <string>

#include <gtest/gtest.h>

#include "base/failure.h"
#include "fakes/fake_files.h"

namespace kv {
namespace {

constexpr char kData[] = R"(C:\Lotkeeper\Server\Data)";

class ScriptFiles : public ::testing::Test {
  protected:
    std::string Read(const std::string& content) {
        files_.AddFile("t.sql", content);
        return ReadFileContent("t.sql");
    }

    fakes::FakeFiles files_;
};

TEST_F(ScriptFiles, EveryLineEndBecomesCrLf) {
    EXPECT_EQ(Read("a\r\nb\r\n"), "a\r\nb\r\n");
    EXPECT_EQ(Read("a\nb\n"), "a\r\nb\r\n");
    EXPECT_EQ(Read("a\rb\r"), "a\r\nb\r\n");
    EXPECT_EQ(Read("a\r\nb"), "a\r\nb\r\n");
    EXPECT_EQ(Read("a\nb\rc\r\nd"), "a\r\nb\r\nc\r\nd\r\n");
    EXPECT_EQ(Read("a\n\rb"), "a\r\n\r\nb\r\n");
    EXPECT_EQ(Read("a\r\r\nb"), "a\r\n\r\nb\r\n");
    EXPECT_EQ(Read("\n\n"), "\r\n\r\n");
    EXPECT_EQ(Read("\r"), "\r\n");
}

TEST_F(ScriptFiles, AnEmptyFileIsAnEmptyText) {
    EXPECT_EQ(Read(""), "");
}

TEST_F(ScriptFiles, AllOtherBytesAreUnchanged) {
    std::string bytes;
    for (int i = 0; i < 256; ++i) {
        if (i != '\r' && i != '\n') {
            bytes += static_cast<char>(i);
        }
    }
    EXPECT_EQ(Read("\xEF\xBB\xBF" + bytes), "\xEF\xBB\xBF" + bytes + "\r\n");
}

TEST_F(ScriptFiles, AMissingFileFails) {
    try {
        ReadFileContent("none.sql");
        FAIL() << "no failure";
    } catch (...) {
        EXPECT_EQ(TranslateInFlight().Number(), run_time::kFileNotFound);
    }
}

TEST_F(ScriptFiles, WritingAddsOneLineEndAndCreatesTheFolder) {
    WriteDataFile("a\r\n", "s.sql");
    EXPECT_TRUE(files_.HasFolder(kData));
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\s.sql)"), "a\r\n\r\n");
    WriteDataFile("", "s.sql");
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\s.sql)"), "\r\n");
}

TEST_F(ScriptFiles, AnOlderFileIsDeletedFirst) {
    WriteDataFile("old", "s.sql");
    WriteDataFile("new", "s.sql");
    const std::vector<std::string> wanted = {
        R"(create folder C:\Lotkeeper\Server\Data)",
        R"(write C:\Lotkeeper\Server\Data\s.sql)",
        R"(delete C:\Lotkeeper\Server\Data\s.sql)",
        R"(write C:\Lotkeeper\Server\Data\s.sql)",
    };
    EXPECT_EQ(files_.Log(), wanted);
}

TEST_F(ScriptFiles, AFailedDeleteKeepsTheOldFile) {
    WriteDataFile("old", "s.sql");
    files_.FailNext("delete", R"(C:\Lotkeeper\Server\Data\s.sql)", platform::FileFault::AccessDenied);
    EXPECT_THROW(WriteDataFile("new", "s.sql"), platform::FileError);
    EXPECT_EQ(files_.Content(R"(C:\Lotkeeper\Server\Data\s.sql)"), "old\r\n");
}

TEST_F(ScriptFiles, AFailedWriteLeavesNoFile) {
    WriteDataFile("old", "s.sql");
    files_.FailNext("write", R"(C:\Lotkeeper\Server\Data\s.sql)", platform::FileFault::DiskFull);
    EXPECT_THROW(WriteDataFile("new", "s.sql"), platform::FileError);
    EXPECT_FALSE(files_.HasFile(R"(C:\Lotkeeper\Server\Data\s.sql)"));
}

TEST_F(ScriptFiles, AFolderThatCannotBeCreatedFails) {
    files_.FailNext("create folder", kData, platform::FileFault::AccessDenied);
    EXPECT_THROW(WriteDataFile("new", "s.sql"), platform::FileError);
    EXPECT_TRUE(files_.Log().empty());
}

} // namespace
} // namespace kv
