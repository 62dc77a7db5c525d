// Whole runs over a Lanner module: one plane of two, either of them, with and without swapped planes.
#include <gtest/gtest.h>

#include "tests/system/wholerun.h"

namespace {

using nlohmann::json;
using Procedure = COptions::Procedure;

/// As with one plane: noise of 1.5 counts and whole degrees leave less than this of 150 counts per weight.
constexpr double SMALL = 0.05;

/// Two planes that differ in all they can, without coupling, so that each can be judged for itself.
CRotorFile MakeRotor(bool bSwap) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn(CRotorFile::eLanner);
    Rotor.m_bSwap = bSwap;
    Rotor.m_RampRpmPerS = 3000.0;
    Rotor.m_Planes[0].m_Unbalance = {0.8, 123.0};
    Rotor.m_Planes[1].m_Unbalance = {0.5, 40.0};
    Rotor.m_Influence = {{{150.0, 40.0}, {0.0, 0.0}}, {{0.0, 0.0}, {200.0, 290.0}}};
    return Rotor;
}

struct CCase {
    const char* m_pMode;
    bool m_bSwap;
    CRotorFile::Sense m_Rotation;
    CRotorFile::Sense m_Scale;
};

std::string NameOf(const testing::TestParamInfo<CCase>& rInfo) {
    const CCase& rCase = rInfo.param;
    return std::string(rCase.m_pMode) + (rCase.m_bSwap ? "Swapped" : "") +
           (rCase.m_Rotation == CRotorFile::eClockwise ? "RotationCw" : "RotationCcw") +
           (rCase.m_Scale == CRotorFile::eClockwise ? "ScaleCw" : "ScaleCcw");
}

std::vector<CCase> MakeCases() {
    std::vector<CCase> Cases;
    for (const char* pMode : {"plane1", "plane2"}) {
        for (const bool bSwap : {false, true}) {
            for (const auto Rotation : {CRotorFile::eClockwise, CRotorFile::eCounterClockwise}) {
                for (const auto Scale : {CRotorFile::eClockwise, CRotorFile::eCounterClockwise}) {
                    Cases.push_back({pMode, bSwap, Rotation, Scale});
                }
            }
        }
    }
    return Cases;
}

class LannerRun : public testing::TestWithParam<CCase> {};

/// Nobody looks at the page.
struct CLannerRun : CWholeRun {
    CLannerRun(const CRotorFile& rRotor, const char* pMode) : CWholeRun(rRotor) {
        m_Options.m_Mode = pMode;
        m_Options.m_bShowPage = false;
    }
};

}  // namespace

// Pre-balancing and re-balancing: the plane in question loses its unbalance, the other one keeps its own.
TEST_P(LannerRun, BalancesItsPlaneAndLeavesTheOtherAlone) {
    const CCase& rCase = GetParam();
    CRotorFile Rotor = MakeRotor(rCase.m_bSwap);
    Rotor.m_Rotation = rCase.m_Rotation;
    for (CRotorFile::CRotorPlane& rPlane : Rotor.m_Planes) {
        rPlane.m_Scale = rCase.m_Scale;
    }
    const std::size_t nBalanced = std::string(rCase.m_pMode) == "plane2" ? 1 : 0;
    CWholeRun Run(Rotor);
    Run.m_Options.m_Mode = rCase.m_pMode;
    if (rCase.m_Scale == CRotorFile::eCounterClockwise) {
        Run.WriteSettings("PreBalancingConsistentWeightOrder=\"1\"");
    }
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "SetupSuccess");
    EXPECT_LT(std::abs(Run.m_Residuals[nBalanced]), SMALL);
    EXPECT_NEAR(std::abs(Run.m_Residuals[1 - nBalanced]), nBalanced == 0 ? 0.5 : 0.8, 1e-9);
    EXPECT_EQ(Run.m_Report["final"].size(), 1U);
    EXPECT_EQ(Run.m_Report["positions"].size(), 1U);
    EXPECT_TRUE(Run.GetAssertions().empty());

    Run.m_Rotor.m_Planes[nBalanced].m_Unbalance = {0.6, 200.0};
    EXPECT_EQ(Run.Run(Procedure::eRebalance), eExitWithinTarget);
    EXPECT_EQ(Run.GetResult(), "RebalSuccess");
    EXPECT_LT(std::abs(Run.m_Residuals[nBalanced]), SMALL);
    EXPECT_TRUE(Run.GetAssertions().empty());
}

INSTANTIATE_TEST_SUITE_P(WholeRun, LannerRun, testing::ValuesIn(MakeCases()), NameOf);

// Every key of the database names input, sensor, swap, article, serial and set of the plane balanced: the
// first input has adaption 1, the second 2, and swapped they change places.
TEST(LannerRunKey, NamesInputAndSensorOfThePlane) {
    const auto KeyOf = [](const char* pMode, bool bSwap) {
        CLannerRun Run(MakeRotor(bSwap), pMode);
        Run.Run(Procedure::ePrebalance);
        return Run.m_MachineName;
    };
    EXPECT_EQ(KeyOf("plane1", false), "0#1#255-0-51204A-2100309-1");
    EXPECT_EQ(KeyOf("plane2", false), "1#2#255-1-51204A-2100309-1");
    EXPECT_EQ(KeyOf("plane1", true), "1#2#255-0s-51204A-2100309-1");
    EXPECT_EQ(KeyOf("plane2", true), "0#1#255-1s-51204A-2100309-1");
}

// Reports that nothing needs, in every state of the run, change nothing in it.
TEST(LannerRunReports, EndInTheLogOnly) {
    std::vector<nlohmann::ordered_json> Positions;
    for (const bool bReports : {false, true}) {
        CRotorFile Rotor = MakeRotor(false);
        Rotor.m_NoiseCounts = 0.0;
        CLannerRun Run(Rotor, "plane1");
        std::size_t nReports = 0;
        Run.OnSituation = [&](const CSituation&, CConsoleSession& rSession) {
            for (const char* pKind : {"bal_configuration", "module_configuration", "diagnosis_data"}) {
                if (bReports) {
                    rSession.GetSimulator()->Carry({{"report", {{"kind", pKind}}}});
                    ++nReports;
                }
            }
        };
        EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
        EXPECT_TRUE(Run.GetAssertions().empty());
        EXPECT_EQ(nReports > 30, bReports);
        Positions.push_back(Run.m_Report["positions"]);
    }
    EXPECT_EQ(Positions[0], Positions[1]);
}

namespace {

struct CPlaneCase {
    const char* m_pName;
    const char* m_pMode;
    bool m_bSwap;
    std::size_t m_nPlane;  ///< of the machine, from 0: the one that falls out of lock
};

class LannerLock : public testing::TestWithParam<CPlaneCase> {};

}  // namespace

// In a measurement one plane's electronics fall out of lock for two seconds. It matters if, and only if, it
// is the plane that is balanced, whichever input it is wired to.
TEST_P(LannerLock, OfTheOtherPlaneIsNoMatter) {
    const CPlaneCase& rCase = GetParam();
    const bool bMatters = (std::string(rCase.m_pMode) == "plane2") == (rCase.m_nPlane == 1);
    CLannerRun Run(MakeRotor(rCase.m_bSwap), rCase.m_pMode);
    bool bDone = false;
    std::size_t nOutOfLock = 0;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
        if (rSituation.m_Progress.m_State != "eTestUnbalanceMeasurement") {
            return;
        }
        nOutOfLock += bDone && rSituation.m_Warning == 3 ? 1 : 0;
        if (!bDone && rSituation.m_Warning == 0) {
            bDone = true;
            const auto SetFailures = [&rSession, &rCase](int Bits) {
                json Failures = {0, 0};
                Failures[rCase.m_nPlane] = Bits;
                rSession.GetSimulator()->Carry({{"module_state", {{"failures", Failures}}}});
            };
            constexpr int OUT_OF_LOCK = 8;
            SetFailures(OUT_OF_LOCK);
            IFEventLoop::Current().SetTimer(2000, [SetFailures](std::uint32_t Id) {
                SetFailures(0);
                IFEventLoop::Current().KillTimer(Id);
            });
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    ASSERT_TRUE(bDone);
    EXPECT_EQ(nOutOfLock > 0, bMatters);
}

INSTANTIATE_TEST_SUITE_P(WholeRun, LannerLock,
                         testing::Values(CPlaneCase{"Own1", "plane1", false, 0},
                                         CPlaneCase{"Other1", "plane1", false, 1},
                                         CPlaneCase{"Own2", "plane2", false, 1},
                                         CPlaneCase{"Other2", "plane2", false, 0},
                                         CPlaneCase{"Own1Swapped", "plane1", true, 0},
                                         CPlaneCase{"Other1Swapped", "plane1", true, 1},
                                         CPlaneCase{"Own2Swapped", "plane2", true, 1},
                                         CPlaneCase{"Other2Swapped", "plane2", true, 0}),
                         [](const auto& rInfo) { return rInfo.param.m_pName; });

// Somebody exchanges the planes in the middle of a run: what was measured belongs to the other plane now.
TEST(LannerRunSet, SwapInTheMiddleAbortsWithWarningOne) {
    CLannerRun Run(MakeRotor(false), "plane1");
    bool bDone = false;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
        if (!bDone && rSituation.m_Progress.m_State == "eTestUnbalanceMeasurement") {
            bDone = true;
            rSession.GetSimulator()->Carry({{"set", {{"swap", true}}}});
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitFailed);
    EXPECT_EQ(Run.GetResult(), "Failure");
    EXPECT_TRUE(Run.HasWarning(1));
}

TEST(LannerRunSet, RenamedInTheMiddleGoesOn) {
    CLannerRun Run(MakeRotor(false), "plane1");
    bool bDone = false;
    Run.OnSituation = [&](const CSituation& rSituation, CConsoleSession& rSession) {
        if (!bDone && rSituation.m_Progress.m_State == "eTestUnbalanceMeasurement") {
            bDone = true;
            rSession.GetSimulator()->Carry({{"set", {{"name", "another"}}}});
        }
    };
    EXPECT_EQ(Run.Run(Procedure::ePrebalance), eExitWithinTarget);
    EXPECT_TRUE(bDone);
}
