// The demonstration in the window: a real run, explained.
#include <gmock/gmock.h>

#include "console/demoview.h"
#include "tests/system/mainwindowfixture.h"

namespace {

using testing::Contains;
using testing::HasSubstr;

class DemoTest : public CMainWindowTestBase {
protected:
    DemoTest() {
        m_Run.m_Options.m_bDemo = true;
        m_Run.m_Options.m_bProcedureGiven = true;
        Open();
    }
    CDemo& Demo() const {
        for (QWidget* pWidget : m_pWindow->findChildren<QWidget*>()) {
            if (auto* const pView = dynamic_cast<CDemoView*>(pWidget)) {
                return pView->GetDemo();
            }
        }
        throw std::logic_error("no demonstration");
    }
    /// Advances until it is so, and notes what is said on the way.
    bool PlayUntil(const std::function<bool()>& rDone, std::uint32_t Seconds = 400) {
        for (std::uint32_t i = 0; i < Seconds * 4; ++i) {
            if (m_Said.empty() || m_Said.back() != Demo().GetText()) {
                m_Said.push_back(Demo().GetText());
            }
            if (rDone()) {
                return true;
            }
            m_Loop.Advance(250);
        }
        return false;
    }

    std::vector<std::string> m_Said;
};

}  // namespace

TEST_F(DemoTest, PlaysAWholeRunByItselfAndExplainsEachStep) {
    ASSERT_TRUE(PlayUntil([this] { return !Demo().IsPlaying(); }));
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated()) << "it has been finished and kept";
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    for (const char* const pPart : {"cancel each other (Plane 1: 0°, 180°)", "the spindle is started",
                                    "confirmed with Next", "Measuring", "Measured: 1", "The test run",
                                    "stopped first", "The correction", "within the target of 5"}) {
        EXPECT_THAT(m_Said, Contains(HasSubstr(pPart)));
    }
    EXPECT_THAT(Demo().GetText(), HasSubstr("That was a whole run"));
}

TEST_F(DemoTest, NothingIsDoneBeforeTheWordsAreRead) {
    ASSERT_TRUE(PlayUntil([this] { return Demo().GetText().find("cancel") != std::string::npos; }));
    const std::uint32_t Time = Demo().GetTimeToRead();
    EXPECT_GT(Time, 5000U);
    m_Loop.Advance(Time - 500);
    EXPECT_TRUE(m_pSession->GetSimulator()->GetRotor().GetWeights(0).empty());
    m_Loop.Advance(1000);
    EXPECT_EQ(m_pSession->GetSimulator()->GetRotor().GetWeights(0).size(), 2U);
}

TEST_F(DemoTest, PausedItStandsStillAndHasAsMuchToReadAfterwards) {
    ASSERT_TRUE(PlayUntil([this] { return Demo().GetText().find("cancel") != std::string::npos; }));
    m_Loop.Advance(1000);
    Press("Pause");
    const std::uint32_t Time = Demo().GetTimeToRead();
    m_Loop.Advance(300000);
    EXPECT_TRUE(m_pSession->GetSimulator()->GetRotor().GetWeights(0).empty());
    EXPECT_EQ(Demo().GetTimeToRead(), Time);
    EXPECT_TRUE(Demo().IsPlaying()) << "a pause isn't standing still";
    Press("Go on");
    m_Loop.Advance(Time + 500);
    EXPECT_EQ(m_pSession->GetSimulator()->GetRotor().GetWeights(0).size(), 2U);
}

TEST_F(DemoTest, NextStepDoesAtOnceWhatIsAnnounced) {
    ASSERT_TRUE(PlayUntil([this] { return Demo().GetText().find("cancel") != std::string::npos; }));
    Press("Next step");
    EXPECT_EQ(m_pSession->GetSimulator()->GetRotor().GetWeights(0).size(), 2U);
}

TEST_F(DemoTest, TakenOverTheRunIsTheOnlookers) {
    ASSERT_TRUE(PlayUntil([this] { return Demo().GetText().find("cancel") != std::string::npos; }));
    Press("Take over");
    EXPECT_FALSE(Demo().IsPlaying());
    m_Loop.Advance(60000);
    EXPECT_EQ(GetState(), "eNeutralPosRemoveWeights");
    BalanceByButtons();
    EXPECT_EQ(m_pSession->Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
}

TEST_F(DemoTest, ARunThatIsEndedByItsSoftkeyEndsTheDemonstration) {
    ASSERT_TRUE(PlayUntil([this] { return Demo().GetText().find("started") != std::string::npos; }));
    m_pSession->SendAction(Actions::eTerminate, Actions::eCommit);
    m_Loop.Advance(1000);
    EXPECT_FALSE(Demo().IsPlaying());
    EXPECT_THAT(Demo().GetText(), HasSubstr("has ended"));
}
