#include "platform/rvldb/languages.h"
#include "tests/support/testpaths.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Languages with gaps: each of the two lacks keys of the other.
class CLanguagesTest : public testing::Test {
protected:
    CLanguages m_Languages{LoadLanguageFiles(TestData("platform/rvldb/languages"))};
};

// The folder also holds a broken file of a third.
TEST_F(CLanguagesTest, LoadsWhatIsALanguageFile) {
    EXPECT_THAT(m_Languages.GetCodes(), ElementsAre("de", "en"));
    EXPECT_EQ(m_Languages.GetCurrent(), "en");
    EXPECT_FALSE(m_Languages.Choose("fr"));
}

TEST_F(CLanguagesTest, AKeyMissingInTheLanguageFallsBackToEnglish) {
    ASSERT_TRUE(m_Languages.Choose("de"));
    EXPECT_EQ(m_Languages.Find("BOTH"), "Beide");
    EXPECT_EQ(m_Languages.Find("ENGLISH_ONLY"), "English only");
}

TEST_F(CLanguagesTest, AKeyNotYetTranslatedFallsBackToEnglish) {
    ASSERT_TRUE(m_Languages.Choose("de"));
    EXPECT_EQ(m_Languages.Find("GERMAN_LATER"), "German later");
}

TEST_F(CLanguagesTest, AKeyMissingInEnglishTooGivesTheKey) {
    ASSERT_TRUE(m_Languages.Choose("de"));
    EXPECT_EQ(m_Languages.Find("NO_SUCH_KEY"), "NO_SUCH_KEY");
    ASSERT_TRUE(m_Languages.Choose("en"));
    EXPECT_EQ(m_Languages.Find("GERMAN_ONLY"), "GERMAN_ONLY");
}

TEST(CLanguagesWithoutFilesTest, GivesTheKeys) {
    CLanguages Languages(LoadLanguageFiles("/nowhere/at/all"));
    EXPECT_THAT(Languages.GetCodes(), IsEmpty());
    EXPECT_EQ(Languages.Find("BOTH"), "BOTH");
    EXPECT_FALSE(Languages.Choose("en"));
}

}  // namespace
