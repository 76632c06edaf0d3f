// Folders and new paths on the computer of a database server.
#include "admin/server_path.h"

#include <string>

#include <gtest/gtest.h>

#include "fakes/fake_files.h"

namespace kv {
namespace {

TEST(ServerPath, TheFolderEndsAtTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(FolderOnServer(R"(D:\A\B\Batch.mdf)"), R"(D:\A\B\)");
    EXPECT_EQ(FolderOnServer("/var/opt/mssql/data/Batch.mdf"), "/var/opt/mssql/data");
    EXPECT_EQ(FolderOnServer("/var/opt\\Batch.mdf"), "/var/opt\\");
    EXPECT_EQ(FolderOnServer("D:\\A/Batch.mdf"), "D:\\A");
    EXPECT_EQ(FolderOnServer("/Batch.mdf"), "/");
    EXPECT_EQ(FolderOnServer("\\Batch.mdf"), "\\");
    EXPECT_EQ(FolderOnServer("Batch.mdf"), "Batch.mdf");
    EXPECT_EQ(FolderOnServer(""), "");
}

TEST(ServerPath, ANewPathHasTheSeparatorOfTheReportedPath) {
    EXPECT_EQ(ServerPath(R"(D:\A)", "x.mdf", R"(C:\B\Batch.mdf)"), R"(D:\A\x.mdf)");
    EXPECT_EQ(ServerPath("/data", "x.mdf", "/var/Batch.mdf"), "/data/x.mdf");
    EXPECT_EQ(ServerPath("/data/", "x.mdf", "/var/Batch.mdf"), "/data/x.mdf");
    EXPECT_EQ(ServerPath(R"(\data\sql)", "x.mdf", "/var/Batch.mdf"), "/data/sql/x.mdf");
    EXPECT_EQ(ServerPath("/", "x.mdf", "/Batch.mdf"), "/x.mdf");
    EXPECT_EQ(ServerPath("D:/A", "x.mdf", R"(C:\B\Batch.mdf)"), R"(D:/A\x.mdf)");
    EXPECT_EQ(ServerPath("D:", "x.mdf", "Batch.mdf"), R"(D:\x.mdf)");
}

TEST(ServerPath, APathWithAQuestionMarkHasLostACharacterUnlessThereIsSuchAFile) {
    fakes::FakeFiles files;
    files.AddFolder("/data");
    files.AddFile("/data/really?.mdf", "");
    EXPECT_TRUE(HasLostCharacter("/home/?ukasz/Batch.mdf"));
    EXPECT_FALSE(HasLostCharacter("/data/really?.mdf"));
    EXPECT_FALSE(HasLostCharacter("/nowhere/Batch.mdf"));
}

} // namespace
} // namespace kv
