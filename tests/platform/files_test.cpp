#include "platform/files.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace platform {
namespace {

using support::TempFolder;

template <class Call>
FileFault FaultOf(Call&& call) {
    try {
        call();
    } catch (const FileError& error) {
        EXPECT_FALSE(error.Path().empty());
        EXPECT_NE(std::string(error.what()).find(error.Path()), std::string::npos);
        return error.Fault();
    }
    ADD_FAILURE() << "no failure";
    return FileFault::Other;
}

TEST(Files, TheExecutableIsNamedWithoutFolderAndExtension) {
    EXPECT_EQ(ExecutableName(), "platform_files_test");
    const std::string folder = ExecutableFolder();
    EXPECT_TRUE(FolderExists(folder));
    EXPECT_NE(folder.back(), '/');
    EXPECT_NE(folder.back(), '\\');
}

TEST(Files, ABackslashSeparatesFolders) {
    const TempFolder folder;
    std::filesystem::create_directory(folder.Path() / "sub");
    WriteWholeFile(folder / "sub\\a.txt", "x");
    EXPECT_TRUE(FileExists(folder / "sub\\a.txt"));
    EXPECT_TRUE(FileExists(folder / "sub/a.txt"));
    EXPECT_TRUE(std::filesystem::exists(folder.Path() / "sub" / "a.txt"));
}

TEST(Files, AFileIsNotAFolderAndAFolderIsNotAFile) {
    const TempFolder folder;
    WriteWholeFile(folder / "a", "");
    EXPECT_TRUE(FileExists(folder / "a"));
    EXPECT_FALSE(FolderExists(folder / "a"));
    EXPECT_FALSE(FileExists(folder.Path().string()));
    EXPECT_TRUE(FolderExists(folder.Path().string()));
    EXPECT_TRUE(FolderExists(folder.Path().string() + "\\"));
    EXPECT_FALSE(FileExists(folder / "none"));
    EXPECT_FALSE(FolderExists(folder / "none"));
    EXPECT_FALSE(FileExists(""));
    EXPECT_FALSE(FolderExists(""));
}

TEST(Files, AFolderOfFoldersHoldsNoFile) {
    const TempFolder folder;
    EXPECT_FALSE(FolderHoldsFile(folder / ""));
    CreateFolder(folder / "sub");
    EXPECT_FALSE(FolderHoldsFile(folder / ""));
    WriteWholeFile(folder / "a", "");
    EXPECT_TRUE(FolderHoldsFile(folder / ""));
    EXPECT_TRUE(FolderHoldsFile(folder.Path().string()));
    EXPECT_FALSE(FolderHoldsFile(folder / "a\\"));
    EXPECT_FALSE(FolderHoldsFile(folder / "none\\"));
}

TEST(Files, EveryByteIsReadAsItWasWritten) {
    const TempFolder folder;
    std::string all;
    for (int i = 0; i < 256; ++i) {
        all += static_cast<char>(i);
    }
    all += "\r\n\n\r\x1A tail";
    WriteWholeFile(folder / "bytes", all, "\r\n");
    EXPECT_EQ(ReadWholeFile(folder / "bytes"), all + "\r\n");
    WriteWholeFile(folder / "bytes", "short");
    EXPECT_EQ(ReadWholeFile(folder / "bytes"), "short");
    WriteWholeFile(folder / "bytes", "");
    EXPECT_EQ(ReadWholeFile(folder / "bytes"), "");
}

TEST(Files, AFileIsReplacedAndNoOtherFileIsLeft) {
    const TempFolder folder;
    ReplaceWholeFile(folder / "script", "longer than the next", "\r\n");
    EXPECT_EQ(ReadWholeFile(folder / "script"), "longer than the next\r\n");
    ReplaceWholeFile(folder / "script", "next");
    EXPECT_EQ(ReadWholeFile(folder / "script"), "next");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST(Files, AFolderIsNotReplacedByAFile) {
    const TempFolder folder;
    CreateFolder(folder / "a");
    EXPECT_EQ(FaultOf([&] { ReplaceWholeFile(folder / "a", "x"); }), FileFault::AccessDenied);
    EXPECT_EQ(FaultOf([&] { ReplaceWholeFile(folder / "none\\a", "x"); }), FileFault::PathNotFound);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.Path()), {}), 1);
}

TEST(Files, AppendingMakesTheFileAndGrowsIt) {
    const TempFolder folder;
    AppendToFile(folder / "log", "a\r\n");
    AppendToFile(folder / "log", "b\r\n");
    EXPECT_EQ(ReadWholeFile(folder / "log"), "a\r\nb\r\n");
}

TEST(Files, AppendingWorksWhileAnotherProgramHasTheFileOpen) {
    const TempFolder folder;
    std::ofstream other(folder.Path() / "log.txt", std::ios::binary | std::ios::app);
    other << "other\n" << std::flush;
    AppendToFile(folder / "log.txt", "mine\n");
    other << "other\n";
    other.close();
    EXPECT_EQ(ReadWholeFile(folder / "log.txt"), "other\nmine\nother\n");
}

TEST(Files, CopyingReplacesTheTarget) {
    const TempFolder folder;
    WriteWholeFile(folder / "from", std::string(3000000, 'x'));
    WriteWholeFile(folder / "to", "longer ago");
    CopyFileOver(folder / "from", folder / "to");
    EXPECT_EQ(ReadWholeFile(folder / "to"), std::string(3000000, 'x'));
    EXPECT_TRUE(FileExists(folder / "from"));
}

TEST(Files, AFileIsNotCopiedToItself) {
    const TempFolder folder;
    WriteWholeFile(folder / "a", "content");
    EXPECT_EQ(FaultOf([&] { CopyFileOver(folder / "a", folder / "a"); }), FileFault::InUse);
    EXPECT_EQ(ReadWholeFile(folder / "a"), "content");
}

TEST(Files, AMissingFileAndAMissingFolderAreDistinguished) {
    const TempFolder folder;
    EXPECT_EQ(FaultOf([&] { ReadWholeFile(folder / "none"); }), FileFault::NotFound);
    EXPECT_EQ(FaultOf([&] { ReadWholeFile(folder / "none\\a"); }), FileFault::PathNotFound);
    EXPECT_EQ(FaultOf([&] { WriteWholeFile(folder / "none\\a", ""); }), FileFault::PathNotFound);
    EXPECT_EQ(FaultOf([&] { AppendToFile(folder / "none\\a", ""); }), FileFault::PathNotFound);
    EXPECT_EQ(FaultOf([&] { DeleteFileAt(folder / "none"); }), FileFault::NotFound);
    EXPECT_EQ(FaultOf([&] { CopyFileOver(folder / "none", folder / "to"); }), FileFault::NotFound);
    EXPECT_EQ(FaultOf([&] { CreateFolder(folder / "none\\a"); }), FileFault::PathNotFound);
    EXPECT_FALSE(FileExists(folder / "to"));
}

TEST(Files, AFolderIsNotMadeTwice) {
    const TempFolder folder;
    CreateFolder(folder / "a");
    EXPECT_TRUE(FolderExists(folder / "a"));
    EXPECT_EQ(FaultOf([&] { CreateFolder(folder / "a"); }), FileFault::AlreadyExists);
}

TEST(Files, AFolderCannotBeReadOrWrittenAsAFile) {
    const TempFolder folder;
    CreateFolder(folder / "a");
    EXPECT_EQ(FaultOf([&] { ReadWholeFile(folder / "a"); }), FileFault::AccessDenied);
    EXPECT_EQ(FaultOf([&] { WriteWholeFile(folder / "a", "x"); }), FileFault::AccessDenied);
    EXPECT_EQ(FaultOf([&] { AppendToFile(folder / "a", "x"); }), FileFault::AccessDenied);
}

} // namespace
} // namespace platform
