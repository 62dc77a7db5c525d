#pragma once
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"
#include "rvlib/math/vector.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/sequencefixture.h"

/// Mathematics of two planes that calculate nothing: notes its calls and answers what a test sets.
class CFakeTwoPlaneMath : public CTwoPlaneBalancingMathIF {
public:
    explicit CFakeTwoPlaneMath(std::vector<std::string>& rCalls) : m_rCalls(rCalls) {}

    void RestartMeasurement() override { Note("RestartMeasurement"); }
    void SetRotationDirectionPlane1(Direction Value) override { m_Rotation = Value; }
    int AddXYValuePlane1(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete[0] ? 1 : 0;
    }
    int AddXYValuePlane2(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete[1] ? 1 : 0;
    }
    void SetRawUnbalanceVectors(Direction Scaling1, Direction Scaling2) override {
        Note("SetRawUnbalanceVectors " + std::to_string(Scaling1) + " " + std::to_string(Scaling2));
    }
    void SetRawUnbalanceVectorsAngles(const Matrix& rAngles1, const Matrix& rAngles2, Direction Scaling1,
                                      Direction Scaling2) override {
        Note("SetRawUnbalanceVectorsAngles " + Text(&rAngles1) + " " + Text(&rAngles2) + " " +
             std::to_string(Scaling1) + " " + std::to_string(Scaling2));
    }
    int ApplyNeutralPositionXYValues() override {
        Note("ApplyNeutralPositionXYValues");
        return 1;
    }
    void SetTestUnbalanceVectorCase1(const Matrix* pTest, Direction Scaling1) override {
        Note("SetTestUnbalanceVectorCase1 " + Text(pTest) + " " + std::to_string(Scaling1));
    }
    void ApplyTestPlusRawUnbalanceXYValuesCase1(std::uint32_t& rStatus) override {
        Note("ApplyTestPlusRawUnbalanceXYValuesCase1");
        rStatus = m_Case1Status;
    }
    void SetTestUnbalanceVectorCase2(const Matrix* pTest, Direction Scaling2) override {
        Note("SetTestUnbalanceVectorCase2 " + Text(pTest) + " " + std::to_string(Scaling2));
    }
    void GetPrebalanceResult(Matrix& rInvA, Matrix& rUAPlane1, Matrix& rUAPlane2,
                             std::uint32_t& rStatus) override {
        Note("GetPrebalanceResult");
        rInvA = m_InvA;
        rUAPlane1 = m_UA1;
        rUAPlane2 = m_UA2;
        rStatus = m_Status;
    }
    void SetMathMatrices(Matrix InvA, Matrix UAPlane1, Matrix UAPlane2) override {
        m_GivenInvA = InvA;
        m_GivenUA1 = UAPlane1;
        m_GivenUA2 = UAPlane2;
        Note("SetMathMatrices");
    }
    void GetRebalanceResult(Matrix& rUAPlane1, Matrix& rUAPlane2) override {
        Note("GetRebalanceResult");
        rUAPlane1 = m_RebalanceUA1;
        rUAPlane2 = m_RebalanceUA2;
    }

    static Matrix MakeDiagonal(double Value) {
        Matrix Result = math::MakeNull(4, 4);
        for (std::uint32_t i = 0; i < 4; ++i) {
            Result(i, i) = Value;
        }
        return Result;
    }

    std::vector<std::pair<int, int>> m_Samples;
    std::array<bool, 2> m_bComplete{};
    std::uint32_t m_Case1Status = 0;
    std::uint32_t m_Status = 0;
    Matrix m_InvA = MakeDiagonal(3.0);
    Matrix m_UA1 = Vector(0.75, 0.5);
    Matrix m_UA2 = Vector(-0.75, 0.25);
    Matrix m_RebalanceUA1 = Vector(-0.125, 1.5);
    Matrix m_RebalanceUA2 = Vector(0.125, -1.5);
    Matrix m_GivenInvA;
    Matrix m_GivenUA1;
    Matrix m_GivenUA2;
    Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;

private:
    void Note(std::string Call) { m_rCalls.push_back("Math." + std::move(Call)); }
    static std::string Text(const Matrix* pVector) {
        return pVector == nullptr ? "null"
                                  : std::to_string(static_cast<int>((*pVector)(0, 0))) + "," +
                                        std::to_string(static_cast<int>((*pVector)(1, 0)));
    }
    std::vector<std::string>& m_rCalls;
};

/// The two-plane procedure with its inside open to tests.
class CTwoPlaneProbe : public CTwoPlaneBalancing {
public:
    using Means = PreBalDB::CCompensationTableEntry::CompensationMethod;
    CTwoPlaneProbe(CPreBalMainWndInterface* pMainWnd, Means Means1, Means Means2,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod1,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod2,
                   std::unique_ptr<CTwoPlaneBalancingMathIF> pMath, PreBalDB::CPreBalBaseTableEntry& rEntry)
        : CTwoPlaneBalancing(pMainWnd, MakeFakePlane(std::move(pMethod1), Means1, 0),
                             MakeFakePlane(std::move(pMethod2), Means2, 1), std::move(pMath), rEntry,
                             "Set name") {}

    using CBalancingSequence::ChangeState;
    using CBalancingSequence::Enter;
    using CBalancingSequence::SetEvent;
    using CPreBalancing::CanMeasure;
    using CTwoPlaneBalancing::GetActivePlaneMethod;
    using CTwoPlaneBalancing::toggleActivePlane;
    const CPreBalNotification& GetNotification() const { return m_Notification; }

private:
    static CPlane MakeFakePlane(std::unique_ptr<CPlaneBalancingMethod> pMethod, Means Value,
                                std::size_t Sensor) {
        CPlane Plane;
        Plane.m_pMethod = std::move(pMethod);
        Plane.m_CompensationMethod = Value;
        Plane.m_Sensor = Sensor;
        return Plane;
    }
};

/// A two-plane procedure with fake means and mathematics, and the ways to each of its states.
class TwoPlaneTest : public testing::Test {
protected:
    using S = CTwoPlaneBalancing;
    using Nc = CPreBalNotification;
    static constexpr std::uint16_t eSpeed = 3000;

    TwoPlaneTest() {
        m_Entry.SetRPMTolerance(50);
        m_Entry.SetTargetUnbalance(10);
        m_Entry.SetNumberOfSamples(4);
        m_Entry.CreateTwoPlane().CreatePlane1WeightCompensationTableEntry();
        m_Entry.CreateTwoPlane().CreatePlane2WeightCompensationTableEntry();
        m_Entry.CreateTwoPlane().SetInvA(CFakeTwoPlaneMath::MakeDiagonal(7.0));
        m_Entry.CreateTwoPlane().SetUAPlane1(Vector(1.5, -0.25));
        m_Entry.CreateTwoPlane().SetUAPlane2(Vector(-1.5, 0.5));
        Make();
    }
    void TearDown() override {
        if (HasFailure() && m_pSequence) {
            ADD_FAILURE() << "Transitions:\n" << m_pSequence->GetHistory().ToString();
        }
        m_pSequence.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
    }

    /// A new procedure, idle.
    void Make() {
        m_pSequence.reset();
        m_Wnd.m_Menus.clear();
        m_Wnd.m_Notifications.clear();
        m_Wnd.m_WarningModes.clear();
        m_Wnd.m_Activities.clear();
        m_Wnd.m_Calls.clear();
        auto pMethod1 = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls, 1);
        auto pMethod2 = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls, 2);
        auto pMath = std::make_unique<CFakeTwoPlaneMath>(m_Wnd.m_Calls);
        m_pMethod1 = pMethod1.get();
        m_pMethod2 = pMethod2.get();
        m_pMath = pMath.get();
        m_pMethod1->m_Positions = Vector(11, 22);
        m_pMethod2->m_Positions = Vector(33, 44);
        m_pMethod2->m_UA = Vector(-0.5, 0.125);
        m_pMethod2->m_Scaling = PreBalDB::CTypeBase::eClockwise;
        m_pMethod1->m_bHasPositions = m_Means1 == PreBalDB::CCompensationTableEntry::eWeights;
        m_pMethod2->m_bHasPositions = m_Means2 == PreBalDB::CCompensationTableEntry::eWeights;
        m_pSequence = std::make_unique<CTwoPlaneProbe>(&m_Wnd, m_Means1, m_Means2, std::move(pMethod1),
                                                       std::move(pMethod2), std::move(pMath), m_Entry);
    }

    int GetState() const { return m_pSequence->GetState(); }
    std::pair<unsigned, unsigned> GetSteps() const {
        return {m_pSequence->GetCurrentStep(), m_pSequence->GetNumberOfSteps()};
    }
    int Key(CKeyActions::KeyAction Action) { return m_pSequence->KeyPressed(Action); }
    int Next() { return Key(CKeyActions::eNext); }
    void StopSpindle() {
        m_pSequence->InvalidRPM(1);
        m_pSequence->CurrentRPM(0);
    }
    void CompleteMeasurement() {
        m_pMath->m_bComplete = {true, true};
        m_Loop.Advance(3050);
        m_pMath->m_bComplete = {false, false};
    }
    /// A measurement of this plane alone that is over or within the target, in a final state.
    void ShowReadings(std::int16_t Plane1, std::int16_t Plane2) {
        m_pSequence->CurrentXYValuePlane1(Plane1, 0);
        m_pSequence->CurrentXYValuePlane2(Plane2, 0);
        m_Loop.Advance(3500);
    }
    std::vector<std::string> TakeCalls() {
        std::vector<std::string> Calls = std::exchange(m_Wnd.m_Calls, {});
        std::erase_if(Calls, [](const std::string& rCall) { return rCall.starts_with("Repaint"); });
        return Calls;
    }
    std::vector<std::pair<int, int>> TakeNotifications() {
        std::vector<std::pair<int, int>> Result;
        for (const CPreBalNotification& rNotification : std::exchange(m_Wnd.m_Notifications, {})) {
            Result.emplace_back(rNotification.m_Step, rNotification.m_Action);
        }
        return Result;
    }

    /// Brings a new procedure to the state before State, and returns what is to be done to enter it.
    std::function<void()> Approach(int State) {
        const auto After = [this](int Before, std::function<void()> Deed) {
            Reach(Before);
            TakeCalls();
            return Deed;
        };
        const auto AfterMeasuring = [this](int Before, std::function<void()> Deed) {
            Reach(Before);
            CompleteMeasurement();
            TakeCalls();
            return Deed;
        };
        const auto Go = [this] { Next(); };
        const auto Stop = [this] { StopSpindle(); };
        const auto Spin = [this] { m_pSequence->CurrentRPM(eSpeed); };
        switch (State) {
            case S::eNeutralPosSpindleStop:
                Make();
                return [this] { m_pSequence->StartPreBalancing(eSpeed, 0, 0); };
            case S::eNeutralPosRemoveWeights:
                Make();
                return [this] { m_pSequence->StartPreBalancing(0, 1, 1); };
            case S::eNeutralPosRPMStart:
                return After(S::eNeutralPosRemoveWeights, Go);
            case S::eNeutralPosMeasurement:
                Reach(S::eNeutralPosRPMStart);
                m_pSequence->CurrentRPM(eSpeed);
                m_pSequence->OutOfLock(0);
                m_pSequence->InvalidRPM(0);
                TakeCalls();
                return Go;
            case S::ePlane1TestUnbalanceSpindleStop:
                return AfterMeasuring(S::eNeutralPosMeasurement, Go);
            case S::ePlane1TestUnbalanceSetWeights:
                return After(S::ePlane1TestUnbalanceSpindleStop, Stop);
            case S::ePlane1TestUnbalanceRPMStart:
                return After(S::ePlane1TestUnbalanceSetWeights, Go);
            case S::ePlane1TestUnbalanceMeasurement:
                return After(S::ePlane1TestUnbalanceRPMStart, Spin);
            case S::ePlane2TestUnbalanceSpindleStop:
                return AfterMeasuring(S::ePlane1TestUnbalanceMeasurement, Go);
            case S::ePlane2TestUnbalanceSetWeights:
                return After(S::ePlane2TestUnbalanceSpindleStop, Stop);
            case S::ePlane2TestUnbalanceRPMStart:
                return After(S::ePlane2TestUnbalanceSetWeights, Go);
            case S::ePlane2TestUnbalanceMeasurement:
                return After(S::ePlane2TestUnbalanceRPMStart, Spin);
            case S::ePreBalanceSpindleStop:
                return AfterMeasuring(S::ePlane2TestUnbalanceMeasurement, Go);
            case S::ePreBalanceSetWeights:
                return After(S::ePreBalanceSpindleStop, Stop);
            case S::ePreBalanceRPMStart:
                return After(S::ePreBalanceSetWeights, Go);
            case S::ePreBalanceMeasurement:
                return After(S::ePreBalanceRPMStart, Spin);
            case S::eReBalanceCommitWeights:
                Calibrate();
                Make();
                TakeCalls();
                return [this] { m_pSequence->StartReBalancing(0, 0, 1); };
            case S::eReBalanceRPMStart1:
                return After(S::eReBalanceCommitWeights, Go);
            case S::eReBalanceMeasurement1:
                return After(S::eReBalanceRPMStart1, Spin);
            case S::eReBalanceSpindleStop:
                return AfterMeasuring(S::eReBalanceMeasurement1, Go);
            case S::eReBalanceSpindleStopCheckWeights:
                return AfterMeasuring(S::eReBalanceMeasurement1,
                                      [this] { Key(CKeyActions::eCheckWeightPositions); });
            case S::eReBalanceSetWeights:
                return After(S::eReBalanceSpindleStop, Stop);
            case S::eReBalanceCheckWeights:
                return After(S::eReBalanceSpindleStopCheckWeights, Stop);
            case S::eReBalanceRPMStart2:
                return After(S::eReBalanceSetWeights, Go);
            case S::eReBalanceMeasurement2:
                return After(S::eReBalanceRPMStart2, Spin);
            case S::eFailureWithNoReturn:
                Make();
                TakeCalls();
                return [this] { m_pSequence->AbortBalancing(11); };
            case S::eFailureWithReset:
                Reach(S::ePlane2TestUnbalanceMeasurement);
                m_pMath->m_Status = 1;
                CompleteMeasurement();
                TakeCalls();
                return Go;
            default:
                Make();
                return [] {};
        }
    }
    void Reach(int State) {
        Approach(State)();
        ASSERT_EQ(GetState(), State);
    }
    void Calibrate() {
        m_Entry.SetIsCalibrated(1);
        m_Entry.SetCalibratedRPM(eSpeed);
    }

    CVirtualEventLoop m_Loop;
    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CFakeMainWnd m_Wnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0-0#1#255-4711-33-WHEEL1", "Default"};
    CTwoPlaneProbe::Means m_Means1 = PreBalDB::CCompensationTableEntry::eWeights;
    CTwoPlaneProbe::Means m_Means2 = PreBalDB::CCompensationTableEntry::eWeights;
    CFakeMethod* m_pMethod1 = nullptr;
    CFakeMethod* m_pMethod2 = nullptr;
    CFakeTwoPlaneMath* m_pMath = nullptr;
    std::unique_ptr<CTwoPlaneProbe> m_pSequence;
};
