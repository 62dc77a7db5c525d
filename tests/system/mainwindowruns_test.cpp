// Runs in the window one after the other, keys that are held, and what the machine's panel shows.
#include <QApplication>
#include <QMouseEvent>

#include "console/rotorview.h"
#include "platform/qt/qteventloop.h"
#include "platform/rvmdb/directsql.h"
#include "tests/system/mainwindowfixture.h"

namespace {

using nlohmann::json;

class MainWindowKeysTest : public CMainWindowTestBase {
protected:
    static void SendMouse(QAbstractButton& rButton, QEvent::Type What) {
        const QPointF Middle(rButton.rect().center());
        QMouseEvent Event(What, Middle, rButton.mapToGlobal(Middle), Qt::LeftButton,
                          What == QEvent::MouseButtonPress ? Qt::LeftButton : Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(&rButton, &Event);
    }
    CRotorView& GetRotorView() const {
        for (QWidget* pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pRotor = dynamic_cast<CRotorView*>(pWidget)) {
                return *pRotor;
            }
        }
        throw std::logic_error("no rotor");
    }
    std::vector<int> GetAngles() { return m_pSession->Look().GetAngles(0); }
    std::string GetLabel(const QString& rBeginning) const {
        for (const QLabel* pLabel : m_pWindow->findChildren<QLabel*>()) {
            if (pLabel->text().startsWith(rBeginning)) {
                return pLabel->text().toStdString();
            }
        }
        return {};
    }
};

}  // namespace

TEST_F(MainWindowKeysTest, AKeyThatRepeatsMovesTheWeightUntilItIsLetGo) {
    Open();
    Press("Pre-balance");
    Press("Change positions");
    QAbstractButton* const pKey = FindButton("Weight 1 +1°");
    ASSERT_NE(pKey, nullptr);
    const std::vector<int> Before = GetAngles();
    SendMouse(*pKey, QEvent::MouseButtonPress);
    m_Loop.Advance(3000);
    SendMouse(*pKey, QEvent::MouseButtonRelease);
    m_Loop.Advance(100);
    const std::vector<int> Held = GetAngles();  // told when the key is let go
    EXPECT_GT(Held.at(0), Before.at(0) + 5) << "it repeats";
    EXPECT_EQ(Held.at(1), Before.at(1));
    m_Loop.Advance(3000);
    EXPECT_EQ(GetAngles(), Held);
}

// The key down is the action; up it would be a second one.
TEST_F(MainWindowKeysTest, AKeyThatDoesNotRepeatActsOnce) {
    Open();
    Press("Pre-balance");
    Press("Fit as shown");
    QAbstractButton* const pNext = FindButton("Next");
    ASSERT_NE(pNext, nullptr);
    SendMouse(*pNext, QEvent::MouseButtonPress);
    m_Loop.Advance(500);
    const std::string State = GetState();
    EXPECT_EQ(State, "eNeutralPosRPMStart");
    SendMouse(*pNext, QEvent::MouseButtonRelease);
    m_Loop.Advance(500);
    EXPECT_EQ(GetState(), State);
}

TEST_F(MainWindowKeysTest, TheMachineIsShownAsItIs) {
    Open();
    EXPECT_EQ(GetLabel("0 "), "0 rpm, standing");
    Press("Truth");
    EXPECT_EQ(GetLabel("True unbalance"), "True unbalance: 0.8000");
    Press("Pre-balance");
    Press("Fit as shown");
    Press("Start spindle");
    m_Loop.Advance(5000);
    EXPECT_EQ(GetLabel("3000 "), "3000 rpm, locked");
    EXPECT_EQ(GetRotorView().accessibleName(), "Plane 1, weight 1 at 0°, weight 2 at 180°");
    Press("Stop spindle");
    m_Loop.Advance(5000);
    EXPECT_EQ(GetLabel("0 "), "0 rpm, standing");
}

// Whatever the configuration's rotation, scale and means are: the window fits what the page shows.
TEST_F(MainWindowKeysTest, ScrewsAreFittedAsShownWithTheScaleOfTheRotor) {
    m_Run.m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    m_Run.m_Rotor.m_Planes[0] = {{3.2, 77.0}, CRotorFile::eCounterClockwise, 24};
    m_Run.m_Rotor.m_Influence = {{{40.0, 40.0}}};
    m_Run.m_Options.m_Methods = {"screws"};
    Open();
    ASSERT_TRUE(GetRotorView().GetShown().m_bScrews);
    Press("Pre-balance");
    BalanceByButtons();
    EXPECT_EQ(m_pSession->Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)) * 40.0, 5.0);
    EXPECT_FALSE(m_pSession->GetSimulator()->GetRotor().GetScrews(0).empty());
}

TEST_F(MainWindowKeysTest, NothingIsFittedWhereNothingIsShown) {
    Open();
    Press("Fit as shown");
    EXPECT_TRUE(m_pSession->GetSimulator()->GetRotor().GetWeights(0).empty());
}

TEST_F(MainWindowOptionsTest, EachRunHasAReportOfItsOwn) {
    AskFor(COptions::Procedure::ePrebalance);
    Open();
    BalanceByButtons();
    Press("Finish");
    EXPECT_EQ(ReadReport()["procedure"], "prebalance");
    const std::size_t nSteps = ReadReport()["steps"].size();
    Press("Re-balance");
    EXPECT_TRUE(m_pSession->Look().m_bRunning);
    Press("End");
    const json Report = ReadReport(2);
    EXPECT_EQ(Report["procedure"], "rebalance");
    EXPECT_EQ(Report["exit"], 2);
    EXPECT_LT(Report["steps"].size(), nSteps);
    EXPECT_THAT(GetMessage(), testing::HasSubstr("report-2.json"));
    Press("Pre-balance");
    Press("End");
    EXPECT_EQ(ReadReport(3)["procedure"], "prebalance");
    EXPECT_EQ(ReadReport()["steps"].size(), nSteps) << "the first one is still there";
}

// The rotor is as the operator left it: nothing more is begun behind his back.
TEST_F(MainWindowOptionsTest, AfterARunThatIsEndedEarlyTheNextOneDoesNotBegin) {
    AskFor(COptions::Procedure::ePrebalance);
    Open();
    BalanceByButtons();
    Press("Finish");
    Close();
    AskFor(COptions::Procedure::ePrebalanceAndRebalance);
    Open();
    EXPECT_EQ(m_pSession->GetHost().GetActivity(), 1);
    Press("End");
    Press("End the run");
    m_Loop.Advance(1000);
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated()) << "so it could have begun";
    EXPECT_THAT(GetMessage(), testing::StartsWith("Report written"));
}

TEST_F(MainWindowOptionsTest, AResultThatCannotBeSavedWhenTheWindowClosesIsReportedAsAFailure) {
    Open();
    Press("Pre-balance");
    BalanceByButtons();
    Press("Finish");
    EXPECT_EQ(ReadReport()["exit"], 0);
    PreBalDB::CDirectSQL("sqlite:" + m_Run.m_Installation.GetDatabaseFile().string())
        .Execute(
            "CREATE TRIGGER sabotage BEFORE UPDATE ON configuration BEGIN SELECT RAISE(ABORT, 'disk "
            "trouble'); END");
    Press("Stop spindle");
    m_Loop.Advance(3000);
    Press("Pre-balance");
    BalanceByButtons();
    Close();
    EXPECT_EQ(ReadReport(2)["result"], "SetupSuccess");
    EXPECT_EQ(ReadReport(2)["exit"], 2);
}

TEST_F(MainWindowOptionsTest, AWindowThatClosesOnAResultBeginsNothingMore) {
    AskFor(COptions::Procedure::ePrebalanceAndRebalance);
    Open();
    BalanceByButtons();
    Close();
    const json Report = ReadReport();
    EXPECT_EQ(Report["procedure"], "prebalance");
    EXPECT_EQ(Report["exit"], 0);
}

TEST_F(MainWindowOptionsTest, ARunThatIsBrokenOffTogetherWithItsBeginningIsReported) {
    Open();
    QAbstractButton* const pStart = FindButton("Pre-balance");
    ASSERT_NE(pStart, nullptr);
    pStart->click();
    m_pWindow->BreakOff();  // no time in between
    const json Report = ReadReport();
    ASSERT_TRUE(Report.is_object());
    EXPECT_EQ(Report["procedure"], "prebalance");
    EXPECT_EQ(Report["steps"].size(), 1U);
    EXPECT_EQ(Report["exit"], 2);
    m_Loop.Advance(1000);
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
}

TEST_F(MainWindowOptionsTest, APictureThatCannotBeWrittenIsTold) {
    AskFor(COptions::Procedure::ePrebalance);
    m_Run.m_Options.m_ScreenshotDirectory = m_Directory.At("nowhere");
    Open();
    EXPECT_THAT(GetMessage(), testing::HasSubstr(m_Directory.At("nowhere")));
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights") << "the run goes on";
}

namespace {

/// On a line and with a machine that aren't there.
class MainWindowAloneTest : public testing::Test {
protected:
    MainWindowAloneTest() {
        m_Run.m_Options.m_bHeadless = false;
        m_Run.m_Options.m_Link = "serial:" + m_Directory.At("module");
        m_Run.m_Options.m_Machine = "tcp:127.0.0.1:1";  // where nobody listens
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
        m_pWindow = std::make_unique<CMainWindow>(*m_pSession);
        m_pWindow->show();
    }
    std::vector<QPushButton*> FindButtons(const QString& rText) const {
        std::vector<QPushButton*> Found;
        for (QPushButton* pButton : m_pWindow->findChildren<QPushButton*>()) {
            if (pButton->text().replace('\n', ' ') == rText) {
                Found.push_back(pButton);
            }
        }
        return Found;
    }

    CQtEventLoop m_Loop;
    CTempDirectory m_Directory;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
    std::unique_ptr<CConsoleSession> m_pSession;
    std::unique_ptr<CMainWindow> m_pWindow;
};

}  // namespace

TEST_F(MainWindowAloneTest, WhatTheMachineCannotDoIsTold) {
    constexpr std::uint32_t eTimeout = 120000;
    ASSERT_EQ(FindButtons("Start spindle").size(), 1U);
    FindButtons("Start spindle")[0]->click();
    EXPECT_TRUE(m_Loop.RunUntil(
        [&] { return GetMessage(*m_pWindow).contains("the machine at tcp:127.0.0.1:1"); }, eTimeout))
        << GetMessage(*m_pWindow).toStdString();
}

TEST_F(MainWindowAloneTest, BeforeTheModuleHasAnsweredThereIsNoKeyToPress) {
    for (const char* const pText : {"Pre-balance", "Re-balance", "Next page"}) {
        EXPECT_TRUE(FindButtons(pText).empty()) << pText;
    }
    for (const QPushButton* const pKey : FindButtons("")) {
        EXPECT_FALSE(pKey->isEnabled());
    }
}
