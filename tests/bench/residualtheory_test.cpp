#include "bench/accuracy/residualtheory.h"

#include <gtest/gtest.h>

#include <cmath>
#include <numbers>

namespace {

using Complex = std::complex<double>;
using CMeasured = CErrorPropagation::CMeasured;

CMeasured MakeMeasured(const Textbook::Vector& rFitted, const Textbook::Vector& rReading, double Variance,
                       double GainVariance = 0.0) {
    CMeasured Measured;
    Measured.m_True = {rFitted, rReading};
    Measured.m_Error.fill(CCovariance::Isotropic(Variance));
    Measured.m_GainVariance = GainVariance;
    return Measured;
}

CResidualError MakeError(const CCovariance& rCovariance) {
    CResidualError Error;
    Error.m_Covariance = rCovariance;
    return Error;
}

}  // namespace

// Influence 50, readings 100 and 150 with a unit: the correction -2 reads 3 * 100 - 2 * 150 = 0. Errors of
// variance 4 come out with 3^2 + 2^2, over 50^2.
TEST(ErrorPropagation, CarriesTheErrorsOfAPrebalancing) {
    CErrorPropagation Errors({{{50.0, 0.0}, {0.0, 0.0}}}, 1);
    Errors.AddPrebalancing({MakeMeasured({0.0}, {100.0}, 4.0), MakeMeasured({1.0}, {150.0}, 4.0)}, {-2.0});
    EXPECT_NEAR(Errors.GetCovariance(0).m_XX, 0.0208, 1e-12);
    EXPECT_NEAR(Errors.GetCovariance(0).m_YY, 0.0208, 1e-12);
    EXPECT_NEAR(Errors.GetCovariance(0).m_XY, 0.0, 1e-12);
}

// The same with factors of the readings: 3 * 100 / 50 and -2 * 150 / 50, along the reading only.
TEST(ErrorPropagation, AFactorOfAReadingActsAlongIt) {
    CErrorPropagation Errors({{{50.0, 0.0}, {0.0, 0.0}}}, 1);
    Errors.AddPrebalancing({MakeMeasured({0.0}, {100.0}, 0.0, 0.01), MakeMeasured({1.0}, {150.0}, 0.0, 0.01)},
                           {-2.0});
    EXPECT_NEAR(Errors.GetCovariance(0).m_XX, 0.72, 1e-12);
    EXPECT_NEAR(Errors.GetCovariance(0).m_YY, 0.0, 1e-12);
}

// One unit is missing: by the difference of two readings per unit it is found with twice the variance of one.
TEST(ErrorPropagation, CarriesTheErrorsOfAnInfluence) {
    CErrorPropagation Errors({{{50.0, 0.0}, {0.0, 0.0}}}, 1);
    Errors.AddInfluence({MakeMeasured({0.0}, {100.0}, 4.0), MakeMeasured({1.0}, {150.0}, 4.0)}, {1.0});
    EXPECT_NEAR(Errors.GetCovariance(0).m_XX, 2.0 * 4.0 / 2500.0, 1e-12);
}

// Influence ((2, 1), (1, 3)) with the inverse ((3, -1), (-1, 2)) / 5; shares 2, 2, -3. Errors of variance 1
// of the first sensor only: (2^2 + 2^2 + 3^2) times (3 / 5)^2 and (1 / 5)^2.
TEST(ErrorPropagation, CarriesErrorsThroughTheInverseOfTwoPlanes) {
    CErrorPropagation Errors({{{2.0, 1.0}, {1.0, 3.0}}}, 2);
    std::vector<CMeasured> Measured = {MakeMeasured({0.0, 0.0}, {5.0, 10.0}, 1.0),
                                       MakeMeasured({1.0, 0.0}, {7.0, 11.0}, 1.0),
                                       MakeMeasured({1.0, 1.0}, {8.0, 14.0}, 1.0)};
    for (CMeasured& rMeasured : Measured) {
        rMeasured.m_Error[1] = {};
    }
    Errors.AddPrebalancing(Measured, {-1.0, -3.0});
    EXPECT_NEAR(Errors.GetCovariance(0).m_XX, 17.0 * 0.36, 1e-12);
    EXPECT_NEAR(Errors.GetCovariance(1).m_XX, 17.0 * 0.04, 1e-12);
}

// Rayleigh's distribution about the middle; beside it 1 - Q(1, 1) with Marcum's Q(1, 1) = 0.73288.
TEST(ResidualError, ProbabilityOfACircle) {
    const CCovariance Unit = CCovariance::Isotropic(1.0);
    EXPECT_NEAR(CResidualError::GetProbability(Unit, 0.0, 1.5), 1.0 - std::exp(-1.125), 1e-9);
    EXPECT_NEAR(CResidualError::GetProbability(Unit, Complex(0.6, -0.8), 1.0), 0.26712, 0.002);
}

TEST(ResidualError, ErrorsInOneDirectionAreThoseOfANumber) {
    EXPECT_NEAR(CResidualError::GetProbability({1.0, 0.0, 0.0}, 0.0, 1.0), 0.6827, 0.01);
    EXPECT_NEAR(CResidualError::GetProbability({0.5, 0.5, 0.5}, 0.0, 1.0), 0.6827, 0.01);
}

TEST(ResidualError, WithoutErrorsThePlacementAloneCounts) {
    CResidualError Screws;
    Screws.m_Offset = Complex(0.3, 0.4);
    Screws.m_First = 2.0;
    EXPECT_NEAR(Screws.GetProbability(0.251), 1.0, 1e-9);
    EXPECT_NEAR(Screws.GetProbability(0.249), 0.0, 1e-9);
}

// A pair at 60 degrees to each side, in steps of a degree: half a degree of each, across its direction.
TEST(ResidualError, RoundingOfAPairIsAParallelogram) {
    const auto Edges = CResidualError::GetHalfEdges(1.0, 0.02);
    EXPECT_NEAR(std::abs(Edges[0] - 0.01 * Complex(-std::sqrt(0.75), 0.5)), 0.0, 1e-12);
    EXPECT_NEAR(std::abs(Edges[1] - 0.01 * Complex(std::sqrt(0.75), 0.5)), 0.0, 1e-12);
}

// Of a square a circle takes pi / 4; beyond its corners everything.
TEST(ResidualError, RoundingSpreadsEvenly) {
    CResidualError Error = MakeError({});
    Error.m_HalfEdges = {Complex(1.0, 0.0), Complex(0.0, 1.0)};
    EXPECT_NEAR(Error.GetProbability(1.0), std::numbers::pi / 4.0, 0.02);
    EXPECT_NEAR(Error.GetProbability(1.42), 1.0, 1e-9);
}

// Of two runs, one with three times the error, half of all residuals: at the length t where
// exp(-t^2 / 2) + exp(-t^2 / 18) = 1, which is 1.8456.
TEST(ResidualPopulation, QuantileIsOfAllRunsTogether) {
    CResidualPopulation Population;
    Population.Add(MakeError(CCovariance::Isotropic(1.0)));
    Population.Add(MakeError(CCovariance::Isotropic(9.0)));
    const double Median = Population.GetQuantile(0.5);
    EXPECT_NEAR(std::exp(-Median * Median / 2.0) + std::exp(-Median * Median / 18.0), 1.0, 1e-3);
}

// Median of Rayleigh's distribution: s sqrt(2 ln 2). The standard error of a median is 1 / (2 f sqrt(n)), f
// the density there, times it: 1 / (2 ln 2 sqrt(n)).
TEST(ResidualPopulation, TellsHowWellASampleFindsAQuantile) {
    CResidualPopulation Population;
    for (int i = 0; i < 100; ++i) {
        Population.Add(MakeError(CCovariance::Isotropic(1.0)));
    }
    const double Median = Population.GetQuantile(0.5);
    EXPECT_NEAR(Median, std::sqrt(2.0 * std::numbers::ln2), 0.002);
    EXPECT_NEAR(Population.GetRelativeError(Median), 0.1 / (2.0 * std::numbers::ln2), 0.001);
}

TEST(VarianceOfMean, CountsAreAStepWithoutNoiseAndNothingWithMuch) {
    EXPECT_NEAR(GetVarianceOfMean(0.0, 40), 1.0 / 12.0, 0.002);
    EXPECT_NEAR(GetVarianceOfMean(5.0, 40), 25.0 / 40.0 + 1.0 / 480.0, 1e-9);
}
