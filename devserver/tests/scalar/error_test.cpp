// The message table and the errors made from it.
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>

#include "devserver/tsql/scalar/sql_error.h"

namespace devsql {
namespace {

TEST(Messages, AreInAscendingOrderWithoutDuplicates) {
    const auto all = AllMessages();
    const auto unordered =
        std::adjacent_find(all.begin(), all.end(), [](const MessageTemplate& a, const MessageTemplate& b) {
            return a.number >= b.number;
        });
    EXPECT_EQ(unordered, all.end()) << "after " << (unordered == all.end() ? 0 : unordered->number);
}

TEST(Messages, HaveATextAndAValidSeverity) {
    for (const MessageTemplate& message : AllMessages()) {
        EXPECT_FALSE(message.text.empty()) << message.number;
        EXPECT_TRUE(message.severity >= 10 && message.severity <= 21) << message.number;
    }
}

TEST(Messages, InsertTheirArguments) {
    EXPECT_EQ(ErrorOf(208, {"nowhere"}).text(), "Invalid object name 'nowhere'.");
    EXPECT_EQ(
        ErrorOf(515, {"Id", "a.dbo.t", "INSERT"}).text(),
        "Cannot insert the value NULL into column 'Id', table 'a.dbo.t'; column does not allow nulls. INSERT "
        "fails.");
}

TEST(Messages, ReplaceAMissingArgumentByNothing) {
    EXPECT_EQ(ErrorOf(208).text(), "Invalid object name ''.");
}

TEST(Messages, AcceptAPercentSignInAnArgument) {
    EXPECT_EQ(ErrorOf(208, {"%1"}).text(), "Invalid object name '%1'.");
}

TEST(Messages, ThrowALogicErrorForAnUnknownNumber) {
    EXPECT_EQ(FindMessage(99999), nullptr);
    EXPECT_THROW(ErrorOf(99999), std::logic_error);
}

TEST(Errors, CarryNumberSeverityStateAndText) {
    const SqlError error = ErrorOf(2627, {"PRIMARY KEY", "PK_t", "dbo.t", "(1)"}, 3);
    EXPECT_EQ(error.number(), 2627);
    EXPECT_EQ(error.severity(), 14);
    EXPECT_EQ(error.state(), 3);
    EXPECT_EQ(error.text(),
              "Violation of PRIMARY KEY constraint 'PK_t'. Cannot insert duplicate key in object "
              "'dbo.t'. The duplicate key value is (1).");
    EXPECT_STREQ(error.what(), error.text().c_str());
}

TEST(Errors, OfTheCommonMistakesHaveTheirSeverities) {
    struct Case {
        int number;
        int severity;
    };
    const Case cases[] = {{102, 15},  {105, 15},  {137, 15},  {156, 15},   {207, 16},   {208, 16},
                          {213, 16},  {245, 16},  {515, 16},  {547, 16},   {911, 16},   {1801, 16},
                          {2601, 14}, {2627, 14}, {2714, 16}, {2812, 16},  {3701, 11},  {4060, 11},
                          {8114, 16}, {8134, 16}, {8152, 16}, {15009, 16}, {18456, 14}, {5701, 10},
                          {5703, 10}, {3621, 10}, {50000, 16}};
    for (const Case& c : cases) {
        const MessageTemplate* message = FindMessage(c.number);
        ASSERT_NE(message, nullptr) << c.number;
        EXPECT_EQ(message->severity, c.severity) << c.number;
    }
}

} // namespace
} // namespace devsql
