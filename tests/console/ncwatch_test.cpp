#include "console/ncwatch.h"

#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"

namespace {

/// A run on the panel that a test changes between two looks.
class NcWatchTest : public testing::Test {
protected:
    NcWatchTest() {
        m_Watch.OnVerdictAccepted = [this](const CSituation& rSituation) {
            m_Accepted.push_back(rSituation.m_Progress.m_Readings[0].m_Amplitude);
        };
        m_Watch.OnVerdictMeasured = [this] { ++m_nMeasured; };
        m_Watch.Start();
    }

    void Show(std::int32_t Step, bool bComplete, double Amplitude = 3.0) {
        m_Situation.m_bRunning = true;
        m_Situation.m_Progress.m_State = "ePreBalanceMeasurement";
        m_Situation.m_Progress.m_Readings[0] = {true, bComplete, Amplitude, 0.0};
        m_Situation.m_Notification.m_Values[0] = Step;
        m_Situation.m_Notification.m_Values[1] = CPreBalCodes::eMeasure;
        m_Loop.Advance(CRunDriver::LOOK_PERIOD);
    }
    void End() {
        m_Situation = CSituation();
        m_Loop.Advance(CRunDriver::LOOK_PERIOD);
    }

    CVirtualEventLoop m_Loop;
    CSituation m_Situation;
    CNcWatch m_Watch{[this] { return m_Situation; }};
    std::vector<double> m_Accepted;
    int m_nMeasured = 0;
};

}  // namespace

TEST_F(NcWatchTest, RunThatIsEndedOnAWholeMeasurementHasFinished) {
    Show(CPreBalCodes::eSetup, false);
    Show(CPreBalCodes::eSetupSuccess, true);
    End();
    EXPECT_EQ(m_Watch.GetOutcome(), CRunDriver::Outcome::eFinished);
    EXPECT_EQ(m_Accepted, std::vector<double>{3.0});
}

// The first sample's verdict is no result: the average may be anything.
TEST_F(NcWatchTest, RunThatIsEndedWhileTheAverageFillsHasNoResult) {
    Show(CPreBalCodes::eSetupSuccess, false);
    End();
    EXPECT_EQ(m_Watch.GetOutcome(), CRunDriver::Outcome::eFailed);
    EXPECT_EQ(m_Watch.GetReason(), "the procedure was ended before the final measurement was complete");
    EXPECT_TRUE(m_Accepted.empty());
}

TEST_F(NcWatchTest, RunThatIsEndedAfterTheLockWasLostHasNoResult) {
    Show(CPreBalCodes::eSetupSuccess, true);
    Show(CPreBalCodes::eSetupSuccess, false, 134.0);
    End();
    EXPECT_EQ(m_Watch.GetOutcome(), CRunDriver::Outcome::eFailed);
    EXPECT_TRUE(m_Accepted.empty());
}

TEST_F(NcWatchTest, MeasuredVerdictIsToldOnceEachTimeThatItComesAbout) {
    Show(CPreBalCodes::eSetup, true);
    Show(CPreBalCodes::eSetupSuccess, false);
    EXPECT_EQ(m_nMeasured, 0);
    Show(CPreBalCodes::eSetupSuccess, true);
    Show(CPreBalCodes::eSetupSuccess, true);
    EXPECT_EQ(m_nMeasured, 1);
    Show(CPreBalCodes::eSetupSuccess, false);
    Show(CPreBalCodes::eSetupOverTarget, true);
    EXPECT_EQ(m_nMeasured, 2);
}
