// How the query tool is found from the server's version and the registry.
#include "scripts/query_tool.h"

#include "base/failure.h"
#include "scripts/script_mgr_fixture.h"

namespace kv {
namespace {

constexpr char kUnknownVersion[] =
    "box [exclamation] KVLSQLDbMgr: Can't determine installed SQL Server version!";

class QueryTool : public ScriptMgrTest {
  protected:
    QueryTool() {
        SqlPath("80", R"(C:\SQL\80\Tools\)");
        SqlPath("90", R"(C:\SQL\90\Tools\)");
        SqlPath("120", R"(C:\SQL\120\Tools)");
    }
    void ExpectUnknown(const std::string& version) {
        Version(version);
        screen_.calls.clear();
        EXPECT_EQ(FindQueryTool(), "") << version;
        EXPECT_EQ(screen_.calls, std::vector<std::string>{kUnknownVersion}) << version;
    }
};

TEST_F(QueryTool, TheMajorVersionSelectsTheTool) {
    files_.AddFile(R"(C:\SQL\90\Tools\Binn\SqlCMD.EXE)", "");
    files_.AddFile(R"(C:\SQL\120\Tools\Binn\OSQL.EXE)", "");
    Version("9.00.1399.06");
    EXPECT_EQ(FindQueryTool(), R"(C:\SQL\90\Tools\Binn\SqlCMD.EXE)");
    Version("12.0.2000.8");
    EXPECT_EQ(FindQueryTool(), R"(C:\SQL\120\Tools\Binn\OSQL.EXE)");
    Version("14.0.1000.169");
    EXPECT_EQ(FindQueryTool(), kTool140);
    EXPECT_TRUE(screen_.calls.empty());
}

TEST_F(QueryTool, OtherVersionsAreUnknownAndReportedInABox) {
    for (const char* version :
         {"11.0.2100.60", "13.0.1601.5", "8.00.194", "09.00.1399", " 9.0", "140.1", ".9"}) {
        ExpectUnknown(version);
    }
}

TEST_F(QueryTool, AnEmptyVersionIsUnknown) {
    ExpectUnknown("");
}

TEST_F(QueryTool, AnUnknownVersionStillUsesTheFallback) {
    files_.AddFile(R"(C:\SQL\80\Tools\Binn\OSQL.EXE)", "");
    Version("8.00.194");
    EXPECT_EQ(FindQueryTool(), R"(C:\SQL\80\Tools\Binn\OSQL.EXE)");
    EXPECT_EQ(screen_.calls, std::vector<std::string>{kUnknownVersion});
}

TEST_F(QueryTool, AVersionWithoutAPointFails) {
    Version("14");
    try {
        FindQueryTool();
        FAIL() << "no failure";
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.Number(), run_time::kInvalidProcedureCall);
    }
    EXPECT_TRUE(screen_.calls.empty());
}

TEST_F(QueryTool, AFolderThatEndsInABackslashGetsNoSecondOne) {
    files_.AddFile(R"(C:\SQL\80\Tools\Binn\OSQL.EXE)", "");
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    EXPECT_EQ(FindQueryTool(), R"(C:\SQL\80\Tools\Binn\OSQL.EXE)");
}

TEST_F(QueryTool, Version14DropsTheMarkOfThe32BitFolder) {
    SqlPath("140", R"(C:\Program Files (x86)\Microsoft SQL Server\140\Tools)");
    files_.AddFile(R"(C:\Program Files\Microsoft SQL Server\140\Tools\Binn\OSQL.EXE)", "");
    EXPECT_EQ(FindQueryTool(), R"(C:\Program Files\Microsoft SQL Server\140\Tools\Binn\OSQL.EXE)");
    // In another letter case it stays.
    SqlPath("140", R"(C:\Program Files (X86)\Tools)");
    files_.AddFile(R"(C:\Program Files (X86)\Tools\Binn\OSQL.EXE)", "");
    EXPECT_EQ(FindQueryTool(), R"(C:\Program Files (X86)\Tools\Binn\OSQL.EXE)");
}

TEST_F(QueryTool, OtherVersionsKeepTheMarkOfThe32BitFolder) {
    SqlPath("120", R"(C:\P (x86)\T)");
    files_.AddFile(R"(C:\P (x86)\T\Binn\OSQL.EXE)", "");
    Version("12.0");
    EXPECT_EQ(FindQueryTool(), R"(C:\P (x86)\T\Binn\OSQL.EXE)");
}

TEST_F(QueryTool, IfTheToolIsMissingTheFallbackIsUsedWithoutAMessage) {
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    files_.AddFile(R"(C:\SQL\80\Tools\Binn\OSQL.EXE)", "");
    EXPECT_EQ(FindQueryTool(), R"(C:\SQL\80\Tools\Binn\OSQL.EXE)");
    EXPECT_TRUE(screen_.calls.empty());
}

TEST_F(QueryTool, WithoutAnyToolThePathIsEmpty) {
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    EXPECT_EQ(FindQueryTool(), "");
    EXPECT_TRUE(screen_.calls.empty());
    EXPECT_FALSE(CSQLScriptMgr().IsOSQLAvailable());
}

TEST_F(QueryTool, AMissingInstanceKeyIsLoggedAndUnknown) {
    fakes::FakeRegistry bare;
    Text(registry_locations::kLogKey, "", "D:\\Log");
    EXPECT_EQ(FindQueryTool(), "");
    EXPECT_EQ(screen_.calls, std::vector<std::string>{kUnknownVersion});
    const auto lines = LogLines();
    ASSERT_EQ(lines.size(), 4U); // two lines each for the version's key and for the fallback's
    EXPECT_NE(lines[0].find(R"(KV_BATCH\\MSSQLServer)"), std::string::npos) << lines[0];
}

} // namespace
} // namespace kv
