#include "console/language.h"

#include <gtest/gtest.h>

#include <QEvent>
#include <QLocale>
#include <QWidget>
#include <algorithm>

#include "platform/rvldb/gettext.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

class LanguageTest : public testing::Test {
protected:
    ~LanguageTest() override {
        UseLanguage("en");
        QLocale::setDefault(QLocale::c());
    }
    CTempDirectory m_Directory;
};

/// Counts what it is told.
class CToldWidget : public QWidget {
public:
    using QWidget::QWidget;
    int m_nTold = 0;

protected:
    void changeEvent(QEvent* pEvent) override { m_nTold += pEvent->type() == QEvent::LanguageChange ? 1 : 0; }
};

TEST_F(LanguageTest, WindowsAndWhatIsInThemAreTold) {
    QWidget Window;
    auto* const pChild = new CToldWidget(&Window);
    pChild->m_nTold = 0;
    ASSERT_TRUE(UseLanguage("de"));
    EXPECT_GE(pChild->m_nTold, 1);
    EXPECT_EQ(GetLanguage(), "de");
    EXPECT_EQ(QLocale().language(), QLocale::German);
}

TEST_F(LanguageTest, ALanguageThatIsNotThereChangesNothing) {
    UseLanguage("de");
    EXPECT_FALSE(UseLanguage("xx"));
    EXPECT_EQ(GetLanguage(), "de");
    EXPECT_EQ(QLocale().language(), QLocale::German);
}

TEST_F(LanguageTest, EachLanguageIsReachedByTheNextOne) {
    UseLanguage("en");
    const std::size_t nLanguages = GetLanguages().size();
    std::vector<std::string> Seen;
    for (std::size_t i = 0; i < nLanguages; ++i) {
        ASSERT_TRUE(UseLanguage(GetNextLanguage()));
        Seen.push_back(GetLanguage());
    }
    EXPECT_EQ(Seen.back(), "en") << "behind the last one the first";
    std::sort(Seen.begin(), Seen.end());
    EXPECT_EQ(Seen, GetLanguages());
}

TEST_F(LanguageTest, LanguagesCallThemselvesByTheirOwnName) {
    EXPECT_EQ(GetNativeName("de"), "Deutsch");
    EXPECT_EQ(GetNativeName("en"), "English");
}

TEST_F(LanguageTest, TheChoiceIsKept) {
    EXPECT_EQ(ReadChosenLanguage(m_Directory.GetPath()), "");
    ASSERT_TRUE(WriteChosenLanguage(m_Directory.GetPath(), "de"));
    EXPECT_EQ(ReadChosenLanguage(m_Directory.GetPath()), "de");
}

TEST_F(LanguageTest, AChoiceThatCannotBeWrittenIsTold) {
    EXPECT_FALSE(WriteChosenLanguage("/proc/nowhere", "de"));
}

TEST_F(LanguageTest, RubbishInTheFileIsNoLanguage) {
    WriteTestFile(m_Directory.At("panel.ini"), "\x80\xff[[[language=\n");
    EXPECT_EQ(ReadChosenLanguage(m_Directory.GetPath()), "");
}

}  // namespace
