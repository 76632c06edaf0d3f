// How one argument and its value are found in the raw command line.
#include "main/command_argument.h"

#include <gtest/gtest.h>

namespace kv {
namespace {

CommandArgument Parsed(const std::string& line, ArgumentIndex index) {
    CommandArguments arguments = KnownArguments();
    ParseCommandArgument(line, index, arguments);
    return arguments[index];
}

void ExpectNotFound(const std::string& line, ArgumentIndex index) {
    const CommandArgument row = Parsed(line, index);
    EXPECT_FALSE(row.Found) << line;
    EXPECT_EQ(row.Value, "") << line;
}

void ExpectValue(const std::string& line, ArgumentIndex index, const std::string& value) {
    const CommandArgument row = Parsed(line, index);
    EXPECT_TRUE(row.Found) << line;
    EXPECT_EQ(row.Value, value) << line;
}

TEST(CommandArgument, TheTableHasTenRowsInOrder) {
    const CommandArguments arguments = KnownArguments();
    const char* const names[] = {"help",        "scriptfolder", "server",    "user",       "password",
                                 "sqldatapath", "installdb",    "installsp", "installdts", "upgradedb"};
    ASSERT_EQ(arguments.size(), std::size(names));
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        EXPECT_EQ(arguments[i].Name, names[i]);
        EXPECT_EQ(arguments[i].HasValue, i >= kScriptFolder && i <= kSqlDataPath) << names[i];
        EXPECT_FALSE(arguments[i].Found);
        EXPECT_EQ(arguments[i].Value, "");
    }
}

TEST(CommandArgument, AnyLetterCaseAndBothPrefixesAreAccepted) {
    for (const char* line : {"/help", "/HELP", "-help", "-Help", "  /help", "x -hElP y"}) {
        EXPECT_TRUE(Parsed(line, kHelp).Found) << line;
    }
}

TEST(CommandArgument, ABlankOrTheLinesStartMustPrecedeIt) {
    ExpectNotFound("x/help", kHelp);
    ExpectNotFound("\t/help", kHelp);
    ExpectNotFound("\"/help\"", kHelp);
}

TEST(CommandArgument, ABlankOrTheLinesEndMustFollowIt) {
    ExpectNotFound("/helpme", kHelp);
    ExpectNotFound("/servers S", kServer);
    ExpectNotFound("/server:x", kServer);
    ExpectNotFound("/server\tx", kServer);
    ExpectValue("/server", kServer, "");
}

TEST(CommandArgument, OnlyTheFirstOccurrenceIsTried) {
    ExpectNotFound("x/help /help", kHelp);
    ExpectNotFound("/servers a /server b", kServer);
}

TEST(CommandArgument, AHyphenIsLookedForOnlyIfTheSlashFormDoesNotOccur) {
    ExpectNotFound("x/help -help", kHelp);
    ExpectValue("-server a /server b", kServer, "b");
}

TEST(CommandArgument, AValueInQuotesKeepsItsInnerBlanks) {
    ExpectValue(R"(/scriptfolder "c:\program files\x")", kScriptFolder, R"(c:\program files\x)");
    ExpectValue(R"(/scriptfolder "  c:\program files\x  " /user U)", kScriptFolder, R"(c:\program files\x)");
}

TEST(CommandArgument, AValueWithoutQuotesEndsAtTheFirstBlank) {
    ExpectValue(R"(/scriptfolder c:\program files\x)", kScriptFolder, R"(c:\program)");
}

TEST(CommandArgument, AnEmptyPairOfQuotesIsAnEmptyValue) {
    ExpectValue(R"(/password "" /user U)", kPassword, "");
    ExpectValue(R"(/password "")", kPassword, "");
    ExpectValue(R"(/password ")", kPassword, "");
}

TEST(CommandArgument, AnOpeningQuoteWithoutAClosingOneRunsToTheEndOfTheLine) {
    ExpectValue(R"(/password "a b /user U)", kPassword, "a b /user U");
}

TEST(CommandArgument, TheNextArgumentIsNotAValue) {
    ExpectValue("/password /installdb", kPassword, "");
    ExpectValue("/server -user x", kServer, "-user");
}

TEST(CommandArgument, AnArgumentWithoutAValueHasAnEmptyValue) {
    ExpectValue("/installdb x /help", kInstallDb, "");
}

TEST(CommandArgument, SeveralBlanksBeforeAValue) {
    // The value begins after one blank. A second blank becomes part of it and is trimmed; a third one ends
    // it.
    ExpectValue("/server  S /user U", kServer, "S");
    ExpectValue("/server   S /user U", kServer, "");
}

TEST(CommandArgument, AQuoteAfterAnUnquotedValueIsDropped) {
    ExpectValue(R"(/server S" x)", kServer, "S");
}

TEST(CommandArgument, ANameMayOccurInsideAValue) {
    ExpectValue(R"(/scriptfolder c:\-user /user U)", kUser, "U");
    ExpectNotFound(R"(/scriptfolder c:\/user x)", kUser);
    // No other occurrence is tried.
    ExpectNotFound(R"(/scriptfolder c:\/user x /user U)", kUser);
}

TEST(CommandArgument, TheSearchForTheValueDoesNotCheckWhatPrecedesTheName) {
    ExpectValue("-server a x-server b", kServer, "a");
    // "/user" is found at the line's end. The value is searched for with a blank after the name: there is no
    // "/user ", but a "-user " inside another value.
    ExpectValue("c:\\-user U /user", kUser, "U");
}

TEST(CommandArgument, OnlyTheRowAskedForChanges) {
    CommandArguments arguments = KnownArguments();
    ParseCommandArgument("/server S /user U", kServer, arguments);
    EXPECT_TRUE(arguments[kServer].Found);
    EXPECT_FALSE(arguments[kUser].Found);
    EXPECT_EQ(arguments[kUser].Value, "");
    // A second look-up replaces the result of the first.
    ParseCommandArgument("", kServer, arguments);
    EXPECT_FALSE(arguments[kServer].Found);
    EXPECT_EQ(arguments[kServer].Value, "");
}

TEST(CommandArgument, ValuesMayContainBytesAboveAscii) {
    ExpectValue("/user M\xFCller /password \"\xDF \x80\"", kUser, "M\xFCller");
    ExpectValue("/user M\xFCller /password \"\xDF \x80\"", kPassword, "\xDF \x80");
}

} // namespace
} // namespace kv
