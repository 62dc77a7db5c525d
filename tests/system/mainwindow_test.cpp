// The console with a screen, on Qt's offscreen platform and under virtual time: what an operator sees and
// presses.
#include "console/mainwindow.h"

#include <gtest/gtest.h>

#include <QLabel>
#include <QPushButton>

#include "platform/system/virtualeventloop.h"
#include "tests/system/wholerun.h"

namespace {

class MainWindowTest : public testing::Test {
protected:
    MainWindowTest()
        : m_Run(CRotorFile::GetBuiltIn()),
          m_Session(m_Run.m_Options, &m_Run.m_Rotor, m_Run.m_Installation.GetDatabaseFile().string()),
          m_Window(m_Session) {
        m_Window.show();
        m_Loop.Advance(3000);
    }

    QPushButton* FindButton(const QString& rText) {
        for (QPushButton* pButton : m_Window.findChildren<QPushButton*>()) {
            if (pButton->text() == rText) {
                return pButton;
            }
        }
        return nullptr;
    }
    void Press(const QString& rText) {
        QPushButton* pButton = FindButton(rText);
        ASSERT_NE(pButton, nullptr) << rText.toStdString();
        ASSERT_TRUE(pButton->isEnabled()) << rText.toStdString();
        pButton->click();
        m_Loop.Advance(500);
    }

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run;
    CConsoleSession m_Session;
    CMainWindow m_Window;
};

}  // namespace

TEST_F(MainWindowTest, RebalancingCannotBePressedBeforeACalibration) {
    ASSERT_NE(FindButton("Pre-balance"), nullptr);
    EXPECT_TRUE(FindButton("Pre-balance")->isEnabled());
    ASSERT_NE(FindButton("Re-balance"), nullptr);
    EXPECT_FALSE(FindButton("Re-balance")->isEnabled());
}

TEST_F(MainWindowTest, AWholePreBalancingByButtonsBalancesTheRotor) {
    const auto GetState = [this] { return m_Session.Look().m_Progress.m_State; };
    Press("Pre-balance");
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    Press("Fit as shown");
    Press("Next");
    Press("Start spindle");
    m_Loop.Advance(3500);
    Press("Next");
    m_Loop.Advance(6000);
    Press("Next");
    EXPECT_EQ(GetState(), "eTestUnbalanceSpindleStop");
    Press("Stop spindle");
    m_Loop.Advance(3000);
    EXPECT_EQ(GetState(), "eTestUnbalanceSetWeights");
    Press("Fit as shown");
    Press("Next");
    Press("Start spindle");
    m_Loop.Advance(9000);
    Press("Next");
    Press("Stop spindle");
    m_Loop.Advance(3000);
    EXPECT_EQ(GetState(), "ePreBalanceSetWeights");
    Press("Fit as shown");
    Press("Next");
    Press("Start spindle");
    m_Loop.Advance(9000);
    if (const char* pFile = std::getenv("ROTOR_TRIM_WINDOW_PICTURE")) {
        m_Window.grab().save(pFile);
    }
    EXPECT_EQ(m_Session.Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
    EXPECT_LT(std::abs(m_Session.GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    Press("Finish");
    EXPECT_FALSE(m_Session.Look().m_bRunning);
    ASSERT_NE(FindButton("Re-balance"), nullptr);
    EXPECT_TRUE(FindButton("Re-balance")->isEnabled());
}
