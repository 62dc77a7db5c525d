#include "archive/rotormodel.h"

#include <gtest/gtest.h>
#include <array>

#include <cmath>
#include <complex>
#include <string>
#include <tuple>

#include "tests/archive/simulatedrun.h"
#include "tests/support/casenames.h"

namespace {

using Complex = std::complex<double>;

CSimulatedRun::CSetup MakeSetup(const std::string& rMode, bool bScrews, bool bClockwise, bool bScale1,
                                bool bScale2) {
    CSimulatedRun::CSetup Setup;
    Setup.m_Mode = rMode;
    Setup.m_bScrews = bScrews;
    Setup.m_nScrews = 3;
    Setup.m_Table = {{"A", 0.2}, {"B", 0.5}, {"C", 1.0}};
    Setup.m_nReadings = 10;
    CRotorFile& rRotor = Setup.m_Rotor;
    rRotor = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
    rRotor.m_Rotation = bClockwise ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
    rRotor.m_Planes[0].m_Scale = bScale1 ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
    rRotor.m_Planes[1].m_Scale = bScale2 ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
    rRotor.m_Planes[0].m_Unbalance = {0.9, 77.0};
    rRotor.m_Planes[1].m_Unbalance = {0.7, 311.0};
    rRotor.m_Planes[0].m_Holes = 12;
    rRotor.m_Planes[1].m_Holes = 18;
    // Many counts, so that rounding to them doesn't matter.
    rRotor.m_Influence = {{{9000.0, 40.0}, {2500.0, 75.0}}, {{3100.0, 200.0}, {8000.0, 300.0}}};
    return Setup;
}

class RotorModelSenses : public testing::TestWithParam<std::tuple<const char*, bool, bool, bool, bool>> {
protected:
    CSimulatedRun MakeRun() const {
        const auto& [pMode, bScrews, bClockwise, bScale1, bScale2] = GetParam();
        return CSimulatedRun(MakeSetup(pMode, bScrews, bClockwise, bScale1, bScale2));
    }
};

}  // namespace

// The simulator's physics knows nothing of the module's frames, nor of the model's: what the model expects of
// any other fitting must come, for every sense.
TEST_P(RotorModelSenses, PredictsWhatTheRotorDoes) {
    CSimulatedRun Run = MakeRun();
    Run.RunTests();
    const auto Model = CRotorModel::Make(Run.GetRecord(), 0.0);
    ASSERT_TRUE(Model);
    std::array<CPlaneFitting, 2> Other;
    Other[0].m_Weights = {25, 100};
    Other[1].m_Weights = {340, 210};
    Other[0].m_Screws = {{3, 0.5}, {11, 0.2}};
    Other[1].m_Screws = {{8, 0.7}};
    for (const std::size_t Plane : Run.GetPlanes()) {
        Run.SetNoted(Plane, Run.GetNoted()[Plane].m_Screws.empty()
                                ? CPlaneFitting{Other[Plane].m_Weights, {}}
                                : CPlaneFitting{{}, Other[Plane].m_Screws});
    }
    Run.RunFinal();
    const auto Predicted = Model->Predict(Model->AssumeNoted(Model->MakeFit(Other)));
    ASSERT_TRUE(Predicted);
    ASSERT_EQ(Predicted->size(), Run.GetPlanes().size());
    for (std::size_t i = 0; i < Predicted->size(); ++i) {
        const Complex Sent =
            CRotorModel::TurnX((*Predicted)[i].m_Reading, Run.GetRecord().m_Setup.m_bClockwise);
        const Complex True = Run.GetTrueReading(Model->GetPlane(i));
        EXPECT_NEAR(Sent.real(), True.real(), 6.0) << "sensor " << i;
        EXPECT_NEAR(Sent.imag(), True.imag(), 6.0) << "sensor " << i;
    }
}

// The module's own mathematics, in its own frames: the correction that it computes leaves nothing by the
// model, and its inverse is the model's.
TEST_P(RotorModelSenses, AgreesWithTheModulesMathematics) {
    CSimulatedRun Run = MakeRun();
    Run.RunTests();
    const auto Model = CRotorModel::Make(Run.GetRecord(), 0.0);
    ASSERT_TRUE(Model);
    const bool bScrews = std::get<1>(GetParam());
    const auto Influence = CRotorModel::InvertBlocks(Run.GetInvA());
    ASSERT_TRUE(Influence);
    // A unit more in each plane, by the module's inverse and by the model.
    const CRotorModel::Fit Neutral = Model->AssumeNoted({}).m_Measured.front();
    for (std::size_t q = 0; q < Model->GetNumberOfPlanes(); ++q) {
        CRotorModel::Fit More = Neutral;
        More[q] += Complex(0.6, -0.3);
        const auto Predicted = Model->Predict(Model->AssumeNoted(More));
        ASSERT_TRUE(Predicted);
        for (std::size_t p = 0; p < Model->GetNumberOfPlanes(); ++p) {
            const Complex Effect = (*Predicted)[p].m_Reading - Model->GetStates()[0].m_Reading[p];
            const Complex Expected = (*Influence)[p][q] * (More[q] - Neutral[q]);
            EXPECT_NEAR(std::abs(Effect - Expected), 0.0, 1e-6 * std::abs(Expected) + 1e-9)
                << p << q << bScrews;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllSenses, RotorModelSenses,
                         testing::Combine(testing::Values("plane1", "plane2", "two-plane"), testing::Bool(),
                                          testing::Bool(), testing::Bool(), testing::Bool()),
                         CaseNames::BY_TEXT);

// By hand: reading 100, with a test weight change of 1 it is 100 + 50i. So 0.5 gives 100 + 25i, and -2i 200.
TEST(RotorModel, SharesByHand) {
    CSimulatedRun::CSetup Setup = MakeSetup("plane1", false, false, true, true);
    CSimulatedRun Run(Setup);
    Run.RunTests();
    const auto Model = CRotorModel::Make(Run.GetRecord(), 0.0);
    ASSERT_TRUE(Model);
    const auto Shares =
        Model->GetShares({.m_Measured = {{0.0, 0.0}, {1.0, 0.0}}, .m_Asked = {Complex(0, -2), 0}});
    ASSERT_TRUE(Shares);
    EXPECT_NEAR(std::abs((*Shares)[0] - Complex(1, 2)), 0.0, 1e-12);
    EXPECT_NEAR(std::abs((*Shares)[1] - Complex(0, -2)), 0.0, 1e-12);
}

TEST(RotorModel, TestThatChangedNothingTellsNothing) {
    CSimulatedRun Run(MakeSetup("plane1", false, false, true, true));
    Run.RunTests();
    const auto Model = CRotorModel::Make(Run.GetRecord(), 0.0);
    ASSERT_TRUE(Model);
    EXPECT_FALSE(Model->GetShares({.m_Measured = {{1.0, 0.0}, {1.0, 0.0}}, .m_Asked = {2.0, 0.0}}));
}

TEST(RotorModel, RunWithoutItsTestHasNoModel) {
    CSimulatedRun Run(MakeSetup("two-plane", false, false, true, true));
    Run.RunTests();
    Run.GetRecord().m_Measurements.pop_back();
    EXPECT_FALSE(CRotorModel::Make(Run.GetRecord(), 0.0));
}
