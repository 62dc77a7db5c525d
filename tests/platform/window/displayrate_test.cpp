#include "platform/window/displayrate.h"

#include <gtest/gtest.h>

namespace {

using namespace std::chrono_literals;

TEST(DisplayRate, GivesOnePictureAPeriod) {
    CDisplayRate::CClock::time_point Now{};
    CDisplayRate Rate([&Now] { return Now; });
    EXPECT_TRUE(Rate.Take()) << "the first one at once";
    Now += 15ms;
    EXPECT_FALSE(Rate.Take());
    Now += 1ms;
    EXPECT_TRUE(Rate.Take());
    EXPECT_FALSE(Rate.Take());
    Now += 1h;
    EXPECT_TRUE(Rate.Take());
    Now += 15ms;
    EXPECT_FALSE(Rate.Take()) << "a long pause is nothing to be made up for";
}

}  // namespace
