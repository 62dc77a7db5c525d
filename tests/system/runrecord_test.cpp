// The records of whole runs, against what the simulator knows of rotor and readings.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <nlohmann/json.hpp>

#include "contract/holering.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/realdate.h"
#include "platform/system/version.h"
#include "tests/system/mainwindowfixture.h"
#include "tests/system/wholerun.h"

namespace {

using Procedure = COptions::Procedure;
using testing::ElementsAre;

/// What the simulator knew while a measurement was complete.
struct CTruth {
    std::vector<CRotor::Vector> m_Readings;
    std::vector<std::vector<int>> m_Weights;
    std::vector<std::vector<CSimulatedScrew>> m_Screws;
};

/// Of all measurements in the order of the runs.
using Truths = std::vector<CTruth>;

bool IsMeasured(const CSituation& rSituation) {
    return rSituation.m_Notification.GetAction() == CNcNotification::eMeasurementValuesOK ||
           IsVerdict(rSituation.m_Notification.GetStep());
}

/// Looks at the simulator whenever a further measurement is complete.
void Watch(CWholeRun& rRun, Truths& rTruths) {
    rRun.OnSituation = [&rTruths, LastState = std::string()](const CSituation& rSituation,
                                                             CConsoleSession& rSession) mutable {
        if (!IsMeasured(rSituation) || LastState == rSituation.m_Progress.m_State) {
            LastState = IsMeasured(rSituation) ? LastState : std::string();
            return;
        }
        LastState = rSituation.m_Progress.m_State;
        const CRotor& rRotor = rSession.GetSimulator()->GetRotor();
        CTruth Truth;
        for (std::size_t Plane = 0; Plane < rRotor.GetNumberOfPlanes(); ++Plane) {
            Truth.m_Readings.push_back(rRotor.GetReading(Plane));
            Truth.m_Weights.push_back(rRotor.GetWeights(Plane));
            Truth.m_Screws.push_back(rRotor.GetScrews(Plane));
        }
        rTruths.push_back(Truth);
    };
}

void ExpectFitted(const CPlaneFitting& rFitted, const CPlaneSetup& rSetup, const CTruth& rTruth,
                  std::size_t Plane) {
    EXPECT_EQ(rFitted.m_Weights, rTruth.m_Weights.at(Plane));
    ASSERT_EQ(rFitted.m_Screws.size(), rTruth.m_Screws.at(Plane).size());
    const CHoleRing Ring{rSetup.m_nHoles, !rSetup.m_bScaleClockwise};
    for (std::size_t i = 0; i < rFitted.m_Screws.size(); ++i) {
        EXPECT_EQ(static_cast<int>(Ring.GetRotorHole(rFitted.m_Screws[i].m_Hole)),
                  rTruth.m_Screws[Plane][i].m_Hole);
        EXPECT_DOUBLE_EQ(rFitted.m_Screws[i].m_Grams, rTruth.m_Screws[Plane][i].m_Grams);
    }
}

/// Noise: standard deviation of each of X and Y in counts. Five standard errors are exceeded by one in a
/// million; rounding to counts adds its own.
void ExpectMeasured(const CMeasuredPlane& rPlane, CRotor::Vector Truth, double Noise) {
    ASSERT_GE(rPlane.m_Readings.size(), 5U);
    EXPECT_EQ(rPlane.m_nReadings, rPlane.m_Readings.size());
    const double Sigma = std::hypot(Noise, 0.5);
    const double Margin = 5.0 * Sigma / std::sqrt(static_cast<double>(rPlane.m_nReadings)) + 0.5;
    EXPECT_NEAR(rPlane.m_Mean.m_X, Truth.real(), Margin);
    EXPECT_NEAR(rPlane.m_Mean.m_Y, Truth.imag(), Margin);
    EXPECT_NEAR(rPlane.m_Smoothed.m_X, Truth.real(), 2.0 * Margin);
    EXPECT_NEAR(rPlane.m_Smoothed.m_Y, Truth.imag(), 2.0 * Margin);
    EXPECT_LT(std::sqrt(rPlane.m_VarianceX), 2.0 * Sigma);
    EXPECT_LT(std::sqrt(rPlane.m_VarianceY), 2.0 * Sigma);
    double SumX = 0.0;
    for (std::size_t i = 0; i < rPlane.m_Readings.size(); ++i) {
        SumX += rPlane.m_Readings[i].m_X;
        EXPECT_TRUE(i == 0 || rPlane.m_Readings[i].m_Time > rPlane.m_Readings[i - 1].m_Time);
    }
    EXPECT_NEAR(rPlane.m_Mean.m_X, SumX / static_cast<double>(rPlane.m_nReadings), 1e-9);
}

std::vector<Measurement> GetKinds(const CRunRecord& rRecord) {
    std::vector<Measurement> Kinds;
    for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
        Kinds.push_back(rMeasurement.m_Which);
    }
    return Kinds;
}

/// All measurements of all records, against the truth.
void ExpectTrue(const std::vector<CRunRecord>& rRecords, const Truths& rTruths, double Noise, double Rpm) {
    std::size_t nSeen = 0;
    for (const CRunRecord& rRecord : rRecords) {
        std::uint64_t Last = 0;
        for (const CRunMeasurement& rMeasurement : rRecord.m_Measurements) {
            ASSERT_LT(nSeen, rTruths.size());
            EXPECT_GT(rMeasurement.m_Time, Last);
            Last = rMeasurement.m_Time;
            EXPECT_NEAR(rMeasurement.m_MeanRpm, Rpm, 1.0);
            EXPECT_LE(rMeasurement.m_MinRpm, rMeasurement.m_MeanRpm);
            EXPECT_GE(rMeasurement.m_MaxRpm, rMeasurement.m_MeanRpm);
            for (std::size_t Plane = 0; Plane < 2; ++Plane) {
                ASSERT_EQ(rMeasurement.m_Planes.at(Plane).has_value(),
                          rRecord.m_Setup.m_Planes.at(Plane).has_value());
                if (const auto& rPlane = rMeasurement.m_Planes.at(Plane)) {
                    ExpectMeasured(*rPlane, rTruths[nSeen].m_Readings.at(Plane), Noise);
                    ExpectFitted(rPlane->m_Fitted, *rRecord.m_Setup.m_Planes.at(Plane), rTruths[nSeen],
                                 Plane);
                }
            }
            ++nSeen;
        }
    }
    EXPECT_EQ(nSeen, rTruths.size());
}

CRotorFile MakeTwoPlaneRotor() {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eLanner);
    Rotor.m_Planes.resize(2);
    Rotor.m_Planes[0].m_Unbalance = {1.6, 123.0};
    Rotor.m_Planes[1].m_Unbalance = {1.2, 305.0};
    Rotor.m_Planes[1].m_Scale = CRotorFile::eCounterClockwise;
    Rotor.m_Influence = {{{150.0, 40.0}, {45.0, 75.0}}, {{38.0, 10.0}, {130.0, 52.0}}};
    Rotor.m_NoiseCounts = 1.5;
    return Rotor;
}

}  // namespace

TEST(RunRecord, HoldsWhatWasMeasuredAndFittedInAPreBalancingWithWeights) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    Run.m_Options.m_RotorName = "wheel 7";
    Truths Seen;
    Watch(Run, Seen);
    const auto Before = GetRealDate();
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_EQ(Run.m_Records.size(), 1U);
    const CRunRecord& rRecord = Run.m_Records[0];
    EXPECT_THAT(GetKinds(rRecord),
                ElementsAre(Measurement::eFirst, Measurement::eTest1, Measurement::eFinal));
    ExpectTrue(Run.m_Records, Seen, Run.m_Rotor.m_NoiseCounts, 3000.0);
    EXPECT_EQ(rRecord.m_State, CRunRecord::State::eFinished);
    EXPECT_EQ(rRecord.m_Result, "SetupSuccess");
    EXPECT_TRUE(rRecord.m_bSaved);
    EXPECT_FALSE(rRecord.m_bRebalance);
    EXPECT_EQ(rRecord.m_Driver, CRunRecord::Driver::eHeadless);
    EXPECT_EQ(rRecord.m_Version, GetProjectVersion());
    EXPECT_EQ(rRecord.m_Machine, Run.m_MachineName);
    EXPECT_EQ(rRecord.m_Rotor, "wheel 7");
    EXPECT_EQ(rRecord.m_Family, "kestrel");
    EXPECT_THAT(rRecord.m_Addresses, ElementsAre(5));
    EXPECT_GE(rRecord.m_Started, Before) << "the real date, not that of virtual time";
    EXPECT_LE(rRecord.m_Ended, GetRealDate());
    EXPECT_EQ(rRecord.m_Id, 0);
}

TEST(RunRecord, SmoothedReadingsAreThoseOfTheReport) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    const CRunRecord& rRecord = Run.m_Records.at(0);
    const auto& rFirst = rRecord.Find(Measurement::eFirst)->m_Planes[0]->m_Smoothed;
    const auto& rFinal = rRecord.Find(Measurement::eFinal)->m_Planes[0]->m_Smoothed;
    EXPECT_NEAR(std::hypot(rFirst.m_X, rFirst.m_Y), Run.m_Report["initial"][0]["amplitude"].get<double>(),
                1e-9);
    EXPECT_NEAR(std::hypot(rFinal.m_X, rFinal.m_Y), Run.m_Report["final"][0]["amplitude"].get<double>(),
                1e-9);
}

TEST(RunRecord, AveragesGoOverReadingsOfTheWindowOnly) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    for (const CRunMeasurement& rMeasurement : Run.m_Records.at(0).m_Measurements) {
        const auto& rReadings = rMeasurement.m_Planes[0]->m_Readings;
        EXPECT_LE(rReadings.back().m_Time - rReadings.front().m_Time,
                  50U * Run.m_Records[0].m_Setup.m_nSamples);
        EXPECT_LE(rReadings.back().m_Time, rMeasurement.m_Time);
        EXPECT_GE(rReadings.front().m_Time + 50U * Run.m_Records[0].m_Setup.m_nSamples + 250U,
                  rMeasurement.m_Time);
    }
}

TEST(RunRecord, SetupIsTheConfigurationBeforeTheRunAndTheCalibrationWhatItLeaves) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalanceAndRebalance), eExitWithinTarget);
    ASSERT_EQ(Run.m_Records.size(), 2U);
    const CRunSetup& rSetup = Run.m_Records[0].m_Setup;
    EXPECT_EQ(rSetup.m_Configuration, "Default");
    EXPECT_EQ(rSetup.m_Mode, "plane1");
    EXPECT_TRUE(rSetup.m_bClockwise);
    EXPECT_EQ(rSetup.m_RpmTolerance, 50U);
    EXPECT_EQ(rSetup.m_TargetUnbalance, 5U);
    EXPECT_EQ(rSetup.m_nSamples, 40U);
    ASSERT_TRUE(rSetup.m_Planes[0].has_value());
    EXPECT_FALSE(rSetup.m_Planes[1].has_value());
    EXPECT_FALSE(rSetup.m_Planes[0]->m_bScrews);
    EXPECT_EQ(rSetup.m_InvA(0, 0), 0.0);
    EXPECT_FALSE(nlohmann::json::parse(rSetup.m_Properties)["calibrated"].get<bool>());

    PreBalDB::CPreBalDatabase Database(Run.m_MachineName);
    const PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
    const CRunSetup& rAgain = Run.m_Records[1].m_Setup;
    ASSERT_TRUE(Run.m_Records[1].m_Calibration.has_value());
    EXPECT_TRUE(Run.m_Records[1].m_bRebalance);
    EXPECT_EQ(Run.m_Records[1].m_Result, "RebalSuccess");
    EXPECT_EQ(Run.m_Records[1].m_Calibration->m_InvA, rEntry.GetSinglePlane()->GetInvA());
    EXPECT_EQ(Run.m_Records[1].m_Calibration->m_UA.at(0), rEntry.GetSinglePlane()->GetUA());
    EXPECT_EQ(Run.m_Records[1].m_Calibration->m_Rpm, 3000U);
    EXPECT_EQ(Run.m_Records[0].m_Calibration->m_InvA, rAgain.m_InvA)
        << "what one leaves the next begins with";
    EXPECT_TRUE(nlohmann::json::parse(rAgain.m_Properties)["calibrated"].get<bool>());
}

TEST(RunRecord, ARebalancingIsARecordOfItsOwn) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    Truths Seen;
    Watch(Run, Seen);
    ASSERT_EQ(Run.Run(Procedure::ePrebalanceAndRebalance), eExitWithinTarget);
    ASSERT_EQ(Run.m_Records.size(), 2U);
    EXPECT_THAT(GetKinds(Run.m_Records[1]), ElementsAre(Measurement::eFirst, Measurement::eFinal));
    ExpectTrue(Run.m_Records, Seen, Run.m_Rotor.m_NoiseCounts, 3000.0);
}

TEST(RunRecord, HolesAreTheModulesWhateverTheScale) {
    for (const CRotorFile::Sense Scale : {CRotorFile::eClockwise, CRotorFile::eCounterClockwise}) {
        CRotorFile Rotor = CRotorFile::GetBuiltIn();
        Rotor.m_Planes[0].m_Scale = Scale;
        Rotor.m_Planes[0].m_Unbalance = {2.0, 100.0};
        CWholeRun Run(Rotor);
        Run.m_Options.m_Methods = {"screws"};
        Truths Seen;
        Watch(Run, Seen);
        Run.Run(Procedure::ePrebalanceAndRebalance);
        ASSERT_EQ(Run.m_Records.size(), 2U);
        const CPlaneSetup& rPlane = *Run.m_Records[0].m_Setup.m_Planes[0];
        EXPECT_TRUE(rPlane.m_bScrews);
        EXPECT_EQ(rPlane.m_bScaleClockwise, Scale == CRotorFile::eClockwise);
        EXPECT_EQ(rPlane.m_nHoles, 12U);
        EXPECT_EQ(rPlane.m_nScrews, 2U);
        EXPECT_FALSE(rPlane.m_Table.empty());
        EXPECT_FALSE(Run.m_Records[0].Find(Measurement::eFinal)->m_Planes[0]->m_Fitted.m_Screws.empty());
        ExpectTrue(Run.m_Records, Seen, Rotor.m_NoiseCounts, 3000.0);
    }
}

TEST(RunRecord, TwoPlanesWithScrewsAndWeights) {
    CWholeRun Run(MakeTwoPlaneRotor());
    Run.m_Options.m_Mode = "two-plane";
    Run.m_Options.m_Methods = {"screws", "weights"};
    Truths Seen;
    Watch(Run, Seen);
    Run.Run(Procedure::ePrebalanceAndRebalance);
    ASSERT_EQ(Run.m_Records.size(), 2U);
    EXPECT_THAT(GetKinds(Run.m_Records[0]), ElementsAre(Measurement::eFirst, Measurement::eTest1,
                                                        Measurement::eTest2, Measurement::eFinal));
    EXPECT_TRUE(Run.m_Records[0].m_Setup.m_Planes[0]->m_bScrews);
    EXPECT_FALSE(Run.m_Records[0].m_Setup.m_Planes[1]->m_bScrews);
    EXPECT_EQ(Run.m_Records[1].m_Setup.m_InvA.RowNo(), 4U);
    EXPECT_EQ(Run.m_Records[1].m_Setup.m_UA.size(), 2U);
    ExpectTrue(Run.m_Records, Seen, Run.m_Rotor.m_NoiseCounts, 3000.0);
}

TEST(RunRecord, ASinglePlaneRunOnPlane2HasItsValuesInPlane2) {
    CWholeRun Run(MakeTwoPlaneRotor());
    Run.m_Options.m_Mode = "plane2";
    Truths Seen;
    Watch(Run, Seen);
    Run.Run(Procedure::ePrebalance);
    ASSERT_EQ(Run.m_Records.size(), 1U);
    EXPECT_FALSE(Run.m_Records[0].m_Setup.m_Planes[0].has_value());
    ASSERT_TRUE(Run.m_Records[0].m_Setup.m_Planes[1].has_value());
    ExpectTrue(Run.m_Records, Seen, Run.m_Rotor.m_NoiseCounts, 3000.0);
}

TEST(RunRecord, WarningsAreKeptWithTheirTextEachOnceInAState) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    ASSERT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    const std::vector<CRunWarning>& rWarnings = Run.m_Records.at(0).m_Warnings;
    ASSERT_FALSE(rWarnings.empty()) << "of a spindle that comes to its speed";
    for (const CRunWarning& rWarning : rWarnings) {
        EXPECT_NE(rWarning.m_Number, 0U);
        EXPECT_FALSE(rWarning.m_Text.empty());
    }
}

TEST(RunRecord, ARunThatIsBrokenOffKeepsWhatItHadMeasured) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    std::string Request;
    Run.m_Options.m_GetEndRequest = [&Request] { return Request; };
    Run.OnSituation = [&Request](const CSituation& rSituation, CConsoleSession&) {
        Request = rSituation.m_Progress.m_State == "eTestUnbalanceSetWeights" ? "SIGTERM" : "";
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    ASSERT_EQ(Run.m_Records.size(), 1U);
    EXPECT_EQ(Run.m_Records[0].m_State, CRunRecord::State::eBrokenOff);
    EXPECT_THAT(GetKinds(Run.m_Records[0]), ElementsAre(Measurement::eFirst));
    EXPECT_FALSE(Run.m_Records[0].m_bSaved);
    EXPECT_FALSE(Run.m_Records[0].m_Calibration.has_value());
}

TEST(RunRecord, AProcedureThatIsRefusedLeavesNoRecord) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitFailed);
    EXPECT_TRUE(Run.m_Records.empty());
}

TEST(RunRecord, ARunThatTheModuleEndsHasFailed) {
    CWholeRun Run(CRotorFile::GetBuiltIn());
    Run.OnSituation = [bDone = false](const CSituation& rSituation, CConsoleSession& rSession) mutable {
        if (!bDone && rSituation.m_Progress.m_State == "eTestUnbalanceSetWeights") {
            bDone = true;
            rSession.GetSimulator()->Carry({{"set", {{"number", 2}}}});
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    ASSERT_EQ(Run.m_Records.size(), 1U);
    EXPECT_EQ(Run.m_Records[0].m_State, CRunRecord::State::eFailed);
    EXPECT_EQ(Run.m_Records[0].m_Result, "Failure");
}
