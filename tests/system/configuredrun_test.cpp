// The values of the configuration are the ones that count: a rotor is balanced by them, whatever its file
// says.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "console/sessionerror.h"
#include "tests/system/mainwindowfixture.h"

using PreBalDB::CTypeBase;
using testing::HasSubstr;
using Procedure = COptions::Procedure;

namespace {

CTypeBase::Direction Turn(CTypeBase::Direction Value) {
    return Value == CTypeBase::eClockwise ? CTypeBase::eCounterClockwise : CTypeBase::eClockwise;
}

/// A rotor whose configuration was set up, once, and is then changed by somebody.
class CConfiguredRun : public CWholeRun {
public:
    CConfiguredRun() : CWholeRun(CRotorFile::GetBuiltIn()) {
        // Where the order of the weights on a counter-clockwise scale isn't an issue of its own.
        m_Rotor.m_Planes.front().m_Unbalance.m_AngleDeg = 30.0;
        EXPECT_EQ(Run(Procedure::ePrebalance), eExitWithinTarget);
    }
    void Change(const std::function<void(PreBalDB::CPreBalBaseTableEntry&)>& rChange) {
        PreBalDB::SetDatabaseConnection("sqlite:" + m_Installation.GetDatabaseFile().string());
        PreBalDB::CPreBalDatabase Database(m_MachineName);
        PreBalDB::CPreBalBaseTableEntry& rEntry = Database.ReadConfiguration("Default");
        rChange(rEntry);
        ASSERT_NE(Database.WriteConfiguration(), 0);
    }
    /// Rotation, scale or both set wrong; what a run then makes of the rotor.
    double BalanceWith(bool bTurnRotation, bool bTurnScale) {
        Change([&](PreBalDB::CPreBalBaseTableEntry& rEntry) {
            rEntry.SetIsCalibrated(0);
            auto& rPlane = rEntry.CreateSinglePlane();
            auto& rWeights = rPlane.CreateWeightCompensationTableEntry();
            if (bTurnRotation) {
                rPlane.SetRotationDirection(Turn(rPlane.GetRotationDirection()));
            }
            if (bTurnScale) {
                rWeights.SetScalingDirection(Turn(rWeights.GetScalingDirection()));
            }
        });
        Run(Procedure::ePrebalance);
        return std::abs(m_Residual);
    }
};

}  // namespace

TEST(ConfiguredRun, OneOfRotationAndScaleSetWrongBalancesWrongBothCancelOut) {
    const double Unbalanced = CRotorFile::GetBuiltIn().m_Planes.front().m_Unbalance.m_Amount;
    EXPECT_LT(CConfiguredRun().BalanceWith(false, false), Unbalanced / 10);
    EXPECT_GT(CConfiguredRun().BalanceWith(true, false), Unbalanced / 4);
    EXPECT_GT(CConfiguredRun().BalanceWith(false, true), Unbalanced / 4);
    EXPECT_LT(CConfiguredRun().BalanceWith(true, true), Unbalanced / 10);
}

TEST(ConfiguredRun, WhatSomebodyHasSetIsNotOverwrittenByTheRotorFile) {
    CConfiguredRun Run;
    Run.Change([](PreBalDB::CPreBalBaseTableEntry& rEntry) { rEntry.SetTargetUnbalance(9); });
    Run.m_Rotor.m_Planes.front().m_Scale = CRotorFile::eCounterClockwise;
    Run.Run(Procedure::ePrebalance);
    Run.Change([](PreBalDB::CPreBalBaseTableEntry& rEntry) {
        EXPECT_EQ(rEntry.GetTargetUnbalance(), 9U);
        EXPECT_EQ(rEntry.CreateSinglePlane().CreateWeightCompensationTableEntry().GetScalingDirection(),
                  CTypeBase::eClockwise);
    });
}

TEST(ConfiguredRun, OtherMeansThanConfiguredAreRefusedBeforeTheRun) {
    CConfiguredRun Run;
    Run.m_Options.m_Methods = {"screws"};
    EXPECT_THROW(Run.Run(Procedure::ePrebalance), CSessionError);
    Run.m_Options.m_bCommission = true;
    EXPECT_NE(Run.Run(Procedure::ePrebalance), eExitFailed);
}

namespace {

using ConfiguredWindowTest = MainWindowOptionsTest;

}  // namespace

/// Also if the window begins with a run at once.
TEST_F(ConfiguredWindowTest, ANewConfigurationIsSetUpFromTheRotorFileBeforeTheFirstRun) {
    m_Run.m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    AskFor(Procedure::ePrebalance);
    Open();
    BalanceByButtons();
    Press("Finish");
    EXPECT_EQ(ReadReport()["result"], "SetupSuccess");
    EXPECT_LT(std::abs(m_pSession->GetSimulator()->GetRotor().GetResidual(0)), 0.1);
}

TEST_F(ConfiguredWindowTest, WhatSomebodyHasSetIsToldAndCounts) {
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    m_Run.m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    m_Run.m_Options.m_Procedure = Procedure::ePrebalance;
    Open();
    EXPECT_THAT(GetMessage(), HasSubstr("--commission"));
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
}

TEST_F(ConfiguredWindowTest, AWindowThatIsAskedForOtherMeansEndsAndSaysWhy) {
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    m_Run.m_Options.m_Methods = {"screws"};
    Open();
    EXPECT_FALSE(m_pWindow->isVisible());
    EXPECT_THAT(m_pWindow->GetRefusal(), HasSubstr("--method"));
}

/// Neither by itself nor by what the pages save afterwards.
TEST_F(ConfiguredWindowTest, ARunThatIsEndedEarlyLeavesTheCalibration) {
    ASSERT_EQ(m_Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    Open();
    ASSERT_TRUE(m_pSession->GetHost().IsCalibrated());
    for (int nRun = 0; nRun < 2; ++nRun) {
        Press("Pre-balance");
        Press("End");
        EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
        ASSERT_NE(FindButton("Re-balance"), nullptr);
        EXPECT_TRUE(FindButton("Re-balance")->isEnabled());
    }
    Close();
    Open();
    EXPECT_TRUE(m_pSession->GetHost().IsCalibrated());
}
