// Whole runs of the single-plane procedure, with the product's means and mathematics, on a rotor that is
// known.
#include <cmath>
#include <memory>
#include <set>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/rotormodel.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

namespace {

using K = CKeyActions;
using Nc = CPreBalNotification;
using S = CSinglePlaneBalancing;
using Complex = CRotorModel::Complex;
using PreBalDB::CTypeBase;
using testing::IsEmpty;

constexpr std::uint16_t SPEED = 3000;
constexpr std::uint32_t SAMPLES = 40;
/// Settling, then one tick more than there are samples in the window.
constexpr std::uint32_t MEASURING_TIME = 3000 + (SAMPLES + 1) * 50;

/// The machine and the operator: brings the spindle to speed and to a stop, fits the weights as told.
class SinglePlaneRunTest : public testing::Test {
protected:
    SinglePlaneRunTest() {
        m_Entry.SetRPMTolerance(50);
        m_Entry.SetTargetUnbalance(15);
        m_Entry.SetNumberOfSamples(SAMPLES);
        m_Rotor.m_Own = CRotorModel::Polar(0.8, 123.0);
        m_Rotor.m_Influence = CRotorModel::Polar(150.0, 40.0);
        SetDirections(CTypeBase::eClockwise, CTypeBase::eClockwise);
    }
    void TearDown() override {
        if (HasFailure() && m_pSequence) {
            ADD_FAILURE() << "Transitions:\n" << m_pSequence->GetHistory().ToString();
        }
        m_pSequence.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
    }

    /// Of the rotor and of the configuration.
    void SetDirections(CTypeBase::Direction Rotation, CTypeBase::Direction Scale) {
        m_Rotor.m_Rotation = Rotation;
        m_Rotor.m_Scale = Scale;
        m_Entry.CreateSinglePlane().SetRotationDirection(Rotation);
        m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry().SetScalingDirection(Scale);
    }
    void Make(int Plane = 0) {
        m_pSequence.reset();
        m_pSequence = std::make_unique<CSinglePlaneBalancing>(&m_Wnd, Plane, m_Entry, "Wheel");
        m_Plane = Plane;
    }
    int GetState() const { return m_pSequence->GetState(); }
    void Next() { EXPECT_EQ(m_pSequence->KeyPressed(K::eNext), 1); }
    void StopSpindle() {
        m_pSequence->InvalidRPM(1);
        m_pSequence->CurrentRPM(0);
    }
    void Feed() {
        const auto [x, y] = m_Rotor.Read();
        if (m_Plane == 0) {
            m_pSequence->CurrentXYValuePlane1(x, y);
        } else {
            m_pSequence->CurrentXYValuePlane2(x, y);
        }
    }
    /// Fits the weights where the NC was told.
    void FitWeights() {
        const Nc& rNotification = m_Wnd.m_Notifications.back();
        ASSERT_EQ(rNotification.m_Action, Nc::eSetWeights);
        m_Rotor.m_Weights = {rNotification.m_AnglesPlane1[0], rNotification.m_AnglesPlane1[1]};
    }
    /// Measures until the menu for complete values comes up, which is to happen at its instant.
    void MeasureUntil(int CompleteMenu) {
        Feed();
        m_Loop.Advance(MEASURING_TIME - 1);
        EXPECT_EQ(m_Wnd.GetMenu(), 4);
        m_Loop.Advance(1);
        ASSERT_EQ(m_Wnd.GetMenu(), CompleteMenu);
        EXPECT_EQ(m_Wnd.m_Notifications.back().m_Action, Nc::eMeasurementValuesOK);
    }
    void MeasureFinally() {
        Feed();
        m_Loop.Advance(MEASURING_TIME);
    }

    void StartAndMeasureNeutral() {
        m_pSequence->StartPreBalancing(SPEED, 0, 0);
        StopSpindle();
        FitWeights();
        Next();
        m_pSequence->CurrentRPM(SPEED);
        m_pSequence->InvalidRPM(0);
        Next();
        ASSERT_EQ(GetState(), S::eNeutralPosMeasurement);
        MeasureUntil(0);
        Next();
    }
    void MeasureTest() {
        StopSpindle();
        ASSERT_EQ(GetState(), S::eTestUnbalanceSetWeights);
        FitWeights();
        Next();
        m_pSequence->CurrentRPM(SPEED);
        ASSERT_EQ(GetState(), S::eTestUnbalanceMeasurement);
        MeasureUntil(0);
        Next();
    }
    void CorrectAndMeasure() {
        ASSERT_EQ(GetState(), S::ePreBalanceSpindleStop);
        StopSpindle();
        FitWeights();
        Next();
        m_pSequence->CurrentRPM(SPEED);
        ASSERT_EQ(GetState(), S::ePreBalanceMeasurement);
        MeasureFinally();
    }
    void PreBalance() {
        StartAndMeasureNeutral();
        MeasureTest();
        CorrectAndMeasure();
    }
    /// From the first measurement of a re-balancing to its end.
    void ReBalance() {
        ASSERT_EQ(GetState(), S::eReBalanceMeasurement1);
        MeasureUntil(8);
        Next();
        StopSpindle();
        ASSERT_EQ(GetState(), S::eReBalanceSetWeights);
        FitWeights();
        Next();
        m_pSequence->CurrentRPM(SPEED);
        ASSERT_EQ(GetState(), S::eReBalanceMeasurement2);
        MeasureFinally();
    }

    // What may be left of the unbalance. Two weights at whole degrees are off by half a degree at most.
    static double GetPositionError() { return 2.0 * 2.0 * std::sin(0.25 * std::numbers::pi / 180.0); }
    /// Readings are whole counts: half a count in X and in Y.
    double GetReadingError() const { return std::sqrt(0.5) / std::abs(m_Rotor.m_Influence); }
    /// Relative error of an influence from two readings, with one weight moved by 30 degrees.
    double GetInfluenceError() const {
        return 2.0 * GetReadingError() / std::abs(CRotorModel::Polar(1.0, 30.0) - 1.0) * 1.1;
    }
    double GetPreBalanceError() const {
        return GetPositionError() + GetReadingError() + std::abs(m_Rotor.m_Own) * GetInfluenceError();
    }
    /// After a change of the rotor by Change.
    double GetReBalanceError(Complex Change) const {
        return GetPositionError() + GetReadingError() +
               (std::abs(Change) + GetPreBalanceError()) * GetInfluenceError();
    }

    CVirtualEventLoop m_Loop;
    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CFakeMainWnd m_Wnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0-0#1#255-4711-33-7", "Default"};
    CRotorModel m_Rotor;
    int m_Plane = 0;
    std::unique_ptr<CSinglePlaneBalancing> m_pSequence;
};

/// Sense of rotation and of the scale, and the rotor's own unbalance.
struct CRunRow {
    CTypeBase::Direction m_Rotation;
    CTypeBase::Direction m_Scale;
    double m_Amount;
    double m_Degrees;
};
class WholeRunTest : public SinglePlaneRunTest, public testing::WithParamInterface<CRunRow> {};

TEST_P(WholeRunTest, BalancesTheRotorAndBalancesItAgain) {
    const CRunRow& rRow = GetParam();
    SetDirections(rRow.m_Rotation, rRow.m_Scale);
    m_Rotor.m_Own = CRotorModel::Polar(rRow.m_Amount, rRow.m_Degrees);
    Make();
    PreBalance();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetPreBalanceError());
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eSetupSuccess);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
    ASSERT_TRUE(m_pSequence->CommitChanges());
    EXPECT_EQ(m_Entry.IsCalibrated(), 1);
    EXPECT_EQ(m_Entry.GetCalibratedRPM(), SPEED);

    // The positions of the run are in the file.
    m_Wnd.m_Store.Load();
    const WeightPos2Plane& rStored = m_Wnd.m_Store.Get("000005_7");
    EXPECT_EQ(rStored.m_PositionsPlane1(0, 0), m_Rotor.m_Weights[0]);
    EXPECT_EQ(rStored.m_PositionsPlane1(1, 0), m_Rotor.m_Weights[1]);

    // The wheel wears: another run, later, with the calibration alone.
    const Complex Wear = CRotorModel::Polar(0.3, rRow.m_Degrees + 100.0);
    m_Rotor.m_Own += Wear;
    Make();
    ASSERT_EQ(m_pSequence->StartReBalancing(SPEED, 0, 0), 1);
    ReBalance();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetReBalanceError(Wear));
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eRebalSuccess);
    ASSERT_TRUE(m_pSequence->CommitChanges());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
    EXPECT_THAT(m_Log.GetTexts("Warning"), IsEmpty());
}

std::vector<CRunRow> MakeRunRows() {
    std::vector<CRunRow> Rows;
    for (const auto Rotation : {CTypeBase::eClockwise, CTypeBase::eCounterClockwise}) {
        for (const auto Scale : {CTypeBase::eClockwise, CTypeBase::eCounterClockwise}) {
            for (const auto& [Amount, Degrees] :
                 {std::pair{0.8, 123.0}, std::pair{1.2, 100.0}, std::pair{0.4, 275.0}}) {
                Rows.push_back({Rotation, Scale, Amount, Degrees});
            }
        }
    }
    return Rows;
}
INSTANTIATE_TEST_SUITE_P(Directions, WholeRunTest, testing::ValuesIn(MakeRunRows()), [](const auto& rInfo) {
    const CRunRow& rRow = rInfo.param;
    return std::string("Rotation") + CTypeBase::DirectionToString(rRow.m_Rotation) + "Scale" +
           CTypeBase::DirectionToString(rRow.m_Scale) + "At" +
           std::to_string(static_cast<int>(rRow.m_Degrees));
});

TEST_F(SinglePlaneRunTest, SecondPlaneIsBalancedFromItsOwnSensor) {
    Make(1);
    PreBalance();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetPreBalanceError());
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eSetupSuccess);
}

TEST_F(SinglePlaneRunTest, RebalanceFollowsOnWithoutANewStart) {
    Make();
    PreBalance();
    const Complex Wear = CRotorModel::Polar(0.25, 300.0);
    m_Rotor.m_Own += Wear;
    ASSERT_TRUE(m_pSequence->CommitChanges());
    m_pSequence->KeyPressed(K::eRebalance);
    ReBalance();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetReBalanceError(Wear));
    EXPECT_EQ(m_pSequence->GetCurrentStep(), 5U);
}

// The operator is shown the correction of the last run, and confirms it, before the spindle starts.
TEST_F(SinglePlaneRunTest, RebalanceFromStandstillShowsWhereTheWeightsAre) {
    Make();
    PreBalance();
    m_pSequence->CommitChanges();
    Make();
    m_pSequence->StartReBalancing(0, 0, 1);
    const Nc& rShown = m_Wnd.m_Notifications.back();
    EXPECT_EQ(rShown.m_Step, Nc::eReBalActive);
    EXPECT_EQ(rShown.m_Action, Nc::eSetWeights);
    EXPECT_EQ((std::set{rShown.m_AnglesPlane1[0], rShown.m_AnglesPlane1[1]}),
              (std::set{m_Rotor.m_Weights[0], m_Rotor.m_Weights[1]}));
    m_Rotor.m_Own += CRotorModel::Polar(0.2, 45.0);
    Next();
    m_pSequence->CurrentRPM(SPEED);
    ReBalance();
    EXPECT_EQ(m_pSequence->GetCurrentStep(), 7U);
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eRebalSuccess);
}

// The weights aren't where the last run left them: the operator maps them to the display, and the measurement
// counts all the same.
TEST_F(SinglePlaneRunTest, CheckedWeightsAreCorrectedFromWhereTheyStand) {
    Make();
    PreBalance();
    m_pSequence->CommitChanges();
    Make();
    m_pSequence->StartReBalancing(SPEED, 0, 0);
    m_Rotor.m_Weights[0] = (m_Rotor.m_Weights[0] + 12) % 360;
    MeasureUntil(8);
    m_pSequence->KeyPressed(K::eCheckWeightPositions);
    StopSpindle();
    ASSERT_EQ(GetState(), S::eReBalanceCheckWeights);
    for (int i = 0; i < 12; ++i) {
        m_pSequence->KeyPressed(K::eIncPosWeight1Down);
        m_pSequence->KeyPressed(K::eIncPosWeight1Up);
    }
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_AnglesPlane1[0], m_Rotor.m_Weights[0]);
    Next();
    ASSERT_EQ(GetState(), S::eReBalanceSetWeights);
    FitWeights();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetReBalanceError(CRotorModel::Polar(1.0, 12.0) - 1.0));
}

TEST_F(SinglePlaneRunTest, DipInSpeedCostsTimeButNotTheResult) {
    Make();
    StartAndMeasureNeutral();
    StopSpindle();
    FitWeights();
    Next();
    m_pSequence->CurrentRPM(SPEED);
    Feed();
    m_Loop.Advance(4000);
    m_pSequence->CurrentRPM(SPEED - 200);
    m_pSequence->CurrentXYValuePlane1(3000, -2000);  // what a sensor says meanwhile
    m_Loop.Advance(200);
    m_pSequence->CurrentRPM(SPEED);
    MeasureUntil(0);
    Next();
    CorrectAndMeasure();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), GetPreBalanceError());
}

TEST_F(SinglePlaneRunTest, WeightsFittedWronglyEndOverTheTarget) {
    Make();
    StartAndMeasureNeutral();
    MeasureTest();
    StopSpindle();
    FitWeights();
    m_Rotor.m_Weights[1] = (m_Rotor.m_Weights[1] + 20) % 360;
    Next();
    m_pSequence->CurrentRPM(SPEED);
    MeasureFinally();
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eSetupOverTarget);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 8U);
    EXPECT_TRUE(m_pSequence->CommitChanges()) << "over the target, but a calibration";
}

TEST_F(SinglePlaneRunTest, CapacityShortWarnsWithThePercentageAndGoesOn) {
    m_Rotor.m_Own = CRotorModel::Polar(2.5, 123.0);
    Make();
    StartAndMeasureNeutral();
    MeasureTest();
    ASSERT_EQ(GetState(), S::ePreBalanceSpindleStop);
    StopSpindle();
    EXPECT_EQ(m_pSequence->GetWarningMode(), 6U);
    // The weights reach 1.95; the computed vector has the error of the readings.
    EXPECT_NEAR(m_pSequence->GetPercent(), (2.5 - 1.95) / 1.95 * 100.0,
                2.5 * (GetInfluenceError() + GetReadingError()) / 1.95 * 100.0);
    FitWeights();
    EXPECT_EQ(m_Rotor.m_Weights[0], m_Rotor.m_Weights[1]) << "both weights against the unbalance";
    EXPECT_NEAR(std::abs(m_Rotor.GetResidual()), 0.5, 0.1);
    Next();
    m_pSequence->CurrentRPM(SPEED);
    MeasureFinally();
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eSetupOverTarget);
    ASSERT_TRUE(m_pSequence->CommitChanges());
    // The computed vector is stored, and a re-balancing with it is refused.
    Make();
    EXPECT_EQ(m_pSequence->StartReBalancing(SPEED, 0, 0), 1);
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 7U);
}

TEST_F(SinglePlaneRunTest, TestWeightsWithoutEffectFailTheRun) {
    m_Rotor.m_Influence = 0.0;
    m_Rotor.m_Background = Complex(100.0, -40.0);
    m_Entry.SetIsCalibrated(1);
    Make();
    StartAndMeasureNeutral();
    MeasureTest();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eFailure);
    EXPECT_EQ(m_Wnd.m_Activities.back(), 0);
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
    EXPECT_FALSE(m_pSequence->CommitChanges());
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// A weight moved by 30 degrees changes this reading by 3 percent and 20 degrees: less than the 5 percent or
// 30 degrees that an influence is computed from.
TEST_F(SinglePlaneRunTest, TestWeightsWithTooLittleEffectFailTheRun) {
    SetDirections(CTypeBase::eClockwise, CTypeBase::eCounterClockwise);
    m_Rotor.m_Own = CRotorModel::Polar(1.5, 10.0);
    Make();
    StartAndMeasureNeutral();
    MeasureTest();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
}

// The operator turned the test weights back to neutral, and the reading changed for another reason: the
// change of the weights is nil, and what is computed from it is no number.
TEST_F(SinglePlaneRunTest, TestWeightsThatWerentMovedFailTheRun) {
    Make();
    StartAndMeasureNeutral();
    StopSpindle();
    ASSERT_EQ(m_Wnd.m_Notifications.back().m_AnglesPlane1[0], 30);
    for (int i = 0; i < 6; ++i) {
        m_pSequence->KeyPressed(K::eDecPosWeight1Down);
        m_pSequence->KeyPressed(K::eDecPosWeight1Up);
    }
    FitWeights();
    ASSERT_EQ(m_Rotor.m_Weights[0], 0);
    m_Rotor.m_Own *= 2.0;
    Next();
    m_pSequence->CurrentRPM(SPEED);
    MeasureUntil(0);
    Next();
    EXPECT_EQ(GetState(), S::eFailureWithReset);
    EXPECT_EQ(m_pSequence->GetWarningMode(), 5U);
}

TEST_F(SinglePlaneRunTest, AbortInTheMiddleLeavesNothingSaved) {
    Make();
    StartAndMeasureNeutral();
    StopSpindle();
    FitWeights();
    Next();
    m_pSequence->CurrentRPM(SPEED);
    Feed();
    m_Loop.Advance(4000);
    m_pSequence->AbortBalancing(1);
    m_Loop.Advance(10000);
    EXPECT_EQ(GetState(), S::eFailureWithNoReturn);
    EXPECT_FALSE(m_pSequence->CommitChanges());
    EXPECT_EQ(m_Entry.IsCalibrated(), 0);
    EXPECT_FALSE(m_Wnd.m_Store.IsPositionsValid("000005_7"));
}

TEST_F(SinglePlaneRunTest, StoredPositionsAreTheNeutralOnesOfTheNextRun) {
    Make();
    PreBalance();
    m_pSequence->CommitChanges();
    m_Rotor.m_Own += CRotorModel::Polar(0.4, 200.0);
    Make();
    m_pSequence->StartPreBalancing(SPEED, 0, 0);
    EXPECT_EQ(m_Wnd.GetMenu(), 29);
    m_pSequence->KeyPressed(K::ePositionAdoption);
    ASSERT_EQ(GetState(), S::eNeutralPosRPMStart) << "the spindle needn't stop";
    EXPECT_EQ(m_pSequence->GetCurrentStep(), 3U);
    Next();
    MeasureUntil(0);
    Next();
    MeasureTest();
    CorrectAndMeasure();
    EXPECT_LE(std::abs(m_Rotor.GetResidual()), 2.0 * GetPreBalanceError());
    EXPECT_EQ(m_Wnd.m_Notifications.back().m_Step, Nc::eSetupSuccess);
}

}  // namespace
