#include "platform/system/linesplitter.h"

#include <gmock/gmock.h>

#include <string>
#include <vector>

using testing::ElementsAre;

namespace {

std::vector<std::uint8_t> ToBytes(const std::string& rText) {
    return {rText.begin(), rText.end()};
}

TEST(LineSplitterTest, CutsPortionsIntoLines) {
    std::vector<std::string> Lines;
    CLineSplitter Splitter([&](const std::string& rLine) { Lines.push_back(rLine); }, [] { FAIL(); });
    for (const char* pPortion : {"a", "b\nc\r\n", "\n", "d"}) {
        Splitter.Put(ToBytes(pPortion));
    }
    EXPECT_THAT(Lines, ElementsAre("ab", "c", ""));
    Splitter.Put(ToBytes("\n"));
    EXPECT_EQ(Lines.back(), "d");
}

TEST(LineSplitterTest, ThrowsAnOverlongLineAwayAndGoesOn) {
    std::vector<std::string> Lines;
    int nOverlong = 0;
    CLineSplitter Splitter([&](const std::string& rLine) { Lines.push_back(rLine); }, [&] { ++nOverlong; });
    Splitter.Put(ToBytes(std::string(65536, 'x') + "\n"));
    EXPECT_EQ(nOverlong, 0);
    Splitter.Put(ToBytes(std::string(65537, 'y')));
    EXPECT_EQ(nOverlong, 0);
    Splitter.Put(ToBytes("\nz\n"));
    EXPECT_EQ(nOverlong, 1);
    ASSERT_EQ(Lines.size(), 2U);
    EXPECT_EQ(Lines[0].size(), 65536U);
    EXPECT_EQ(Lines[1], "z");
}

TEST(LineSplitterTest, ResetForgetsWhatHasBegun) {
    std::vector<std::string> Lines;
    CLineSplitter Splitter([&](const std::string& rLine) { Lines.push_back(rLine); }, [] { FAIL(); });
    Splitter.Put(ToBytes(std::string(70000, 'x')));
    Splitter.Reset();
    Splitter.Put(ToBytes("a\n"));
    EXPECT_THAT(Lines, ElementsAre("a"));
}

}  // namespace
