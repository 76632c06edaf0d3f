// Tests the reading of scripts: lines, batches and the encodings of input files.
#include "querytool/script_reader.h"

#include <gtest/gtest.h>

#include <sstream>

namespace {

using namespace querytool;

std::vector<std::string> LinesOf(LineSource& source) {
    std::vector<std::string> lines;
    while (const auto line = source.Next()) {
        lines.emplace_back(*line);
    }
    return lines;
}

std::vector<std::string> LinesOf(std::string text) {
    TextLines source(std::move(text));
    return LinesOf(source);
}

using Lines = std::vector<std::string>;

TEST(TextLines, EveryLineEndEndsALine) {
    EXPECT_EQ(LinesOf("a\r\nb\nc\rd"), (Lines{"a\r\n", "b\n", "c\r\n", "d"}));
    EXPECT_EQ(LinesOf("\r\r\n\n"), (Lines{"\r\n", "\r\n", "\n"}));
}

TEST(TextLines, TheLastLineNeedsNoEnd) {
    EXPECT_EQ(LinesOf("a\nGO"), (Lines{"a\n", "GO"}));
    EXPECT_EQ(LinesOf("a\r"), (Lines{"a\r\n"}));
}

TEST(TextLines, AnEmptyTextHasNoLine) {
    EXPECT_TRUE(LinesOf("").empty());
}

TEST(TextLines, ANulByteIsABlankSinceItWouldEndTheBatch) {
    EXPECT_EQ(LinesOf(std::string("a\0b\nc", 5)), (Lines{"a b\n", "c"}));
}

TEST(StreamLines, GiveTheSameLines) {
    std::istringstream stream("a\nb");
    StreamLines source(stream);
    EXPECT_EQ(LinesOf(source), (Lines{"a\n", "b\n"}));
}

struct MeaningCase {
    const char* line;
    LineKind kind;
    unsigned count = 1;
    const char* text = "";
};

class MeaningTest : public ::testing::TestWithParam<MeaningCase> {};

TEST_P(MeaningTest, IsFound) {
    const LineMeaning meaning = ClassifyLine(GetParam().line, "GO");
    EXPECT_EQ(meaning.kind, GetParam().kind);
    EXPECT_EQ(meaning.count, GetParam().count);
    if (*GetParam().text != '\0') {
        EXPECT_EQ(meaning.text, GetParam().text);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Lines, MeaningTest,
    ::testing::Values(MeaningCase{"GO", LineKind::Run}, MeaningCase{"go\r\n", LineKind::Run},
                      MeaningCase{" \tGo \t\n", LineKind::Run}, MeaningCase{"GO 5\n", LineKind::Run, 5},
                      MeaningCase{"GO\t12 \n", LineKind::Run, 12}, MeaningCase{"GO 0\n", LineKind::Run, 0},
                      MeaningCase{"GOTO done\n", LineKind::Text}, MeaningCase{"GO5\n", LineKind::Text},
                      MeaningCase{"GO -1\n", LineKind::Text}, MeaningCase{"GO five\n", LineKind::Text},
                      MeaningCase{"-- GO\n", LineKind::Text}, MeaningCase{"SELECT 1 GO\n", LineKind::Text},
                      MeaningCase{"\n", LineKind::Text}, MeaningCase{"", LineKind::Text},
                      MeaningCase{"reset\n", LineKind::Reset}, MeaningCase{"QUIT\n", LineKind::Quit},
                      MeaningCase{"exit\n", LineKind::Quit}, MeaningCase{"exits\n", LineKind::Text},
                      MeaningCase{"EXIT()\n", LineKind::ExitRun},
                      MeaningCase{"exit ( SELECT 3 ) \n", LineKind::ExitRun, 1, "SELECT 3"},
                      MeaningCase{"EXIT(SELECT 1\n", LineKind::Text},
                      MeaningCase{"ed\n", LineKind::Refused, 1, "ED"},
                      MeaningCase{":r other.sql\n", LineKind::Refused, 1, ":r"},
                      MeaningCase{"!!dir\n", LineKind::Refused, 1, "!!"},
                      MeaningCase{"UPDATE editions\n", LineKind::Text}));

TEST(Meaning, AnotherWordMayEndTheBatch) {
    EXPECT_EQ(ClassifyLine("run\n", "RUN").kind, LineKind::Run);
    EXPECT_EQ(ClassifyLine("GO\n", "RUN").kind, LineKind::Text);
}

TEST(TextInput, AFileWithoutAMarkStaysByteForByte) {
    const std::string bytes("SELECT '\x80\xE4\xFF\0'\r", 13);
    EXPECT_EQ(ToCodePage(bytes), bytes);
    EXPECT_EQ(ToCodePage(""), "");
}

TEST(TextInput, AMarkedUtf8FileIsConverted) {
    EXPECT_EQ(ToCodePage("\xEF\xBB\xBF"
                         "caf\xC3\xA9 \xE2\x82\xAC"),
              "caf\xE9 \x80");
    EXPECT_EQ(ToCodePage("\xEF\xBB\xBF"
                         "\xF0\x9F\x98\x80\xD0\x96."),
              "??.");
    EXPECT_EQ(ToCodePage("\xEF\xBB\xBF"
                         "a\xC3"),
              "a?");
    EXPECT_EQ(ToCodePage("\xEF\xBB\xBF"
                         "\x80z"),
              "?z");
}

TEST(TextInput, AMarkedUtf16FileOfEitherOrderIsConverted) {
    EXPECT_EQ(ToCodePage(std::string("\xFF\xFE"
                                     "G\0O\0\xAC\x20",
                                     8)),
              "GO\x80");
    EXPECT_EQ(ToCodePage(std::string("\xFE\xFF"
                                     "\0G\0O\x20\xAC",
                                     8)),
              "GO\x80");
    EXPECT_EQ(ToCodePage(std::string("\xFF\xFE"
                                     "G\0O",
                                     5)),
              "G");
}

/// For each line, "+" if it can be a command, otherwise "-".
std::string CommandLines(const std::string& text) {
    std::string at_commands;
    BatchLexer lexer;
    TextLines lines(text);
    while (const auto line = lines.Next()) {
        at_commands += lexer.NextMayBeCommand() ? '+' : '-';
        lexer.Advance(*line);
    }
    return at_commands;
}

TEST(BatchLexer, FindsNoCommandInTextsNamesAndComments) {
    EXPECT_EQ(CommandLines("select 'a\nGO\n'\nGO\n"), "+--+");
    EXPECT_EQ(CommandLines("select \"a\nGO\n\"\nGO\n"), "+--+");
    EXPECT_EQ(CommandLines("select [a\nGO\n]\nGO\n"), "+--+");
    EXPECT_EQ(CommandLines("/* a\nGO\n*/\nGO\n"), "+--+");
}

TEST(BatchLexer, KnowsDoubledQuotesAndNestedComments) {
    EXPECT_EQ(CommandLines("print 'it''s\nGO\n'\nGO"), "+--+");
    EXPECT_EQ(CommandLines("print 'it''s'\nGO"), "++");
    EXPECT_EQ(CommandLines("select [a]]b\nGO\n]\nGO"), "+--+");
    EXPECT_EQ(CommandLines("/* /* */\nGO\n*/\nGO"), "+--+");
}

TEST(BatchLexer, QuotesAndCommentsDoNotBeginInsideEachOther) {
    EXPECT_EQ(CommandLines("-- it's\nGO"), "++");
    EXPECT_EQ(CommandLines("-- /*\nGO"), "++");
    EXPECT_EQ(CommandLines("print '/* -- ['\nGO"), "++");
    EXPECT_EQ(CommandLines("select [it's \"] , \"[\"\nGO"), "++");
    EXPECT_EQ(CommandLines("/* it's -- */ print 1\nGO"), "++");
    EXPECT_EQ(CommandLines("select 5 * / 2 - 1 -- x\nGO"), "++");
}

} // namespace
