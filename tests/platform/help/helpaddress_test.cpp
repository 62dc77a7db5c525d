#include "platform/help/helpaddress.h"

#include <gtest/gtest.h>

namespace {

TEST(HelpAddressTest, IsReadAsTheModuleWritesIt) {
    const auto Address =
        CHelpAddress::Parse(R"(mk:@MSITStore:\opt\corvane\ctrl\help\en_Falconet.chm::/PB_001.htm)");
    ASSERT_TRUE(Address.has_value());
    EXPECT_EQ(Address->m_File, "/opt/corvane/ctrl/help/en_Falconet.chm");
    EXPECT_EQ(Address->m_Page, "PB_001.htm");
    EXPECT_EQ(Address->m_Anchor, "");
    EXPECT_EQ(Address->GetFileName(), "en_Falconet.chm");
    EXPECT_EQ(Address->GetDirectory(), "/opt/corvane/ctrl/help");
}

TEST(HelpAddressTest, TakesEitherSeparatorAnyCaseAndAnAnchor) {
    const auto Address = CHelpAddress::Parse(R"(MK:@msitstore:/a\b/c.chm::\d\e.htm#f)");
    ASSERT_TRUE(Address.has_value());
    EXPECT_EQ(Address->m_File, "/a/b/c.chm");
    EXPECT_EQ(Address->m_Page, "d/e.htm");
    EXPECT_EQ(Address->m_Anchor, "f");
    EXPECT_EQ(Address->MakeUrl(), "mk:@MSITStore:/a/b/c.chm::/d/e.htm#f");
}

TEST(HelpAddressTest, ADirectoryMayHoldWhatMeansSomethingElsewhere) {
    const auto Address = CHelpAddress::Parse("mk:@MSITStore:/a::/b #1 %s %20/Größe?.chm::/x.htm");
    ASSERT_TRUE(Address.has_value());
    EXPECT_EQ(Address->m_File, "/a::/b #1 %s %20/Größe?.chm");
    EXPECT_EQ(Address->m_Page, "x.htm");
}

TEST(HelpAddressTest, AFileMayStandWithoutAPage) {
    const auto Address = CHelpAddress::Parse("mk:@MSITStore:/a.chm::");
    ASSERT_TRUE(Address.has_value());
    EXPECT_EQ(Address->m_Page, "");
}

TEST(HelpAddressTest, AnythingElseIsNone) {
    for (const char* pUrl : {"", "mk:", "mk:@MSITStore:", "mk:@MSITStore:::/x.htm", "mk:@MSITStore:/a.chm",
                             "http://example.org/a.chm::/x.htm", "/a.chm::/x.htm", "::/"}) {
        EXPECT_FALSE(CHelpAddress::Parse(pUrl).has_value()) << pUrl;
    }
}

TEST(HelpAddressTest, ATopicHasItsPageInTheFileOfTheLanguage) {
    EXPECT_EQ(CHelpAddress::OfTopic("\\a\\ctrl\\help", "de", "PB_007").MakeUrl(),
              "mk:@MSITStore:/a/ctrl/help/de_Falconet.chm::/PB_007.htm");
}

}  // namespace
