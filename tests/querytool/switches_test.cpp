// Tests the reading of the query tool's command line.
#include "querytool/switches.h"

#include <gtest/gtest.h>

namespace {

using namespace querytool;

Switches Parse(const std::vector<std::string>& arguments) {
    const ParsedLine line = ParseSwitches(arguments);
    EXPECT_FALSE(line.error.has_value()) << *line.error;
    return line.switches;
}

std::string ErrorOf(const std::vector<std::string>& arguments) {
    return ParseSwitches(arguments).error.value_or("");
}

TEST(Switches, ValuesFollowTheirSwitchOrAreAttached) {
    const Switches apart = Parse({"-S", "host,1433", "-U", "sa", "-P", "secret", "-d", "Batch", "-w", "200"});
    const Switches attached = Parse({"-Shost,1433", "-Usa", "-Psecret", "-dBatch", "-w200"});
    for (const Switches& switches : {apart, attached}) {
        EXPECT_EQ(switches.server, "host,1433");
        EXPECT_EQ(switches.user, "sa");
        EXPECT_EQ(switches.password, "secret");
        EXPECT_EQ(switches.database, "Batch");
        EXPECT_EQ(switches.width, 200);
    }
}

TEST(Switches, APasswordSwitchBeforeAnotherSwitchMeansTheEmptyPassword) {
    // This is how the database manager calls the tool: -S host,port -U user -P  -i "script" -o "output"
    const Switches switches =
        Parse({"-S", "h,1", "-U", "u", "-P", "-i", "D:\\Data\\a.sql", "-o", "D:\\Data\\a.txt"});
    EXPECT_EQ(switches.password, "");
    EXPECT_EQ(switches.input_file, "D:\\Data\\a.sql");
    EXPECT_EQ(switches.output_file, "D:\\Data\\a.txt");
}

TEST(Switches, APasswordSwitchAtTheEndMeansTheEmptyPassword) {
    EXPECT_EQ(Parse({"-U", "u", "-P"}).password, "");
}

TEST(Switches, AnEmptyArgumentIsTheEmptyPassword) {
    const Switches switches = Parse({"-P", "", "-n"});
    EXPECT_EQ(switches.password, "");
    EXPECT_TRUE(switches.no_prompts);
}

TEST(Switches, APasswordThatBeginsWithADashIsAcceptedIfAttached) {
    EXPECT_EQ(Parse({"-P-secret"}).password, "-secret");
}

TEST(Switches, WithoutAPasswordSwitchThereIsNoPassword) {
    EXPECT_FALSE(Parse({"-U", "u"}).password.has_value());
}

TEST(Switches, AQueryMayBeginWithADash) {
    const Switches switches = Parse({"-Q", "-- nothing"});
    EXPECT_EQ(switches.query, "-- nothing");
    EXPECT_TRUE(switches.exit_after_query);
    EXPECT_FALSE(Parse({"-q", "x"}).exit_after_query);
}

TEST(Switches, MinusOneIsANumberSeparateAndAttached) {
    EXPECT_EQ(Parse({"-h", "-1", "-m", "-1"}).header_rows, -1);
    EXPECT_EQ(Parse({"-h-1", "-m-1"}).error_level, -1);
}

TEST(Switches, TheDefaultsAreTheToolsOwn) {
    const Switches switches = Parse({});
    EXPECT_EQ(switches.width, 80);
    EXPECT_EQ(switches.separator, " ");
    EXPECT_EQ(switches.terminator, "GO");
    EXPECT_EQ(switches.login_timeout, 8U);
    EXPECT_EQ(switches.query_timeout, 0U);
    EXPECT_FALSE(switches.error_level.has_value());
}

TEST(Switches, EverySwitchWithoutAValueIsAccepted) {
    const Switches switches = Parse({"-n", "-e", "-b", "-I", "-r1", "-?"});
    EXPECT_TRUE(switches.no_prompts && switches.echo && switches.stop_on_error &&
                switches.quoted_identifiers && switches.errors_to_stderr && switches.messages_to_stderr &&
                switches.help);
}

TEST(Switches, TheErrorChannelsValueCanBeWrittenAsInTheHelp) {
    EXPECT_NE(HelpText().find("-r 0|1"), std::string::npos);
    for (const auto& [arguments, messages] : std::vector<std::pair<std::vector<std::string>, bool>>{
             {{"-r", "0"}, false}, {{"-r", "1"}, true}, {{"-r0"}, false}, {{"-r1"}, true}, {{"-r"}, false}}) {
        const Switches switches = Parse(arguments);
        EXPECT_TRUE(switches.errors_to_stderr) << arguments.back();
        EXPECT_EQ(switches.messages_to_stderr, messages) << arguments.back();
    }
    EXPECT_TRUE(Parse({"-r", "-n"}).no_prompts);
}

struct BadLine {
    std::vector<std::string> arguments;
    std::string named; ///< the message must contain it
};

class BadSwitches : public ::testing::TestWithParam<BadLine> {};

TEST_P(BadSwitches, AreRefusedByName) {
    const std::string error = ErrorOf(GetParam().arguments);
    EXPECT_NE(error.find(GetParam().named), std::string::npos) << error;
}

INSTANTIATE_TEST_SUITE_P(
    Lines, BadSwitches,
    ::testing::Values(BadLine{{"-Z"}, "-Z"}, BadLine{{"-nx"}, "-nx"}, BadLine{{"word"}, "'word'"},
                      BadLine{{"-"}, "'-'"}, BadLine{{"-E"}, "-E is refused: trusted"},
                      BadLine{{"-L"}, "-L is refused"}, BadLine{{"-D", "dsn"}, "-D is refused"},
                      BadLine{{"-S"}, "-S needs a value"}, BadLine{{"-S", "-U"}, "-S needs a value"},
                      BadLine{{"-i"}, "-i needs a value"}, BadLine{{"-w", "wide"}, "'wide'"},
                      BadLine{{"-w8"}, "'8'"}, BadLine{{"-t", "-1"}, "'-1'"}, BadLine{{"-s", "ab"}, "'ab'"},
                      BadLine{{"-c", ""}, "-c"}, BadLine{{"-r2"}, "'2'"}, BadLine{{"-r", "2"}, "'2'"},
                      BadLine{{"-i", "a", "-Q", "b"}, "-i can't be used with"}));

TEST(Switches, ABadLineStillSetsTheOutputFile) {
    const ParsedLine line = ParseSwitches({"-S", "h", "two words", "-Z", "-o", "out.txt"});
    EXPECT_EQ(line.error, "'two words' is not a switch. -? lists them.");
    EXPECT_EQ(line.switches.output_file, "out.txt");
}

TEST(Switches, TheHelpNamesTheVersionAndEverySwitch) {
    const std::string help = HelpText();
    EXPECT_NE(help.find("version " KV_VERSION), std::string::npos);
    for (const char* name : {"-S ", "-U ", "-P ", "-d ", "-i ", "-o ", "-q ", "-Q ", "-n ", "-w ", "-h ",
                             "-s ", "-m ", "-t ", "-l ", "-e ", "-b ", "-r ", "-a ", "-c ", "-I ", "-? "}) {
        EXPECT_NE(help.find(name), std::string::npos) << name;
    }
    EXPECT_EQ(help.find("-E "), std::string::npos);
}

} // namespace
