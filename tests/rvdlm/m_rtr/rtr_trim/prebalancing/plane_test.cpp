#include "rvdlm/m_rtr/rtr_trim/prebalancing/plane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>

#include "rvlib/math/vector.h"
#include "tests/support/logcapture.h"

namespace {

using math::MakeVector;
using PreBalDB::CTypeBase;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using Complex = std::complex<double>;
using Matrix = math::matrix<double>;

constexpr auto CW = CTypeBase::eClockwise;
constexpr auto CCW = CTypeBase::eCounterClockwise;
constexpr std::uint32_t SAMPLES = 3;

Complex ToComplex(const Matrix& rVector) {
    return {rVector(0, 0), rVector(1, 0)};
}

/// A full window of one reading, as it is to be stored: clockwise masters and counter-clockwise slaves would
/// mirror it.
void Read(CPlane& rPlane, CPlane::UnbalanceType Type, int x, int y) {
    rPlane.RestartMeasurement();
    for (std::uint32_t i = 0; i <= SAMPLES; ++i) {
        rPlane.AddXYValue(static_cast<std::int16_t>(x), static_cast<std::int16_t>(y));
    }
    rPlane.SetUnbalance(Type);
}

/// A reading as it is stored.
Complex Store(CPlane& rPlane, int x, int y) {
    Read(rPlane, CPlane::ubtRebal, x, y);
    return ToComplex(rPlane.GetFirstMeasurementUnbalance());
}

class PlaneTest : public testing::Test {
protected:
    PlaneTest() {
        m_Master.SetRotationDirection(CCW);  // neither plane mirrors then
        m_Slave.SetRotationDirection(CW);
    }
    /// The tests are one known unit each.
    void SetUnitTests() {
        for (CPlane* pPlane : {static_cast<CPlane*>(&m_Master), static_cast<CPlane*>(&m_Slave)}) {
            pPlane->SetTestWeightAngles(CPlane::eDirect, math::MakeNull(2, 1));
            pPlane->SetTestWeightAngles(CPlane::eCross, math::MakeNull(2, 1));
        }
    }
    CLogCapture m_Log;
    CMasterPlane m_Master{SAMPLES};
    CSlavePlane m_Slave{SAMPLES};
};

TEST_F(PlaneTest, StartsWithoutInfluenceAndWithUnitFactors) {
    for (const CPlane* pPlane : {static_cast<CPlane*>(&m_Master), static_cast<CPlane*>(&m_Slave)}) {
        EXPECT_TRUE(pPlane->GetAlphaDirect() == math::MakeNull(2, 2));
        EXPECT_TRUE(pPlane->GetAlphaCross() == math::MakeNull(2, 2));
        EXPECT_TRUE(pPlane->GetRawUnbalance() == math::MakeNull(2, 1));
        EXPECT_TRUE(pPlane->GetTransformationMatrix() == math::MakeFactor(1, 0));
        EXPECT_TRUE(pPlane->GetCrossTransformationMatrix() == math::MakeFactor(1, 0));
    }
}

TEST_F(PlaneTest, BothPlanesMirrorXExactlyWhenPlane1TurnsClockwise) {
    EXPECT_EQ(Store(m_Master, 100, 50), Complex(100, 50));
    EXPECT_EQ(Store(m_Slave, 100, 50), Complex(100, 50));
    m_Master.SetRotationDirection(CW);
    m_Slave.SetRotationDirection(CCW);
    EXPECT_EQ(Store(m_Master, 100, 50), Complex(-100, 50));
    EXPECT_EQ(Store(m_Slave, 100, 50), Complex(-100, 50));
}

TEST_F(PlaneTest, SmallestSampleMirroredStaysAsItIs) {
    m_Master.SetRotationDirection(CW);
    EXPECT_EQ(Store(m_Master, -32768, 1), Complex(-32768, 1));
}

TEST_F(PlaneTest, FirstReadingBeginsARunWithNothingElseValid) {
    Read(m_Master, CPlane::ubtFirst, 30, 40);
    EXPECT_EQ(m_Master.IsValid(0), 1);
    EXPECT_EQ(m_Master.IsValid(1), 0);
    EXPECT_EQ(m_Master.IsValid(2), 0);
    EXPECT_TRUE(m_Master.GetRawUnbalance() == math::MakeNull(2, 1));
    EXPECT_EQ(ToComplex(m_Master.GetFirstMeasurementUnbalance()), Complex(30, 40));
}

TEST_F(PlaneTest, UnknownReadingIsNotValid) {
    Read(m_Master, CPlane::ubtFirst, 30, 40);
    EXPECT_EQ(m_Master.IsValid(3), 0);
    EXPECT_EQ(m_Master.IsValid(-1), 0);
}

TEST_F(PlaneTest, SecondFirstReadingInvalidatesTheRunButKeepsTheCrossInfluence) {
    Read(m_Master, CPlane::ubtFirst, 10, 0);
    Read(m_Master, CPlane::ubtSum, 30, 0);
    Read(m_Master, CPlane::ubtCrossSum, 30, 50);
    ASSERT_EQ(ToComplex(m_Master.GetCrossWeightUnbalance()), Complex(0, 50));
    Read(m_Master, CPlane::ubtFirst, 70, 0);
    EXPECT_EQ(m_Master.IsValid(1), 0);
    EXPECT_EQ(m_Master.IsValid(2), 0);
    EXPECT_EQ(ToComplex(m_Master.GetCrossWeightUnbalance()), Complex(0, 50));
    EXPECT_EQ(m_Master.GetOwnWeightUnbalance()(0, 0), math::INVALID_VALUE);
}

// Readings 10, 30, 30+50i: the master's own weights come with the second, the other plane's with the third.
TEST_F(PlaneTest, MasterTakesItsOwnInfluenceFromTheSecondReading) {
    SetUnitTests();
    Read(m_Master, CPlane::ubtFirst, 10, 0);
    Read(m_Master, CPlane::ubtSum, 30, 0);
    EXPECT_TRUE(m_Master.GetAlphaDirect() == math::MakeNull(2, 2)) << "evaluated only with the third reading";
    Read(m_Master, CPlane::ubtCrossSum, 30, 50);
    EXPECT_TRUE(m_Master.GetAlphaDirect() == math::MakeFactor(20, 0));
    EXPECT_TRUE(m_Master.GetAlphaCross() == math::MakeFactor(0, 50));
    EXPECT_EQ(ToComplex(m_Master.GetRawUnbalance()), Complex(10, 0)) << "unit tests start from no weights";
}

TEST_F(PlaneTest, SlaveTakesItsOwnInfluenceFromTheThirdReading) {
    SetUnitTests();
    Read(m_Slave, CPlane::ubtFirst, 10, 0);
    Read(m_Slave, CPlane::ubtCrossSum, 30, 0);
    EXPECT_TRUE(m_Slave.GetAlphaCross() == math::MakeNull(2, 2));
    Read(m_Slave, CPlane::ubtSum, 30, 50);
    EXPECT_TRUE(m_Slave.GetAlphaCross() == math::MakeFactor(20, 0));
    EXPECT_TRUE(m_Slave.GetAlphaDirect() == math::MakeFactor(0, 50));
    EXPECT_EQ(ToComplex(m_Slave.GetRawUnbalance()), Complex(10, 0));
}

// Weights from 0 and 180 (sum 0) to 0 and 90 (sum 1+i): the factor is 1 / (1+i) = 0.5 - 0.5i.
TEST_F(PlaneTest, FactorIsTheInverseOfTheWeightChangeWithoutConjugate) {
    for (const int Kind : {CPlane::eDirect, CPlane::eCross}) {
        m_Master.SetFirstMeasurementWeights(Kind, MakeVector(0, 180));
        m_Master.SetTestWeightAngles(Kind, MakeVector(0, 90));
        const Matrix& rFactor = Kind == CPlane::eDirect ? m_Master.GetTransformationMatrix()
                                                        : m_Master.GetCrossTransformationMatrix();
        EXPECT_NEAR(rFactor(0, 0), 0.5, 1e-12);
        EXPECT_NEAR(rFactor(1, 0), -0.5, 1e-12);
        EXPECT_NEAR(rFactor(0, 1), 0.5, 1e-12);
        EXPECT_NEAR(rFactor(1, 1), 0.5, 1e-12);
    }
}

// First weights at 0 and 90 have the sum 1+i; with an influence of 20 they make 20+20i of the reading 30+10i.
TEST_F(PlaneTest, FirstWeightsAreTakenOutOfTheRawUnbalance) {
    m_Master.SetFirstMeasurementWeights(CPlane::eDirect, MakeVector(0, 90));
    m_Master.SetFirstMeasurementWeights(CPlane::eCross, MakeVector(0, 180));
    m_Master.SetTestWeightAngles(CPlane::eDirect, MakeVector(0, 180));  // change -1-i
    m_Master.SetTestWeightAngles(CPlane::eCross, MakeVector(90, 90));   // change 2i
    Read(m_Master, CPlane::ubtFirst, 30, 10);
    Read(m_Master, CPlane::ubtSum, 10, -10);
    Read(m_Master, CPlane::ubtCrossSum, 10, -4);
    EXPECT_NEAR(std::abs(ToComplex(m_Master.GetOwnWeightUnbalance()) - Complex(20, 0)), 0, 1e-12);
    EXPECT_NEAR(std::abs(ToComplex(m_Master.GetCrossWeightUnbalance()) - Complex(3, 0)), 0, 1e-12);
    EXPECT_NEAR(std::abs(ToComplex(m_Master.GetRawUnbalance()) - Complex(10, -10)), 0, 1e-12);
}

TEST_F(PlaneTest, TestAnglesOfZeroMakeTheUnitMatrixWhateverTheFirstPositions) {
    m_Master.SetFirstMeasurementWeights(CPlane::eDirect, MakeVector(30, 50));
    m_Master.SetTestWeightAngles(CPlane::eDirect, MakeVector(40, 90));
    ASSERT_FALSE(m_Master.GetTransformationMatrix() == math::MakeFactor(1, 0));
    m_Master.SetTestWeightAngles(CPlane::eDirect, MakeVector(0, 0));
    EXPECT_TRUE(m_Master.GetTransformationMatrix() == math::MakeFactor(1, 0));
    m_Master.SetTestWeightAngles(CPlane::eCross, MakeVector(0, 0));
    EXPECT_TRUE(m_Master.GetCrossTransformationMatrix() == math::MakeFactor(1, 0));
}

TEST_F(PlaneTest, WeightsThatDoNotMoveGiveAFactorThatIsNotFinite) {
    m_Master.SetFirstMeasurementWeights(CPlane::eDirect, MakeVector(30, 50));
    m_Master.SetTestWeightAngles(CPlane::eDirect, MakeVector(30, 50));
    EXPECT_FALSE(std::isfinite(m_Master.GetTransformationMatrix()(0, 0)));
}

TEST_F(PlaneTest, UnknownKindsAndTypesDoNothing) {
    m_Master.SetFirstMeasurementWeights(2, MakeVector(30, 50));
    m_Master.SetTestWeightAngles(2, MakeVector(40, 90));
    EXPECT_TRUE(m_Master.GetFirstDirectMeasurementWeightAngles() == math::MakeNull(2, 1));
    EXPECT_TRUE(m_Master.GetFirstCrossMeasurementWeightAngles() == math::MakeNull(2, 1));
    EXPECT_TRUE(m_Master.GetTransformationMatrix() == math::MakeFactor(1, 0));
    Read(m_Master, CPlane::ubtFirst, 30, 40);
    for (int Type = 3; Type <= 6; ++Type) {
        Read(m_Master, static_cast<CPlane::UnbalanceType>(Type), 1, 2);
    }
    EXPECT_EQ(ToComplex(m_Master.GetFirstMeasurementUnbalance()), Complex(30, 40));
    EXPECT_EQ(m_Master.IsValid(1), 0);
}

// The factor is the unit matrix from the start, but its norm is not recorded before the test is known.
TEST_F(PlaneTest, CrossInfluenceIsNotTakenBeforeTheTestIsKnown) {
    Read(m_Master, CPlane::ubtFirst, 10, 0);
    Read(m_Master, CPlane::ubtSum, 30, 0);
    Read(m_Master, CPlane::ubtCrossSum, 30, 50);
    EXPECT_TRUE(m_Master.GetAlphaDirect() == math::MakeFactor(20, 0));
    EXPECT_TRUE(m_Master.GetAlphaCross() == math::MakeNull(2, 2));
}

TEST_F(PlaneTest, InfluenceOfNothingKeepsItsValueAndThatOfTheOtherPlaneDoesNot) {
    SetUnitTests();
    Read(m_Master, CPlane::ubtFirst, 10, 0);
    Read(m_Master, CPlane::ubtSum, 30, 0);
    Read(m_Master, CPlane::ubtCrossSum, 30, 50);
    // A second run in which no weight shows any effect.
    for (const CPlane::UnbalanceType Type : {CPlane::ubtFirst, CPlane::ubtSum, CPlane::ubtCrossSum}) {
        Read(m_Master, Type, 10, 0);
    }
    EXPECT_TRUE(m_Master.GetAlphaDirect() == math::MakeFactor(20, 0)) << "looks at the influence";
    EXPECT_TRUE(m_Master.GetAlphaCross() == math::MakeFactor(0, 0)) << "looks at the factor";
}

TEST_F(PlaneTest, WindowThatIsNotCompleteIsAssertedAndItsAverageTaken) {
    m_Master.AddXYValue(30, 40);
    m_Master.SetUnbalance(CPlane::ubtRebal);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("must be complete!"));
    EXPECT_EQ(ToComplex(m_Master.GetFirstMeasurementUnbalance()), Complex(30, 40));
}

TEST_F(PlaneTest, AssertionOfAnIncompleteWindowNamesTheClassAndTheExpression) {
    m_Slave.SetUnbalance(CPlane::ubtRebal);
    ASSERT_EQ(m_Log.GetAssertions().size(), 1U);
    EXPECT_EQ(m_Log.GetRecords().front().m_Function, "CPlane::CalculateSmoothedValue");
    EXPECT_EQ(m_Log.GetRecords().front().m_Expression, "m_MovingAverage.GetValuesComplete()");
}

TEST_F(PlaneTest, DumpsKeepTheirNames) {
    const CLogCapture Log(true);
    const auto Run = [](CPlane& rPlane, CPlane::UnbalanceType Second, CPlane::UnbalanceType Third) {
        rPlane.SetFirstMeasurementWeights(CPlane::eDirect, MakeVector(10, 190));
        rPlane.SetTestWeightAngles(CPlane::eDirect, MakeVector(10, 160));
        rPlane.SetFirstMeasurementWeights(CPlane::eCross, MakeVector(20, 200));
        rPlane.SetTestWeightAngles(CPlane::eCross, MakeVector(20, 170));
        Read(rPlane, CPlane::ubtFirst, 10, 0);
        Read(rPlane, Second, 30, 0);
        Read(rPlane, Third, 30, 50);
        Read(rPlane, CPlane::ubtRebal, 1, 2);
    };
    Run(m_Master, CPlane::ubtSum, CPlane::ubtCrossSum);
    Run(m_Slave, CPlane::ubtCrossSum, CPlane::ubtSum);
    const std::vector<std::string> Texts = Log.GetTexts("PbMath");
    for (const char* pText :
         {"Direct: (10,190) Phi1: 100.0000  -- Alpha1: 90.0000 -- Phi2: 85.0000  -- Alpha2: 75.0000",
          "Cross: (20,200)  Phi1: 110.0000  -- Alpha1: 90.0000 -- Phi2: 95.0000  -- Alpha2: 75.0000",
          "ubtRebal/FirstMeasurementUnbalance, MasterPlane",
          "ubtRebal/FirstMeasurementUnbalance, Slave Plane",
          "Calculating Master Plane:", "Calculating Slave Plane:", "calc raw unbalance"}) {
        EXPECT_THAT(Texts, Contains(pText));
    }
    EXPECT_THAT(Texts, testing::Not(Contains("Logging Slave Plane:"))) << "the slave's second reading is "
                                                                          "never its last";
    const auto nRow = [&Texts](const std::string& rStart) {
        return std::ranges::count_if(Texts,
                                     [&](const std::string& rText) { return rText.starts_with(rStart); });
    };
    // The master's two paths, each under the names of the other; the slave's one.
    EXPECT_EQ(nRow("DeltaMeasuredCrossTestUnbalance ="), 1);
    EXPECT_EQ(nRow("CrossTransformationMatrix ="), 1);
    EXPECT_EQ(nRow("CrossSumUnbalance ="), 1);
    EXPECT_EQ(nRow("DeltaMeasuredTestUnbalance ="), 2);
    EXPECT_EQ(nRow("TransformationMatrix ="), 2);
    EXPECT_EQ(nRow("SumUnbalance ="), 1);
    EXPECT_EQ(nRow("CSumUnbalance ="), 1);
    EXPECT_EQ(nRow("RawUnbalance in path ubtCrossSum ="), 1);
    EXPECT_EQ(nRow("RawUnbalance in path ubtSum ="), 1);
}

// With screws there are no weights before the test; what is logged of them is zero all the same.
TEST_F(PlaneTest, DumpsOfWeightsThatThereAreNotAreZeroVectors) {
    const CLogCapture Log(true);
    Read(m_Master, CPlane::ubtFirst, 10, 0);
    Read(m_Master, CPlane::ubtSum, 30, 0);
    Read(m_Master, CPlane::ubtCrossSum, 30, 50);
    const std::vector<std::string> Texts = Log.GetTexts("PbMath");
    for (const std::string Name : {"FirstDirectWeightVector", "FirstDirectWeightsAsNormalizedVector",
                                   "FirstCrossWeightVector", "FirstCrossWeightsAsNormalizedVector"}) {
        const std::string Margin(Name.size() + 3, ' ');
        const auto Row = std::ranges::find(Texts, Name + " = |    0.0000  |");
        ASSERT_NE(Row, Texts.end()) << Name;
        ASSERT_NE(Row + 1, Texts.end()) << Name;
        EXPECT_EQ(Row[1], Margin + "|    0.0000  |") << Name;
        EXPECT_TRUE(Row + 2 == Texts.end() || !Row[2].starts_with(Margin)) << Name;
    }
}

}  // namespace
