#include "rvlib/rvprt/names.h"

#include <gtest/gtest.h>

#include <array>

namespace {

constexpr std::array Names{"zero", "one"};

}  // namespace

TEST(Names, NameOfAPlaceInTheTableOrBehindIt) {
    EXPECT_STREQ(Comm::NameOf(Names, 0, "other"), "zero");
    EXPECT_STREQ(Comm::NameOf(Names, 1, "other"), "one");
    EXPECT_STREQ(Comm::NameOf(Names, 2, "other"), "other");
    EXPECT_STREQ(Comm::NameOf(Names, 0xFFFFFFFF, "other"), "other");
}

TEST(Names, AdaptionsWithoutANameOfTheirOwnReadAsPrefixAndNumber) {
    EXPECT_EQ(Comm::AdaptionName(Names, "Value", 1), "one");
    EXPECT_EQ(Comm::AdaptionName(Names, "Value", 2), "Value2");
    EXPECT_EQ(Comm::AdaptionName(Names, "", 31), "31");
    EXPECT_EQ(Comm::AdaptionName(Names, "Value", 32), std::nullopt);
}
