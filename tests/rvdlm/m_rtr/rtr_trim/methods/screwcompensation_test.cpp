#include "rvdlm/m_rtr/rtr_trim/methods/screwcompensation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <stdexcept>

#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/methods/plainscrewsearch.h"
#include "tests/support/logcapture.h"

namespace {

using math::MakeVector;
using Table = Base::CWDArray<PreBalDB::CScrew>;
using Matrix = math::matrix<double>;

class CCompensation : public CScrewCompensation {
public:
    using CScrewCompensation::CScrewCompensation;
};

Table OneToThree() {
    return {{"one", 1.0}, {"two", 2.0}, {"three", 3.0}};
}

struct CResult {
    bool m_bResult = false;
    Base::CWDArray<CScrew> m_Screws;
    double m_Percent = -1.0;
    double m_X = 0.0;
    double m_Y = 0.0;
};

CResult Solve(CScrewCompensation& rCompensation, double x, double y, double Reference = 1.0) {
    CResult Result;
    Matrix UA = MakeVector(-9.0, -9.0);
    Result.m_bResult =
        rCompensation.UA2Screws(MakeVector(x, y), Result.m_Screws, &Result.m_Percent, UA, Reference);
    Result.m_X = UA(0, 0);
    Result.m_Y = UA(1, 0);
    return Result;
}

TEST(ScrewCompensation, TheFirstOfEquallyGoodPlacementsStays) {
    CCompensation Compensation(OneToThree(), 2, 4, 0, 100.0);
    const CResult Result = Solve(Compensation, 3.0, 0.0);
    EXPECT_TRUE(Result.m_bResult);
    EXPECT_EQ(Result.m_Screws, (Base::CWDArray<CScrew>{{1, 3.0, "three"}, {2, 1.0, "one"}}));
    EXPECT_NEAR(Result.m_X, 3.0, 1e-15);
    EXPECT_NEAR(Result.m_Y, 1.0, 1e-15);
}

TEST(ScrewCompensation, NothingIsMadeOfTheZeroEntryInTheFirstHoles) {
    CCompensation Compensation({{"none", 0.0}, {"one", 1.0}}, 2, 12, 0, 100.0);
    const CResult Result = Solve(Compensation, 0.0, 0.0);
    EXPECT_EQ(Result.m_Screws, (Base::CWDArray<CScrew>{{1, 0.0, "none"}, {2, 0.0, "none"}}));
}

TEST(ScrewCompensation, WithoutAPlacementTheScrewsStayEmpty) {
    const CScrew Empty;
    for (const auto& [nScrews, nHoles] : {std::pair{2, 1}, std::pair{3, 2}, std::pair{2, 0}}) {
        CCompensation Compensation(OneToThree(), nScrews, nHoles, 0, 100.0);
        const CResult Result = Solve(Compensation, 1.0, 1.0);
        EXPECT_TRUE(Result.m_bResult);
        ASSERT_EQ(Result.m_Screws.GetSize(), static_cast<std::size_t>(nScrews));
        for (const CScrew& rScrew : Result.m_Screws) {
            EXPECT_EQ(rScrew, Empty);
        }
        EXPECT_EQ(Result.m_X, 0.0);
        EXPECT_EQ(Result.m_Y, 0.0);
    }
}

// The vector produced is then that of the last placement, in units of the new reference weight.
TEST(ScrewCompensation, ATargetTooFarAwayLeavesTheLastSum) {
    CCompensation Compensation(OneToThree(), 2, 4, 0, 100.0);
    Solve(Compensation, 3.0, 0.0);
    const CResult Far = Solve(Compensation, 2e6, 0.0, 0.5);
    EXPECT_EQ(Far.m_Screws[0].m_Hole, 0);
    EXPECT_EQ(Far.m_Screws[1].m_Name, "");
    EXPECT_NEAR(Far.m_X, 6.0, 1e-14);
    EXPECT_NEAR(Far.m_Y, 2.0, 1e-14);
    EXPECT_GT(Far.m_Percent, 1e6);
}

TEST(ScrewCompensation, CapacityOfThreeScrews) {
    CCompensation Compensation({{"", 5.0}}, 3, 12, 0, 100.0);
    const double Capacity = 5.0 * (2.0 * std::sqrt(3.0) / 2.0 + 1.0);  // 13.66
    const CResult Over = Solve(Compensation, 0.0, 14.0);
    EXPECT_TRUE(Over.m_bResult);
    EXPECT_NEAR(Over.m_Percent, (14.0 - Capacity) / Capacity * 100, 1e-10);
    EXPECT_NEAR(Over.m_Percent, 2.49, 0.005);
    EXPECT_EQ(Solve(Compensation, 0.0, 13.6).m_Percent, 0.0);
}

TEST(ScrewCompensation, CapacityOfTwoScrews) {
    CCompensation Compensation({{"", 5.0}}, 2, 12, 0, 100.0);
    EXPECT_EQ(Solve(Compensation, 9.65, 0.0).m_Percent, 0.0);
    EXPECT_GT(Solve(Compensation, 9.67, 0.0).m_Percent, 0.0);
}

TEST(ScrewCompensation, TheLastEntryCountsAsTheLargestWhateverTheOrder) {
    CCompensation Compensation({{"", 5.0}, {"", 1.0}}, 2, 12, 0, 100.0);
    const double Capacity = 2.0 * std::cos(15.0 * math::PI / 180.0);
    EXPECT_NEAR(Solve(Compensation, 4.0, 0.0).m_Percent, (4.0 - Capacity) / Capacity * 100, 1e-10);
}

TEST(ScrewCompensation, TheSecondPlaneCountsTheHolesMirrored) {
    CCompensation First({{"", 1.0}, {"", 2.0}}, 2, 12, 0, 100.0);
    CCompensation Second({{"", 1.0}, {"", 2.0}}, 2, 12, 1, 100.0);
    const CResult Plain = Solve(First, 1.3, 2.2);
    const CResult Mirrored = Solve(Second, 1.3, -2.2);
    EXPECT_EQ(Plain.m_Screws, Mirrored.m_Screws);
    EXPECT_EQ(Plain.m_X, Mirrored.m_X);
    EXPECT_EQ(Plain.m_Y, -Mirrored.m_Y);
}

TEST(ScrewCompensation, ANumberOfScrewsOtherThanThreePlacesTwo) {
    CCompensation Compensation(OneToThree(), 7, 12, 0, 100.0);
    EXPECT_EQ(Solve(Compensation, 1.0, 0.0).m_Screws.GetSize(), 2U);
}

TEST(ScrewCompensation, ThePercentageMayBeLeftOut) {
    CCompensation Compensation(OneToThree(), 2, 12, 0, 100.0);
    Base::CWDArray<CScrew> Screws;
    Matrix UA = MakeVector(0.0, 0.0);
    EXPECT_TRUE(Compensation.UA2Screws(MakeVector(100.0, 0.0), Screws, nullptr, UA, 1.0));
}

TEST(ScrewCompensation, AnEmptyTableIsAnInvalidArgument) {
    CCompensation Compensation({}, 2, 12, 0, 100.0);
    Base::CWDArray<CScrew> Screws;
    Matrix UA = MakeVector(0.0, 0.0);
    EXPECT_THROW(Compensation.UA2Screws(MakeVector(1.0, 0.0), Screws, nullptr, UA, 1.0),
                 std::invalid_argument);
}

TEST(ScrewCompensation, AResultWithOneRowIsAMatrixError) {
    CCompensation Compensation(OneToThree(), 2, 12, 0, 100.0);
    Base::CWDArray<CScrew> Screws;
    Matrix UA(1, 1);
    EXPECT_THROW(Compensation.UA2Screws(MakeVector(1.0, 0.0), Screws, nullptr, UA, 1.0), math::matrix_error);
}

// Holes, weights, names and vector against the plain enumeration, the reference weight included.
TEST(ScrewCompensation, GivesThePlacementOfThePlainEnumeration) {
    std::mt19937_64 Generator(11);
    const auto Uniform = [&](double Low, double High) {
        return Low + (High - Low) * static_cast<double>(Generator() >> 11U) * 0x1p-53;
    };
    for (int i = 0; i < 200; ++i) {
        const int nScrews = 2 + i % 2;
        const int nHoles = 4 + static_cast<int>(Generator() % 6);
        Table Screws;
        std::vector<double> Weights;
        for (int k = 0; k < 5; ++k) {
            Weights.push_back(0.5 * static_cast<double>(Generator() % 8));
            Screws.Add({"screw " + std::to_string(k), Weights.back()});
        }
        const double Reference = Uniform(0.5, 3.0);
        const double x = Uniform(-3.0, 3.0);
        const double y = Uniform(-3.0, 3.0);
        CCompensation Compensation(Screws, nScrews, nHoles, 0, 100.0);
        const CResult Result = Solve(Compensation, x, y, Reference);
        const auto Expected = SearchPlainly(Weights, nScrews == 3, nHoles, x * Reference, y * Reference);
        ASSERT_TRUE(Expected);
        for (std::size_t k = 0; k < static_cast<std::size_t>(nScrews); ++k) {
            const PreBalDB::CScrew& rKind = Screws[Expected->m_Entries[k]];
            EXPECT_EQ(Result.m_Screws[k], (CScrew{static_cast<std::uint16_t>(Expected->m_Holes[k] + 1),
                                                  rKind.GetWeight(), rKind.GetScrewName()}));
        }
        EXPECT_EQ(Result.m_X, Expected->m_SumX / Reference);
        EXPECT_EQ(Result.m_Y, Expected->m_SumY / Reference);
    }
}

}  // namespace
