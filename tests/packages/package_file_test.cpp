// Package files: the fields of a valid file, and the error texts for damaged files.
#include "packages/package_file.h"

#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "packages/packages.h"

namespace {

using packages::PackageError;
using packages::PackageFile;
using packages::ParsePackageFile;
using packages::ReadPackageFile;

constexpr auto kDamaged = static_cast<std::int32_t>(0x80030109U);
constexpr const char* kHead = "LKDTS 1\r\n"
                              "Name: StdSynchronize\r\n"
                              "Description: Brings the partner up to date\r\n"
                              "PackageId: {8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}\r\n"
                              "VersionId: {3c59dc04-8e88-4024-9bbe-079a5d4b1a02}\r\n"
                              "\r\n";

std::string Replaced(std::string text, const std::string& from, const std::string& to) {
    for (std::size_t at = text.find(from); at != std::string::npos; at = text.find(from, at + to.size())) {
        text.replace(at, from.size(), to);
    }
    return text;
}

/// The text of a damaged file's error after the name of the file.
std::string ComplaintAbout(const std::string& content) {
    try {
        ParsePackageFile("X.dts", content);
    } catch (const PackageError& error) {
        EXPECT_EQ(error.Number(), kDamaged);
        const std::string text = error.what();
        const std::string front = "The package file X.dts is damaged: ";
        EXPECT_TRUE(text.starts_with(front)) << text;
        return text.substr(front.size());
    }
    return "nothing";
}

class ReadPackage : public testing::Test {
  protected:
    ReadPackage() : folder_(std::filesystem::temp_directory_path() / Name()) {
        std::filesystem::create_directories(folder_);
    }
    ~ReadPackage() override { std::filesystem::remove_all(folder_); }

    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    static PackageError FailureOf(const std::string& path) {
        try {
            ReadPackageFile(path);
        } catch (const PackageError& error) {
            return error;
        }
        ADD_FAILURE() << "the file was read";
        return {0, "", ""};
    }

    std::filesystem::path folder_;

  private:
    static std::string Name() {
        return std::string("package_file_") + testing::UnitTest::GetInstance()->current_test_info()->name();
    }
};

TEST(PackageFile, GivesItsFourFieldsAndEveryByte) {
    const std::string content = std::string(kHead) + std::string("body\0\xFF\r\n\n", 9);
    const PackageFile file = ParsePackageFile("X.dts", content);
    EXPECT_EQ(file.name, "StdSynchronize");
    EXPECT_EQ(file.description, "Brings the partner up to date");
    EXPECT_EQ(file.package_id, "{8F14E45F-CEEA-467F-A8B6-2C1F1B7A9D01}");
    EXPECT_EQ(file.version_id, "{3c59dc04-8e88-4024-9bbe-079a5d4b1a02}");
    EXPECT_EQ(file.content, content);
}

TEST(PackageFile, LinesCanEndInLineFeedsOnly) {
    const PackageFile file = ParsePackageFile("X.dts", Replaced(kHead, "\r\n", "\n"));
    EXPECT_EQ(file.name, "StdSynchronize");
    EXPECT_EQ(file.version_id, "{3c59dc04-8e88-4024-9bbe-079a5d4b1a02}");
}

TEST(PackageFile, TheDescriptionMayBeEmptyAndTheBodyToo) {
    EXPECT_EQ(ParsePackageFile("X.dts", Replaced(kHead, "Brings the partner up to date", "")).description,
              "");
    EXPECT_EQ(ParsePackageFile("X.dts", Replaced(kHead, " Brings the partner up to date", "")).description,
              "");
}

TEST(PackageFile, AnErrorNamesTheLine) {
    EXPECT_EQ(ComplaintAbout(""), "line 1: it ends inside the head");
    EXPECT_EQ(ComplaintAbout("LKDTS 2\n"), "line 1: \"LKDTS 1\" is expected");
    EXPECT_EQ(ComplaintAbout("\xD0\xCF\x11\xE0\n"), "line 1: \"LKDTS 1\" is expected");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "Name:", "Nome:")), "line 2: \"Name: \" is expected");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "Name: StdSynchronize", "Name: ")), "line 2: Name is empty");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "StdSynchronize", std::string(129, 'n'))),
              "line 2: Name is longer than 128 characters");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "Synchronize", std::string("\0", 1))),
              "line 2: Name holds a NUL byte");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "Brings", std::string(256, 'd'))),
              "line 3: Description is longer than 255 characters");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "{8F14E45F-", "{8F14E45G-")),
              "line 4: PackageId is not of the form {8-4-4-4-12 hexadecimal digits}");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "1a02}", "1a02")),
              "line 5: VersionId is not of the form {8-4-4-4-12 hexadecimal digits}");
    EXPECT_EQ(ComplaintAbout(std::string(kHead).substr(0, std::string(kHead).size() - 2)),
              "line 6: it ends inside the head");
    EXPECT_EQ(ComplaintAbout(Replaced(kHead, "\r\n\r\n", "\r\nbody\r\n")),
              "line 6: an empty line is expected after the head");
}

TEST(PackageFile, TheLongestNameAndDescriptionFit) {
    const std::string content = Replaced(Replaced(kHead, "StdSynchronize", std::string(128, 'n')),
                                         "Brings the partner up to date", std::string(255, 'd'));
    EXPECT_EQ(ParsePackageFile("X.dts", content).name.size(), 128U);
    EXPECT_EQ(ParsePackageFile("X.dts", content).description.size(), 255U);
}

TEST_F(ReadPackage, ReadsTheFileByteForByte) {
    const std::string content = std::string(kHead) + std::string("\x1A\r\n\0", 4) + std::string(100000, 'x');
    std::ofstream(Path("P.dts"), std::ios::binary) << content;
    EXPECT_EQ(ReadPackageFile(Path("P.dts")).content, content);
}

TEST_F(ReadPackage, AMissingFileIsNamed) {
    const PackageError error = FailureOf(Path("None.dts"));
    EXPECT_EQ(error.Number(), static_cast<std::int32_t>(0x80030002U));
    EXPECT_NE(std::string(error.what()).find("None.dts: file not found"), std::string::npos) << error.what();
}

TEST_F(ReadPackage, AMissingFolderIsNamed) {
    EXPECT_EQ(FailureOf(Path("none/P.dts")).Number(), static_cast<std::int32_t>(0x80030003U));
}

TEST_F(ReadPackage, AFolderIsNoPackageFile) {
    EXPECT_EQ(FailureOf(folder_.string()).Number(), static_cast<std::int32_t>(0x80030005U));
}

TEST_F(ReadPackage, ADamagedFileIsNamed) {
    std::ofstream(Path("P.dts"), std::ios::binary) << "no package";
    EXPECT_EQ(FailureOf(Path("P.dts")).Number(), kDamaged);
    EXPECT_NE(std::string(FailureOf(Path("P.dts")).what()).find("P.dts"), std::string::npos);
}

} // namespace
