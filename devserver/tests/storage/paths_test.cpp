// The local paths of paths that clients send.
#include <gtest/gtest.h>

#include "devserver/storage/paths.h"

namespace devsql {
namespace {

const DriveMap kDrives = {{"D", "/data/d"}, {"X", "/data/x/"}};

TEST(ClientPath, ADriveLetterIsMappedInEitherCase) {
    EXPECT_EQ(LocalPath(R"(D:\SQL\Batch.mdf)", kDrives), "/data/d/SQL/Batch.mdf");
    EXPECT_EQ(LocalPath("d:/SQL/Batch.mdf", kDrives), "/data/d/SQL/Batch.mdf");
    EXPECT_EQ(LocalPath(R"(x:\a.mdf)", kDrives), "/data/x/a.mdf");
}

TEST(ClientPath, SeparatorsCanBeMixedAndDoubled) {
    EXPECT_EQ(LocalPath(R"(/home/user\data\\b.mdf)", kDrives), "/home/user/data/b.mdf");
    EXPECT_EQ(LocalPath(R"(D:\\a\/b.mdf)", kDrives), "/data/d/a/b.mdf");
}

TEST(ClientPath, AnUnmappedDriveHasNoLocalPath) {
    EXPECT_EQ(LocalPath(R"(E:\a.mdf)", kDrives), std::nullopt);
    EXPECT_EQ(LocalPath(R"(D:\a.mdf)", {}), std::nullopt);
}

TEST(ClientPath, ARelativeOrEmptyPathHasNoLocalPath) {
    EXPECT_EQ(LocalPath("a.mdf", kDrives), std::nullopt);
    EXPECT_EQ(LocalPath("", kDrives), std::nullopt);
    EXPECT_EQ(LocalPath(R"(D:\)", kDrives), std::nullopt);
}

} // namespace
} // namespace devsql
