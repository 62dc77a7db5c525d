// A sensor that answers to nothing: what looks like an effect of the test weights is noise, and no
// calibration may come of it. So far the scatter of noise passed the module's rule twenty times of twenty.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "console/pagequestion.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "tests/support/casenames.h"
#include "tests/system/mainwindowfixture.h"

namespace {

using Procedure = COptions::Procedure;
using testing::HasSubstr;

CRotorFile MakeDeadRotor(double Noise, std::uint64_t Seed,
                         CRotorFile::Modules Family = CRotorFile::eKestrel) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(Family);
    for (auto& rRow : Rotor.m_Influence) {
        for (auto& rInfluence : rRow) {
            rInfluence.m_Amplitude = 0.0;
        }
    }
    Rotor.m_NoiseCounts = Noise;
    Rotor.m_Seed = Seed;
    return Rotor;
}

bool IsCalibrated(const std::string& rMachine) {
    PreBalDB::CPreBalDatabase Database(rMachine);
    return Database.ReadConfiguration("Default").IsCalibrated() != 0;
}

class DeadSensor : public testing::TestWithParam<double> {
protected:
    DeadSensor() { SetLanguage("en"); }
};

class DeadSensorWindow : public CMainWindowTestBase {
protected:
    DeadSensorWindow() {
        SetLanguage("en");
        m_Run.m_Rotor = MakeDeadRotor(1.0, 3);
    }
    void BalanceToVerdict() {
        Open();
        Press("Pre-balance");
        BalanceByButtons();
        ASSERT_EQ(GetState(), "ePreBalanceMeasurement");
    }
};

}  // namespace

TEST_P(DeadSensor, KeepsNoCalibrationWhateverTheSeed) {
    for (std::uint64_t Seed = 1; Seed <= 20; ++Seed) {
        CWholeRun Run(MakeDeadRotor(GetParam(), Seed));
        EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed) << Seed;
        EXPECT_NE(Run.GetResult(), "SetupSuccess") << Seed;
        EXPECT_FALSE(Run.m_Report["saved"].get<bool>()) << Seed;
        EXPECT_FALSE(IsCalibrated(Run.m_MachineName)) << Seed;
        EXPECT_TRUE(Run.GetAssertions().empty()) << Seed;
        // The module refuses some by itself.
        if (Run.GetResult() != "Failure") {
            EXPECT_TRUE(Run.HasLine("No calibration is kept: the test run changed the reading by ")) << Seed;
            EXPECT_EQ(Run.m_Report["quality"]["test_run"], "none") << Seed;
        }
    }
}
INSTANTIATE_TEST_SUITE_P(Noise, DeadSensor, testing::Values(0.3, 1.0), CaseNames::ByNumber("Noise"));

TEST(DeadSensorOfTwo, FirstLegIsEnoughToGiveUp) {
    SetLanguage("en");
    CWholeRun Run(MakeDeadRotor(1.0, 5, CRotorFile::eKestrelPair));
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.CountActions(CPreBalCodes::eMeasurementValuesOK), 2U);
    EXPECT_FALSE(IsCalibrated(Run.m_MachineName));
}

TEST_F(DeadSensorWindow, PanelAsksBeforeItKeepsTheCalibration) {
    BalanceToVerdict();
    Press("Finish");
    ASSERT_TRUE(FindPart<CPageQuestion>().IsOpen());
    EXPECT_TRUE(m_pSession->Look().m_bRunning);
    Press("Don't keep it");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_FALSE(IsCalibrated(m_pSession->GetMachineName()));
}

TEST_F(DeadSensorWindow, CalibrationIsKeptWhenSomebodyWantsIt) {
    BalanceToVerdict();
    Press("Finish");
    Press("Keep it");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
    EXPECT_TRUE(IsCalibrated(m_pSession->GetMachineName()));
}

TEST_F(DeadSensorWindow, ClosingTheWindowAsksToo) {
    BalanceToVerdict();
    m_pWindow->close();
    m_Loop.Advance(500);
    EXPECT_TRUE(m_pWindow->isVisible());
    Press("Don't keep it");
    EXPECT_FALSE(IsCalibrated(m_pSession->GetMachineName()));
}
