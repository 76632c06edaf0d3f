#include "platform/named_lock.h"

#include <random>
#include <string>

#include <gtest/gtest.h>

namespace platform {
namespace {

std::string FreshName() {
    return R"(test C:\Folder\of the program )" + std::to_string(std::random_device{}());
}

TEST(NamedLock, IsHeldOnceAtATime) {
    const std::string name = FreshName();
    auto first = TryLock(name);
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(TryLock(name), nullptr);
    EXPECT_EQ(TryLock(name), nullptr);
    first.reset();
    EXPECT_NE(TryLock(name), nullptr);
}

TEST(NamedLock, OfAnotherNameIsAnotherLock) {
    const std::string name = FreshName();
    const auto first = TryLock(name);
    EXPECT_NE(TryLock(name + "x"), nullptr);
}

TEST(NamedLock, DistinguishesLongNamesByTheirEnds) {
    const std::string name = FreshName() + std::string(1000, 'x');
    const auto first = TryLock(name + "1");
    ASSERT_NE(first, nullptr);
    EXPECT_EQ(TryLock(name + "1"), nullptr);
    EXPECT_NE(TryLock(name + "2"), nullptr);
}

} // namespace
} // namespace platform
