// The language is switched in the window while it works.
#include <QTest>

#include "console/language.h"
#include "platform/rvldb/gettext.h"
#include "tests/system/pagesfixture.h"

namespace {

class WindowLanguageTest : public CPagesTestBase {
protected:
    WindowLanguageTest() { UseLanguage("en"); }
    ~WindowLanguageTest() override {
        Close();
        UseLanguage("en");
    }
    void Switch(const QString& rKey) {
        QAbstractButton* const pKey = FindButton(rKey);
        ASSERT_NE(pKey, nullptr) << rKey.toStdString();
        QTest::mouseClick(pKey, Qt::LeftButton);
        m_Loop.Advance(500);
    }
};

}  // namespace

TEST_F(WindowLanguageTest, PanelAndPageChangeAtOnceAndTheRunGoesOn) {
    OpenInFront();
    PressKey("Pre-balance");
    ASSERT_EQ(GetState(), "eNeutralPosRemoveWeights");
    const std::string English = m_pSession->Look().m_Progress.m_Instruction;
    Switch("Deutsch");
    EXPECT_EQ(GetLanguage(), "de");
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    EXPECT_NE(m_pSession->Look().m_Progress.m_Instruction, English);
    EXPECT_NE(FindButton("Ende"), nullptr) << "a softkey";
    EXPECT_NE(FindButton("Spindel starten"), nullptr) << "the machine";
    EXPECT_NE(FindButton("English"), nullptr) << "the way back";
    Switch("English");
    EXPECT_EQ(m_pSession->Look().m_Progress.m_Instruction, English);
    EXPECT_NE(FindButton("End"), nullptr);
}

TEST_F(WindowLanguageTest, TheChoiceIsKeptInTheInstallation) {
    OpenInFront();
    EXPECT_EQ(ReadChosenLanguage(m_Run.m_Installation.GetConfigDirectory()), "");
    Switch("Deutsch");
    EXPECT_EQ(ReadChosenLanguage(m_Run.m_Installation.GetConfigDirectory()), "de");
    Switch("English");
    EXPECT_EQ(ReadChosenLanguage(m_Run.m_Installation.GetConfigDirectory()), "en");
}
