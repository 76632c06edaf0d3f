// Checks that the delivered templates and packages are as the program and the query tools expect them. Uses
// no server.
#include <algorithm>
#include <array>
#include <ostream>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "packages/package_file.h"
#include "platform/files.h"
#include "scripts/script_tables.h"

namespace kv {
namespace {

constexpr std::array<std::string_view, 19> kTokens = {
    "###SERVER###",    "###server###",           "###USERID###",          "###PASSWORD###",
    "###DATAPATH###",  "###UNCREPLDATAPATH###",  "###DOMAIN###",          "###SERVERA###",
    "###SERVERB###",   "###servera###",          "###serverb###",         "###USERIDA###",
    "###USERIDB###",   "###PASSWORDA###",        "###PASSWORDB###",       "###DATAPATHA###",
    "###DATAPATHB###", "###UNCREPLDATAPATHA###", "###UNCREPLDATAPATHB###"};

constexpr std::array kTemplates = {sqlCreateBatchDatabase, sqlCreateBatchStoredProcedures,
                                   sqlCreateReplicationStoredProcedures, sqlInsertDefaultData};

struct ScriptFolder {
    std::string path;
    std::string version;
};

/// Prints the parameter in GoogleTest's output, which would print its bytes otherwise.
void PrintTo(const ScriptFolder& folder, std::ostream* out) {
    *out << folder.path;
}

std::string ReadTemplate(const ScriptFolder& folder, eSQLScript script) {
    return platform::ReadWholeFile(TemplatePath(script, folder.path + "/", ""));
}

bool IsUtf8(std::string_view text) {
    std::size_t wanted = 0;
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (wanted > 0) {
            if ((byte & 0xC0U) != 0x80U) {
                return false;
            }
            --wanted;
        } else if (byte >= 0x80U) {
            if (byte < 0xC2U || byte > 0xF4U) {
                return false;
            }
            wanted = byte < 0xE0U ? 1 : byte < 0xF0U ? 2 : 3;
        }
    }
    return wanted == 0;
}

bool IsAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80U; });
}

/// Describes the first fault of the file's encoding or line ends; empty if there is none.
std::string FormFault(std::string_view text) {
    constexpr std::string_view kNotInCodePage = "\x81\x8D\x8F\x90\x9D";
    if (text.starts_with("\xEF\xBB\xBF") || text.starts_with("\xFF\xFE") || text.starts_with("\xFE\xFF")) {
        return "it begins with a byte order mark";
    }
    if (text.find_first_of(kNotInCodePage) != std::string_view::npos ||
        text.find('\0') != std::string_view::npos) {
        return "it holds a byte that code page 1252 does not have";
    }
    if (!IsAscii(text) && IsUtf8(text)) {
        return "it is UTF-8";
    }
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool line_feed_alone = text[i] == '\n' && (i == 0 || text[i - 1] != '\r');
        const bool return_alone = text[i] == '\r' && (i + 1 == text.size() || text[i + 1] != '\n');
        if (line_feed_alone || return_alone) {
            return "byte " + std::to_string(i) + " is a line end without its other half";
        }
    }
    return text.ends_with("\r\n") ? "" : "its last line has no end";
}

/// The batches of a script, which are separated by lines with GO.
std::vector<std::string> Batches(const std::string& script) {
    std::vector<std::string> batches(1);
    std::istringstream lines(script);
    for (std::string line; std::getline(lines, line);) {
        if (line == "GO\r") {
            batches.emplace_back();
        } else {
            batches.back() += line + "\n";
        }
    }
    return batches;
}

/// The number of parameters of a procedure; 0 if the script does not create it. A template has each parameter
/// on a separate line.
int ParameterCount(const std::string& script, const std::string& procedure) {
    std::size_t at = script.find("CREATE PROCEDURE [dbo].[" + procedure + "]\r\n");
    if (at == std::string::npos) {
        return 0;
    }
    int count = 0;
    std::istringstream lines(script.substr(at));
    std::string line;
    std::getline(lines, line);
    while (std::getline(lines, line) && line != "AS\r") {
        count += line.starts_with("\t@") ? 1 : 0;
    }
    return count;
}

class SampleFiles : public ::testing::TestWithParam<ScriptFolder> {};

TEST_P(SampleFiles, EveryTokenIsUsedSomewhereInTheTemplates) {
    std::string all;
    for (const eSQLScript script : kTemplates) {
        all += ReadTemplate(GetParam(), script);
    }
    for (const std::string_view token : kTokens) {
        EXPECT_NE(all.find(token), std::string::npos) << token;
    }
}

TEST_P(SampleFiles, NoTemplateHasHashSignsOutsideTokens) {
    for (const eSQLScript script : kTemplates) {
        std::string text = ReadTemplate(GetParam(), script);
        for (const std::string_view token : kTokens) {
            for (std::size_t at = text.find(token); at != std::string::npos; at = text.find(token)) {
                text.erase(at, token.size());
            }
        }
        EXPECT_EQ(text.find("##"), std::string::npos) << TemplatePath(script, "", "");
    }
}

TEST_P(SampleFiles, TemplatesAreCodePage1252WithCrLfAndNoMark) {
    for (const eSQLScript script : kTemplates) {
        EXPECT_EQ(FormFault(ReadTemplate(GetParam(), script)), "") << TemplatePath(script, "", "");
    }
}

TEST_P(SampleFiles, TheDefaultDataHaveLettersOutsideAscii) {
    const std::string text = ReadTemplate(GetParam(), sqlInsertDefaultData);
    EXPECT_NE(text.find("'\xB0\x43'"), std::string::npos) << "degrees Celsius";
    EXPECT_NE(text.find("N'\x80'"), std::string::npos) << "the euro sign";
    EXPECT_NE(text.find("R\xFChrkessel"), std::string::npos);
}

TEST_P(SampleFiles, TheDefaultDataHaveTheVersionOfTheFolder) {
    EXPECT_NE(ReadTemplate(GetParam(), sqlInsertDefaultData)
                  .find("(N'DatabaseVersion', N'" + GetParam().version + "',"),
              std::string::npos);
}

TEST_P(SampleFiles, ProceduresHaveTheParametersThatTheProgramPasses) {
    const std::string batch = ReadTemplate(GetParam(), sqlCreateBatchStoredProcedures);
    EXPECT_EQ(ParameterCount(batch, "spUpgradeDatabase"), 6);
    EXPECT_EQ(ParameterCount(batch, "spStdSynchronize"), 10);

    const std::string replication = ReadTemplate(GetParam(), sqlCreateReplicationStoredProcedures);
    for (const std::string name : {"spInstallReplication", "spUninstallReplication"}) {
        EXPECT_NE(replication.find("CREATE PROCEDURE [dbo].[" + name + "]\r\nAS\r\n"), std::string::npos)
            << name;
    }
}

// An upgrade calls the procedure in a database in which only the first three scripts were run.
TEST_P(SampleFiles, TheFirstThreeScriptsCreateAProcedureThatUninstallsReplication) {
    EXPECT_NE(ReadTemplate(GetParam(), sqlCreateBatchStoredProcedures)
                  .find("CREATE PROCEDURE [dbo].[spUninstallReplication]"),
              std::string::npos);
}

// Without the guard a script would continue in master if the database is missing.
TEST_P(SampleFiles, EveryUseOfTheDatabaseIsGuarded) {
    for (const eSQLScript script : kTemplates) {
        const std::vector<std::string> batches = Batches(ReadTemplate(GetParam(), script));
        bool guarded = false;
        bool used = false;
        for (const std::string& batch : batches) {
            used = used || batch.find("USE [Batch]") != std::string::npos;
            guarded = guarded || batch.find("SET NOEXEC ON") != std::string::npos;
            EXPECT_FALSE(batch.find("CREATE TABLE") != std::string::npos && !(used && guarded)) << batch;
            EXPECT_FALSE(batch.find("CREATE PROCEDURE") != std::string::npos && !(used && guarded)) << batch;
        }
        EXPECT_TRUE(used && guarded) << TemplatePath(script, "", "");
        EXPECT_NE(batches[batches.size() - 2].find("SET NOEXEC OFF"), std::string::npos)
            << TemplatePath(script, "", "");
    }
}

TEST_P(SampleFiles, NoTableWithRowsIsDropped) {
    for (const eSQLScript script : kTemplates) {
        const std::string text = ReadTemplate(GetParam(), script);
        EXPECT_EQ(text.find("DROP DATABASE"), std::string::npos);
        for (std::size_t at = text.find("DROP TABLE ["); at != std::string::npos;
             at = text.find("DROP TABLE [", at + 1)) {
            EXPECT_EQ(text.substr(at, 33), "DROP TABLE [dbo].[BatchSummary]\r\n");
        }
    }
}

TEST_P(SampleFiles, PackagesCanBeReadAndAreNamedLikeTheirFiles) {
    std::set<std::string> ids;
    for (const eDTSPackage package : kDtsPackages) {
        const std::string path = GetParam().path + "/" + PackageFileName(package);
        const packages::PackageFile file = packages::ReadPackageFile(path);
        EXPECT_EQ(file.name, PackageName(package));
        EXPECT_NE(file.description, "");
        EXPECT_EQ(FormFault(file.content), "") << path;
        EXPECT_NE(file.content.find("\r\n\r\nStep 1: "), std::string::npos) << path << " has no body";
        ids.insert(file.package_id);
        ids.insert(file.version_id);
    }
    EXPECT_EQ(ids.size(), 2 * kDtsPackages.size()) << "an identifier is used twice";
}

INSTANTIATE_TEST_SUITE_P(Versions, SampleFiles,
                         ::testing::Values(ScriptFolder{std::string(KV_SAMPLES_DIR) + "/v1", "1"},
                                           ScriptFolder{std::string(KV_SAMPLES_DIR) + "/v2", "2"}),
                         [](const auto& tested) { return "v" + tested.param.version; });

} // namespace
} // namespace kv
