#include "console/csv.h"

#include <gtest/gtest.h>

TEST(Csv, TextThatLooksLikeAFormulaIsMadeAText) {
    for (const char* const pBegin : {"=", "+", "-", "@"}) {
        EXPECT_EQ(Csv::Cell(std::string(pBegin) + "cmd"), std::string("'") + pBegin + "cmd");
    }
    EXPECT_EQ(Csv::Cell("\tx"), "\"'\tx\"");
    EXPECT_EQ(Csv::Cell("\rx"), "\"'\rx\"");
    EXPECT_EQ(Csv::Cell("a=b"), "a=b");
}

TEST(Csv, QuotesAreDoubledAndSeparatorsQuoted) {
    EXPECT_EQ(Csv::Cell("wheel \"7\""), "\"wheel \"\"7\"\"\"");
    EXPECT_EQ(Csv::Cell("a,b"), "\"a,b\"");
    EXPECT_EQ(Csv::Cell("a;b"), "\"a;b\"");
    EXPECT_EQ(Csv::Cell("a\nb"), "\"a\nb\"");
    EXPECT_EQ(Csv::Cell("=1\"+\"2"), "\"'=1\"\"+\"\"2\"");
    EXPECT_EQ(Csv::Cell(""), "");
    EXPECT_EQ(Csv::Cell(std::string(10000, '"')).size(), 20002U);
}

TEST(Csv, NumbersStayNumbers) {
    EXPECT_EQ(Csv::Cell(-1.5), "-1.5");
    EXPECT_EQ(Csv::Cell(0.1), "0.1");
}

TEST(Csv, ALineKeepsEmptyCells) {
    EXPECT_EQ(Csv::Line({"", "a", ""}), ",a,\r\n");
}
