// CSQLScriptMgr: its settings, the tokens and their values, and creating and running scripts.
#include "scripts/sql_script_mgr.h"

#include "scripts/script_mgr_fixture.h"
#include "text/text.h"

namespace kv {
namespace {

class SqlScriptMgr : public ScriptMgrTest {
  protected:
    static void FillPair(CSQLScriptMgr& scripts) {
        scripts.UseServerA(true);
        scripts.ServerA("Node1\\Kv_Batch");
        scripts.ServerB("Node2");
        scripts.UserA("UserOne");
        scripts.UserB("UserTwo");
        scripts.PasswordA("PassOne");
        scripts.PasswordB("PassTwo");
        scripts.SQLDataPathA("C:\\");
        scripts.SQLDataPathB("D:\\SQL\\");
        scripts.SQLUNCReplDataPathA("\\\\Node1\\Repl\\");
        scripts.SQLUNCReplDataPathB("E:");
        scripts.Domain("Plant.\xE4");
        scripts.ScriptFolder("S:\\Scripts");
    }
    const std::string& Modified(const std::string& name) const {
        return files_.Content(std::string(kDataFolder) + "\\" + name);
    }
};

TEST_F(SqlScriptMgr, ANewObjectIsEmptyAndHasServerBSelected) {
    const CSQLScriptMgr scripts;
    EXPECT_FALSE(scripts.UseServerA());
    EXPECT_EQ(scripts.ScriptFolder(), "");
    EXPECT_EQ(scripts.Domain(), "");
    EXPECT_EQ(scripts.ServerA() + scripts.ServerB() + scripts.UserA() + scripts.UserB() +
                  scripts.PasswordA() + scripts.PasswordB() + scripts.SQLDataPathA() +
                  scripts.SQLDataPathB() + scripts.SQLUNCReplDataPathA() + scripts.SQLUNCReplDataPathB(),
              "");
    EXPECT_EQ(scripts.ErrorCount(), Int16(0));
    EXPECT_TRUE(scripts.IsOSQLAvailable());
}

TEST_F(SqlScriptMgr, APathMemberLosesOneTrailingBackslash) {
    CSQLScriptMgr scripts;
    struct Case {
        const char* written;
        const char* read;
    };
    for (const Case& c : {Case{"D:\\SQL\\", "D:\\SQL"}, Case{"D:\\SQL", "D:\\SQL"}, Case{"C:\\", "C:"},
                          Case{"\\", ""}, Case{"a\\\\", "a\\"}, Case{"", ""}, Case{" x/ ", " x/ "}}) {
        scripts.SQLDataPathA(c.written);
        scripts.SQLDataPathB(c.written);
        scripts.SQLUNCReplDataPathA(c.written);
        scripts.SQLUNCReplDataPathB(c.written);
        EXPECT_EQ(scripts.SQLDataPathA(), c.read);
        EXPECT_EQ(scripts.SQLDataPathB(), c.read);
        EXPECT_EQ(scripts.SQLUNCReplDataPathA(), c.read);
        EXPECT_EQ(scripts.SQLUNCReplDataPathB(), c.read);
    }
    scripts.ServerA("S\\");
    scripts.PasswordB(" p\\");
    EXPECT_EQ(scripts.ServerA(), "S\\");
    EXPECT_EQ(scripts.PasswordB(), " p\\");
}

TEST_F(SqlScriptMgr, TheScriptFolderAlwaysEndsInABackslash) {
    CSQLScriptMgr scripts;
    scripts.ScriptFolder("");
    EXPECT_EQ(scripts.ScriptFolder(), "\\");
    scripts.ScriptFolder("D:\\Scripts");
    EXPECT_EQ(scripts.ScriptFolder(), "D:\\Scripts\\");
    scripts.ScriptFolder("D:\\Scripts\\");
    EXPECT_EQ(scripts.ScriptFolder(), "D:\\Scripts\\");
}

TEST_F(SqlScriptMgr, AllNineteenTokensHaveTheirValues) {
    CSQLScriptMgr scripts;
    FillPair(scripts);
    struct Case {
        const char* token;
        const char* server_a;
        const char* server_b;
    };
    const Case cases[] = {
        {"###SERVER###", "NODE1\\KV_BATCH", "NODE2"},
        {"###server###", "node1\\kv_batch", "node2"},
        {"###USERID###", "UserOne", "UserTwo"},
        {"###PASSWORD###", "PassOne", "PassTwo"},
        {"###DATAPATH###", "C:", "D:\\SQL"},
        {"###UNCREPLDATAPATH###", "\\\\Node1\\Repl", "E:"},
        {"###DOMAIN###", "PLANT.\xC4", "PLANT.\xC4"},
        {"###SERVERA###", "NODE1\\KV_BATCH", "NODE1\\KV_BATCH"},
        {"###SERVERB###", "NODE2", "NODE2"},
        {"###servera###", "node1\\kv_batch", "node1\\kv_batch"},
        {"###serverb###", "node2", "node2"},
        {"###USERIDA###", "UserOne", "UserOne"},
        {"###USERIDB###", "UserTwo", "UserTwo"},
        {"###PASSWORDA###", "PassOne", "PassOne"},
        {"###PASSWORDB###", "PassTwo", "PassTwo"},
        {"###DATAPATHA###", "C:\\", "C:\\"},
        {"###DATAPATHB###", "D:\\SQL", "D:\\SQL"},
        {"###UNCREPLDATAPATHA###", "\\\\Node1\\Repl", "\\\\Node1\\Repl"},
        {"###UNCREPLDATAPATHB###", "E:\\", "E:\\"},
    };
    for (const Case& c : cases) {
        scripts.UseServerA(true);
        EXPECT_EQ(scripts.ReplaceFileContent(c.token), c.server_a) << c.token;
        scripts.UseServerA(false);
        EXPECT_EQ(scripts.ReplaceFileContent(c.token), c.server_b) << c.token;
    }
}

TEST_F(SqlScriptMgr, UserPasswordAndPathTokensMatchInAnyLetterCase) {
    CSQLScriptMgr scripts;
    FillPair(scripts);
    for (const std::string token :
         {"###USERID###", "###PASSWORD###", "###DATAPATH###", "###UNCREPLDATAPATH###", "###USERIDA###",
          "###USERIDB###", "###PASSWORDA###", "###PASSWORDB###", "###DATAPATHA###", "###DATAPATHB###",
          "###UNCREPLDATAPATHA###", "###UNCREPLDATAPATHB###"}) {
        const std::string value = scripts.ReplaceFileContent(token);
        ASSERT_NE(value, token);
        EXPECT_EQ(scripts.ReplaceFileContent(text::LowerCase(token)), value) << token;
    }
    EXPECT_EQ(scripts.ReplaceFileContent("###userid### ###UserId###"), "UserOne UserOne");
    EXPECT_EQ(scripts.ReplaceFileContent("###Password### ###dataPathB### ###uncREPLDataPathA###"),
              "PassOne D:\\SQL \\\\Node1\\Repl");
}

TEST_F(SqlScriptMgr, ServerAndDomainTokensInAnotherCaseAreNotReplaced) {
    CSQLScriptMgr scripts;
    FillPair(scripts);
    const std::string text = "###Server### ###domain### ###ServerA### ###serverB### ###Domain###";
    EXPECT_EQ(scripts.ReplaceFileContent(text), text);
}

TEST_F(SqlScriptMgr, TheTokenOfAnEmptySettingIsRemoved) {
    const CSQLScriptMgr scripts;
    EXPECT_EQ(scripts.ReplaceFileContent("[###SERVERA######DOMAIN######DATAPATHA######UNCREPLDATAPATHB###]"),
              "[]");
}

TEST_F(SqlScriptMgr, ATokenInAValueIsReplacedByALaterPass) {
    CSQLScriptMgr scripts;
    scripts.UseServerA(true);
    scripts.PasswordA("###DOMAIN###");
    scripts.Domain("plant");
    scripts.UserA("###server###"); // its pass has already run
    EXPECT_EQ(scripts.ReplaceFileContent("###PASSWORD### ###USERID###"), "PLANT ###server###");
}

/// A value that contains the token of an earlier pass keeps it. The order of the passes for a server's upper
/// and lower case tokens cannot be seen: the value of the one never contains the token of the other.
TEST_F(SqlScriptMgr, ThePassesRunInTheirOrder) {
    using Writer = void (CSQLScriptMgr::*)(const std::string&);
    struct Case {
        const char* earlier;
        const char* later;
        Writer write;
    };
    for (const Case& c : {
             Case{"###SERVER###", "###USERID###", &CSQLScriptMgr::UserA},
             Case{"###server###", "###USERID###", &CSQLScriptMgr::UserA},
             Case{"###USERID###", "###PASSWORD###", &CSQLScriptMgr::PasswordA},
             Case{"###PASSWORD###", "###DATAPATH###", &CSQLScriptMgr::SQLDataPathA},
             Case{"###DATAPATH###", "###UNCREPLDATAPATH###", &CSQLScriptMgr::SQLUNCReplDataPathA},
             Case{"###UNCREPLDATAPATH###", "###DOMAIN###", &CSQLScriptMgr::Domain},
             Case{"###DOMAIN###", "###SERVERA###", &CSQLScriptMgr::ServerA},
             Case{"###SERVERA###", "###SERVERB###", &CSQLScriptMgr::ServerB},
             Case{"###servera###", "###serverb###", &CSQLScriptMgr::ServerB},
             Case{"###SERVERB###", "###USERIDA###", &CSQLScriptMgr::UserA},
             Case{"###serverb###", "###USERIDA###", &CSQLScriptMgr::UserA},
             Case{"###USERIDA###", "###USERIDB###", &CSQLScriptMgr::UserB},
             Case{"###USERIDB###", "###PASSWORDA###", &CSQLScriptMgr::PasswordA},
             Case{"###PASSWORDA###", "###PASSWORDB###", &CSQLScriptMgr::PasswordB},
             Case{"###PASSWORDB###", "###DATAPATHA###", &CSQLScriptMgr::SQLDataPathA},
             Case{"###DATAPATHA###", "###DATAPATHB###", &CSQLScriptMgr::SQLDataPathB},
             Case{"###DATAPATHB###", "###UNCREPLDATAPATHA###", &CSQLScriptMgr::SQLUNCReplDataPathA},
             Case{"###UNCREPLDATAPATHA###", "###UNCREPLDATAPATHB###", &CSQLScriptMgr::SQLUNCReplDataPathB},
         }) {
        CSQLScriptMgr scripts;
        FillPair(scripts);
        (scripts.*c.write)(c.earlier);
        EXPECT_EQ(scripts.ReplaceFileContent(c.later), c.earlier);
    }
}

TEST_F(SqlScriptMgr, OnlyThePathsOfThePairGetTheirDriveRootBack) {
    CSQLScriptMgr scripts;
    scripts.SQLDataPathA("C:\\");
    scripts.SQLDataPathB("D:\\");
    scripts.SQLUNCReplDataPathA("E:\\");
    scripts.SQLUNCReplDataPathB("F:\\");
    const std::string pair = "###DATAPATHA### ###DATAPATHB### ###UNCREPLDATAPATHA### ###UNCREPLDATAPATHB### ";
    scripts.UseServerA(true);
    EXPECT_EQ(scripts.ReplaceFileContent(pair + "###DATAPATH### ###UNCREPLDATAPATH###"),
              "C:\\ D:\\ E:\\ F:\\ C: E:");
    scripts.UseServerA(false);
    EXPECT_EQ(scripts.ReplaceFileContent(pair + "###DATAPATH### ###UNCREPLDATAPATH###"),
              "C:\\ D:\\ E:\\ F:\\ D: F:");
}

TEST_F(SqlScriptMgr, EachScriptIsReadFromItsTemplateAndWrittenUnderItsName) {
    CSQLScriptMgr scripts;
    scripts.ScriptFolder("S:\\Scripts");
    struct Case {
        eSQLScript script;
        const char* name;
    };
    for (const Case& c :
         {Case{sqlCreateBatchDatabase, "Create_Batch_Database.sql"},
          Case{sqlCreateBatchStoredProcedures, "Create_Batch_Stored_Procedures.sql"},
          Case{sqlCreateReplicationStoredProcedures, "Create_Replication_Stored_Procedures.sql"},
          Case{sqlInsertDefaultData, "Insert_Default_Data.sql"}}) {
        EXPECT_FALSE(scripts.CreateModifiedScript(c.script, "")) << c.name;
        files_.AddFile(std::string("S:\\Scripts\\") + c.name, std::string("-- ") + c.name + "\n");
        EXPECT_TRUE(scripts.CreateModifiedScript(c.script, "ignored.sql")) << c.name;
        EXPECT_EQ(Modified(c.name), std::string("-- ") + c.name + "\r\n\r\n");
    }
}

TEST_F(SqlScriptMgr, AUserDefinedScriptIsReadFromItsOwnPath) {
    const CSQLScriptMgr scripts;
    files_.AddFile("D:\\Work\\My.sql", "a");
    files_.AddFile("My.sql", "b");
    EXPECT_TRUE(scripts.CreateModifiedScript(sqlUserDefinedScript, "D:\\Work\\My.sql"));
    EXPECT_EQ(Modified("My.sql"), "a\r\n\r\n");
    EXPECT_TRUE(scripts.CreateModifiedScript(sqlUserDefinedScript, "My.sql"));
    EXPECT_EQ(Modified("My.sql"), "b\r\n\r\n");
}

TEST_F(SqlScriptMgr, AMissingTemplateKeepsTheEarlierScript) {
    CSQLScriptMgr scripts;
    scripts.ScriptFolder("S:\\Scripts");
    files_.AddFolder(kDataFolder);
    files_.AddFile(std::string(kDataFolder) + "\\Insert_Default_Data.sql", "earlier");
    EXPECT_FALSE(scripts.CreateModifiedScript(sqlInsertDefaultData, ""));
    EXPECT_EQ(Modified("Insert_Default_Data.sql"), "earlier");
    EXPECT_TRUE(files_.Log().empty());
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(SqlScriptMgr, ASecondRunReplacesTheModifiedScript) {
    CSQLScriptMgr scripts;
    scripts.ScriptFolder("S:\\Scripts");
    files_.AddFile("S:\\Scripts\\Insert_Default_Data.sql", "###DOMAIN###");
    scripts.Domain("one");
    scripts.CreateModifiedScript(sqlInsertDefaultData, "");
    scripts.Domain("two");
    scripts.CreateModifiedScript(sqlInsertDefaultData, "");
    EXPECT_EQ(Modified("Insert_Default_Data.sql"), "TWO\r\n\r\n");
    EXPECT_EQ(files_.Content("S:\\Scripts\\Insert_Default_Data.sql"), "###DOMAIN###");
}

TEST_F(SqlScriptMgr, AFileFailureIsRaisedToTheCaller) {
    CSQLScriptMgr scripts;
    scripts.ScriptFolder("S:\\Scripts");
    files_.AddFile("S:\\Scripts\\Insert_Default_Data.sql", "x");
    files_.FailNext("read", "S:\\Scripts\\Insert_Default_Data.sql", platform::FileFault::AccessDenied);
    EXPECT_THROW(scripts.CreateModifiedScript(sqlInsertDefaultData, ""), platform::FileError);
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(SqlScriptMgr, ShowDbErrorShowsNothing) {
    const CSQLScriptMgr scripts;
    scripts.ShowDbError();
    EXPECT_TRUE(screen_.calls.empty());
}

TEST_F(SqlScriptMgr, AScriptIsRunByTheToolWithItsFilesInTheFolderData) {
    CSQLScriptMgr scripts;
    FillPair(scripts);
    EXPECT_TRUE(scripts.ExecuteSQLScript(sqlCreateBatchDatabase, "ignored"));
    scripts.UseServerA(false);
    EXPECT_TRUE(scripts.ExecuteSQLScript(sqlUserDefinedScript, "D:\\Work\\Fix.V2.sql"));
    ASSERT_EQ(processes_.started.size(), 2U);
    const platform::ShellExecuteInfo& info = processes_.started[0];
    EXPECT_EQ(info.mask, 0x40U);
    EXPECT_EQ(info.verb, "open");
    EXPECT_EQ(info.file, std::string("\"") + kTool140 + "\"");
    EXPECT_EQ(
        info.parameters,
        R"( -S Node1\Kv_Batch -U UserOne -P PassOne -i "C:\Lotkeeper\Server\Data\Create_Batch_Database.sql" )"
        R"(-o "C:\Lotkeeper\Server\Data\Create_Batch_Database.txt")");
    EXPECT_EQ(info.directory, "");
    EXPECT_EQ(info.show, 0);
    EXPECT_EQ(processes_.started[1].parameters,
              R"( -S Node2 -U UserTwo -P PassTwo -i "C:\Lotkeeper\Server\Data\Fix.V2.sql" )"
              R"(-o "C:\Lotkeeper\Server\Data\Fix.V2.txt")");
    EXPECT_EQ(processes_.waits, (std::vector<std::uint32_t>{0xFFFFFFFF, 0xFFFFFFFF}));
    EXPECT_EQ(processes_.open_handles, 0);
}

TEST_F(SqlScriptMgr, TheOutputFileIsNamedAfterTheScript) {
    EXPECT_EQ(OutputFileName(sqlCreateBatchDatabase, ""), "Create_Batch_Database.txt");
    EXPECT_EQ(OutputFileName(sqlCreateBatchStoredProcedures, ""), "Create_Batch_Stored_Procedures.txt");
    EXPECT_EQ(OutputFileName(sqlCreateReplicationStoredProcedures, ""),
              "Create_Replication_Stored_Procedures.txt");
    EXPECT_EQ(OutputFileName(sqlInsertDefaultData, ""), "Insert_Default_Data.txt");
    EXPECT_EQ(OutputFileName(sqlUserDefinedScript, "D:\\Work\\Fix.V2.sql"), "Fix.V2.txt");
    EXPECT_EQ(OutputFileName(sqlUserDefinedScript, "Fix"), "Fix.txt");
    EXPECT_EQ(OutputFileName(sqlUserDefinedScript, "/home/x.y/Fix.sql"), "Fix.txt");
    EXPECT_EQ(OutputFileName(sqlUserDefinedScript, "D:\\a.b\\Fix"), "Fix.txt");
    EXPECT_EQ(OutputFileName(sqlUserDefinedScript, "Fix."), "Fix.txt");
}

TEST_F(SqlScriptMgr, AnEmptyPasswordIsFollowedByTheInputFile) {
    CSQLScriptMgr scripts;
    scripts.ExecuteSQLScript(sqlInsertDefaultData, "");
    EXPECT_EQ(processes_.started.at(0).parameters.substr(0, 17), " -S  -U  -P  -i \"");
}

TEST_F(SqlScriptMgr, WithoutAToolAnEmptyQuotedNameIsStartedAndFails) {
    files_.files.erase("C:/SQL/140/Tools/Binn/OSQL.EXE");
    SqlPath("80", "C:\\none");
    const CSQLScriptMgr scripts;
    processes_.on_start = [](const platform::ShellExecuteInfo&) { return false; };
    EXPECT_FALSE(scripts.ExecuteSQLScript(sqlInsertDefaultData, ""));
    EXPECT_EQ(processes_.started.at(0).file, "\"\"");
    EXPECT_TRUE(LogLines().empty());
}

TEST_F(SqlScriptMgr, AToolWithoutAHandleIsNotWaitedFor) {
    processes_.gives_handle = false;
    EXPECT_TRUE(CSQLScriptMgr().ExecuteSQLScript(sqlInsertDefaultData, ""));
    EXPECT_TRUE(processes_.waits.empty());
}

TEST_F(SqlScriptMgr, AFailureOfARunIsLoggedWithTheScriptsNumber) {
    const CSQLScriptMgr scripts;
    processes_.on_start = [](const platform::ShellExecuteInfo&) -> bool { throw std::bad_alloc(); };
    EXPECT_FALSE(scripts.ExecuteSQLScript(sqlInsertDefaultData, ""));
    EXPECT_EQ(LogLines(), std::vector<std::string>{"CSQLScriptMgr::ExecuteSQLScript(3)"});
}

} // namespace
} // namespace kv
