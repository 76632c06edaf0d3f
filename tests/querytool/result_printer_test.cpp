// Tests how results and messages are printed.
#include "querytool/result_printer.h"

#include <gtest/gtest.h>

#include "querytool/scripted_server.h"

namespace {

using namespace querytool;
using namespace querytool_tests;
using odbc::Bytes;
using odbc::Guid;
using odbc::SqlType;
using odbc::Timestamp;

Column Named(std::string name, SqlType type, std::size_t display, bool nullable = false) {
    Column column;
    column.name = std::move(name);
    column.type = type;
    column.size = display;
    column.display_size = display;
    column.nullable = nullable;
    return column;
}

Column Scaled(SqlType type, std::int16_t digits) {
    Column column = Named("c", type, 20);
    column.decimal_digits = digits;
    return column;
}

class Printed : public ::testing::Test {
  protected:
    std::string Table(const std::vector<Column>& columns, const std::vector<std::vector<Value>>& rows,
                      std::int64_t count = -1) {
        ResultPrinter printer(switches, output);
        printer.ResultBegin(columns);
        for (const auto& row : rows) {
            printer.Row(row);
        }
        printer.ResultEnd(count);
        return output.written;
    }

    std::string Counted(std::int64_t count) {
        ResultPrinter printer(switches, output);
        printer.ResultEnd(count);
        return std::exchange(output.written, {});
    }

    std::string Told(const Diagnostic& diagnostic) {
        ResultPrinter printer(switches, output);
        printer.Message(diagnostic);
        error_seen = printer.ErrorSeen();
        return output.written;
    }

    Switches switches;
    TextOutput output;
    bool error_seen = false;
};

TEST_F(Printed, ATableHasNamesDashesRowsAndTheirCount) {
    EXPECT_EQ(Table({Named("id", SqlType::Integer, 11), Named("name", SqlType::VarChar, 6)},
                    {{std::int64_t{7}, std::string("one")}, {std::int64_t{-12}, std::string("two")}}, 2),
              " id          name   \n"
              " ----------- ------ \n"
              "           7 one    \n"
              "         -12 two    \n"
              "\n"
              "(2 rows affected)\n");
}

TEST_F(Printed, OneRowIsCountedInTheSingular) {
    EXPECT_EQ(Counted(1), "(1 row affected)\n");
    EXPECT_EQ(Counted(0), "(0 rows affected)\n");
}

TEST_F(Printed, WithoutACountNoCountIsPrinted) {
    EXPECT_EQ(Counted(-1), "");
}

TEST_F(Printed, NullIsAlignedLikeTheValuesOfItsColumn) {
    EXPECT_EQ(Table({Named("n", SqlType::Integer, 11, true), Named("t", SqlType::Char, 1, true)},
                    {{Value(), Value()}}),
              " n           t    \n"
              " ----------- ---- \n"
              "        NULL NULL \n");
}

TEST_F(Printed, ANameWiderThanItsValuesWidensTheColumn) {
    EXPECT_EQ(Table({Named("a long name", SqlType::Bit, 1)}, {{true}}), " a long name \n"
                                                                        " ----------- \n"
                                                                        "           1 \n");
}

TEST_F(Printed, TheSeparatorOfTheColumnsCanBeChosen) {
    switches.separator = ";";
    switches.header_rows = -1;
    EXPECT_EQ(Table({Named("a", SqlType::VarChar, 1), Named("b", SqlType::VarChar, 1)},
                    {{std::string("x"), std::string("y")}}),
              " x;y \n");
}

TEST_F(Printed, HeadingsAreRepeatedAfterTheChosenNumberOfRows) {
    switches.header_rows = 2;
    EXPECT_EQ(Table({Named("a", SqlType::VarChar, 1)},
                    {{std::string("1")}, {std::string("2")}, {std::string("3")}}),
              " a \n - \n 1 \n 2 \n\n a \n - \n 3 \n");
}

TEST_F(Printed, ALineThatIsTooLongContinuesAfterATab) {
    switches.width = 12;
    EXPECT_EQ(Table({Named("abc", SqlType::VarChar, 5), Named("def", SqlType::VarChar, 8)},
                    {{std::string("one"), std::string("two")}}),
              " abc   \n\tdef      \n"
              " ----- \n\t-------- \n"
              " one   \n\ttwo      \n");
}

TEST_F(Printed, AValueWiderThanTheLineIsBroken) {
    switches.width = 10;
    switches.header_rows = -1;
    EXPECT_EQ(Table({Named("t", SqlType::VarChar, 40)}, {{std::string("abcdefghijklmnop")}}),
              " abcdefghi \n\tjklmnop   \n");
}

TEST_F(Printed, AnErrorHasItsNumbersAndItsText) {
    Diagnostic error = Error(208, "Invalid object name '[x]'.");
    error.state = 1;
    EXPECT_EQ(Told(error), "Msg 208, Level 16, State 1, Server SRV, Line 3\nInvalid object name '[x]'.\n");
    EXPECT_TRUE(error_seen);
}

TEST_F(Printed, AnErrorInAProcedureNamesIt) {
    Diagnostic error = Error(50000, "No.");
    error.procedure = "spOne";
    EXPECT_EQ(Told(error), "Msg 50000, Level 16, Server SRV, Procedure spOne, Line 3\nNo.\n");
}

TEST_F(Printed, ATextThatBeginsWithABracketStaysWhole) {
    EXPECT_EQ(Told(Message(0, "[a][SQL Server]b")), "[a][SQL Server]b\n");
}

TEST_F(Printed, AMessageOfTheDriverHasNoNumbers) {
    Diagnostic error = Error(0, "");
    error.message = "Unable to connect";
    error.native_error = 20009;
    error.line.reset();
    error.severity.reset();
    EXPECT_EQ(Told(error), "Unable to connect\n");
    EXPECT_TRUE(error_seen);
}

TEST_F(Printed, AMessageIsItsTextAlone) {
    EXPECT_EQ(Told(Message(0, "printed")), "printed\n");
    EXPECT_FALSE(error_seen);
    output.written.clear();
    EXPECT_EQ(Told(Message(15477, "Caution")), "Caution\n");
}

TEST_F(Printed, ChangesOfDatabaseAndLanguageAreNotPrinted) {
    EXPECT_EQ(Told(Message(5701, "Changed database context to 'x'.")), "");
    EXPECT_EQ(Told(Message(5703, "Changed language setting.")), "");
}

TEST_F(Printed, MessagesBelowTheErrorLevelAreLeftOut) {
    switches.error_level = 17;
    EXPECT_EQ(Told(Error(208, "text")), "");
    EXPECT_TRUE(error_seen);
    EXPECT_EQ(Told(Message(0, "text")), "");
    switches.error_level = 16;
    EXPECT_EQ(Told(Error(208, "text")), "Msg 208, Level 16, Server SRV, Line 3\ntext\n");
}

TEST_F(Printed, WithLevelMinusOneMessagesHaveTheirNumbersToo) {
    switches.error_level = -1;
    EXPECT_EQ(Told(Message(15477, "Caution")), "Msg 15477, Server SRV, Line 3\nCaution\n");
}

TEST_F(Printed, ErrorsGoToTheErrorChannelAndMessagesOnlyOnRequest) {
    switches.errors_to_stderr = true;
    Told(Error(1, "wrong"));
    Told(Message(0, "news"));
    EXPECT_EQ(output.written, "news\n");
    EXPECT_EQ(output.errors, "Msg 1, Level 16, Server SRV, Line 3\nwrong\n");
    switches.messages_to_stderr = true;
    Told(Message(0, "more"));
    EXPECT_EQ(output.written, "news\n");
}

TEST_F(Printed, AfterTheMessageThatEndsTheToolNothingIsPrinted) {
    ResultPrinter printer(switches, output);
    Diagnostic last = Error(50000, "stop");
    last.state = 127;
    printer.Message(last);
    EXPECT_EQ(printer.EndingNumber(), 50000);
    const std::string written = output.written;
    printer.ResultBegin({Named("t", SqlType::VarChar, 4)});
    printer.Row({std::string("row")});
    printer.ResultEnd(1);
    printer.Message(Message(0, "after"));
    EXPECT_EQ(output.written, written);
}

TEST(CellText, EveryTypeHasItsText) {
    EXPECT_EQ(CellText(Scaled(SqlType::Bit, 0), true), "1");
    EXPECT_EQ(CellText(Scaled(SqlType::BigInt, 0), std::int64_t{-9223372036854775807}),
              "-9223372036854775807");
    EXPECT_EQ(CellText(Scaled(SqlType::Double, 0), 0.1), "0.10000000000000001");
    EXPECT_EQ(CellText(Scaled(SqlType::Double, 0), 1.5), "1.5");
    EXPECT_EQ(CellText(Scaled(SqlType::Real, 0), static_cast<double>(0.1F)), "0.1");
    EXPECT_EQ(CellText(Scaled(SqlType::Decimal, 2), std::string("12.50")), "12.50");
    EXPECT_EQ(CellText(Scaled(SqlType::VarBinary, 0), Bytes{std::string("\x01\xAB\0", 3)}), "0x01AB00");
    EXPECT_EQ(
        CellText(Scaled(SqlType::Guid, 0), Guid{0x0A0B0C0D, 0x0102, 0xFFFE, {0, 1, 2, 3, 4, 5, 6, 0xEE}}),
        "0A0B0C0D-0102-FFFE-0001-0203040506EE");
    EXPECT_EQ(CellText(Scaled(SqlType::VarChar, 0), Value()), "NULL");
}

TEST(CellText, ATimeHasTheFractionOfItsColumn) {
    const Timestamp time{2004, 2, 9, 3, 4, 5, 70000000};
    EXPECT_EQ(CellText(Scaled(SqlType::Timestamp, 3), time), "2004-02-09 03:04:05.070");
    EXPECT_EQ(CellText(Scaled(SqlType::Timestamp, 0), time), "2004-02-09 03:04:05");
}

} // namespace
