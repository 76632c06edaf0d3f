// Text beyond ASCII at the edges of the system, which is UTF-8 there and code page 1252 inside.
#include "platform/system_text.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "platform/command_line.h"
#include "platform/files.h"
#include "platform/process.h"
#include "support/temp_folder.h"

namespace platform {
namespace {

namespace fs = std::filesystem;
using support::TempFolder;

constexpr const char* kInside = "Pr\xFC"
                                "f \x80";
constexpr const char* kOutside = "Pr\xC3\xBC"
                                 "f \xE2\x82\xAC";
constexpr const char* kGreek = "\xCE\xA9";       // no character of the code page
constexpr const char* kHalf = "\xC3\xBC \xFC x"; // neither the one nor the other

TEST(SystemText, IsTakenIntoTheCodePageAndBack) {
    EXPECT_EQ(FromSystemText(kOutside), kInside);
    EXPECT_EQ(ToSystemText(kInside), kOutside);
    EXPECT_EQ(FromSystemText("plain"), "plain");
    EXPECT_EQ(ToSystemText(""), "");
}

TEST(SystemText, StaysWhereTheCodePageLacksACharacter) {
    EXPECT_EQ(FromSystemText(kGreek), kGreek);
    EXPECT_EQ(ToSystemText(kGreek), kGreek);
}

TEST(SystemText, ThatIsNoUtf8IsTakenForTheCodePages) {
    EXPECT_EQ(FromSystemText(kInside), kInside);
    EXPECT_EQ(FromSystemText(kHalf), kHalf);
}

TEST(SystemText, OfArgumentsComesInTheCodePage) {
    EXPECT_EQ(
        RawCommandLine({"/scriptfolder", std::string("/") + kOutside, "/user", kGreek}, {"scriptfolder"}),
        std::string("/scriptfolder \"\\") + kInside + "\" /user " + kGreek);
}

TEST(SystemText, OfFilesIsWrittenAsTheSystemWritesIt) {
    const TempFolder folder;
    CreateFolder(folder / kInside);
    WriteWholeFile(folder / kInside + "\\" + kInside, "a");
    AppendToFile(folder / kInside + "\\" + kInside, "b");
    EXPECT_TRUE(fs::is_regular_file(folder.Path() / kOutside / kOutside));
    EXPECT_TRUE(FolderExists(folder / kInside));
    EXPECT_TRUE(FolderHoldsFile(folder / kInside));
    EXPECT_EQ(ReadWholeFile(folder / kInside + "\\" + kInside), "ab");
    CopyFileOver(folder / kInside + "\\" + kInside, folder / kGreek);
    EXPECT_TRUE(fs::is_regular_file(folder.Path() / kGreek));
    DeleteFileAt(folder / kInside + "\\" + kInside);
    EXPECT_FALSE(FileExists(folder / kInside + "\\" + kInside));
}

TEST(SystemText, OfNoEncodingInAFilesNameIsNoHindrance) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "\xFC\\") << "x";
    EXPECT_TRUE(FolderHoldsFile(folder / ""));
}

TEST(SystemText, OfAStartedProgramIsTheSystems) {
    const TempFolder folder;
    CreateFolder(folder / kInside);
    const fs::path program = folder.Path() / kOutside / "OSQL.EXE";
    fs::copy_file(ExecutableFolder() + "/test_tool.EXE", program);
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.file = '"' + (folder / kInside) + "\\OSQL.EXE\"";
    info.parameters = std::string(" -P ") + kInside + " -o \"" + (folder / "out.txt") + '"';
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    ASSERT_NE(process, nullptr);
    process->Wait(kInfiniteWait);
    const std::string written = ReadWholeFile(folder / "out.txt");
    EXPECT_TRUE(written.starts_with("[-P]\n[Pr\xC3\xBC"
                                    "f]\n[\xE2\x82\xAC]\n"))
        << written;
}

} // namespace
} // namespace platform
