#include "rvlib/rvgui/numbertext.h"

#include <gtest/gtest.h>

#include <clocale>

namespace Gui {
namespace {

TEST(NumberTextTest, NumbersAreWrittenTheSameInEveryLocale) {
    const std::string Former = std::setlocale(LC_NUMERIC, nullptr);
    std::setlocale(LC_NUMERIC, "de_DE.UTF-8");  // where the system has it
    EXPECT_EQ(WriteFraction(1.25, 1), "1.2");
    EXPECT_EQ(WriteFraction(-0.5, 3), "-0.500");
    EXPECT_EQ(ReadFraction("1.5").value_or(0.0), 1.5);
    std::setlocale(LC_NUMERIC, Former.c_str());
    EXPECT_EQ(WriteInteger(-17), "-17");
}

TEST(NumberTextTest, HexIsFilledUpToItsWidth) {
    EXPECT_EQ(WriteHex(10, 2), "0A");
    EXPECT_EQ(WriteHex(256, 4), "0100");
    EXPECT_EQ(WriteHex(0xDEADBEEF, 8), "DEADBEEF");
    EXPECT_EQ(WriteHex(0x123, 2), "123");
    EXPECT_EQ(WriteHex(0, 0), "0");
}

TEST(NumberTextTest, ANumberIsReadAsFarAsItGoes) {
    EXPECT_EQ(ReadInteger(" 12.5"), 12);
    EXPECT_EQ(ReadInteger("+7"), 7);
    EXPECT_EQ(ReadInteger("-7x"), -7);
    EXPECT_EQ(ReadHex("ffg"), 255);
    EXPECT_EQ(ReadHex("0x10"), 16);
    EXPECT_EQ(ReadFraction("+2.5"), 2.5);
    EXPECT_EQ(ReadFraction(".5"), 0.5);
    EXPECT_EQ(ReadFraction("3."), 3.0);
}

TEST(NumberTextTest, WhatIsNoNumberIsNone) {
    for (const char* pText : {"", " ", "x1", "+", "-", "+-1", "99999999999999999999"}) {
        EXPECT_FALSE(ReadInteger(pText)) << pText;
    }
    for (const char* pText : {"", ".", "-.", "inf", "nan", "+-1"}) {
        EXPECT_FALSE(ReadFraction(pText)) << pText;
    }
    EXPECT_FALSE(ReadHex("G"));
}

TEST(NumberTextTest, ANumberThatIsTooLargeIsNone) {
    EXPECT_EQ(ReadFraction(std::string(300, '9')), 1e300);
    EXPECT_FALSE(ReadFraction(std::string(400, '9')));
}

TEST(NumberTextTest, AFractionIsDigitsOnePointAndASignInFront) {
    for (const char* pText : {"", "+", "-", ".", "-.", "12", "+1.5", "-.5", "3."}) {
        EXPECT_TRUE(IsFractionText(pText)) << pText;
    }
    for (const char* pText : {" 1", "1 ", "1-", "--1", "+-1", "1.2.3", "1,5", "1e5", "0x1", "inf"}) {
        EXPECT_FALSE(IsFractionText(pText)) << pText;
    }
    EXPECT_EQ(MakePoint("-1,25,5"), "-1.25.5");
}

TEST(NumberTextTest, UpperCaseKnowsTheMicroSign) {
    EXPECT_EQ(MakeUpper("off \u00B5m/s"), "OFF \u039CM/S");
}

}  // namespace
}  // namespace Gui
