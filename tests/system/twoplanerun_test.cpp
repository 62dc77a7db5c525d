// Whole runs over two coupled planes, judged by the rotor's physics: what is really left on it.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <complex>

#include "platform/rvmdb/prebaldatabase.h"
#include "tests/support/logcapture.h"
#include "tests/system/wholerun.h"

namespace {

using Procedure = COptions::Procedure;
using nlohmann::json;

/// Two coupled planes, each with a module of its own.
CRotorFile MakeRotor(double NoiseCounts = 0.0) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    Rotor.m_Planes[0].m_Unbalance = {0.8, 123.0};
    Rotor.m_Planes[1].m_Unbalance = {0.6, 305.0};
    Rotor.m_Influence = {{{150.0, 40.0}, {45.0, 75.0}}, {{38.0, 10.0}, {130.0, 52.0}}};
    Rotor.m_NoiseCounts = NoiseCounts;
    return Rotor;
}

/// Noise of 1.5 counts, averaged over 40 samples, whole counts and positions in whole degrees leave less than
/// this of that rotor.
constexpr double SMALL = 0.06;

void ExpectBalanced(const CWholeRun& rRun) {
    ASSERT_EQ(rRun.m_Residuals.size(), 2U);
    EXPECT_LT(std::abs(rRun.m_Residuals[0]), SMALL);
    EXPECT_LT(std::abs(rRun.m_Residuals[1]), SMALL);
    EXPECT_TRUE(rRun.GetAssertions().empty());
}

/// Does something once, when the run first gets to a state.
void OnceIn(CWholeRun& rRun, const std::string& rState, const json& rRequest) {
    rRun.OnSituation = [rState, rRequest, bDone = false](const CSituation& rSituation,
                                                         CConsoleSession& rSession) mutable {
        if (!bDone && rSituation.m_Progress.m_State == rState) {
            bDone = true;
            rSession.GetSimulator()->Carry(rRequest);
        }
    };
}

}  // namespace

TEST(TwoPlaneRun, PairOfModulesIsBalancedInGoodOrder) {
    CWholeRun Run(MakeRotor(1.5));
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "SetupSuccess");
    EXPECT_EQ(Run.m_Report["steps"].front()["of"], 15);
    ExpectBalanced(Run);
    // Neutral, two test legs.
    EXPECT_EQ(Run.CountActions(CPreBalCodes::eMeasurementValuesOK), 3U);
}

TEST(TwoPlaneRun, StartWithTheSpindleTurningCountsSixteenSteps) {
    CWholeRun Run(MakeRotor());
    EXPECT_EQ(Run.Run(Procedure::ePrebalance, true), eExitWithinTarget);
    EXPECT_EQ(Run.m_Report["steps"].front()["of"], 16);
    ExpectBalanced(Run);
}

TEST(TwoPlaneRun, ReportTellsBothPlanes) {
    CWholeRun Run(MakeRotor());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(Run.m_Report["inv_a"].size(), 4U);
    EXPECT_EQ(Run.m_Report["inv_a"][3].size(), 4U);
    EXPECT_EQ(Run.m_Report["ua"].size(), 4U);
    EXPECT_EQ(Run.m_Report["initial"].size(), 2U);
    EXPECT_EQ(Run.m_Report["final"].size(), 2U);
    EXPECT_EQ(Run.m_Report["positions"].size(), 2U);
    EXPECT_EQ(Run.m_Report["calibrated_rpm"], 3000);
    // The inverse of the rotor's influence, block by block: 1 / 150 is the size of the first but for the
    // coupling.
    EXPECT_NEAR(
        std::hypot(Run.m_Report["inv_a"][0][0].get<double>(), Run.m_Report["inv_a"][1][0].get<double>()),
        1.0 / 150.0, 0.001);
}

TEST(TwoPlaneRun, PrebalanceThenRebalanceInOneRun) {
    CWholeRun Run(MakeRotor(1.5));
    EXPECT_EQ(Run.Run(Procedure::ePrebalanceAndRebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "RebalSuccess");
    ExpectBalanced(Run);
}

TEST(TwoPlaneRun, RebalancingMayBeRepeated) {
    CWholeRun Run(MakeRotor());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    for (const double AngleDeg : {130.0, 140.0, 150.0}) {
        Run.m_Rotor.m_Planes[0].m_Unbalance = {0.9, AngleDeg};
        Run.m_Rotor.m_Planes[1].m_Unbalance = {0.7, 360.0 - AngleDeg};
        EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitWithinTarget) << AngleDeg;
        EXPECT_EQ(Run.CountActions(CPreBalCodes::eMeasurementValuesOK), 1U);
        ExpectBalanced(Run);
    }
}

TEST(TwoPlaneRun, SameSeedGivesTheSameReportByteForByte) {
    const auto Report = [] {
        CWholeRun Run(MakeRotor(1.5));
        Run.Run(Procedure::ePrebalanceAndRebalance);
        return Run.m_Report.dump(2);
    };
    EXPECT_EQ(Report(), Report());
}

TEST(TwoPlaneRun, RotorWithoutCrossInfluenceIsBalanced) {
    CRotorFile Rotor = MakeRotor();
    Rotor.m_Influence[0][1].m_Amplitude = 0.0;
    Rotor.m_Influence[1][0].m_Amplitude = 0.0;
    CWholeRun Run(Rotor);
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ExpectBalanced(Run);
}

// A dead sensor makes the system singular. The required behaviour is a correction of zero without any
// warning: the weights end opposed, the log says why, and only the final measurement of the other plane tells
// the operator.
TEST(TwoPlaneRun, DeadSensorGivesNoCorrectionAndOnlyTheLogSaysSo) {
    CRotorFile Rotor = MakeRotor();
    Rotor.m_Influence[1] = {{0.0, 0.0}, {0.0, 0.0}};
    CWholeRun Run(Rotor);
    const CLogCapture Log;
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_EQ(Run.GetResult(), "SetupOverTarget");
    EXPECT_THAT(Log.GetTexts("Warning"), testing::Contains("m_A is singular!!"));
    EXPECT_FALSE(Run.HasWarning(5));
    // Whole degrees at the end: opposed weights leave the rotor as it was.
    EXPECT_NEAR(std::abs(Run.m_Residuals[0]), 0.8, 0.001);
    EXPECT_NEAR(std::abs(Run.m_Residuals[1]), 0.6, 0.001);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

// Both sensors read the same: no two planes can be told apart.
TEST(TwoPlaneRun, SensorsThatReadTheSameMakeTheSystemSingular) {
    CRotorFile Rotor = MakeRotor();
    Rotor.m_Influence[1] = Rotor.m_Influence[0];
    CWholeRun Run(Rotor);
    const CLogCapture Log;
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_THAT(Log.GetTexts("Warning"), testing::Contains("m_A is singular!!"));
    EXPECT_FALSE(Run.HasWarning(5));
    EXPECT_NEAR(std::abs(Run.m_Residuals[0]), 0.8, 0.001);
}

TEST(TwoPlaneRun, CapacityShortInOnePlaneWarnsWithItsPercentageAndTheRunGoesOn) {
    CRotorFile Rotor = MakeRotor();
    Rotor.m_Planes[1].m_Unbalance = {2.4, 255.0};
    // Large, so that whole counts don't blur the percentage.
    Rotor.m_Influence = {{{2000.0, 40.0}, {300.0, 75.0}}, {{250.0, 10.0}, {2000.0, 52.0}}};
    CWholeRun Run(Rotor);
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_TRUE(Run.HasWarning(6));
    // (2.4 - 1.95) / 1.95 is 23.1 percent.
    EXPECT_TRUE(Run.HasLine("(23%)"));
    EXPECT_LT(std::abs(Run.m_Residuals[0]), SMALL);
    // As far as two weights go: together in one direction they take 2 away.
    EXPECT_NEAR(std::abs(Run.m_Residuals[1]), 0.4, 0.05);
    EXPECT_TRUE(Run.GetAssertions().empty());
    // A re-balancing is refused for it.
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitFailed);
    EXPECT_TRUE(Run.HasWarning(7));
}

// Plane 2's weights are put elsewhere after the correction: it alone is over the target, and the verdict is
// over.
TEST(TwoPlaneRun, TargetMissedInOnePlaneIsMissed) {
    CWholeRun Run(MakeRotor());
    // Without coupling plane 1 doesn't feel it.
    Run.m_Rotor.m_Influence[0][1].m_Amplitude = 0.0;
    OnceIn(Run, "PreBalanceRPMStart", {{"unbalance", {{"plane", 2}, {"amount", 0.9}, {"angle_deg", 305.0}}}});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitOverTarget);
    EXPECT_EQ(Run.GetResult(), "SetupOverTarget");
    EXPECT_TRUE(Run.HasWarning(8));
    EXPECT_LE(Run.m_Report["final"][0]["amplitude"].get<double>(), 5.0);
    EXPECT_GT(Run.m_Report["final"][1]["amplitude"].get<double>(), 30.0);
}

// Somebody forgets to move the test weights of plane 2, but confirms. The module doesn't look at the weights'
// effect in two planes, and would go on with a correction of zero; the automatic run keeps nothing of it.
TEST(TwoPlaneRun, TestWeightsThatWereNotMovedMakeTheSystemSingular) {
    CWholeRun Run(MakeRotor());
    OnceIn(Run, "Plane2TestUnbalanceRPMStart", {{"weights", {{"plane", 2}, {"angles", {0, 180}}}}});
    const CLogCapture Log;
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_THAT(Log.GetTexts("Warning"), testing::Contains("m_A is singular!!"));
    EXPECT_FALSE(Run.HasWarning(5));
    EXPECT_TRUE(Run.HasLine("No calibration is kept"));
}

TEST(TwoPlaneRun, AbortInTheSecondLegKeepsTheOldCalibration) {
    CWholeRun Run(MakeRotor());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    OnceIn(Run, "Plane2TestUnbalanceMeasurement", {{"set", {{"number", 2}}}});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_TRUE(Run.HasWarning(1));
    Run.OnSituation = nullptr;
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitWithinTarget) << "the calibration of before";
    ExpectBalanced(Run);
}

// Into the sampling of the second leg the slave falls silent for eight seconds.
TEST(TwoPlaneRun, SilentSlaveMakesTheMeasurementWaitAndItGoesOn) {
    CWholeRun Run(MakeRotor());
    Run.StrikeIn("Plane2TestUnbalanceMeasurement", {{"kind", "silence_ms"}, {"value", 8000}, {"module", 2}});
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_FALSE(Run.m_WarningsAfterwards.empty());
    EXPECT_EQ(Run.m_WarningsAfterwards.front(), 3U) << "frames that stay away count as a lost lock";
    ExpectBalanced(Run);
}
