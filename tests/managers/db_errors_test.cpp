// Tests the array in which a manager collects the server's errors, with its 16-bit index, and the message box
// that shows them.
#include "managers/db_errors.h"

#include <functional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "fakes/fake_files.h"
#include "fakes/fake_screen.h"

namespace {

using namespace kv;

ado::Errors ErrorsWith(const std::vector<std::int32_t>& numbers) {
    std::vector<ado::Error> errors;
    for (const auto number : numbers) {
        const std::string text = std::to_string(number);
        errors.push_back({number, "Description " + text, "Source " + text, number + 1000, "S" + text});
    }
    return ado::Errors(std::move(errors));
}

/// The number of the failure; 0 if there was no failure.
std::int32_t NumberRaisedBy(const std::function<void()>& step) {
    try {
        step();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return 0;
}

std::int32_t NumberRaisedByCollecting(DbErrors& array, const std::vector<std::int32_t>& numbers) {
    return NumberRaisedBy([&] { CollectDbErrors(array, ErrorsWith(numbers)); });
}

std::vector<std::int32_t> NumbersIn(const DbErrors& array) {
    std::vector<std::int32_t> numbers;
    for (std::int32_t i = 0; i <= array.UpperBound(); ++i) {
        numbers.push_back(array[i].Number);
    }
    return numbers;
}

using Numbers = std::vector<std::int32_t>;

/// A manager with one operation, built like those of the program.
class Manager : public ManagerErrors {
  public:
    void Operation(const ado::Errors& reported) {
        ResetDbErrors(db_errors_);
        CollectDbErrors(db_errors_, reported);
    }
};

class DbErrorsTest : public testing::Test {
  protected:
    fakes::FakeFiles files_;
    fakes::FakeScreen screen_;
    DbErrors array_;
};

TEST_F(DbErrorsTest, AnEmptyArrayHasOnlyElementZero) {
    EXPECT_EQ(array_.UpperBound(), 0);
    EXPECT_EQ(array_[0], DbError{});
}

TEST_F(DbErrorsTest, AnIndexOutsideTheArrayIsASubscriptFailure) {
    for (const std::int32_t index : {-1, 1}) {
        try {
            static_cast<void>(array_[index]);
            ADD_FAILURE() << index;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), run_time::kSubscriptOutOfRange);
        }
    }
}

TEST_F(DbErrorsTest, CollectingTakesAllFieldsInOrder) {
    CollectDbErrors(array_, ErrorsWith({-2147217900, 7}));
    ASSERT_EQ(NumbersIn(array_), (Numbers{0, -2147217900, 7}));
    EXPECT_EQ(array_[2], (DbError{7, "Description 7", "Source 7", 1007, "S7"}));
    EXPECT_EQ(array_[0], DbError{});
}

TEST_F(DbErrorsTest, CollectingNothingLeavesTheArrayAsItIs) {
    CollectDbErrors(array_, ErrorsWith({5}));
    CollectDbErrors(array_, ErrorsWith({}));
    EXPECT_EQ(NumbersIn(array_), (Numbers{0, 5}));
}

TEST_F(DbErrorsTest, CollectingTwiceAppends) {
    CollectDbErrors(array_, ErrorsWith({5, 6}));
    CollectDbErrors(array_, ErrorsWith({7}));
    EXPECT_EQ(NumbersIn(array_), (Numbers{0, 5, 6, 7}));
}

TEST_F(DbErrorsTest, TwoEntriesWithNumberZeroAddNothingAndDoNotFail) {
    EXPECT_EQ(NumberRaisedByCollecting(array_, {0, 0}), 0);
    EXPECT_EQ(array_.UpperBound(), 0);
}

TEST_F(DbErrorsTest, AnEntryBeforeAZeroIsAppendedToTheEarlierRecords) {
    CollectDbErrors(array_, ErrorsWith({3, 4}));
    EXPECT_EQ(NumberRaisedByCollecting(array_, {5, 0}), 0);
    EXPECT_EQ(NumbersIn(array_), (Numbers{0, 3, 4, 5}));
}

TEST_F(DbErrorsTest, AZeroBeforeAnEntryIsASubscriptFailure) {
    EXPECT_EQ(NumberRaisedByCollecting(array_, {0, 5}), run_time::kSubscriptOutOfRange);
    // The array has grown before the index is checked.
    EXPECT_EQ(NumbersIn(array_), (Numbers{0, 0}));
}

TEST_F(DbErrorsTest, AZeroBetweenTwoEntriesIsASubscriptFailureAfterTheFirst) {
    EXPECT_EQ(NumberRaisedByCollecting(array_, {5, 0, 6}), run_time::kSubscriptOutOfRange);
    EXPECT_EQ(NumbersIn(array_), (Numbers{0, 5, 0}));
}

TEST_F(DbErrorsTest, MoreThanA16BitNumberCountsIsAnOverflow) {
    EXPECT_EQ(NumberRaisedByCollecting(array_, Numbers(32767, 1)), 0);
    EXPECT_EQ(NumberRaisedByCollecting(array_, {1}), run_time::kOverflow);
    // The array has grown before its index overflowed. After that its upper bound does not fit an Int16
    // either.
    EXPECT_EQ(array_.UpperBound(), 32768);
    EXPECT_EQ(NumberRaisedByCollecting(array_, {0}), run_time::kOverflow);
    EXPECT_EQ(array_.UpperBound(), 32768);
    EXPECT_EQ(NumberRaisedBy([&] { FormatDbErrors(array_); }), run_time::kOverflow);
}

TEST_F(DbErrorsTest, TheIndexOverflowsBeforeItIsCheckedAgainstTheArray) {
    CollectDbErrors(array_, ErrorsWith({1}));
    Numbers numbers(32767, 0);
    numbers.back() = 7; // 1 + 32766 + 1
    EXPECT_EQ(NumberRaisedByCollecting(array_, numbers), run_time::kOverflow);
}

TEST_F(DbErrorsTest, MoreEntriesThanA16BitNumberAddressesAreAnOverflow) {
    EXPECT_EQ(NumberRaisedByCollecting(array_, Numbers(32768, 0)), 0);
    EXPECT_EQ(NumberRaisedByCollecting(array_, Numbers(32769, 0)), run_time::kOverflow);
}

TEST_F(DbErrorsTest, ACountThatDoesNotFitIsAnOverflow) {
    Manager manager;
    manager.Operation(ErrorsWith(Numbers(32767, 1)));
    EXPECT_EQ(manager.ErrorCount(), Int16(32767));
    EXPECT_EQ(NumberRaisedBy([&] { manager.Operation(ErrorsWith(Numbers(32768, 1))); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([&] { manager.ErrorCount(); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([&] { manager.ShowDbError(); }), run_time::kOverflow);
    EXPECT_TRUE(screen_.calls.empty());
}

TEST_F(DbErrorsTest, ResettingDropsEveryRecord) {
    CollectDbErrors(array_, ErrorsWith({5, 6}));
    ResetDbErrors(array_);
    EXPECT_EQ(NumbersIn(array_), (Numbers{0}));
}

TEST_F(DbErrorsTest, AnEmptyArrayHasNoText) {
    EXPECT_EQ(FormatDbErrors(array_), "");
}

TEST_F(DbErrorsTest, ARecordReadsInFiveLines) {
    CollectDbErrors(array_, ado::Errors({{-2147217900, "Incorrect syntax near 'x'.",
                                          "Microsoft OLE DB Provider for ODBC Drivers", 102, "42000"}}));
    EXPECT_EQ(FormatDbErrors(array_), "Error:\t-2147217900\r\n"
                                      "Desc:\tIncorrect syntax near 'x'.\r\n"
                                      "\t102\r\n"
                                      "\tMicrosoft OLE DB Provider for ODBC Drivers\r\n"
                                      "\t42000\r\n");
}

TEST_F(DbErrorsTest, AManagerWithNoFailuresShowsNoBoxAndCountsNone) {
    const Manager manager;
    manager.ShowDbError();
    EXPECT_TRUE(screen_.calls.empty());
    EXPECT_EQ(manager.ErrorCount(), Int16(0));
}

TEST_F(DbErrorsTest, TwoErrorsGiveOneBoxWithHyphensBetween) {
    Manager manager;
    manager.Operation(ErrorsWith({1, 2}));
    manager.ShowDbError();
    const std::string hyphens(46, '-');
    const std::string text = "Error:\t1\r\nDesc:\tDescription 1\r\n\t1001\r\n\tSource 1\r\n\tS1\r\n\r\n" +
                             hyphens +
                             "\r\n\r\nError:\t2\r\nDesc:\tDescription 2\r\n\t1002\r\n\tSource 2\r\n\tS2\r\n";
    ASSERT_EQ(screen_.calls.size(), 1U);
    EXPECT_EQ(screen_.calls[0], "box [exclamation] KVLSQLDbMgr: " + text);
    EXPECT_EQ(manager.ErrorCount(), Int16(2));
}

TEST_F(DbErrorsTest, ShowingDoesNotEmptyTheArray) {
    Manager manager;
    manager.Operation(ErrorsWith({1}));
    manager.ShowDbError();
    manager.ShowDbError();
    ASSERT_EQ(screen_.calls.size(), 2U);
    EXPECT_EQ(screen_.calls[0], screen_.calls[1]);
}

TEST_F(DbErrorsTest, ASecondOperationDropsTheRecordsOfTheFirst) {
    Manager manager;
    manager.Operation(ErrorsWith({1, 2}));
    manager.Operation(ErrorsWith({3}));
    EXPECT_EQ(manager.ErrorCount(), Int16(1));
    manager.Operation(ErrorsWith({}));
    EXPECT_EQ(manager.ErrorCount(), Int16(0));
}

TEST_F(DbErrorsTest, ARecordAtAnyIndexIsASubscriptFailure) {
    Manager manager;
    manager.Operation(ErrorsWith({1, 2}));
    for (const int index : {-1, 0, 1, 2, 3}) {
        try {
            manager.DbErrorAt(Int16(index));
            ADD_FAILURE() << index;
        } catch (const Failure& failure) {
            EXPECT_EQ(failure.Number(), run_time::kSubscriptOutOfRange) << index;
        }
    }
}

TEST(AdoErrors, HasNoItemOutsideItsCount) {
    const ado::Errors errors = ErrorsWith({1});
    EXPECT_EQ(errors.Item(0).Number, 1);
    EXPECT_THROW(errors.Item(1), std::out_of_range);
    EXPECT_THROW(errors.Item(-1), std::out_of_range);
}

} // namespace
