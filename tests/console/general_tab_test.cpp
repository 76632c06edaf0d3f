// Tests the General tab: fetching logins from the registry, choosing folders, and the derived replication
// path.
#include "console/console_fixture.h"

namespace kv {
namespace {

class General : public ConsoleTest {
  protected:
    void Login(const std::string& server, const std::string& user, const std::string& password) {
        Text(registry_locations::kLoginKey, "ServerName", server);
        Text(registry_locations::kLoginKey, "UserID", user);
        Text(registry_locations::kLoginKey, "PWD", password);
    }
    void BackupNode(const std::string& node) {
        registry_.AddText(registry_locations::kHkeyCurrentUser, registry_locations::kRedundancyKey,
                          "BackupNode", node);
    }
};

TEST_F(General, LocalSettingsFillServerA) {
    Login("NodeA", "sa", " p w ");
    Start();
    ui::Click(Button("cmdGetLocalSettings"));
    EXPECT_EQ(Edit("edtServerName", 0).Text(), "NodeA");
    EXPECT_EQ(Edit("edtUserID", 0).Text(), "sa");
    EXPECT_EQ(Edit("edtPassword", 0).Text(), " p w ") << "unchanged";
    EXPECT_EQ(Edit("edtServerName", 1).Text(), "");
    EXPECT_TRUE(Tabs().TabEnabled(kUpgradeTab));
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(General, AfterAFetchTheDataPathIsSelectedForTyping) {
    Remember("edtSQLDataPath0", "D:\\Data");
    Start();
    Edit("edtSQLDataPath", 0).SelStart(7);
    ui::Click(Button("cmdGetLocalSettings"));
    EXPECT_EQ(Form().Focused(), &Edit("edtSQLDataPath", 0));
    EXPECT_EQ(Edit("edtSQLDataPath", 0).SelStart(), 0U);
    EXPECT_EQ(Edit("edtSQLDataPath", 0).SelLength(), 7U);
    ui::Type(Edit("edtSQLDataPath", 0), "E:\\X");
    EXPECT_EQ(Edit("edtSQLDataPath", 0).Text(), "E:\\X");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "E$\\ReplData");
}

TEST_F(General, AValueThatCannotBeReadEmptiesItsBox) {
    RememberLogin(0);
    Start();
    EXPECT_TRUE(Tabs().TabEnabled(kUpgradeTab));
    ui::Click(Button("cmdGetLocalSettings"));
    EXPECT_EQ(Edit("edtServerName", 0).Text(), "");
    EXPECT_FALSE(Tabs().TabEnabled(kUpgradeTab));
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(General, RemoteSettingsComeFromTheBackupNode) {
    BackupNode("Partner");
    registry_.OnComputer("Partner");
    Login("NodeB", "sb", "pb");
    registry_.OnComputer("");
    Login("NodeA", "sa", "pa");
    Start();
    ui::Click(Button("cmdGetRemoteSettings"));
    EXPECT_EQ(Edit("edtServerName", 1).Text(), "NodeB");
    EXPECT_EQ(Edit("edtUserID", 1).Text(), "sb");
    EXPECT_EQ(Edit("edtPassword", 1).Text(), "pb");
    EXPECT_EQ(Edit("edtServerName", 0).Text(), "");
    EXPECT_EQ(Form().Focused(), &Edit("edtSQLDataPath", 1));
}

TEST_F(General, WithoutABackupNodeABoxIsShownAndNothingChanges) {
    RememberLogin(1);
    Text(registry_locations::kRedundancyKey, "BackupNode", "the machine's value, which is not used");
    Start();
    ui::Click(Button("cmdGetRemoteSettings"));
    EXPECT_EQ(Boxes(), Lines{"[exclamation] KVLSQLDbMgr: Lotkeeper redundancy must be configured!"});
    EXPECT_EQ(Edit("edtServerName", 1).Text(), "NodeB");
    EXPECT_EQ(Edit("edtPassword", 1).Text(), "pwB");
}

TEST_F(General, ABackupNodeThatDoesNotAnswerEmptiesTheFields) {
    BackupNode("Partner");
    RememberLogin(1);
    Start();
    registry_.Fail(fakes::RegistryCall::Connect, 53);
    ui::Click(Button("cmdGetRemoteSettings"));
    EXPECT_EQ(Edit("edtServerName", 1).Text(), "");
    EXPECT_FALSE(Tabs().TabEnabled(kUpgradeTab));
    EXPECT_TRUE(Boxes().empty());
}

TEST_F(General, TheFolderDialogsStartAtTheBoxesTexts) {
    Remember("edtScriptFolder", "S:\\Old");
    RememberLogin(1);
    Start();
    toolkit_.picked = "S:\\New";
    ui::Click(Button("cmdBrowseForScriptFolder"));
    EXPECT_EQ(Edit("edtScriptFolder").Text(), "S:\\New");
    toolkit_.picked = "E:\\Data";
    ui::Click(Button("cmdBrowseForSQLDataPath", 1));
    EXPECT_EQ(screen_.calls,
              (Lines{"folder [S:\\Old] Browse for script folder", "folder [] Browse for SQL Data path"}));
    EXPECT_EQ(Edit("edtSQLDataPath", 1).Text(), "E:\\Data");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 1).Text(), "E$\\ReplData");
    EXPECT_TRUE(Tabs().TabEnabled(kScriptTab)) << "availability is worked out after the derived path";
}

TEST_F(General, ACancelledFolderDialogFiresNoChange) {
    Remember("edtSQLDataPath0", "D:\\Data");
    Remember("edtSQLUNCReplDataPath0", "kept");
    Start();
    ui::Click(Button("cmdBrowseForSQLDataPath", 0));
    EXPECT_EQ(screen_.calls, Lines{"folder [D:\\Data] Browse for SQL Data path"});
    EXPECT_EQ(Edit("edtSQLDataPath", 0).Text(), "D:\\Data");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "kept");
}

TEST_F(General, TheReplicationPathFollowsEachCharacterAndCannotBeTyped) {
    Start();
    ui::Type(Edit("edtSQLDataPath", 0), "D:");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "D$");
    ui::Type(Edit("edtSQLDataPath", 0), "\\");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), "D$\\ReplData");
    EXPECT_FALSE(ui::Type(Edit("edtSQLUNCReplDataPath", 0), "x"));
}

TEST_F(General, TheReplicationPathIsDerivedFromTheDataPath) {
    Start();
    const std::pair<const char*, const char*> paths[] = {
        {R"(C:\MSSQL\Data)", R"(C$\MSSQL\ReplData)"},
        {R"(D:\Data)", R"(D$\ReplData)"},
        {R"(D:\)", R"(D$\ReplData)"},
        {"D:", "D$"},
        {"share", "share"},
        {"", ""},
        {R"(C:\a:b\c)", R"(C$\a:b\ReplData)"},
    };
    for (const auto& [data, replication] : paths) {
        Edit("edtSQLDataPath", 0).Text(data);
        EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 0).Text(), replication) << data;
    }
}

TEST_F(General, AnEmptyDataPathDisablesTheTabsThatNeedIt) {
    RememberServer(0);
    RememberServer(1);
    SqlServerInstalled("TRUE");
    Start();
    TypeInto(Edit("edtSQLDataPath", 1), "");
    EXPECT_EQ(Edit("edtSQLUNCReplDataPath", 1).Text(), "");
    EXPECT_TRUE(Tabs().TabEnabled(kScriptTab));
    EXPECT_FALSE(Tabs().TabEnabled(kReplicationTab));
    TypeInto(Edit("edtSQLDataPath", 0), "");
    EXPECT_FALSE(Tabs().TabEnabled(kScriptTab));
}

} // namespace
} // namespace kv
