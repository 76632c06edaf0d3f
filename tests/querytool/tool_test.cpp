// Tests whole runs of the query tool with a fake server.
#include "querytool/tool.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <random>

#include "platform/files.h"
#include "querytool/scripted_server.h"

namespace {

using namespace querytool;
using namespace querytool_tests;

const std::string kFirstBatch = "SET QUOTED_IDENTIFIER OFF";

/// The tool, its input and its output.
class Tool : public ::testing::Test {
  protected:
    Tool() { switches.no_prompts = true; }

    /// Runs the lines as the standard input.
    int Run(const std::string& input) {
        TextLines lines(input);
        return RunTool(switches, "secret", server, lines, output);
    }

    void ExpectBatches(std::vector<std::string> batches) const {
        batches.insert(batches.begin(), kFirstBatch);
        EXPECT_EQ(server.batches, batches);
    }

    void FailOn(const std::string& batch) {
        server.answers[batch] = [](ResultSink& sink) {
            sink.Message(Error(50000, "failed"));
            return true;
        };
    }

    Switches switches;
    ScriptedServer server;
    TextOutput output;
};

TEST_F(Tool, BatchesEndAtGoAndAtTheEndOfTheInput) {
    EXPECT_EQ(Run("a\nb\nGO\n\ngo 2\nc"), kSuccess);
    ExpectBatches({"a\nb\n", "\n", "\n", "c"});
}

TEST_F(Tool, AGoInATextOrACommentEndsNoBatch) {
    EXPECT_EQ(Run("print 'a\nGO\n'\n/*\nGO\nEXIT\n*/\nGO\n-- it's\nGO\n"), kSuccess);
    ExpectBatches({"print 'a\nGO\n'\n/*\nGO\nEXIT\n*/\n", "-- it's\n"});
}

TEST_F(Tool, AnOpenStringOfABatchDoesNotContinueInTheNext) {
    EXPECT_EQ(Run("print 1\nRESET\nprint 2\nGO\n"), kSuccess);
    ExpectBatches({"print 2\n"});
}

TEST_F(Tool, AnEmptyBatchIsNotSent) {
    EXPECT_EQ(Run("GO\nGO 3\n"), kSuccess);
    ExpectBatches({});
}

TEST_F(Tool, AGoWithoutALineEndEndsTheLastBatch) {
    Run("a\r\nGO");
    ExpectBatches({"a\r\n"});
}

TEST_F(Tool, PromptsNumberTheLinesOfABatch) {
    switches.no_prompts = false;
    server.answers["a\nb\n"] = [](ResultSink& sink) {
        sink.ResultEnd(1);
        return true;
    };
    Run("a\nb\nGO\n");
    EXPECT_EQ(output.written, "1> 2> 3> (1 row affected)\n1> ");
}

TEST_F(Tool, EchoPrintsTheLinesAfterTheirPrompts) {
    switches.no_prompts = false;
    switches.echo = true;
    Run("a\nGO\n");
    EXPECT_EQ(output.written, "1> a\n2> GO\n1> ");
}

TEST_F(Tool, ResetDropsTheBatch) {
    Run("a\nRESET\nb\nGO\n");
    ExpectBatches({"b\n"});
}

TEST_F(Tool, QuitAndExitEndWithoutRunningTheBatch) {
    EXPECT_EQ(Run("a\nGO\nb\nQUIT\nc\nGO\n"), kSuccess);
    ExpectBatches({"a\n"});
    server.batches.clear();
    EXPECT_EQ(Run("b\nexit\nGO\n"), kSuccess);
    ExpectBatches({});
}

TEST_F(Tool, ExitWithAQueryRunsTheBatchAndReturnsItsFirstValue) {
    server.answers["a\nSELECT 7"] = [](ResultSink& sink) {
        Column column;
        column.type = odbc::SqlType::Integer;
        column.display_size = 11;
        sink.ResultBegin({column});
        sink.Row({std::int64_t{7}});
        sink.ResultEnd(1);
        return true;
    };
    EXPECT_EQ(Run("a\nEXIT(SELECT 7)\nb\n"), 7);
    ExpectBatches({"a\nSELECT 7"});
}

TEST_F(Tool, ACommandThatIsNotSupportedIsNamedAndLeftOut) {
    EXPECT_EQ(Run("a\n:r other.sql\nGO\n"), kFailed);
    EXPECT_EQ(output.written, "The command ':r' is not supported.\n");
    ExpectBatches({"a\n"});
}

TEST_F(Tool, AnErrorDoesNotStopAScript) {
    FailOn("a\n");
    EXPECT_EQ(Run("a\nGO\nb\nGO\n"), kSuccess);
    ExpectBatches({"a\n", "b\n"});
}

TEST_F(Tool, AnErrorStopsTheScriptOnRequest) {
    switches.stop_on_error = true;
    FailOn("a\n");
    EXPECT_EQ(Run("a\nGO 2\nb\nGO\n"), kFailed);
    ExpectBatches({"a\n"});
}

TEST_F(Tool, AQueryRunsAloneOrBeforeTheInput) {
    switches.query = "first";
    switches.exit_after_query = true;
    EXPECT_EQ(Run("x\nGO\n"), kSuccess);
    ExpectBatches({"first"});
    server.batches.clear();
    switches.exit_after_query = false;
    Run("x\nGO\n");
    ExpectBatches({"first", "x\n"});
}

TEST_F(Tool, AMessageWithState127EndsTheScriptAtOnce) {
    switches.no_prompts = false;
    server.answers["a\n"] = [](ResultSink& sink) {
        sink.Message(Message(0, "before"));
        Diagnostic last = Error(50001, "no database");
        last.state = 127;
        EXPECT_FALSE(sink.Ended());
        sink.Message(last);
        EXPECT_TRUE(sink.Ended());
        sink.Message(Message(0, "after"));
        sink.ResultEnd(7);
        return true;
    };
    EXPECT_EQ(Run("a\nGO 2\nb\nGO\n"), 50001);
    ExpectBatches({"a\n"});
    EXPECT_EQ(output.written,
              "1> 2> before\nMsg 50001, Level 16, State 127, Server SRV, Line 3\nno database\n");
}

TEST_F(Tool, State127EndsTheScriptAlsoInAMessageThatIsNotShown) {
    switches.error_level = 17;
    server.answers["a\n"] = [](ResultSink& sink) {
        Diagnostic last = Message(50002, "enough");
        last.state = 127;
        sink.Message(last);
        return false; // the server may also close the connection; that must not be reported
    };
    EXPECT_EQ(Run("a\nGO\nb\nGO\n"), 50002);
    ExpectBatches({"a\n"});
    EXPECT_EQ(output.written, "");
}

TEST_F(Tool, AnotherStateEndsNothing) {
    server.answers["a\n"] = [](ResultSink& sink) {
        Diagnostic error = Error(50001, "no");
        error.state = 126;
        sink.Message(error);
        return true;
    };
    EXPECT_EQ(Run("a\nGO\nb\nGO\n"), kSuccess);
    ExpectBatches({"a\n", "b\n"});
}

TEST_F(Tool, QuotedIdentifiersKeepTheServersSetting) {
    switches.quoted_identifiers = true;
    Run("a\n");
    EXPECT_EQ(server.batches, std::vector<std::string>{"a\n"});
}

TEST_F(Tool, ALoginThatIsRefusedIsReportedAndNothingIsRun) {
    server.refusals = {Error(18456, "Login failed for user 'x'.")};
    EXPECT_EQ(Run("a\n"), kFailed);
    EXPECT_NE(output.written.find("Login failed for user 'x'.\n"), std::string::npos);
    EXPECT_TRUE(server.batches.empty());
}

TEST_F(Tool, AConnectionThatIsLostEndsTheScript) {
    server.answers["b\n"] = [](ResultSink& sink) {
        sink.Message(Error(20017, "Unexpected EOF"));
        return false;
    };
    EXPECT_EQ(Run("a\nGO\nb\nGO\nc\nGO\n"), kFailed);
    ExpectBatches({"a\n", "b\n"});
    EXPECT_NE(output.written.find("The connection to the server is lost.\n"), std::string::npos);
}

TEST_F(Tool, TheOutputOfABatchIsFlushedBeforeTheNextBatch) {
    int flushes = 0;
    server.answers["b\n"] = [&](ResultSink&) {
        flushes = output.flushes;
        return true;
    };
    Run("a\nGO\nb\nGO\n");
    EXPECT_EQ(flushes, 2); // for the batch that sets the options, and for "a"
}

TEST_F(Tool, TheLoginHasTheValuesOfTheSwitches) {
    switches.server = "host,1";
    switches.user = "u";
    switches.database = "Batch";
    switches.login_timeout = 3;
    switches.query_timeout = 4;
    Run("");
    EXPECT_EQ(server.login.server, "host,1");
    EXPECT_EQ(server.login.user, "u");
    EXPECT_EQ(server.login.password, "secret");
    EXPECT_EQ(server.login.database, "Batch");
    EXPECT_EQ(server.login.login_timeout, 3U);
    EXPECT_EQ(server.login.query_timeout, 4U);
}

/// A folder for the test.
class ToolFiles : public Tool {
  protected:
    ToolFiles()
        : folder_(std::filesystem::temp_directory_path() /
                  ("osql_test_" + std::to_string(std::random_device{}()))) {
        std::filesystem::create_directory(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }

    std::string Path(const char* name) const { return (folder_ / name).string(); }
    std::filesystem::path folder_;
};

TEST_F(ToolFiles, AScriptIsReadInEveryEncoding) {
    platform::WriteWholeFile(Path("a.sql"), "\xEF\xBB\xBFSELECT '\xE2\x82\xAC'\r\nGO\r\n");
    switches.input_file = Path("a.sql");
    EXPECT_EQ(Run("not this"), kSuccess);
    ExpectBatches({"SELECT '\x80'\r\n"});
}

TEST_F(ToolFiles, AScriptWithNulBytesAndWithoutALastLineEndIsSentWhole) {
    const std::string batch("SELECT '\0\xE4'\r\n", 13);
    platform::WriteWholeFile(Path("a.sql"), batch + "GO\r\nlast");
    switches.input_file = Path("a.sql");
    EXPECT_EQ(Run(""), kSuccess);
    ExpectBatches({"SELECT ' \xE4'\r\n", "last"});
}

TEST_F(ToolFiles, AnEmptyScriptRunsNothing) {
    platform::WriteWholeFile(Path("a.sql"), "");
    switches.input_file = Path("a.sql");
    EXPECT_EQ(Run(""), kSuccess);
    ExpectBatches({});
}

TEST_F(ToolFiles, AMissingScriptIsNamedAndTheToolDoesNotLogIn) {
    switches.input_file = Path("nosuch.sql");
    EXPECT_EQ(Run(""), kFailed);
    EXPECT_NE(output.written.find("nosuch.sql"), std::string::npos);
    EXPECT_TRUE(server.login.server.empty());
}

TEST_F(ToolFiles, AnOutputFileExistsFromTheStartAndItsLinesEndInCrLf) {
    platform::WriteWholeFile(Path("a.txt"), "old");
    FileOutput file(Path("a.txt"));
    EXPECT_EQ(platform::ReadWholeFile(Path("a.txt")), "");
    file.Write("one\ntwo \x80\n");
    file.Flush();
    EXPECT_EQ(platform::ReadWholeFile(Path("a.txt")), "one\r\ntwo \x80\r\n");
    file.Write("three");
    file.Flush();
    EXPECT_EQ(platform::ReadWholeFile(Path("a.txt")), "one\r\ntwo \x80\r\nthree");
}

TEST_F(ToolFiles, AnOutputFileThatCannotBeMadeIsAFailure) {
    EXPECT_THROW(FileOutput(Path("nosuch/a.txt")), platform::FileError);
}

} // namespace
