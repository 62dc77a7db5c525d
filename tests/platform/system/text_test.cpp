#include "platform/system/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(TextTest, TrimTakesWhiteSpaceFromBothEnds) {
    EXPECT_EQ(Text::Trim(" \t a b \r\n"), "a b");
    EXPECT_EQ(Text::Trim(" \n "), "");
    EXPECT_EQ(Text::Trim(""), "");
    EXPECT_EQ(Text::Trim("\"?a\"b<", "\"<>?"), "a\"b");
}

TEST(TextTest, EqualNoCaseComparesLettersOfAsciiOnly) {
    EXPECT_TRUE(Text::EqualNoCase("Kestrel.OCX", "kESTREL.ocx"));
    EXPECT_FALSE(Text::EqualNoCase("Kestrel", "Kestrel.ocx"));
    EXPECT_FALSE(Text::EqualNoCase("[", "{"));
    EXPECT_FALSE(Text::EqualNoCase("\xC3\x84", "\xC3\xA4"));
    EXPECT_TRUE(Text::EqualNoCase("", ""));
}

TEST(TextTest, SplitDropsEmptyPartsAndTrimsBlanks) {
    EXPECT_THAT(Text::Split("\\\\a\\ b c \\\\\\d\\", "\\"), ElementsAre("a", "b c", "d"));
    EXPECT_THAT(Text::Split("a/b\\c", "\\/"), ElementsAre("a", "b", "c"));
    EXPECT_THAT(Text::Split("a b", ""), ElementsAre("a b"));
    EXPECT_THAT(Text::Split("", "\\"), IsEmpty());
    EXPECT_THAT(Text::Split(" \\ ", "\\"), IsEmpty());
}

TEST(TextTest, ToIntTakesLeadingDigits) {
    EXPECT_EQ(Text::ToInt("42"), 42);
    EXPECT_EQ(Text::ToInt(" \t-17x"), -17);
    EXPECT_EQ(Text::ToInt("+8"), 8);
    EXPECT_EQ(Text::ToInt("3.9"), 3);
}

TEST(TextTest, ToIntOfNoNumberIsZero) {
    EXPECT_EQ(Text::ToInt("abc"), 0);
    EXPECT_EQ(Text::ToInt(""), 0);
    EXPECT_EQ(Text::ToInt("-"), 0);
    EXPECT_EQ(Text::ToInt("- 5"), 0);
}

TEST(TextTest, ToIntStaysWithinItsRange) {
    EXPECT_EQ(Text::ToInt("2147483647"), std::numeric_limits<int>::max());
    EXPECT_EQ(Text::ToInt("2147483648"), std::numeric_limits<int>::max());
    EXPECT_EQ(Text::ToInt("-2147483648"), std::numeric_limits<int>::min());
    EXPECT_EQ(Text::ToInt("-99999999999999999999999"), std::numeric_limits<int>::min());
    EXPECT_EQ(Text::ToInt("99999999999999999999999"), std::numeric_limits<int>::max());
}

}  // namespace
