// The console with a screen, on Qt's offscreen platform and under virtual time: what an operator sees and
// presses.
#include <QTest>

#include "platform/qt/qteventloop.h"
#include "platform/qt/windowview.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/rvcom.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "tests/system/mainwindowfixture.h"

namespace {

using nlohmann::json;

class MainWindowTest : public CMainWindowTestBase {
protected:
    MainWindowTest() { Open(); }
};

/// With a value to edit in the page.
class MainWindowFocusTest : public CMainWindowTestBase {
protected:
    MainWindowFocusTest() {
        Open();
        m_Tree.Create(&m_pSession->GetHost(), CRect(0, 0, 300, 100), 1);
        m_pValue =
            m_Tree.Insert(std::make_unique<PropTree::CPropTreeItemSpinEdit<double>>(0.0, 100.0, 5.0, 0.1));
    }
    ~MainWindowFocusTest() override { m_Tree.DestroyWindow(); }

    void SetUp() override {
        m_pWindow->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(m_pWindow.get()));
    }
    QWidget* Find(const CWnd& rWnd) {
        for (QWidget* pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pView = dynamic_cast<CWindowView*>(pWidget)) {
                return pView->FindWidget(rWnd);
            }
        }
        return nullptr;
    }

    PropTree::CPropTree m_Tree;
    PropTree::CPropTreeItemSpinEdit<double>* m_pValue = nullptr;
};

/// On a line that may not be there.
class MainWindowLinkTest : public testing::Test {
protected:
    static constexpr std::uint32_t eTimeout = 120000;

    /// What the window says of the connection; empty if nothing is missing.
    static std::string GetNotice(const CMainWindow& rWindow) {
        const auto* const pBand = rWindow.findChild<QWidget*>("VerdictBand");
        return pBand->isVisibleTo(&rWindow) ? pBand->accessibleName().toStdString() : std::string();
    }

    CQtEventLoop m_Loop;
    CTempDirectory m_Directory;
    CWholeRun m_Run{CRotorFile::GetBuiltIn()};
};

}  // namespace

TEST_F(MainWindowTest, RebalancingCannotBePressedBeforeACalibration) {
    ASSERT_NE(FindButton("Pre-balance"), nullptr);
    EXPECT_TRUE(FindButton("Pre-balance")->isEnabled());
    ASSERT_NE(FindButton("Re-balance"), nullptr);
    EXPECT_FALSE(FindButton("Re-balance")->isEnabled());
}

TEST_F(MainWindowTest, AWholePreBalancingByButtonsBalancesTheRotor) {
    Press("Pre-balance");
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    BalanceByButtons();
    if (const char* pFile = std::getenv("ROTOR_TRIM_WINDOW_PICTURE")) {
        m_pWindow->grab().save(pFile);
    }
    EXPECT_EQ(m_pSession->Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    Press("Finish");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    ASSERT_NE(FindButton("Re-balance"), nullptr);
    EXPECT_TRUE(FindButton("Re-balance")->isEnabled());
}

TEST_F(MainWindowOptionsTest, WithoutAProcedureItBeginsInTheConfiguration) {
    Open();
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_EQ(CountPictures(), 0U);
}

TEST_F(MainWindowOptionsTest, BeginsWithTheProcedureAndReportsItWhenItIsFinished) {
    AskFor(COptions::Procedure::ePrebalance);
    Open();
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    BalanceByButtons();
    EXPECT_FALSE(ReadReport().is_object()) << "not before its end";
    Press("Finish");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    const json Report = ReadReport();
    ASSERT_TRUE(Report.is_object());
    EXPECT_EQ(Report["procedure"], "prebalance");
    EXPECT_EQ(Report["result"], "SetupSuccess");
    EXPECT_EQ(Report["exit"], 0);
    EXPECT_EQ(Report["calibrated_rpm"], 3000);
    // 0.8 of a weight at 150 counts a weight, at the sensor.
    EXPECT_NEAR(Report["initial"][0]["amplitude"].get<double>(), 120.0, 3.0);
    EXPECT_LT(Report["final"][0]["amplitude"].get<double>(), 5.0);
    EXPECT_EQ(Report["positions"][0]["weights"].size(), 2U);
    EXPECT_EQ(Report["inv_a"].size(), 2U);
    EXPECT_TRUE(Report["assertions"].empty()) << Report["assertions"];
    EXPECT_GE(Report["steps"].size(), 10U);
    EXPECT_GE(CountPictures(), Report["steps"].size());
}

TEST_F(MainWindowOptionsTest, TheProceduresThatAreAskedForFollowEachOtherInOneReport) {
    AskFor(COptions::Procedure::ePrebalanceAndRebalance);
    Open();
    BalanceByButtons();
    Press("Finish");
    m_Loop.Advance(500);
    EXPECT_EQ(m_pSession->GetHost().GetActivity(), 2) << "the re-balancing has begun by itself";
    Press("End");
    const json Report = ReadReport();
    EXPECT_EQ(Report["procedure"], "prebalance+rebalance");
    EXPECT_EQ(Report["exit"], 2) << "the second one was ended before its verdict";
    EXPECT_NEAR(Report["initial"][0]["amplitude"].get<double>(), 120.0, 3.0);
    m_Loop.Advance(1000);
    EXPECT_FALSE(m_pSession->Look().m_bRunning) << "begun once";
}

TEST_F(MainWindowOptionsTest, ARebalancingThatIsNotPossibleYetIsToldAndNothingRuns) {
    AskFor(COptions::Procedure::eRebalance);
    Open();
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_THAT(GetMessage(), testing::HasSubstr("not calibrated"));
}

TEST_F(MainWindowOptionsTest, ARunThatIsUnderWayWhenTheWindowClosesIsReported) {
    Open();
    Press("Pre-balance");
    Close();
    const json Report = ReadReport();
    ASSERT_TRUE(Report.is_object());
    EXPECT_EQ(Report["result"], "Setup");
    EXPECT_EQ(Report["exit"], 2);
}

/// As closing the window in the final measurement always did.
TEST_F(MainWindowOptionsTest, AResultThatStandsWhenTheWindowClosesIsKept) {
    AskFor(COptions::Procedure::ePrebalance);
    Open();
    BalanceByButtons();
    Close();
    EXPECT_EQ(ReadReport()["exit"], 0);
    m_Run.m_Options.m_bProcedureGiven = false;
    Open();
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
}

TEST_F(MainWindowOptionsTest, AResultThatStandsWhenTheRunIsBrokenOffIsNotKept) {
    AskFor(COptions::Procedure::ePrebalance);
    Open();
    BalanceByButtons();
    m_pWindow->BreakOff();
    Close();
    EXPECT_EQ(ReadReport()["exit"], 2);
    m_Run.m_Options.m_bProcedureGiven = false;
    Open();
    EXPECT_FALSE(m_pSession->GetHost().IsCalibrated());
}

TEST_F(MainWindowLinkTest, OpensWithoutItsLinkNamesItAndTakesItWhenItComes) {
    const std::string Port = m_Directory.At("module");
    m_Run.m_Options.m_bHeadless = false;
    m_Run.m_Options.m_Link = "serial:" + Port;
    m_Run.m_Options.m_Addresses = {17};
    CConsoleSession Session(m_Run.m_Options, &m_Run.m_Rotor, m_Run.m_Installation.GetDatabaseFile().string());
    CMainWindow Window(Session);
    Window.show();
    ASSERT_TRUE(m_Loop.RunUntil([] { return !rvCOM::GetOutageReason().empty(); }, eTimeout));
    const auto Names = [&Window](const char* pBeginning) {
        const std::string Notice = GetNotice(Window);
        return Notice.starts_with(pBeginning) && Notice.find("17") != std::string::npos;
    };
    const auto TellsWhy = [&Window] {
        return GetNotice(Window).find("is the path right") != std::string::npos;
    };
    EXPECT_TRUE(m_Loop.RunUntil(TellsWhy, eTimeout)) << GetNotice(Window);
    EXPECT_TRUE(Names("No connection to serial:")) << GetNotice(Window);
    EXPECT_NE(GetNotice(Window).find(Port), std::string::npos);

    // Another module than the one asked for, then the right one.
    for (const std::uint8_t Address : std::initializer_list<std::uint8_t>{18, 17}) {
        std::string Error;
        const auto pSimulator =
            CSimulator::Create(m_Run.m_Rotor, MakeListeningLink("pty:" + Port, Error), {Address}, Error);
        ASSERT_NE(pSimulator, nullptr) << Error;
        pSimulator->Open();
        if (Address == 18) {
            EXPECT_TRUE(m_Loop.RunUntil([&] { return Names("Waiting for the balancing module"); }, eTimeout))
                << GetNotice(Window);
        } else {
            EXPECT_TRUE(m_Loop.RunUntil([&] { return Session.GetHost().IsConfigured(); }, eTimeout));
            EXPECT_TRUE(m_Loop.RunUntil([&] { return GetNotice(Window).empty(); }, eTimeout))
                << GetNotice(Window);
        }
    }
    EXPECT_TRUE(m_Loop.RunUntil([&] { return Names("No connection to serial:"); }, eTimeout))
        << "a link that is lost is told likewise";
}

TEST_F(MainWindowLinkTest, WithoutAWindowALinkThatCannotBeOpenedIsAnError) {
    m_Run.m_Options.m_Link = "serial:" + m_Directory.At("module");
    EXPECT_THROW(CConsoleSession(m_Run.m_Options, nullptr, m_Run.m_Installation.GetDatabaseFile().string()),
                 CSessionError);
}

TEST_F(MainWindowFocusTest, AnOpenEditOutlastsThePressOfASoftkey) {
    QWidget* const pList = Find(m_Tree.GetList());
    ASSERT_NE(pList, nullptr);
    QTest::mouseClick(pList, Qt::LeftButton, Qt::NoModifier, QPoint(m_Tree.GetOrigin() + 30, 14));
    QWidget* const pBox = Find(m_pValue->GetEdit());
    ASSERT_NE(pBox, nullptr);
    ASSERT_EQ(QApplication::focusWidget(), pBox);
    QTest::keyClicks(pBox, "2");
    QAbstractButton* const pKey = FindButton("Pre-balance");
    ASSERT_NE(pKey, nullptr);
    QTest::mousePress(pKey, Qt::LeftButton);
    EXPECT_TRUE(m_pSession->Look().m_bRunning) << "the key has been told";
    EXPECT_TRUE(m_pValue->IsActive());
    QTest::mouseRelease(pKey, Qt::LeftButton);
    m_Loop.Advance(500);
    EXPECT_TRUE(m_pValue->IsActive());
    EXPECT_EQ(QApplication::focusWidget(), pBox);
    QTest::keyClicks(pBox, "5");
    QTest::keyClick(pBox, Qt::Key_Return);
    EXPECT_FALSE(m_pValue->IsActive());
    EXPECT_EQ(m_pValue->GetItemValue(), 25.0);
}
