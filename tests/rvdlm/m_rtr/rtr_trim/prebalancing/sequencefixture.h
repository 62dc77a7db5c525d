#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

/// A 2 by 1 matrix.
inline math::matrix<double> Vector(double a, double b) {
    math::matrix<double> Result(2, 1);
    Result(0, 0) = a;
    Result(1, 0) = b;
    return Result;
}

/// A method that moves nothing: notes its calls in the window's list and answers what a test sets. Every menu
/// has a number of its own; the menus that depend on the number of planes add it. With two planes the calls
/// say which plane they go to: "1:SetUA".
class CFakeMethod : public CPlaneBalancingMethod {
public:
    enum Menus : int {
        eNeutralMenu = 100,
        eTestMenu = 110,
        eTestChangeMenu = 120,
        eCommitMenu = 130,
        eCheckMenu = 140
    };

    /// Plane: 0 the only one, else 1 or 2.
    CFakeMethod(std::uint32_t nSamples, std::vector<std::string>& rCalls, int Plane = 0)
        : CPlaneBalancingMethod(nSamples), m_rCalls(rCalls), m_Plane(Plane) {}

    void SetDisplayMode(DisplayMode Mode) override {
        CPlaneBalancingMethod::SetDisplayMode(Mode);
        Note(std::string("SetDisplayMode ") + DisplayModeToString(Mode));
    }
    void SetPlainDisplayMode(DisplayMode Mode) override {
        CPlaneBalancingMethod::SetDisplayMode(Mode);
        Note(std::string("SetPlainDisplayMode ") + DisplayModeToString(Mode));
    }
    int GetNeutralPositionMenu(std::uint8_t Plane) override { return eNeutralMenu + Plane; }
    int GetTestUnbalanceMenu() override { return eTestMenu; }
    int GetTestUnbalanceChangeMenu() override { return eTestChangeMenu; }
    int GetCommitChangeMenu(std::uint8_t Plane) override { return eCommitMenu + Plane; }
    int GetCheckWeightsMenu(std::uint8_t Plane) override { return eCheckMenu + Plane; }
    const math::matrix<double>* GetTestUnbalanceVectorInDeg() override {
        return m_bHasPositions ? &m_Positions : nullptr;
    }
    void SetTestUnbalanceVectorInDeg(const math::matrix<double>& rPositions) override {
        m_Positions = rPositions;
    }
    bool SetUA(const math::matrix<double>& rUA, double* pPerCent, bool bAllowEqualAngles) override {
        m_SetUAs.push_back({rUA, pPerCent != nullptr, bAllowEqualAngles});
        if (pPerCent != nullptr) {
            *pPerCent = m_Percent;
        }
        Note("SetUA");
        return m_bReached;
    }
    math::matrix<double> GetUA() override { return m_UA; }
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override { m_Rotation = Value; }
    PreBalDB::CTypeBase::Direction GetScalingDirection() override { return m_Scaling; }
    bool KeyPressed(CKeyActions::KeyAction Action, int Step) override {
        m_Keys.emplace_back(Action, Step);
        Note("KeyPressed");
        return true;
    }
    void Paint(CDC* /*pDC*/, const CRect& rRect, bool bRedrawAll) override {
        m_Paints.emplace_back(rRect, bRedrawAll);
    }
    void FillNotification(CPreBalNotification& rNotification) override {
        (m_Plane == 2 ? rNotification.m_AnglesPlane2 : rNotification.m_AnglesPlane1) = {
            static_cast<int>(m_Positions(0, 0)), static_cast<int>(m_Positions(1, 0)), -1};
        (m_Plane == 2 ? rNotification.m_WeightsPlane2 : rNotification.m_WeightsPlane1) = {-1, -1, -1};
    }
    void GetWeightPositions(int& rAngleWeight1, int& rAngleWeight2) override {
        rAngleWeight1 = static_cast<int>(m_Positions(0, 0));
        rAngleWeight2 = static_cast<int>(m_Positions(1, 0));
    }

    struct CSetUA {
        math::matrix<double> m_UA;
        bool m_bPercent;
        bool m_bAllowEqualAngles;
    };
    std::vector<CSetUA> m_SetUAs;
    std::vector<std::pair<int, int>> m_Keys;
    std::vector<std::pair<CRect, bool>> m_Paints;
    bool m_bReached = true;
    double m_Percent = 0.0;
    bool m_bHasPositions = true;
    math::matrix<double> m_Positions = Vector(11, 22);
    math::matrix<double> m_UA = Vector(0.25, -0.5);
    PreBalDB::CTypeBase::Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    PreBalDB::CTypeBase::Direction m_Scaling = PreBalDB::CTypeBase::eCounterClockwise;

private:
    void Note(const std::string& rCall) {
        m_rCalls.push_back(m_Plane == 0 ? rCall : std::to_string(m_Plane) + ":" + rCall);
    }
    std::vector<std::string>& m_rCalls;
    int m_Plane;
};

/// Mathematics that calculate nothing: notes its calls and answers what a test sets.
class CFakeMath : public CSinglePlaneBalancingMathIF {
public:
    explicit CFakeMath(std::vector<std::string>& rCalls) : m_rCalls(rCalls) {}

    void RestartMeasurement() override { Note("RestartMeasurement"); }
    void SetRotationDirection(PreBalDB::CTypeBase::Direction Value) override { m_Rotation = Value; }
    void SetScalingDirection(PreBalDB::CTypeBase::Direction Value) override { m_Scaling = Value; }
    int AddXYValue(std::int16_t x, std::int16_t y) override {
        m_Samples.emplace_back(x, y);
        return m_bComplete ? 1 : 0;
    }
    void SetRawUnbalanceVector(const math::matrix<double>& rAngles,
                               PreBalDB::CTypeBase::Direction Value) override {
        Note("SetRawUnbalanceVector " + Text(rAngles) + " " + std::to_string(Value));
    }
    math::matrix<double> GetRawUnbalanceVector() override { return Vector(0, 180); }
    int ApplyNeutralPositionXYValues() override {
        Note("ApplyNeutralPositionXYValues");
        return 1;
    }
    void SetTestUnbalanceVector(const math::matrix<double>* pTest,
                                PreBalDB::CTypeBase::Direction Value) override {
        Note("SetTestUnbalanceVector " + (pTest != nullptr ? Text(*pTest) : "null") + " " +
             std::to_string(Value));
    }
    void GetPrebalanceResult(math::matrix<double>& rInvA, math::matrix<double>& rUA,
                             std::uint32_t& rTestWeightStatus) override {
        Note("GetPrebalanceResult");
        if (m_bThrow) {
            throw math::matrix_error("singular");
        }
        rInvA = m_InvA;
        rUA = m_UA;
        rTestWeightStatus = m_Status;
    }
    void SetMathMatrices(math::matrix<double> InvA, math::matrix<double> UA) override {
        m_GivenInvA = InvA;
        m_GivenUA = UA;
        Note("SetMathMatrices");
    }
    void GetRebalanceResult(math::matrix<double>& rUA) override {
        Note("GetRebalanceResult");
        if (m_bThrow) {
            throw math::matrix_error("inconsistent");
        }
        rUA = m_RebalanceUA;
    }

    static math::matrix<double> MakeInvA() {
        math::matrix<double> Result(2, 2);
        Result(0, 0) = 1.0;
        Result(0, 1) = -2.0;
        Result(1, 0) = 2.0;
        Result(1, 1) = 1.0;
        return Result;
    }

    std::vector<std::pair<int, int>> m_Samples;
    bool m_bComplete = false;
    bool m_bThrow = false;
    std::uint32_t m_Status = 0;
    math::matrix<double> m_InvA = MakeInvA();
    math::matrix<double> m_UA = Vector(0.75, 0.5);
    math::matrix<double> m_RebalanceUA = Vector(-0.125, 1.5);
    math::matrix<double> m_GivenInvA;
    math::matrix<double> m_GivenUA;
    PreBalDB::CTypeBase::Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    PreBalDB::CTypeBase::Direction m_Scaling = PreBalDB::CTypeBase::eClockwise;

private:
    void Note(std::string Call) { m_rCalls.push_back("Math." + std::move(Call)); }
    static std::string Text(const math::matrix<double>& rVector) {
        return std::to_string(static_cast<int>(rVector(0, 0))) + "," +
               std::to_string(static_cast<int>(rVector(1, 0)));
    }
    std::vector<std::string>& m_rCalls;
};

/// The single-plane procedure with its inside open to tests.
class CSequenceProbe : public CSinglePlaneBalancing {
public:
    CSequenceProbe(CPreBalMainWndInterface* pMainWnd, std::size_t Sensor,
                   PreBalDB::CCompensationTableEntry::CompensationMethod Means,
                   std::unique_ptr<CPlaneBalancingMethod> pMethod,
                   std::unique_ptr<CSinglePlaneBalancingMathIF> pMath,
                   PreBalDB::CPreBalBaseTableEntry& rEntry)
        : CSinglePlaneBalancing(pMainWnd, MakePlane(std::move(pMethod), Means, Sensor), std::move(pMath),
                                rEntry, "Set name") {}

    using CBalancingSequence::ChangeState;
    using CBalancingSequence::Enter;
    using CBalancingSequence::SetEvent;
    using CPreBalancing::CanMeasure;
    using CPreBalancing::GetCalibratedText;
    using CPreBalancing::GetCurrentText;
    const CPreBalNotification& GetNotification() const { return m_Notification; }
    int GetIgnoreRebalWeights() const { return m_IgnoreRebalWeights; }
    int GetUseOldWeightChangeMenu() const { return m_UseOldWeightChangeMenu; }

private:
    static CPlane MakePlane(std::unique_ptr<CPlaneBalancingMethod> pMethod,
                            PreBalDB::CCompensationTableEntry::CompensationMethod Means, std::size_t Sensor) {
        CPlane Plane;
        Plane.m_pMethod = std::move(pMethod);
        Plane.m_CompensationMethod = Means;
        Plane.m_Sensor = Sensor;
        return Plane;
    }
};

/// A single-plane procedure with fake means and mathematics, and the ways to each of its states.
class SequenceTest : public testing::Test {
protected:
    using S = CSinglePlaneBalancing;
    using Nc = CPreBalNotification;
    static constexpr std::uint16_t eSpeed = 3000;

    SequenceTest() {
        m_Entry.SetRPMTolerance(50);
        m_Entry.SetTargetUnbalance(10);
        m_Entry.SetNumberOfSamples(4);
        m_Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
        m_Entry.CreateSinglePlane().SetRotationDirection(PreBalDB::CTypeBase::eCounterClockwise);
        m_Entry.CreateSinglePlane().SetInvA(FakeStoredInvA());
        m_Entry.CreateSinglePlane().SetUA(Vector(1.5, -0.25));
        Make();
    }
    void TearDown() override {
        if (HasFailure() && m_pSequence) {
            ADD_FAILURE() << "Transitions:\n" << m_pSequence->GetHistory().ToString();
        }
        m_pSequence.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
    }

    static math::matrix<double> FakeStoredInvA() {
        math::matrix<double> Result(2, 2);
        Result(0, 0) = Result(1, 1) = 4.0;
        Result(0, 1) = -3.0;
        Result(1, 0) = 3.0;
        return Result;
    }

    /// A new procedure, idle.
    void Make(bool bScrews = false, std::size_t Sensor = 0) {
        m_pSequence.reset();
        m_Wnd.m_Menus.clear();
        m_Wnd.m_Notifications.clear();
        m_Wnd.m_WarningModes.clear();
        m_Wnd.m_Activities.clear();
        auto pMethod = std::make_unique<CFakeMethod>(m_Entry.GetNumberOfSamples(), m_Wnd.m_Calls);
        auto pMath = std::make_unique<CFakeMath>(m_Wnd.m_Calls);
        m_pMethod = pMethod.get();
        m_pMath = pMath.get();
        m_pMethod->m_bHasPositions = !bScrews;
        m_pSequence = std::make_unique<CSequenceProbe>(&m_Wnd, Sensor,
                                                       bScrews ? PreBalDB::CCompensationTableEntry::eScrews
                                                               : PreBalDB::CCompensationTableEntry::eWeights,
                                                       std::move(pMethod), std::move(pMath), m_Entry);
        m_Wnd.m_Calls.clear();
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
    /// Lets the measurement settle and take a first complete sample.
    void CompleteMeasurement() {
        m_pMath->m_bComplete = true;
        m_Loop.Advance(3050);
        m_pMath->m_bComplete = false;
    }
    /// What the window, the method and the mathematics were told since the last call, but for the repaints.
    std::vector<std::string> TakeCalls() {
        std::vector<std::string> Calls = std::exchange(m_Wnd.m_Calls, {});
        std::erase_if(Calls, [](const std::string& rCall) { return rCall.starts_with("Repaint"); });
        return Calls;
    }
    std::vector<std::uint32_t> TakeWarnings() { return std::exchange(m_Wnd.m_WarningModes, {}); }
    /// Step and action of the notifications since the last call.
    std::vector<std::pair<int, int>> TakeNotifications() {
        std::vector<std::pair<int, int>> Result;
        for (const CPreBalNotification& rNotification : std::exchange(m_Wnd.m_Notifications, {})) {
            Result.emplace_back(rNotification.m_Step, rNotification.m_Action);
        }
        return Result;
    }

    /// Brings a new procedure to the state before State, and returns what is to be done to enter it.
    std::function<void()> Approach(int State) {
        const auto Reached = [this](int Before) {
            Reach(Before);
            TakeCalls();
        };
        switch (State) {
            case S::eNeutralPosSpindleStop:
                Make(m_bScrews);
                return [this] { m_pSequence->StartPreBalancing(eSpeed, 0, 0); };
            case S::eNeutralPosRemoveWeights:
                Make(m_bScrews);
                return [this] { m_pSequence->StartPreBalancing(0, 1, 1); };
            case S::eNeutralPosRPMStart:
                Reached(S::eNeutralPosRemoveWeights);
                return [this] { Next(); };
            case S::eNeutralPosMeasurement:
                Reached(S::eNeutralPosRPMStart);
                m_pSequence->CurrentRPM(eSpeed);
                m_pSequence->OutOfLock(0);
                m_pSequence->InvalidRPM(0);
                TakeCalls();
                return [this] { Next(); };
            case S::eTestUnbalanceSpindleStop:
                Reached(S::eNeutralPosMeasurement);
                CompleteMeasurement();
                TakeCalls();
                return [this] { Next(); };
            case S::eTestUnbalanceSetWeights:
                Reached(S::eTestUnbalanceSpindleStop);
                return [this] { StopSpindle(); };
            case S::eTestUnbalanceRPMStart:
                Reached(S::eTestUnbalanceSetWeights);
                return [this] { Next(); };
            case S::eTestUnbalanceMeasurement:
                Reached(S::eTestUnbalanceRPMStart);
                return [this] { m_pSequence->CurrentRPM(eSpeed); };
            case S::ePreBalanceSpindleStop:
                Reached(S::eTestUnbalanceMeasurement);
                CompleteMeasurement();
                TakeCalls();
                return [this] { Next(); };
            case S::ePreBalanceSetWeights:
                Reached(S::ePreBalanceSpindleStop);
                return [this] { StopSpindle(); };
            case S::ePreBalanceRPMStart:
                Reached(S::ePreBalanceSetWeights);
                return [this] { Next(); };
            case S::ePreBalanceMeasurement:
                Reached(S::ePreBalanceRPMStart);
                return [this] { m_pSequence->CurrentRPM(eSpeed); };
            case S::eReBalanceCommitWeights:
                Calibrate();
                Make(m_bScrews);
                return [this] { m_pSequence->StartReBalancing(0, 0, 1); };
            case S::eReBalanceRPMStart1:
                Reached(S::eReBalanceCommitWeights);
                return [this] { Next(); };
            case S::eReBalanceMeasurement1:
                Reached(S::eReBalanceRPMStart1);
                return [this] { m_pSequence->CurrentRPM(eSpeed); };
            case S::eReBalanceSpindleStop:
                Reached(S::eReBalanceMeasurement1);
                CompleteMeasurement();
                TakeCalls();
                return [this] { Next(); };
            case S::eReBalanceSpindleStopCheckWeights:
                Reached(S::eReBalanceMeasurement1);
                CompleteMeasurement();
                TakeCalls();
                return [this] { Key(CKeyActions::eCheckWeightPositions); };
            case S::eReBalanceSetWeights:
                Reached(S::eReBalanceSpindleStop);
                return [this] { StopSpindle(); };
            case S::eReBalanceCheckWeights:
                Reached(S::eReBalanceSpindleStopCheckWeights);
                return [this] { StopSpindle(); };
            case S::eReBalanceRPMStart2:
                Reached(S::eReBalanceSetWeights);
                return [this] { Next(); };
            case S::eReBalanceMeasurement2:
                Reached(S::eReBalanceRPMStart2);
                return [this] { m_pSequence->CurrentRPM(eSpeed); };
            case S::eFailureWithNoReturn:
                Make(m_bScrews);
                return [this] { m_pSequence->AbortBalancing(11); };
            case S::eFailureWithReset:
                Reached(S::eTestUnbalanceMeasurement);
                m_pMath->m_Status = 1;
                CompleteMeasurement();
                TakeCalls();
                return [this] { Next(); };
            default:
                Make(m_bScrews);
                return [] {};
        }
    }
    /// Brings a new procedure to the state, on its usual way.
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
    bool m_bScrews = false;
    CFakeMethod* m_pMethod = nullptr;
    CFakeMath* m_pMath = nullptr;
    std::unique_ptr<CSequenceProbe> m_pSequence;
};
