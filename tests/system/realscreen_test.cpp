// The window in real time, offscreen or on a real display (ROTOR_TRIM_TEST_PLATFORM): a whole run by its
// keys, on the whole screen, while the language is switched.
#include <QScreen>
#include <QTest>

#include "console/language.h"
#include "console/operatorrules.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvldb/gettext.h"
#include "tests/system/mainwindowfixture.h"

namespace {

/// Ten times what it takes on a quiet machine.
constexpr std::uint32_t RUN_TIMEOUT = 300000;

class RealScreenTest : public testing::Test {
protected:
    RealScreenTest() {
        m_Run.m_Options.m_bHeadless = false;
        m_Run.m_Rotor.m_RampRpmPerS = 100000.0;
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
        m_pWindow = std::make_unique<CMainWindow>(*m_pSession);
    }
    ~RealScreenTest() override {
        m_pWindow.reset();
        m_pSession.reset();
        SetLanguage("en");
    }

    QAbstractButton* FindButton(const QString& rText) {
        for (QAbstractButton* const pButton : m_pWindow->findChildren<QAbstractButton*>()) {
            if (pButton->text().replace('\n', ' ') == rText) {
                return pButton;
            }
        }
        return nullptr;
    }
    void Click(const std::string& rText) {
        QAbstractButton* const pButton = FindButton(QString::fromStdString(rText));
        ASSERT_NE(pButton, nullptr) << rText;
        QTest::mouseClick(pButton, Qt::LeftButton);
        Wait(500);
    }
    void Type(Qt::Key Key) {
        QTest::keyClick(m_pWindow.get(), Key);
        Wait(500);
    }
    void Wait(std::uint32_t Milliseconds) {
        m_Loop.RunUntil([] { return false; }, Milliseconds);
    }
    /// Does what the page asks for until there is a verdict to judge.
    bool Balance() {
        const std::uint64_t End = m_Loop.Now() + RUN_TIMEOUT;
        while (m_Loop.Now() < End && !HasFatalFailure()) {
            switch (ChooseDeed(m_pSession->Look())) {
                case Deed::eWait:
                    Wait(100);
                    break;
                case Deed::eStopSpindle:
                    Click(GetText("CONSOLE_STOP"));
                    break;
                case Deed::eStartSpindle:
                    Click(GetText("CONSOLE_START"));
                    break;
                case Deed::eFitAndConfirm:
                    Click(GetText("CONSOLE_FIT"));
                    Type(Qt::Key_F1);
                    break;
                case Deed::eConfirm:
                    Type(Qt::Key_F1);
                    break;
                case Deed::eJudge:
                    return true;
                case Deed::eGiveUp:
                    return false;
            }
        }
        return false;
    }

    CQtEventLoop m_Loop;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    std::unique_ptr<CConsoleSession> m_pSession;
    std::unique_ptr<CMainWindow> m_pWindow;
};

}  // namespace

TEST_F(RealScreenTest, AWholeRunOnTheWholeScreenInBothLanguages) {
    m_pWindow->setGeometry(m_pWindow->screen()->geometry());
    m_pWindow->showFullScreen();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(m_pWindow.get()));
    EXPECT_EQ(m_pWindow->frameGeometry(), m_pWindow->screen()->geometry());
    ASSERT_TRUE(m_Loop.RunUntil([this] { return m_pSession->GetHost().IsConfigured(); }, RUN_TIMEOUT));
    Wait(1000);
    Type(Qt::Key_F1);
    ASSERT_TRUE(m_pSession->Look().m_bRunning);
    EXPECT_NE(FindButton("Fit as shown"), nullptr);
    Click(GetNativeName("de"));
    EXPECT_EQ(FindButton("Fit as shown"), nullptr) << "all of it follows";
    EXPECT_NE(FindButton(QString::fromStdString(GetText("CONSOLE_FIT"))), nullptr);
    ASSERT_TRUE(Balance()) << m_pSession->Look().m_Progress.m_State;
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    Click(GetNativeName("en"));
    EXPECT_NE(FindButton("Fit as shown"), nullptr);
    Type(Qt::Key_F8);
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
    Type(Qt::Key_F11);
    EXPECT_FALSE(m_pWindow->isFullScreen());
}
