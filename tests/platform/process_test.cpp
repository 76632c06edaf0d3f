// Starts a real program: the test tool, which writes its arguments to a file.
#include "platform/process.h"

#include <chrono>
#include <string>
#include <thread>

#include <gtest/gtest.h>

#include "platform/files.h"
#include "support/temp_folder.h"

namespace platform {
namespace {

using support::TempFolder;

std::string HelperPath() {
    return ExecutableFolder() + "\\test_tool.EXE";
}

bool Start(const std::string& file, const std::string& parameters, std::unique_ptr<Process>& process) {
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.verb = "open";
    info.file = file;
    info.parameters = parameters;
    return ShellExecuteProgram(info, process);
}

TEST(Process, AQuotedPathIsStartedWithItsParametersAndWaitedFor) {
    const TempFolder folder;
    std::unique_ptr<Process> process;
    ASSERT_TRUE(Start('"' + HelperPath() + '"',
                      " -S host,1433 -P  -i \"C:\\a b\\Data\\x.sql\" -o \"" + (folder / "out.txt") + '"',
                      process));
    ASSERT_NE(process, nullptr);
    process->Wait(kInfiniteWait);
    EXPECT_EQ(ReadWholeFile(folder / "out.txt"),
              "[-S]\n[host,1433]\n[-P]\n[-i]\n[C:\\a b\\Data\\x.sql]\n[-o]\n[" + (folder / "out.txt") +
                  "]\n");
}

TEST(Process, AWorkingFolderIsTheStartedProgramsCurrentOne) {
    const TempFolder folder;
    ShellExecuteInfo info;
    info.mask = kNoCloseProcess;
    info.file = '"' + HelperPath() + '"';
    info.parameters = "-o out.txt";
    info.directory = folder.Path().string();
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    ASSERT_NE(process, nullptr);
    process->Wait(kInfiniteWait);
    EXPECT_TRUE(FileExists(folder / "out.txt"));
}

TEST(Process, AProgramThatIsNotThereIsNotStarted) {
    const TempFolder folder;
    std::unique_ptr<Process> process;
    EXPECT_FALSE(Start('"' + (folder / "none.exe") + '"', "", process));
    EXPECT_EQ(process, nullptr);
}

TEST(Process, AnEmptyPairOfQuotesIsNotStarted) {
    std::unique_ptr<Process> process;
    EXPECT_FALSE(Start("\"\"", " -S x", process));
    EXPECT_EQ(process, nullptr);
}

TEST(Process, AWaitWithALimitReturnsWhileTheProgramRuns) {
    const TempFolder folder;
    std::unique_ptr<Process> process;
    ASSERT_TRUE(Start('"' + HelperPath() + '"',
                      "--until \"" + (folder / "go.txt") + "\" -o \"" + (folder / "out.txt") + '"', process));
    ASSERT_NE(process, nullptr);
    process->Wait(20);
    EXPECT_FALSE(FileExists(folder / "out.txt"));
    WriteWholeFile(folder / "go.txt", "");
    process->Wait(kInfiniteWait);
    EXPECT_TRUE(FileExists(folder / "out.txt"));
}

TEST(Process, WithoutTheMaskNoHandleIsReturned) {
    const TempFolder folder;
    ShellExecuteInfo info;
    info.verb = "open";
    info.file = '"' + HelperPath() + '"';
    info.parameters = "-o \"" + (folder / "out.txt") + '"';
    std::unique_ptr<Process> process;
    ASSERT_TRUE(ShellExecuteProgram(info, process));
    EXPECT_EQ(process, nullptr);
    for (int i = 0; i < 6000 && !FileExists(folder / "out.txt"); ++i) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    EXPECT_TRUE(FileExists(folder / "out.txt"));
}

} // namespace
} // namespace platform
