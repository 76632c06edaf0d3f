// The sample scripts run without errors and install what they announce.
#include <map>
#include <sstream>

#include "devserver/tests/tsql/test_database.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::test {
namespace {

class Samples : public TsqlTest {
  protected:
    Samples() { client = server.Login("master"); }

    /// The texts of the errors that the script causes, one on each line.
    std::string Install(const std::string& file) {
        std::ifstream in(std::filesystem::path(KV_SAMPLES_FOLDER) / file, std::ios::binary);
        std::stringstream content;
        content << in.rdbuf();
        std::string sql = FromCodePage1252(content.str());
        EXPECT_FALSE(sql.empty()) << file;
        const std::map<std::string, std::string> tokens = {{"###SERVER###", "TESTSERVER"},
                                                           {"###server###", "testserver"},
                                                           {"###USERID###", "sa"},
                                                           {"###PASSWORD###", "secret"},
                                                           {"###DATAPATH###", "D:"},
                                                           {"###UNCREPLDATAPATH###", "\\\\a\\r"},
                                                           {"###DOMAIN###", "DOM"},
                                                           {"###SERVERA###", "TESTSERVER"},
                                                           {"###SERVERB###", "OTHER"},
                                                           {"###servera###", "testserver"},
                                                           {"###serverb###", "other"},
                                                           {"###USERIDA###", "sa"},
                                                           {"###USERIDB###", "sb"},
                                                           {"###PASSWORDA###", "pa"},
                                                           {"###PASSWORDB###", "pb"},
                                                           {"###DATAPATHA###", "D:\\"},
                                                           {"###DATAPATHB###", "D:\\"},
                                                           {"###UNCREPLDATAPATHA###", "\\\\a\\r"},
                                                           {"###UNCREPLDATAPATHB###", "\\\\b\\r"}};
        for (const auto& [token, value] : tokens) {
            for (std::size_t at = sql.find(token); at != std::string::npos;
                 at = sql.find(token, at + value.size())) {
                sql.replace(at, token.size(), value);
            }
        }
        std::erase(sql, '\r');
        client.Run(sql);
        std::string errors;
        for (const Message& message : client.messages) {
            if (message.severity > 10) {
                errors += std::to_string(message.number) + " " + message.text + "\n";
            }
        }
        return errors;
    }
    void InstallAll() {
        for (const char* file :
             {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql",
              "Create_Replication_Stored_Procedures.sql"}) {
            EXPECT_EQ(Install(file), "") << file;
        }
    }
};

TEST_F(Samples, RunWithoutErrorsAndInstallWhatTheyAnnounce) {
    InstallAll();
    EXPECT_EQ(Run("use Batch\nSELECT Value FROM LKConfig WHERE ParameterName like N'DatabaseVersion'"),
              "\nValue\n1\n");
    EXPECT_TRUE(std::filesystem::exists(server.folder.path() / "drive" / "Batch_data.mdf"));
    EXPECT_TRUE(std::filesystem::exists(server.folder.path() / "drive" / "Batch_log.ldf"));
    EXPECT_EQ(Run("select count(*) from sysobjects where name in ('spInstallReplication', "
                  "'spUninstallReplication', "
                  "'spUpgradeDatabase', 'spStdSynchronize') and xtype = 'P'"),
              "\n\n4\n");
}

TEST_F(Samples, MayRunASecondTime) {
    InstallAll();
    EXPECT_EQ(Install("Insert_Default_Data.sql"), "");
    EXPECT_EQ(Install("Create_Batch_Stored_Procedures.sql"), "");
    EXPECT_EQ(Install("Create_Replication_Stored_Procedures.sql"), "");
}

TEST_F(Samples, RefuseToOverwriteTheDatabase) {
    InstallAll();
    EXPECT_EQ(Install("Create_Batch_Database.sql"),
              "50000 Database \"Batch\" exists already on TESTSERVER. Nothing was changed.\n");
}

TEST_F(Samples, TheirProceduresProcessABatch) {
    InstallAll();
    client.Run("set noexec off\nGO\nuse Batch");
    const std::string text = client.Run(R"(
declare @r int, @v nvarchar(255)
exec @r = spGetConfig N'DatabaseVersion', @v output
print @v
exec @r = spSetConfig N'EventKeepDays', N'30'
exec @r = spGetConfig N'EventKeepDays', @v output
print @v
exec @r = spSetConfig N'DatabaseVersion', N'2')");
    EXPECT_EQ(text, "> 1\n> 30\nMsg 50000.16.1 spSetConfig L10: The parameter 'DatabaseVersion' belongs to "
                    "the installation and "
                    "can not be set.\nreturn 1\n");
}

} // namespace
} // namespace devsql::test
