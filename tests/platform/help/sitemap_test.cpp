#include "platform/help/sitemap.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace SiteMap {

bool operator==(const CEntry& rLeft, const CEntry& rRight) {
    return rLeft.m_Name == rRight.m_Name && rLeft.m_Page == rRight.m_Page &&
           rLeft.m_nDepth == rRight.m_nDepth;
}

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

TEST(SiteMapTest, HasNamesPagesAndDepths) {
    EXPECT_THAT(
        Parse(R"(<html><body><UL><LI><OBJECT type="text/sitemap">
            <param name="Name" value="Größe &amp; &quot;Maß&quot;"></OBJECT>
            <ul><li><object type="text/sitemap">
            <param name="Local" value="a.htm"><param name="Name" value="A"></object></ul>
            <li><object><param name="Name" value="B"><param name="Local" value="b.htm"></object></UL>)"),
        ElementsAre(CEntry{"Größe & \"Maß\"", "", 0}, CEntry{"A", "a.htm", 1}, CEntry{"B", "b.htm", 0}));
}

TEST(SiteMapTest, LeavesOutWhatCannotBeUnderstood) {
    EXPECT_THAT(Parse(""), IsEmpty());
    EXPECT_THAT(Parse("no tags"), IsEmpty());
    EXPECT_THAT(Parse("<"), IsEmpty());
    EXPECT_THAT(Parse("<object><param name=\"Local\" value=\"a.htm\"></object>"), IsEmpty()) << "no name";
    EXPECT_THAT(Parse("<object><param name=\"Name\" value=\"open"), IsEmpty());
    EXPECT_THAT(Parse("</ul></ul><object><param name=\"Name\" value=\"A\"></object>"),
                ElementsAre(CEntry{"A", "", 0}));
}

TEST(SiteMapTest, IsLimitedInDepthAndLength) {
    std::string Deep;
    for (int i = 0; i < 1000; ++i) {
        Deep += "<ul>";
    }
    Deep += "<object><param name=\"Name\" value=\"A\"></object>";
    EXPECT_THAT(Parse(Deep), ElementsAre(CEntry{"A", "", MAX_DEPTH}));
    std::string Long;
    for (std::size_t i = 0; i < MAX_ENTRIES + 10; ++i) {
        Long += "<object><param name=\"Name\" value=\"A\"></object>";
    }
    EXPECT_EQ(Parse(Long).size(), MAX_ENTRIES);
}

}  // namespace

}  // namespace SiteMap
