#include "platform/system/inifile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::IsNull;
using testing::Pointee;
using testing::SizeIs;

TEST(CIniFileTest, FindsValuesWithoutRegardToCase) {
    const CIniFile File("[Configuration]\nRPM=1500\n");
    EXPECT_THAT(File.Find("Configuration", "RPM"), Pointee(std::string("1500")));
    EXPECT_THAT(File.Find("CONFIGURATION", "rpm"), Pointee(std::string("1500")));
    EXPECT_THAT(File.Find("Configuration", "INCREMENT"), IsNull());
    EXPECT_THAT(File.Find("Other", "RPM"), IsNull());
}

TEST(CIniFileTest, ValuesLoseBlanksAndOnePairOfQuotes) {
    const CIniFile File(
        "[ S ]\r\n  a = \t plain \t\r\nb=\"  kept  \"\nc='single'\nd=\"\"twice\"\"\ne=\"\nf=\n");
    EXPECT_THAT(File.Find("S", "a"), Pointee(std::string("plain")));
    EXPECT_THAT(File.Find("S", "b"), Pointee(std::string("  kept  ")));
    EXPECT_THAT(File.Find("S", "c"), Pointee(std::string("single")));
    EXPECT_THAT(File.Find("S", "d"), Pointee(std::string("\"twice\"")));
    EXPECT_THAT(File.Find("S", "e"), Pointee(std::string("\"")));
    EXPECT_THAT(File.Find("S", "f"), Pointee(std::string()));
}

TEST(CIniFileTest, CommentsAndOtherLinesAreSkipped) {
    const CIniFile File("lost=1\n[S]\n;a=1\n  ; b=2\nno value here\nc=3;4\n");
    EXPECT_THAT(File.Find("S", ";a"), IsNull());
    EXPECT_THAT(File.Find("S", "a"), IsNull());
    EXPECT_THAT(File.Find("S", "b"), IsNull());
    EXPECT_THAT(File.Find("", "lost"), IsNull());
    EXPECT_THAT(File.Find("S", "c"), Pointee(std::string("3;4")));
}

TEST(CIniFileTest, OfEqualNamesTheFirstCounts) {
    const CIniFile File("[S]\na=1\na=2\n[T]\na=3\n[s]\na=4\nb=5\n");
    EXPECT_THAT(File.GetSections(), SizeIs(3));
    EXPECT_THAT(File.Find("S", "a"), Pointee(std::string("1")));
    EXPECT_THAT(File.Find("S", "b"), Pointee(std::string("5")));
}

TEST(CIniFileTest, AMarkAtTheBeginningIsSkippedAndTheLastLineNeedsNoEnd) {
    const CIniFile File("\xEF\xBB\xBF[S]\na=1");
    EXPECT_THAT(File.Find("S", "a"), Pointee(std::string("1")));
}

TEST(CIniFileTest, ASectionWithoutItsBracketEndsWithTheLine) {
    const CIniFile File("[S\na=1\n[\nb=2\n");
    EXPECT_THAT(File.Find("S", "a"), Pointee(std::string("1")));
    EXPECT_THAT(File.Find("", "b"), Pointee(std::string("2")));
}

TEST(CIniFileTest, AMissingFileIsNothing) {
    EXPECT_FALSE(CIniFile::Read("/nowhere/at/all.ini").has_value());
}

}  // namespace
