// Whole runs from end to end: the good order, and what goes wrong in the middle.
#include "tests/system/wholerun.h"
#include "contract/warnings.h"

#include <gtest/gtest.h>

#include "platform/rvmdb/prebaldatabase.h"

namespace {

using Procedure = COptions::Procedure;

/// Noise of 1.5 counts, averaged over 40 samples, and positions in whole degrees leave less than this of the
/// built-in rotor (150 counts per weight).
constexpr double SMALL = 0.05;

CRotorFile MakeQuietRotor() {
    CRotorFile Rotor = CRotorFile::GetBuiltIn();
    Rotor.m_NoiseCounts = 0.0;
    return Rotor;
}

}  // namespace

TEST(WholeRun, BuiltInRotorIsBalancedInGoodOrder) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "SetupSuccess");
    EXPECT_TRUE(Run.GetAssertions().empty());
    EXPECT_EQ(Run.m_Report["calibrated_rpm"], 3000);
    EXPECT_LT(std::abs(Run.m_Residual), SMALL);
    EXPECT_EQ(Run.m_Report["steps"].front()["of"], 11);
}

TEST(WholeRun, StartWithTheSpindleTurningCountsTwelveSteps) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    EXPECT_EQ(Run.Run(Procedure::ePrebalance, true), eExitWithinTarget);
    EXPECT_EQ(Run.m_Report["steps"].front()["of"], 12);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(WholeRun, RebalancingNeedsOneMeasurementAndNoTestRun) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    Run.m_Rotor.m_Planes[0].m_Unbalance = {0.9, 130.0};
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "RebalSuccess");
    EXPECT_EQ(Run.CountActions(CPreBalCodes::eMeasurementValuesOK), 1U);
    EXPECT_TRUE(Run.GetAssertions().empty());
    EXPECT_LT(std::abs(Run.m_Residual), SMALL);
}

TEST(WholeRun, RebalancingMayBeRepeated) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    for (const double AngleDeg : {130.0, 140.0, 150.0}) {
        Run.m_Rotor.m_Planes[0].m_Unbalance = {0.9, AngleDeg};
        EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitWithinTarget) << AngleDeg;
        EXPECT_LT(std::abs(Run.m_Residual), SMALL) << AngleDeg;
    }
}

TEST(WholeRun, RebalancingWithoutACalibrationIsRefusedWithAWordOfWhatToDo) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitFailed);
    EXPECT_TRUE(Run.HasLine("--procedure prebalance"));
}

TEST(WholeRun, SameSeedGivesTheSameReportByteForByte) {
    const auto Report = [] {
        CWholeRun Run(CRotorFile::GetBuiltIn());
        Run.Run(Procedure::ePrebalanceAndRebalance);
        return Run.m_Report.dump(2);
    };
    EXPECT_EQ(Report(), Report());
}

TEST(WholeRun, CorrectionBeyondTheWeightsCapacityWarnsWithThePercentageAndTheRunGoesOn) {
    CRotorFile Rotor = MakeQuietRotor();
    // The test run adds 0.52 weights in direction 255 degrees (on a clockwise scale one weight goes from 0 to
    // -30 degrees), so the unbalance grows in length: an effect of more than 5 percent. The influence is
    // large, so that whole counts don't blur the percentage.
    Rotor.m_Planes[0].m_Unbalance = {2.4, 255.0};
    Rotor.m_Influence[0][0].m_Amplitude = 2000.0;
    CWholeRun Run(Rotor);
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_EQ(Run.GetResult(), "SetupOverTarget");
    EXPECT_TRUE(Run.HasWarning(6));
    // (2.4 - 1.95) / 1.95 is 23.1 percent.
    EXPECT_TRUE(Run.HasLine("(23%)"));
    // As far as two weights go: together in one direction they take 2 away.
    EXPECT_NEAR(std::abs(Run.m_Residual), 0.4, 0.05);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(WholeRun, TestWeightsWithoutEffectFailWithWarningFive) {
    CWholeRun Run(MakeQuietRotor());
    // Somebody forgets to move the weight, but confirms.
    Run.OnSituation = [](const CSituation& rSituation, CConsoleSession& rSession) {
        if (rSituation.m_Progress.m_State == "eTestUnbalanceRPMStart") {
            rSession.GetSimulator()->Carry({{"weights", {{"plane", 1}, {"angles", {0, 180}}}}});
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.GetResult(), "Failure");
    EXPECT_TRUE(Run.HasWarning(5));
    EXPECT_TRUE(Run.GetAssertions().empty());
}

TEST(WholeRun, DeadSensorFailsWithWarningFiveAndTheHostLives) {
    CRotorFile Rotor = MakeQuietRotor();
    Rotor.m_Influence[0][0].m_Amplitude = 0.0;
    CWholeRun Run(Rotor);
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.GetResult(), "Failure");
    EXPECT_TRUE(Run.HasWarning(5));
}

namespace {

struct CAbortCase {
    const char* m_pName;
    const char* m_pRequest;
    std::uint32_t m_Warning;
};

/// The module changes in the middle of a run: the run is broken off with its warning, and the calibration of
/// before is in the database as it was.
class AbortInTheMiddle : public testing::TestWithParam<CAbortCase> {};

/// Everything of the stored calibration, bit by bit.
std::string ReadStored(const CWholeRun& rRun) {
    PreBalDB::SetDatabaseConnection("sqlite:" + rRun.m_Installation.GetDatabaseFile().string());
    PreBalDB::CPreBalDatabase Database(rRun.m_MachineName);
    PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
    const math::matrix<double>& rInvA = rEntry.CreateSinglePlane().GetInvA();
    const math::matrix<double>& rUA = rEntry.CreateSinglePlane().GetUA();
    std::string Text = rEntry.IsCalibrated() ? "calibrated" : "not calibrated";
    for (const double Value : {rInvA(0, 0), rInvA(0, 1), rInvA(1, 0), rInvA(1, 1), rUA(0, 0), rUA(1, 0),
                               static_cast<double>(rEntry.GetCalibratedRPM())}) {
        char Buffer[64];
        std::snprintf(Buffer, sizeof Buffer, " %a", Value);
        Text += Buffer;
    }
    return Text;
}

}  // namespace

TEST_P(AbortInTheMiddle, EndsWithItsWarningAndKeepsTheOldCalibration) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    const std::string Before = ReadStored(Run);
    ASSERT_TRUE(Before.starts_with("calibrated"));

    bool bDone = false;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
        if (!bDone && rSituation.m_Progress.m_State == "eTestUnbalanceMeasurement") {
            bDone = true;
            rSession.GetSimulator()->Carry(nlohmann::json::parse(GetParam().m_pRequest));
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.GetResult(), "Failure");
    EXPECT_TRUE(Run.HasWarning(GetParam().m_Warning));
    EXPECT_EQ(ReadStored(Run), Before);
}

INSTANTIATE_TEST_SUITE_P(
    WholeRun, AbortInTheMiddle,
    testing::Values(CAbortCase{"SetChanged", R"({"set": {"number": 2}})", 1},
                    CAbortCase{"ModuleLeftPreBalancing", R"({"module_state": {"state": 1}})", 11},
                    // Another factor makes it another set.
                    CAbortCase{"FactorNotOne", R"({"set": {"number": 1, "rpm_factor": 2}})", 1}),
    [](const auto& rInfo) { return rInfo.param.m_pName; });

namespace {

/// A session on its own, for what happens before a procedure is started.
struct CSessionOnly {
    explicit CSessionOnly(const char* pRequest) : m_Run(CRotorFile::GetBuiltIn()) {
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
        m_pSession->GetSimulator()->Carry(nlohmann::json::parse(pRequest));
    }

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run;
    std::unique_ptr<CConsoleSession> m_pSession;
};

}  // namespace

TEST(WholeRun, FactorOtherThanOneFromTheStartIsRefusedWithWarningNine) {
    CSessionOnly Session(R"({"set": {"number": 1, "rpm_factor": 2}})");
    ASSERT_TRUE(Session.m_pSession->Initialise());
    Session.m_Loop.Advance(1000);
    const CSituation Situation = Session.m_pSession->Look();
    ASSERT_TRUE(Situation.m_bRunning) << "the failure is shown at once, so that the operator sees why";
    EXPECT_EQ(Situation.m_Progress.m_State, "eFailureWithNoReturn");
    EXPECT_EQ(Situation.m_Warning, 9U);
}

TEST(WholeRun, ModuleThatDoesNotAnswerIsGivenUp) {
    CSessionOnly Session(R"({"fault": {"kind": "silence_ms", "value": 3600000}})");
    EXPECT_FALSE(Session.m_pSession->Initialise());
    EXPECT_FALSE(Session.m_pSession->Look().m_bRunning);
}

TEST(WholeRun, ModuleThatIsSwitchedOnLaterIsFound) {
    CSessionOnly Session(R"({"fault": {"kind": "silence_ms", "value": 12000}})");
    EXPECT_TRUE(Session.m_pSession->Initialise());
}

// Into the sampling of the test run, the line falls silent for eight seconds.
TEST(WholeRun, SilenceInAMeasurementFallsBackToWaitingAndGoesOnWhenFramesCome) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    Run.StrikeIn("eTestUnbalanceMeasurement", {{"kind", "silence_ms"}, {"value", 8000}});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_FALSE(Run.m_WarningsAfterwards.empty());
    EXPECT_EQ(Run.m_WarningsAfterwards.front(), 3U) << "frames that stay away count as a lost lock";
    EXPECT_EQ(Run.m_WarningsAfterwards.back(), 0U);
    EXPECT_LT(std::abs(Run.m_Residual), SMALL);
}

// Between the end of the query chain and the start of the run: the failure is on the page before anybody has
// started anything.
TEST(WholeRun, AModuleThatChangesItsSetBeforeTheStartIsToldAndNothingAsserts) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    Run.OnSession = [](CConsoleSession& rSession) {
        constexpr std::uint32_t PERIOD = 500;
        IFEventLoop::Current().SetTimer(PERIOD, [&rSession](std::uint32_t Id) {
            if (rSession.GetHost().IsConfigured()) {
                IFEventLoop::Current().KillTimer(Id);
                rSession.GetSimulator()->Carry({{"set", {{"number", 2}}}});
            }
        });
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.GetResult(), "Failure");
    EXPECT_TRUE(Run.HasWarning(Warnings::eSetChanged));
    EXPECT_TRUE(Run.GetAssertions().empty()) << Run.GetAssertions().front();
}

TEST(WholeRun, BadFramesOnTheLineDoNotHarmTheResult) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    int nFaults = 0;
    Run.OnSituation = [&](const CSituation&, CConsoleSession& rSession) {
        const char* pFault = nFaults++ % 2 == 0 ? R"({"fault": {"kind": "corrupt", "next": 2}})"
                                                : R"({"fault": {"kind": "drop", "next": 2}})";
        rSession.GetSimulator()->Carry(nlohmann::json::parse(pFault));
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_GT(nFaults, 10);
    EXPECT_LT(std::abs(Run.m_Residual), SMALL);
}
