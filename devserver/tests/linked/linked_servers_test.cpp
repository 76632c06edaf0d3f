// Linked servers: two servers in this process. One reaches the other over TCP, by ODBC and the driver that is
// registered as "SQL Server".
#include <gtest/gtest.h>

#include <cstdlib>
#include <sstream>
#include <stdexcept>
#include <thread>

#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include "devserver/linked/odbc_remote.h"
#include "devserver/tds/server.h"
#include "devserver/tests/tsql/transcript.h"
#include "devserver/tsql/scalar/text.h"

namespace devsql::test {
namespace {

/// A server on a free port, with the login sa.
class WireServer {
  public:
    explicit WireServer(const std::string& name)
        : engine_(Open(folder_.path() / "root", name)),
          server_(*engine_, {}),
          thread_([this] { server_.Run(); }) {}
    ~WireServer() {
        server_.Stop();
        thread_.join();
    }
    WireServer(const WireServer&) = delete;
    WireServer& operator=(const WireServer&) = delete;

    std::string Folder() const { return folder_.path().string(); }
    std::string Address() const { return "127.0.0.1," + std::to_string(server_.port()); }
    Client Login(const std::string& database = "") {
        Transcript transcript;
        LoginRequest request;
        request.user = "sa";
        request.password = "secret";
        request.database = database;
        return Client(engine_->Login(request, transcript));
    }

  private:
    static std::unique_ptr<Engine> Open(const std::filesystem::path& root, const std::string& name) {
        EngineOptions options;
        options.root = root;
        options.logins = {{"sa", "secret"}};
        options.server_name = name;
        options.connect_remote = ConnectByOdbc;
        return OpenEngine(std::move(options));
    }

    TemporaryFolder folder_;
    std::unique_ptr<Engine> engine_;
    tds::Server server_;
    std::thread thread_;
};

class LinkedServers : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { setenv("ODBCSYSINI", KV_ODBC_CONFIG, 1); }

    LinkedServers() {
        other.Run(
            "create database Batch\nGO\nuse Batch\ncreate table Lots (id int primary key, name nvarchar(20), "
            "quantity decimal(10, 3))\ninsert Lots values (1, N'one', 1.5) insert Lots values (2, N'two', "
            "null)");
        near.Run("create database Batch\nGO\nuse Batch\ncreate table Lots (id int primary key, name "
                 "nvarchar(20))\n"
                 "insert Lots values (2, N'zwei') insert Lots values (3, N'drei')\n"
                 "exec sp_addlinkedserver @server = N'FAR', @srvproduct = N'', @provider = N'SQLOLEDB', "
                 "@datasrc = "
                 "N'" +
                 server_b.Address() +
                 "'\nexec sp_addlinkedsrvlogin N'FAR', N'false', NULL, N'sa', N'secret'\n"
                 "exec sp_serveroption N'FAR', N'rpc out', N'true'");
    }
    std::string Near(const std::string& sql) { return "\n" + near.Run(sql); }
    std::string RunAtOther(const std::string& sql) { return "\n" + other.Run(sql); }
    std::string KeyName() {
        other.Run("select name from sysobjects where xtype = 'PK' and parent_obj = object_id('Lots')");
        return std::get<std::string>(other.last_row.at(0));
    }

    WireServer server_a{"SERVERA"};
    WireServer server_b{"SERVERB"};
    Client near = server_a.Login();
    Client other = server_b.Login();
};

TEST_F(LinkedServers, RowsAreReadAndJoinedWithThoseHere) {
    EXPECT_EQ(Near("select r.id, r.name, r.quantity, l.name from FAR.Batch.dbo.Lots r left join Lots l on "
                   "l.id = r.id "
                   "order by r.id"),
              R"(
id|name|quantity|name
1|one|1.500|NULL
2|two|NULL|zwei
(2)
)");
}

TEST_F(LinkedServers, ANameInBracketsMayHoldACommaAndABackslash) {
    near.Run("exec sp_addlinkedserver N'" + server_b.Address() + "', N'SQL Server'\n" +
             "exec sp_addlinkedserver N'HOST\\BATCH', N'', N'SQLNCLI', N'" + server_b.Address() + "'");
    EXPECT_EQ(Near("select count(*) from [" + server_b.Address() +
                   "].[Batch].dbo.Lots\n"
                   "declare @s nvarchar(200), @server sysname set @server = N'HOST\\BATCH'\n"
                   "set @s = N'select count(*) from ' + quotename(@server) + N'.Batch..Lots' exec (@s)"),
              "\n\n2\n(1)\n\n2\n(1)\n");
}

TEST_F(LinkedServers, EveryTypeComesAndGoesUnharmed) {
    other.Run(R"(
create table Types (id int identity primary key, b bit, ti tinyint, si smallint, bi bigint, d decimal(10,3),
    d38 decimal(38,10), m money, sm smallmoney, r real, f float, dt datetime, sdt smalldatetime, c char(5),
    vc varchar(20), nc nchar(5), nvc nvarchar(20), t text, nt ntext, vm varchar(max), nvm nvarchar(max),
    bin binary(4), vb varbinary(10), im image, g uniqueidentifier, ts timestamp)
insert Types (b, ti, si, bi, d, d38, m, sm, r, f, dt, sdt, c, vc, nc, nvc, t, nt, vm, nvm, bin, vb, im, g) values
    (1, 255, -32768, 9223372036854775807, -123.456, 1234567890123456789012345678.0123456789, 922337203685477.5807,
    -214748.3648, 1.1, 0.1, '20010203 04:05:06.997', '20020304 05:06', 'ab', 'it''s \' + char(13) + char(10) + 'x', 'x',
    nchar(8364) + nchar(1071) + N'z', 'text', N'nt' + nchar(1071), 'vm', N'', 0x0102, 0x, 0xFFFE,
    '6F9619FF-8B86-D011-B42D-00C04FC964FF')
insert Types (vc) values ('')
)");
    const std::string columns =
        "b, ti, si, bi, d, d38, m, sm, r, f, dt, sdt, c, vc, nc, nvc, t, nt, vm, nvm, bin, "
        "vb, im, g";
    EXPECT_EQ(Near("select * into Copy from FAR.Batch.dbo.Types"), "\n(2)\n");
    EXPECT_EQ(Near("select " + columns + " from Copy"), RunAtOther("select " + columns + " from Types"));
    EXPECT_EQ(Near("select name, xtype, length, prec, scale from syscolumns where id = object_id('Copy') and "
                   "name <> "
                   "'ts'"),
              RunAtOther(
                  "select name, xtype, length, prec, scale from syscolumns where id = object_id('Types') and "
                  "name <> "
                  "'ts'"));
    EXPECT_EQ(Near("insert FAR.Batch.dbo.Types (" + columns + ") select " + columns + " from Copy"),
              "\n(2)\n");
    EXPECT_EQ(RunAtOther("select " + columns + " from Types where id > 2"),
              Near("select " + columns + " from Copy"));
}

TEST_F(LinkedServers, RowsAreInsertedChangedAndDeleted) {
    EXPECT_EQ(Near("insert into FAR.Batch.dbo.Lots select id + 10, name, 7 from Lots\n"
                   "insert FAR.Batch.dbo.Lots (id, name) values (20, N'new')\n"
                   "update FAR.Batch.dbo.Lots set quantity = quantity * 2 where id > 10\n"
                   "update r set name = l.name from FAR.Batch.dbo.Lots r inner join Lots l on l.id = r.id\n"
                   "delete r from FAR.Batch.dbo.Lots r where not exists (select * from Lots l where l.id + "
                   "10 = r.id) "
                   "and r.id > 2"),
              "\n(2)\n(1)\n(3)\n(1)\n(1)\n");
    EXPECT_EQ(RunAtOther("select * from Lots"), R"(
id|name|quantity
1|one|1.500
2|zwei|NULL
12|zwei|14.000
13|drei|14.000
(4)
)");
}

TEST_F(LinkedServers, AStatementIsDoneWholeOrNotAtAllAndTheOtherServersErrorComesBack) {
    EXPECT_EQ(Near("insert FAR.Batch.dbo.Lots select id - 1, name, null from Lots"),
              "\nMsg 2627.14.1 L1: Violation of PRIMARY KEY constraint '" + KeyName() +
                  "'. Cannot insert duplicate key in object 'dbo.Lots'. The duplicate key value is (1).\n"
                  "> The statement has been terminated.\n");
    EXPECT_EQ(RunAtOther("select count(*) from Lots"), "\n\n2\n(1)\n");
}

TEST_F(LinkedServers, TheOtherServerTakesPartInTheTransaction) {
    const std::string change =
        "begin transaction insert FAR.Batch.dbo.Lots (id) values (9) insert Lots (id) values (9)";
    near.Run(change + " rollback");
    EXPECT_EQ(RunAtOther("select count(*) from Lots"), "\n\n2\n(1)\n");
    near.Run(change);
    EXPECT_EQ(Near("save transaction s"),
              "\nMsg 627.16.1 L1: Cannot use SAVE TRANSACTION within a distributed transaction.\n");
    near.Run("commit");
    EXPECT_EQ(RunAtOther("select count(*) from Lots"), "\n\n3\n(1)\n");
    EXPECT_EQ(Near("select count(*) from Lots"), "\n\n3\n(1)\n");
}

TEST_F(LinkedServers, ProceduresAreCalledWithTheirParametersBothWays) {
    other.Run("create procedure p @a int, @b nvarchar(20) = N'default', @o nvarchar(30) = null output as\n"
              "select @a as a, @b as b print 'hello' set @o = @b + nchar(1071) return @a");
    EXPECT_EQ(Near("declare @r int, @o nvarchar(30), @p nvarchar(100) set @p = N'FAR.Batch.dbo.p'\n"
                   "exec @r = @p 7, @o = @o output select @r, @o"),
              "\na|b\n7|default\n(1)\n> hello\nreturn 7\n|\n7|default\u042f\n(1)\n");
    EXPECT_EQ(Near("create table #t (a int, b nvarchar(20)) insert #t exec FAR.Batch.dbo.p 3, N'x' select * "
                   "from #t"),
              "\n> hello\n(1)\na|b\n3|x\n(1)\n");
    EXPECT_EQ(Near("declare @r int set @r = -1 exec @r = FAR.Batch.dbo.nosuch select @r, @@error"),
              "\nMsg 2812.16.1 L1: Could not find stored procedure 'Batch.dbo.nosuch'.\n|\n-1|2812\n(1)\n");
    near.Run("exec sp_serveroption 'FAR', 'rpc out', 'false'\nexec FAR.Batch.dbo.p 1");
    EXPECT_EQ(near.messages.at(0).number, 7411);
}

TEST_F(LinkedServers, WhatIsNotThereIsToldByItsNumber) {
    const auto number = [&](const std::string& sql) {
        near.Run(sql);
        return near.messages.empty() ? 0 : near.messages.back().number;
    };
    EXPECT_EQ(number("select * from NOWHERE.Batch.dbo.Lots"), 7202);
    EXPECT_EQ(number("select * from FAR.Batch.dbo.Nosuch"), 7314);
    EXPECT_EQ(number("select * from FAR.Nosuch.dbo.Lots"), 7314);
    EXPECT_EQ(number("create table FAR.Batch.dbo.New (id int)"), 117);
    EXPECT_EQ(number("exec sp_addlinkedsrvlogin N'FAR', N'false', NULL, N'sa', N'wrong' select * from "
                     "FAR.Batch.dbo.Lots"),
              18456);
    EXPECT_EQ(number("exec sp_droplinkedsrvlogin N'FAR', NULL select * from FAR.Batch.dbo.Lots"), 7416);
    // Nothing listens at port 1, so the connection is refused at once.
    EXPECT_EQ(number("exec sp_addlinkedserver N'DEAD', N'', N'SQLOLEDB', N'127.0.0.1,1' select * from "
                     "DEAD.Batch.dbo.Lots"),
              7303);
    EXPECT_EQ(near.messages.at(0).number, 7412);
    EXPECT_EQ(number("exec sp_addlinkedserver N'FAR'"), 15028);
    EXPECT_EQ(number("exec sp_dropserver N'NOWHERE'"), 15015);
    EXPECT_EQ(number("exec sp_addlinkedserver N'X', N'Oracle', N'MSDAORA'"), 7403);
    EXPECT_EQ(number("exec sp_addlinkedserver N'X', N'SQL Server', N'SQLOLEDB'"), 15428);
    EXPECT_EQ(number("exec sp_addlinkedserver N'X', N'Other'"), 15427);
}

/// A server that closes each connection after the first byte.
class CuttingServer {
  public:
    CuttingServer() : listener_(socket(AF_INET, SOCK_STREAM, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t size = sizeof address;
        auto* const any = reinterpret_cast<sockaddr*>(&address);
        if (bind(listener_, any, size) != 0 || listen(listener_, 4) != 0 ||
            getsockname(listener_, any, &size) != 0) {
            throw std::runtime_error("no port to listen on");
        }
        port_ = ntohs(address.sin_port);
        thread_ = std::thread([this] {
            for (int peer = accept(listener_, nullptr, nullptr); peer >= 0;
                 peer = accept(listener_, nullptr, nullptr)) {
                char byte = 0;
                static_cast<void>(recv(peer, &byte, 1, 0));
                close(peer);
            }
        });
    }
    ~CuttingServer() {
        shutdown(listener_, SHUT_RDWR); // accept fails, and the thread ends.
        thread_.join();
        close(listener_);
    }
    CuttingServer(const CuttingServer&) = delete;
    CuttingServer& operator=(const CuttingServer&) = delete;
    std::string Address() const { return "127.0.0.1," + std::to_string(port_); }

  private:
    int listener_;
    int port_ = 0;
    std::thread thread_;
};

TEST_F(LinkedServers, AServerThatCutsTheLoginIsNotTakenForAMissingDriver) {
    const CuttingServer cutting;
    near.Run("exec sp_addlinkedserver N'CUT', N'', N'SQLOLEDB', N'" + cutting.Address() +
             "' select * from CUT.Batch.dbo.Lots");
    ASSERT_EQ(near.messages.size(), 2U);
    EXPECT_EQ(near.messages[0].number, 7412);
    EXPECT_EQ(near.messages[1].number, 7303);
}

TEST_F(LinkedServers, AServerWithLoginsGoesWithThemOrNotAtAll) {
    near.Run("exec sp_dropserver N'FAR'");
    EXPECT_EQ(near.messages.at(0).number, 15190);
    EXPECT_EQ(Near("exec sp_dropserver N'FAR', 'droplogins' select srvname from master.dbo.sysservers"),
              "\nsrvname\nSERVERA\n(1)\n");
}

TEST_F(LinkedServers, ALinkToTheServerItselfReadsAndWritesButTakesPartInNoTransaction) {
    near.Run("exec sp_addlinkedserver N'LOOP', N'', N'SQLOLEDB', N'" + server_a.Address() + "'");
    EXPECT_EQ(Near("insert LOOP.Batch.dbo.Lots select id + 100, name from Lots\n"
                   "insert Lots select id + 1000, name from LOOP.Batch.dbo.Lots where id > 100\n"
                   "select count(*) from SERVERA.Batch.dbo.Lots"),
              "\n(2)\n(2)\n\n6\n(1)\n");
    near.Run("begin transaction insert Lots (id) values (50) insert LOOP.Batch.dbo.Lots (id) values (51)");
    EXPECT_EQ(near.messages.at(0).number, 3910);
    near.Run("rollback");
}

TEST_F(LinkedServers, ACancelledStatementEndsAtTheOtherServerToo) {
    other.Run("create procedure slow as insert Lots (id) values (99) waitfor delay '00:10:00'");
    std::thread cancel([this] {
        // When the row is there, the procedure is running.
        for (int i = 0; i < 3000 && other.Run("select id from Lots where id = 99") != "id\n99\n(1)\n"; ++i) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        near.session().Cancel();
    });
    const auto begun = std::chrono::steady_clock::now();
    near.Run("exec FAR.Batch.dbo.slow");
    cancel.join();
    EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::minutes(5));
    EXPECT_EQ(Near("select count(*) from FAR.Batch.dbo.Lots"), "\n\n3\n(1)\n");
}

// ------------------------------------------------------------------ the delivered templates

void Replace(std::string& text, const std::string& what, const std::string& by) {
    for (std::size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + by.size())) {
        text.replace(at, what.size(), by);
    }
}

/// Two servers with the batch database of the delivered templates.
class BatchPair : public ::testing::Test {
  protected:
    static void SetUpTestSuite() { setenv("ODBCSYSINI", KV_ODBC_CONFIG, 1); }

    void Install(WireServer& server, Client& client, const std::string& file) {
        std::ifstream in(std::filesystem::path(KV_SAMPLES_FOLDER) / file, std::ios::binary);
        std::stringstream content;
        content << in.rdbuf();
        std::string sql = FromCodePage1252(content.str());
        ASSERT_FALSE(sql.empty()) << file;
        const std::pair<const char*, std::string> tokens[] = {{"###SERVER###", server.Address()},
                                                              {"###server###", server.Address()},
                                                              {"###SERVERA###", server_a.Address()},
                                                              {"###SERVERB###", server_b.Address()},
                                                              {"###servera###", server_a.Address()},
                                                              {"###serverb###", server_b.Address()},
                                                              {"###USERID###", "sa"},
                                                              {"###PASSWORD###", "secret"},
                                                              {"###USERIDA###", "sa"},
                                                              {"###PASSWORDA###", "secret"},
                                                              {"###USERIDB###", "sa"},
                                                              {"###PASSWORDB###", "secret"},
                                                              {"###DATAPATH###", server.Folder()},
                                                              {"###DATAPATHA###", server.Folder() + "/"},
                                                              {"###DATAPATHB###", server.Folder() + "/"},
                                                              {"###DOMAIN###", "DOMAIN"},
                                                              {"###UNCREPLDATAPATH###", "\\\\a\\r"},
                                                              {"###UNCREPLDATAPATHA###", "\\\\a\\r"},
                                                              {"###UNCREPLDATAPATHB###", "\\\\b\\r"}};
        for (const auto& [token, value] : tokens) {
            Replace(sql, token, value);
        }
        std::erase(sql, '\r');
        client.Run(sql);
        for (const Message& message : client.messages) {
            EXPECT_LE(message.severity, 10) << file << ": " << message.number << " " << message.text;
        }
    }
    void InstallAll(WireServer& server, Client& client) {
        for (const char* file :
             {"Create_Batch_Database.sql", "Insert_Default_Data.sql", "Create_Batch_Stored_Procedures.sql",
              "Create_Replication_Stored_Procedures.sql"}) {
            Install(server, client, file);
        }
        client.Run("use Batch");
    }

    WireServer server_a{"SERVERA"};
    WireServer server_b{"SERVERB"};
    Client a = server_a.Login();
    Client b = server_b.Login();
};

TEST_F(BatchPair, TheDeliveredSynchronisationMakesTheOtherServersTablesEqual) {
    InstallAll(server_a, a);
    InstallAll(server_b, b);
    a.Run("exec spStartBatch N'Batch of A', 1, 1 exec spAddEvent 1, 'TEST', N'only here'");
    b.Run("exec spStartBatch N'Batch of B', 1, 2");
    EXPECT_EQ(a.Run("declare @r int exec @r = spStdSynchronize N'sa', N'secret', N'" + server_b.Address() +
                    "', N'" + server_a.Address() +
                    "', N'Batch', N'Batch', N'sa', N'sa', N'secret', N'secret' print @r"),
              "> 0\n");
    for (const std::string query :
         {"select * from LKUser", "select * from Units", "select * from Recipes", "select * from Materials",
          "select BatchId, BatchName, UnitId, PlannedQuantity, StartTime, BatchGuid from Batches"}) {
        EXPECT_EQ(a.Run(query), b.Run(query)) << query; // but for row versions, which are each server's own
    }
    EXPECT_EQ(b.Run("select BatchName from Batches"), "BatchName\nBatch of A\n");
    EXPECT_EQ(a.Run("select srvname from master..sysservers"), "srvname\nSERVERA\n");
}

TEST_F(BatchPair, TheDeliveredReplicationIsInstalledAndRemoved) {
    InstallAll(server_a, a);
    const std::string question =
        "select [job_id] from msdb.dbo.sysjobs where category_id = (select category_id From "
        "msdb.dbo.syscategories Where (category_class = 1) AND ([name] = 'REPL-Distribution'))";
    a.Run("exec spInstallReplication");
    EXPECT_EQ(a.messages.back().severity, 0) << a.messages.back().text;
    a.Run(question);
    EXPECT_EQ(a.last_row.size(), 1U);
    a.Run("exec spUninstallReplication");
    EXPECT_EQ(a.Run(question), "job_id\n");
    a.Run("exec spInstallReplication"); // The distributor is still there.
    a.Run(question);
    EXPECT_EQ(a.last_row.size(), 1U);
}

} // namespace
} // namespace devsql::test
