// What comes from outside into a run at the window: the line is cut and mended, an NC takes over.
#include <gmock/gmock.h>

#include <QTest>

#include "console/headbutton.h"
#include "console/headline.h"
#include "console/pagequestion.h"
#include "console/verdictband.h"
#include "contract/ncitems.h"
#include "contract/ncrequests.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvopc/inprocessopcserver.h"
#include "platform/rvopc/opcdatabase.h"
#include "tests/support/logcapture.h"
#include "tests/system/pagesfixture.h"

using testing::HasSubstr;
using testing::StartsWith;

namespace {

class WindowOutagesTest : public CPagesTestBase {
protected:
    std::string GetBand() { return FindPart<CVerdictBand>().GetText().toStdString(); }
    /// What a light tells, by what is wrong and what to do.
    std::string GetLight(std::size_t Place) {
        // Machine and configuration stand before the lights.
        return FindPart<CHeadLine>()
            .findChildren<QToolButton*>()
            .at(static_cast<int>(Place) + 1)
            ->accessibleDescription()
            .toStdString();
    }
    bool IsRunning() { return m_pSession->Look().m_bRunning; }
    bool IsQuestionOpen() { return FindPart<CPageQuestion>().IsOpen(); }
    void Cut(int Milliseconds) {
        m_pSession->GetSimulator()->Carry({{"fault", {{"kind", "cut_ms"}, {"value", Milliseconds}}}});
    }
    void RunIntoTheFirstMeasurement() {
        OpenInFront();
        Press("Pre-balance");
        Press("Fit as shown");
        Press("Next");
        Press("Start spindle");
        m_Loop.Advance(3500);
        Press("Next");
        ASSERT_EQ(GetState(), "eNeutralPosMeasurement");
    }
    void BalanceFromTheFirstMeasurement() {
        m_Loop.Advance(6000);
        for (int nMeasurement = 0; nMeasurement < 2; ++nMeasurement) {
            Press("Next");
            Press("Stop spindle");
            m_Loop.Advance(3000);
            Press("Fit as shown");
            Press("Next");
            Press("Start spindle");
            m_Loop.Advance(9000);
        }
    }
};

/// With an NC in this process that asks for something.
class NcTakesOverTest : public WindowOutagesTest {
protected:
    NcTakesOverTest() { COpcDatabase::GetInstance()->SetOpcLinkItem(NcItems::REQUEST, "request"); }
    void Ask(NcRequests::Request Wanted) {
        CInProcessOpcServer::Find("console")->Write("request", std::int32_t{Wanted});
        m_Loop.Advance(1000);
    }
    void RunBeyondTheFirstStep() {
        OpenInFront();
        Press("Pre-balance");
        Press("Fit as shown");
        Press("Next");
        ASSERT_EQ(GetState(), "eNeutralPosRPMStart");
    }
};

}  // namespace

TEST_F(WindowOutagesTest, ALineThatIsCutInAMeasurementIsToldAndTheRunGoesOnWhenItIsMended) {
    const CLogCapture Log;
    RunIntoTheFirstMeasurement();
    EXPECT_THAT(GetLight(CHeadState::eLink), Not(HasSubstr("cut")));
    const std::string Good = GetLight(CHeadState::eModule);
    Cut(5000);
    m_Loop.Advance(1000);
    EXPECT_FALSE(rvCOM::IsLinkOpen());
    EXPECT_THAT(GetBand(), StartsWith("No connection to "));
    EXPECT_THAT(GetBand(), HasSubstr("the line is cut"));
    EXPECT_THAT(GetLight(CHeadState::eLink), HasSubstr("the line is cut"));
    EXPECT_NE(GetLight(CHeadState::eModule), Good);
    EXPECT_TRUE(IsRunning()) << "an outage of seconds costs nobody his run";
    EXPECT_EQ(GetState(), "eNeutralPosMeasurement");
    m_Loop.Advance(10000);
    EXPECT_TRUE(rvCOM::IsLinkOpen());
    EXPECT_THAT(GetBand(), Not(HasSubstr("No connection")));
    EXPECT_THAT(GetLight(CHeadState::eLink), Not(HasSubstr("cut")));
    EXPECT_TRUE(IsRunning());
    BalanceFromTheFirstMeasurement();
    EXPECT_EQ(m_pSession->Look().m_Notification.GetStep(), CPreBalCodes::eSetupSuccess);
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.05);
    Press("Finish");
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
    EXPECT_TRUE(Log.GetAssertions().empty()) << Log.GetAssertions().front();
}

TEST_F(WindowOutagesTest, WithoutALineTheRunCanStillBeEnded) {
    RunIntoTheFirstMeasurement();
    Cut(600000);
    m_Loop.Advance(20000);
    EXPECT_TRUE(IsRunning());
    Press("End");
    EXPECT_TRUE(IsQuestionOpen());
    Press("End the run");
    EXPECT_FALSE(IsRunning());
    EXPECT_THAT(GetBand(), StartsWith("No connection to ")) << "nothing can be run now";
}

TEST_F(NcTakesOverTest, TheQuestionGoesAndThePanelTellsIt) {
    RunBeyondTheFirstStep();
    Press("End");
    ASSERT_TRUE(IsQuestionOpen());
    Press("Start spindle");
    m_Loop.Advance(3500);
    Ask(NcRequests::eNext);
    EXPECT_FALSE(IsQuestionOpen());
    EXPECT_EQ(GetMessage(), "The NC has taken over.");
    EXPECT_EQ(GetState(), "eNeutralPosMeasurement");
}

TEST_F(NcTakesOverTest, AnNcThatEndsTheRunTakesTheQuestionWithIt) {
    RunBeyondTheFirstStep();
    m_pWindow->close();
    m_Loop.Advance(500);
    ASSERT_TRUE(IsQuestionOpen());
    Ask(NcRequests::eEnd);
    EXPECT_FALSE(IsQuestionOpen());
    EXPECT_FALSE(IsRunning());
    EXPECT_TRUE(m_pWindow->isVisible()) << "nobody has answered that it shall close";
    EXPECT_EQ(GetMessage(), "The NC has taken over.");
    EXPECT_THAT(GetBand(), StartsWith("Ended before the final measurement"));
    EXPECT_NE(FindButton("Pre-balance"), nullptr);
}

TEST_F(NcTakesOverTest, ItIsToldOnceAndNotOfARunOfItsOwn) {
    OpenInFront();
    Ask(NcRequests::ePreBalance);
    ASSERT_TRUE(IsRunning());
    EXPECT_NE(GetMessage(), "The NC has taken over.") << "nobody had it before";
    Ask(NcRequests::eEnd);
    Press("Pre-balance");
    Ask(NcRequests::eNext);
    EXPECT_EQ(GetMessage(), "The NC has taken over.");
    m_pSession->Say("something else");
    Ask(NcRequests::eEnd);
    EXPECT_FALSE(IsRunning());
    EXPECT_EQ(GetMessage(), "something else");
}
