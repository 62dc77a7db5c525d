#include "archive/report/reporttext.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace ReportText;

TEST(ReportText, WhatIsNoUtf8IsReplaced) {
    EXPECT_EQ(Clean("Ärger – 1 µm 𝄞"), "Ärger – 1 µm 𝄞");
    for (const char* pBad : {"\xFF", "\xC0", "\xC1", "\xF5", "\x80"}) {
        EXPECT_EQ(Clean(std::string("a") + pBad + "b"),
                  "a\xEF\xBF\xBD"
                  "b")
            << pBad;
    }
    EXPECT_EQ(Clean("\xE2\x82"), "\xEF\xBF\xBD\xEF\xBF\xBD") << "cut short";
    EXPECT_EQ(Clean("\xED\xA0\x80"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "a surrogate";
    EXPECT_EQ(Clean("\xE0\x80\xAF"), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD") << "an overlong form";
}

TEST(ReportText, ControlsAndDirectionsDoNothing) {
    EXPECT_EQ(Clean(std::string("a\n\r\t\x1B\0b", 7)), "a     b");
    EXPECT_EQ(Clean("a\xC2\x85"
                    "b"),
              "a b");
    EXPECT_EQ(Clean("\xE2\x80\xAE"
                    "abc\xE2\x81\xA6"),
              "\xEF\xBF\xBD"
              "abc\xEF\xBF\xBD");
}

TEST(ReportText, LongTextsAreShortenedByCharacters) {
    EXPECT_EQ(Clean("äöüß", 4), "äöüß");
    EXPECT_EQ(Clean("äöüßx", 4), "äöüß…");
    EXPECT_EQ(CleanName(""), "–");
    EXPECT_EQ(CleanName("  "), "–");
}

TEST(ReportText, FiguresHaveTheDigitsThatMeanSomething) {
    EXPECT_EQ(Reading(120.4), "120");
    EXPECT_EQ(Reading(99.96), "100");
    EXPECT_EQ(Reading(1.24), "1.2");
    EXPECT_EQ(Reading(5.004, 5.0), "5.004");
    EXPECT_EQ(Reading(4.96, 5.0), "5.0");
    EXPECT_EQ(Digits(0.0361), "0.0361");
    EXPECT_EQ(Digits(1234.5), "1234");
    EXPECT_EQ(Digits(0.0), "0");
    EXPECT_EQ(Digits(5e-324), "0.000000000");
    EXPECT_EQ(General(6.3), "6.3");
    EXPECT_EQ(General(12.0), "12");
    EXPECT_EQ(WithUncertainty(0.3604, 0.1723), "0.36 ± 0.17");
    EXPECT_EQ(WithUncertainty(14.04, 2.34), "14.0 ± 2.3");
    EXPECT_EQ(Fixed(std::nan(""), 2), "–");
}

TEST(ReportText, AnglesStayBelowAFullTurn) {
    EXPECT_EQ(Angle(359.6), "0°");
    EXPECT_EQ(Angle(-90.0), "270°");
    EXPECT_EQ(Angle(237.444, 2), "237.44°");
    EXPECT_EQ(Angle(359.996, 2), "0.00°");
}

TEST(ReportText, DatesInUtcDependOnNothing) {
    EXPECT_EQ(Date(std::chrono::sys_seconds(std::chrono::seconds(1773480360)), true), "2026-03-14 09:26 UTC");
}
