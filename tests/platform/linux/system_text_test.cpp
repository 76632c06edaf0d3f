// Text beyond ASCII that comes from the system or goes to it: UTF-8 outside, code page 1252 inside.
#include "platform/system_text.h"

#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

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
constexpr const char* kHalf = "\xC3\xBC \xFC x"; // UTF-8, and a byte that is not UTF-8

TEST(SystemText, IsConvertedToTheCodePageAndBack) {
    EXPECT_EQ(FromSystemText(kOutside), kInside);
    EXPECT_EQ(ToSystemText(kInside), kOutside);
    EXPECT_EQ(FromSystemText("plain"), "plain");
    EXPECT_EQ(ToSystemText(""), "");
}

TEST(SystemText, OutsideTheCodePageIsEscapedAndRoundTrips) {
    for (const char* text : {kGreek, kInside, kHalf}) {
        EXPECT_EQ(ToSystemText(FromSystemText(text)), text);
    }
}

TEST(SystemText, OfTheCodePageIsNeverTakenForUtf8) {
    EXPECT_EQ(ToSystemText("\xC3\xA4"), "\xC3\x83\xC2\xA4");
    EXPECT_EQ(FromSystemText("\xC3\x83\xC2\xA4"), "\xC3\xA4");
}

TEST(SystemText, OfArgumentsIsInTheCodePage) {
    const char* const arguments[] = {"program", kOutside, "plain"};
    EXPECT_EQ(ProgramArguments(3, arguments), (std::vector<std::string>{kInside, "plain"}));
    EXPECT_EQ(ProgramArguments(0, nullptr), std::vector<std::string>{});
    EXPECT_EQ(RawCommandLine(), std::nullopt);
}

TEST(SystemText, OfFileNamesIsUtf8OnTheDisk) {
    const TempFolder folder;
    CreateFolder(folder / kInside);
    WriteWholeFile(folder / kInside + "\\" + kInside, "a");
    AppendToFile(folder / kInside + "\\" + kInside, "b");
    EXPECT_TRUE(fs::is_regular_file(folder.Path() / kOutside / kOutside));
    EXPECT_TRUE(FolderExists(folder / kInside));
    EXPECT_TRUE(FolderHoldsFile(folder / kInside));
    EXPECT_EQ(ReadWholeFile(folder / kInside + "\\" + kInside), "ab");
    CopyFileOver(folder / kInside + "\\" + kInside, folder / FromSystemText(kGreek));
    EXPECT_TRUE(fs::is_regular_file(folder.Path() / kGreek));
    DeleteFileAt(folder / kInside + "\\" + kInside);
    EXPECT_FALSE(FileExists(folder / kInside + "\\" + kInside));
}

TEST(SystemText, InAFileNameMayHaveAnyBytes) {
    const TempFolder folder;
    std::ofstream(folder.Path() / "\xFC\\") << "x";
    EXPECT_TRUE(FolderHoldsFile(folder / ""));
}

TEST(SystemText, OfAStartedProgramsArgumentsIsUtf8) {
    const TempFolder folder;
    CreateFolder(folder / kInside);
    const fs::path program = folder.Path() / kOutside / "OSQL.EXE";
    fs::copy_file(ExecutableFolder() + "/test_tool.EXE", program);
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.file = '"' + (folder / kInside) + "\\OSQL.EXE\"";
    info.parameters = std::string(" -P \xC3\xA4 -P ") + kInside + " -o \"" + (folder / "out.txt") + '"';
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    ASSERT_NE(process, nullptr);
    process->Wait(kInfiniteWait);
    const std::string written = ReadWholeFile(folder / "out.txt");
    EXPECT_TRUE(written.starts_with("[-P]\n[\xC3\x83\xC2\xA4]\n[-P]\n[Pr\xC3\xBC"
                                    "f]\n[\xE2\x82\xAC]\n"))
        << written;
}

} // namespace
} // namespace platform
