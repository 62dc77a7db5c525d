#include "rvlib/rvprt/names.h"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr std::array NAMES{"zero", "one"};

}  // namespace

TEST(NAMES, NameOfAPlaceInTheTableOrBehindIt) {
    EXPECT_STREQ(Comm::NameOf(NAMES, 0, "other"), "zero");
    EXPECT_STREQ(Comm::NameOf(NAMES, 1, "other"), "one");
    EXPECT_STREQ(Comm::NameOf(NAMES, 2, "other"), "other");
    EXPECT_STREQ(Comm::NameOf(NAMES, 0xFFFFFFFF, "other"), "other");
}

TEST(NAMES, AdaptionsWithoutANameOfTheirOwnReadAsPrefixAndNumber) {
    EXPECT_EQ(Comm::AdaptionName(NAMES, "Value", 1), "one");
    EXPECT_EQ(Comm::AdaptionName(NAMES, "Value", 2), "Value2");
    EXPECT_EQ(Comm::AdaptionName(NAMES, "", 31), "31");
    EXPECT_EQ(Comm::AdaptionName(NAMES, "Value", 32), std::nullopt);
}
