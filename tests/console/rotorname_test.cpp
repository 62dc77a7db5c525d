#include "console/rotorname.h"

#include <gtest/gtest.h>

TEST(RotorNameTest, IsKeptAsItWasGiven) {
    EXPECT_EQ(CleanName("Spindel \"Ä 7\" <b>=1+1</b>"), "Spindel \"Ä 7\" <b>=1+1</b>");
    EXPECT_EQ(CleanName(std::string(10240, 'x')), std::string(10240, 'x'));
    EXPECT_EQ(CleanName(""), "");
}

TEST(RotorNameTest, HasNoControlCharactersAndNoNeedlessBlanks) {
    EXPECT_EQ(CleanName(" \tA\r\n  B\x1b[31m\x7f "), "A B [31m");
    EXPECT_EQ(CleanName(std::string("A\0B", 3)), "A B");
    EXPECT_EQ(CleanName("\xc2\x85"), "") << "U+0085 is one too";
}

TEST(RotorNameTest, IsUtf8WhateverItWas) {
    EXPECT_EQ(CleanName("A\xff"
                        "B"),
              "A\xef\xbf\xbd"
              "B");
    EXPECT_EQ(CleanName("\xc3"), "\xef\xbf\xbd") << "cut in the middle";
}
