// The lexer's tokens and the parser's trees.
#include <gtest/gtest.h>

#include "devserver/tsql/parse/lexer.h"
#include "devserver/tsql/parse/located_error.h"
#include "devserver/tsql/parse/parser.h"

namespace devsql {
namespace {

std::string Kinds(std::string_view sql) {
    constexpr const char* kLetters = "wbqvsuidfmxy";
    std::string text;
    for (const Token& token : Tokenize(sql)) {
        if (token.kind != TokenKind::End) {
            text += std::string(text.empty() ? "" : " ") + kLetters[static_cast<std::size_t>(token.kind)] +
                    ":" + token.text;
        }
    }
    return text;
}

TEST(Lexer, KnowsEveryFormOfLiteral) {
    EXPECT_EQ(Kinds("1 1.5 .5 1e5 1.5E-3 $1,000.50 0xAbC 0x"),
              "i:1 d:1.5 d:.5 f:1e5 f:1.5E-3 m:$1,000.50 x:0xAbC x:0x");
}

TEST(Lexer, UndoesDoubledQuotesAndBrackets) {
    EXPECT_EQ(Kinds("'it''s' N'x' \"a\"\"b\" [a]]b]"), "s:it's u:x q:a\"b b:a]b");
}

TEST(Lexer, TakesNamesWithSignsAndLetters) {
    EXPECT_EQ(Kinds("#temp ##g @v @@error _x a$b Größe"), "w:#temp w:##g v:@v v:@@error w:_x w:a$b w:Größe");
}

TEST(Lexer, SkipsCommentsAlsoNestedOnes) {
    EXPECT_EQ(Kinds("a -- b\nc /* d /* e */ f */ g"), "w:a w:c w:g");
}

TEST(Lexer, CountsLines) {
    const std::vector<Token> tokens = Tokenize("a\r\n'x\ny' b");
    EXPECT_EQ(tokens[0].line, 1);
    EXPECT_EQ(tokens[1].line, 2);
    EXPECT_EQ(tokens[2].line, 3);
}

TEST(Lexer, JoinsLinesAtABackslash) {
    EXPECT_EQ(Kinds("'ab\\\ncd' 0x01\\\n02"), "s:abcd x:0x0102");
}

TEST(Lexer, RefusesWhatNeverEnds) {
    const std::pair<const char*, int> cases[] = {
        {"'abc", 105}, {"[abc", 105}, {"\"abc", 105}, {"/* x", 113}, {"a ? b", 102}};
    for (const auto& [sql, number] : cases) {
        try {
            Tokenize(sql);
            FAIL() << sql;
        } catch (const LocatedError& error) {
            EXPECT_EQ(error.number(), number) << sql;
        }
    }
}

TEST(Parser, GivesStatementsTheirLines) {
    const Batch batch = ParseBatch("print 1\n\nprint 2; print 3");
    ASSERT_EQ(batch.statements.size(), 3U);
    EXPECT_EQ(batch.statements[0]->line, 1);
    EXPECT_EQ(batch.statements[1]->line, 3);
    EXPECT_EQ(batch.statements[2]->line, 3);
}

TEST(Parser, BindsAndTighterThanOrAndNotTightest) {
    const Batch batch = ParseBatch("if not 1 = 1 and 2 = 2 or 3 = 3 print 'x'");
    const auto& condition = std::get<ast::IfStatement>(batch.statements[0]->node).condition;
    const auto& either = std::get<ast::LogicExpr>(condition->node);
    EXPECT_FALSE(either.conjunction);
    const auto& both = std::get<ast::LogicExpr>(either.left->node);
    EXPECT_TRUE(both.conjunction);
    EXPECT_TRUE(std::holds_alternative<ast::NotExpr>(both.left->node));
}

TEST(Parser, TellsSubqueriesFromParentheses) {
    for (const char* sql :
         {"select ((select 1) + 2)", "select ((select 1))",
          "select * from ((select 1 a) x cross join (select 2 b) y)", "select 1 where 1 in ((select 1), 2)",
          "(select 1) union (select 2)", "select (((1)))", "insert t (a) (select 1)", "insert t select 1"}) {
        EXPECT_NO_THROW(ParseBatch(sql)) << sql;
    }
}

TEST(Parser, AcceptsTheUnusualFormsOfOldScripts) {
    for (const char* sql : {
             "CREATE TABLE [a] ([b] [nvarchar] (10) COLLATE Latin1_General_CI_AS NOT NULL , [c] [int] "
             "IDENTITY (1, 1) NOT FOR "
             "REPLICATION NOT NULL ,) ON [PRIMARY] TEXTIMAGE_ON [PRIMARY]",
             "ALTER TABLE [a] WITH NOCHECK ADD CONSTRAINT [x] PRIMARY KEY CLUSTERED ([b]) WITH FILLFACTOR = "
             "90 ON [PRIMARY]",
             "CREATE UNIQUE NONCLUSTERED INDEX [i] ON [a] ([b] ASC, [c] DESC) WITH (PAD_INDEX = OFF, "
             "FILLFACTOR = 80) ON [PRIMARY]",
             "SET ANSI_NULLS, QUOTED_IDENTIFIER ON",
             "SELECT * FROM a (NOLOCK), b WITH (READPAST, ROWLOCK) OPTION (MAXDOP 1)",
             "SELECT a.* FROM a INNER HASH JOIN b ON a.x = b.x",
             "DECLARE c INSENSITIVE SCROLL CURSOR FOR SELECT 1 FOR READ ONLY",
             "EXEC sp_x @a = 1, @b = N'x', @c = @d OUTPUT",
             "RAISERROR ('x', 10, 1) WITH NOWAIT, LOG",
             "RAISERROR 50001 'old form'",
             "COMMIT WORK",
             "IF @@ERROR <> 0 GOTO failed failed: RETURN",
             "SELECT {ts '2000-01-01 00:00:00'}, {fn now()}",
             "GRANT ALL PRIVILEGES ON a TO PUBLIC WITH GRANT OPTION",
             "SELECT 'alias' = 1, 2 'other', 3 [third]",
             "UPDATE STATISTICS a WITH FULLSCAN",
             "DBCC CHECKDB ('x') WITH NO_INFOMSGS",
         }) {
        try {
            ParseBatch(sql, {true, {"@d"}});
        } catch (const SqlError& error) {
            FAIL() << sql << ": " << error.what();
        }
    }
}

TEST(Parser, NamesOfArgumentsMayBeReservedWords) {
    EXPECT_EQ(ParseName("dbo.[My Table]").text(), "dbo.My Table");
    EXPECT_EQ(ParseName("table").last(), "table");
    EXPECT_EQ(ParseName("a..b").parts.size(), 3U);
    EXPECT_EQ(ParseName("dbo.Order Lines").last(), "Order Lines"); // OBJECT_ID accepts it without brackets
    EXPECT_TRUE(ParseName("a b].c").empty());
    EXPECT_TRUE(ParseName("").empty());
    EXPECT_TRUE(ParseName("[open").empty());
}

TEST(Parser, FailsWithError191ForDeepTexts) {
    for (const char* unit :
         {"(", "not ", "- ", "case when 1 = 1 then ", "(select ", "begin ", "if 1 = 1 ", "while 1 = 1 "}) {
        std::string sql = std::string(unit) == "begin " || unit[0] == 'i' || unit[0] == 'w' ? "" : "select ";
        for (int i = 0; i < 20000; ++i) {
            sql += unit;
        }
        EXPECT_THROW(ParseBatch(sql), LocatedError) << unit;
    }
}

} // namespace
} // namespace devsql
