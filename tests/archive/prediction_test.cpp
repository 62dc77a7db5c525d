#include "archive/prediction.h"

#include <gtest/gtest.h>

#include <cmath>

#include "platform/rvldb/gettext.h"
#include "tests/archive/simulatedrun.h"

namespace {

constexpr double MANY = CErrorSum::MAX_FREEDOM;

CSimulatedRun::CSetup MakeSetup() {
    CSimulatedRun::CSetup Setup;
    Setup.m_Mode = "plane1";
    Setup.m_Noise = 1.5;
    return Setup;
}

CRunAdvice::CPrediction Predict(CSimulatedRun& rRun) {
    const auto Model = CRotorModel::Make(rRun.GetRecord(), 0.0);
    return Prediction::Make(*Model, Model->MakeFit(rRun.GetNoted()), rRun.GetRecord().m_Setup.m_bClockwise)
        .value();
}

}  // namespace

// Rayleigh's distribution: sqrt(-2 ln 0.05) = 2.4477 standard deviations.
TEST(Prediction, BoundAboutZeroIsRayleighs) {
    EXPECT_NEAR(Prediction::GetBound(0.0, CCovariance::Isotropic(4.0), MANY, 0.95), 2.0 * 2.447747, 1e-4);
}

// With one direction only: the normal distribution, of two sides about 0, of one far from it.
TEST(Prediction, BoundAlongALineIsTheNormalDistributions) {
    EXPECT_NEAR(Prediction::GetBound(0.0, {1.0, 1e-12, 0.0}, MANY, 0.95), 1.95996, 0.01);
    EXPECT_NEAR(Prediction::GetBound({100.0, 0.0}, {1.0, 1e-12, 0.0}, MANY, 0.95), 101.645, 0.01);
}

// Rice's distribution.
TEST(Prediction, BoundOffZeroIsRices) {
    const double Bound = Prediction::GetBound({1.0, 0.0}, CCovariance::Isotropic(1.0), MANY, 0.95);
    // The density x exp(-(x² + 1) / 2) I0(x), summed in steps.
    double Sum = 0.0;
    constexpr double STEP = 1e-4;
    for (double x = STEP / 2.0; x < Bound; x += STEP) {
        Sum += STEP * x * std::exp(-(x * x + 1.0) / 2.0) * std::cyl_bessel_i(0.0, x);
    }
    EXPECT_NEAR(Sum, 0.95, 1e-4);
}

TEST(Prediction, BoundOfFewReadingsIsWider) {
    // T-squared in closed form: t = 20 (0.05^(-2 / 19) - 1), t the squared length.
    EXPECT_NEAR(Prediction::GetBound(0.0, CCovariance::Isotropic(1.0), 20.0, 0.95),
                std::sqrt(20.0 * (std::pow(0.05, -2.0 / 19.0) - 1.0)), 1e-6);
}

TEST(Prediction, NothingScattersNothingToBound) {
    EXPECT_EQ(Prediction::GetBound({3.0, 4.0}, CCovariance{}, MANY, 0.95), 5.0);
}

TEST(Prediction, SaysWhatComesWithWholeDegrees) {
    CSimulatedRun Run(MakeSetup());
    Run.RunTests();
    const auto Expected = Predict(Run);
    ASSERT_TRUE(Expected.m_Planes[0]);
    EXPECT_FALSE(Expected.m_Planes[1]);
    Run.RunFinal();
    const auto& rFinal = *Run.GetRecord().Find(Measurement::eFinal)->m_Planes[0];
    const CPlanePrediction& rPlane = *Expected.m_Planes[0];
    const double Error = std::sqrt(rPlane.m_VarianceX);
    EXPECT_NEAR(rPlane.m_Reading.m_X, rFinal.m_Smoothed.m_X, 4.0 * Error);
    EXPECT_NEAR(rPlane.m_Reading.m_Y, rFinal.m_Smoothed.m_Y, 4.0 * Error);
    EXPECT_GT(rPlane.m_AtMost95, rPlane.m_Amplitude);
}

// 2.3 weights are more than two reach: what is missing is to be expected.
TEST(Prediction, SaysWhatIsLeftWhenTheCapacityIsExceeded) {
    auto Setup = MakeSetup();
    Setup.m_Rotor.m_Planes[0].m_Unbalance.m_Amount = 2.3;
    CSimulatedRun Run(Setup);
    Run.RunTests();
    EXPECT_FALSE(Run.IsCapacityEnough());
    EXPECT_NEAR(Predict(Run).m_Planes[0]->m_Amplitude, 0.3 * 150.0, 2.0);
}

TEST(Prediction, FewReadingsHaveNoRegion) {
    auto Setup = MakeSetup();
    Setup.m_nReadings = 4;
    CSimulatedRun Run(Setup);
    Run.RunTests();
    const auto Expected = Predict(Run);
    EXPECT_EQ(Expected.m_Planes[0]->m_AtMost95, 0.0);
    ASSERT_TRUE(SetLanguage("en"));
    EXPECT_NE(Expected.m_Text.find("scatter not known"), std::string::npos) << Expected.m_Text;
}

TEST(Prediction, IsPutAsOneWouldSayIt) {
    ASSERT_TRUE(SetLanguage("en"));
    std::array<std::optional<CPlanePrediction>, 2> Planes;
    Planes[0] = CPlanePrediction{{}, 0.0, 0.0, 0.0, 1.4, 2.9};
    EXPECT_EQ(Prediction::Describe(Planes), "Expected: 1.4 µm/s, at most 2.9");
    Planes[1] = CPlanePrediction{{}, 0.0, 0.0, 0.0, 120.4, 130.0};
    EXPECT_EQ(Prediction::Describe(Planes),
              "Expected: plane 1 1.4 µm/s, at most 2.9; plane 2 120 µm/s, at most 130");
}
