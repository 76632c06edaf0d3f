// Tests the conversion of the display's time stamps (milliseconds) to times of InputClock.
#include "ui/linux/qt/arrival.h"

#include <gtest/gtest.h>

namespace {

using std::chrono::milliseconds;
using ui::InputClock;

/// More than 49 days, so that a count of milliseconds in 32 bits has started again from 0.
constexpr std::uint64_t kNow = 5'000'000'000;
constexpr InputClock::time_point At(std::uint64_t stamp) {
    return InputClock::time_point(milliseconds(stamp));
}

TEST(ArrivalOfInput, IsTheStampOfADisplayOnThisMachineEvenIfTheFirstEventComesLate) {
    ui::ArrivalClock clock;
    EXPECT_EQ(clock.ArrivalOf(kNow - 300, At(kNow)), At(kNow - 300));
}

TEST(ArrivalOfInput, IsTheStampWhenTheDisplayCountsIn32Bits) {
    ui::ArrivalClock clock;
    EXPECT_EQ(clock.ArrivalOf(static_cast<std::uint32_t>(kNow - 300), At(kNow)), At(kNow - 300));
}

TEST(ArrivalOfInput, OnAnotherMachinesDisplayIsFoundByTheLeastDelay) {
    constexpr std::uint64_t kTheirs = 700'000;
    ui::ArrivalClock clock;
    EXPECT_EQ(clock.ArrivalOf(kTheirs, At(kNow)), At(kNow)) << "nothing is known yet";
    EXPECT_EQ(clock.ArrivalOf(kTheirs + 100, At(kNow + 350)), At(kNow + 100)) << "250 ms late";
    EXPECT_EQ(clock.ArrivalOf(kTheirs + 1000, At(kNow + 980)), At(kNow + 980)) << "with less delay";
    EXPECT_EQ(clock.ArrivalOf(kTheirs + 2000, At(kNow + 2100)), At(kNow + 1980));
}

TEST(ArrivalOfInput, IsNowForAnEventThatAProgramMade) {
    ui::ArrivalClock clock;
    EXPECT_EQ(clock.ArrivalOf(0, At(kNow)), At(kNow));
}

} // namespace
