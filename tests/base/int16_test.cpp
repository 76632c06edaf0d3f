#include "base/int16.h"

#include <gtest/gtest.h>

#include "fakes/fake_files.h"

namespace {

using namespace kv;

template <class Body>
std::int32_t NumberRaisedBy(Body body) {
    try {
        body();
    } catch (const Failure& failure) {
        return failure.Number();
    }
    return 0;
}

TEST(Int16, HoldsItsWholeRange) {
    EXPECT_EQ(Int16(32767).Value(), 32767);
    EXPECT_EQ(Int16(-32768).Value(), -32768);
    EXPECT_EQ(Int16().Value(), 0);
}

TEST(Int16, FailsAsAnOverflowOutsideIt) {
    const fakes::FakeFiles files;
    EXPECT_EQ(NumberRaisedBy([] { Int16(32768); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] { Int16(-32769); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] { Int16(std::int64_t{1} << 32U); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] { Int16(32767) + Int16(1); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] { Int16(-32768) - Int16(1); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] { Int16(256) * Int16(128); }), run_time::kOverflow);
    EXPECT_EQ(NumberRaisedBy([] {
                  Int16 counter(32767);
                  ++counter;
              }),
              run_time::kOverflow);
}

TEST(Int16, CountsAndCompares) {
    Int16 counter(32765);
    EXPECT_EQ(++counter, Int16(32766));
    EXPECT_EQ(Int16(3) + Int16(-5), Int16(-2));
    EXPECT_EQ(Int16(3) - Int16(5), Int16(-2));
    EXPECT_EQ(Int16(-181) * Int16(181), Int16(-32761));
    EXPECT_LT(Int16(-1), Int16(0));
}

} // namespace
