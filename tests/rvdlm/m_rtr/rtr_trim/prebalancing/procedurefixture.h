#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"
#include "tests/rvdlm/m_rtr/rtr_trim/prebalancing/fakemethod.h"
#include "tests/support/fakemainwnd.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"

/// A procedure with its inside open to tests.
template <typename Procedure>
class CProcedureProbe : public Procedure {
public:
    using Means = PreBalDB::CCompensationTableEntry::CompensationMethod;

    using Procedure::CanMeasure;
    using Procedure::ChangeState;
    using Procedure::Enter;
    using Procedure::SetEvent;
    const CPreBalNotification& GetNotification() const { return this->m_Notification; }

protected:
    using Procedure::Procedure;
    static CSequencePlane MakeFakePlane(std::unique_ptr<CPlaneBalancingMethod> pMethod, Means Value,
                                        std::size_t Sensor) {
        CSequencePlane Plane;
        Plane.m_pMethod = std::move(pMethod);
        Plane.m_CompensationMethod = Value;
        Plane.m_Sensor = Sensor;
        return Plane;
    }
};

/// How a state is entered on the usual way: from which one, and by what. The states that a procedure starts
/// with have no way.
struct CWay {
    enum Deed {
        eConfirm,
        eConfirmAtSpeed,   ///< the spindle turns and is in lock; then the key
        eConfirmMeasured,  ///< the values are complete; then the key
        eCheckMeasured,    ///< the same with the key that looks at the weights
        eConfirmUnusable,  ///< the mathematics find no influence in complete values; then the key
        eStopSpindle,
        eSpinUp
    };
    Sequence::Role m_Role;
    Sequence::Role m_Before;
    Deed m_Deed;
};
inline constexpr CWay WAYS[] = {
    {Sequence::eFailureWithReset, Sequence::eTestUnbalanceMeasurement, CWay::eConfirmUnusable},
    {Sequence::eNeutralPosRPMStart, Sequence::eNeutralPosRemoveWeights, CWay::eConfirm},
    {Sequence::eNeutralPosMeasurement, Sequence::eNeutralPosRPMStart, CWay::eConfirmAtSpeed},
    {Sequence::eTestUnbalanceSpindleStop, Sequence::eNeutralPosMeasurement, CWay::eConfirmMeasured},
    {Sequence::eTestUnbalanceSetWeights, Sequence::eTestUnbalanceSpindleStop, CWay::eStopSpindle},
    {Sequence::eTestUnbalanceRPMStart, Sequence::eTestUnbalanceSetWeights, CWay::eConfirm},
    {Sequence::eTestUnbalanceMeasurement, Sequence::eTestUnbalanceRPMStart, CWay::eSpinUp},
    {Sequence::ePreBalanceSpindleStop, Sequence::eTestUnbalanceMeasurement, CWay::eConfirmMeasured},
    {Sequence::ePreBalanceSetWeights, Sequence::ePreBalanceSpindleStop, CWay::eStopSpindle},
    {Sequence::ePreBalanceRPMStart, Sequence::ePreBalanceSetWeights, CWay::eConfirm},
    {Sequence::ePreBalanceMeasurement, Sequence::ePreBalanceRPMStart, CWay::eSpinUp},
    {Sequence::eReBalanceRPMStart1, Sequence::eReBalanceCommitWeights, CWay::eConfirm},
    {Sequence::eReBalanceMeasurement1, Sequence::eReBalanceRPMStart1, CWay::eSpinUp},
    {Sequence::eReBalanceSpindleStop, Sequence::eReBalanceMeasurement1, CWay::eConfirmMeasured},
    {Sequence::eReBalanceSpindleStopCheckWeights, Sequence::eReBalanceMeasurement1, CWay::eCheckMeasured},
    {Sequence::eReBalanceSetWeights, Sequence::eReBalanceSpindleStop, CWay::eStopSpindle},
    {Sequence::eReBalanceCheckWeights, Sequence::eReBalanceSpindleStopCheckWeights, CWay::eStopSpindle},
    {Sequence::eReBalanceRPMStart2, Sequence::eReBalanceSetWeights, CWay::eConfirm},
    {Sequence::eReBalanceMeasurement2, Sequence::eReBalanceRPMStart2, CWay::eSpinUp},
};

/// A procedure with fake means and fake mathematics, and the ways to each of its states. What depends on the
/// number of planes comes from the derived fixture.
template <typename Probe, typename Math>
class ProcedureTest : public testing::Test {
protected:
    using Nc = CPreBalNotification;
    static constexpr std::uint16_t SPEED = 3000;

    explicit ProcedureTest(const Sequence::CTables& rTables, std::size_t nLegs)
        : m_rTables(rTables), m_nLegs(nLegs) {
        m_Entry.SetRPMTolerance(50);
        m_Entry.SetTargetUnbalance(10);
        m_Entry.SetNumberOfSamples(4);
    }
    void TearDown() override {
        if (HasFailure() && m_pSequence) {
            ADD_FAILURE() << "Transitions:\n" << m_pSequence->GetHistory().ToString();
        }
        m_pSequence.reset();
        EXPECT_EQ(m_Loop.GetTimerCount(), 0U) << "a timer was left behind";
    }

    /// A new procedure, idle, with the means that the fixture is set to.
    virtual void MakeAnew() = 0;
    /// Whether the mathematics call their values complete.
    virtual void SetComplete(bool bComplete) = 0;

    /// Ends the present procedure, and forgets what the window was told.
    void Clear() {
        m_pSequence.reset();
        m_Wnd.m_Menus.clear();
        m_Wnd.m_Notifications.clear();
        m_Wnd.m_WarningModes.clear();
        m_Wnd.m_Activities.clear();
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
        SetComplete(true);
        m_Loop.Advance(3050);
        SetComplete(false);
    }
    /// What the window, the methods and the mathematics were told since the last call, but for the repaints.
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
    void Calibrate() {
        m_Entry.SetIsCalibrated(1);
        m_Entry.SetCalibratedRPM(SPEED);
    }

    /// Brings a new procedure to the state before State, and returns what is to be done to enter it.
    std::function<void()> Approach(int State) {
        const Sequence::CState* const pRow = m_rTables.FindState(State);
        const auto* const pWay = std::ranges::find(WAYS, pRow->m_Role, &CWay::m_Role);
        if (pWay == std::end(WAYS)) {
            return ApproachFirst(pRow->m_Role);
        }
        Reach(FindBefore(*pRow, *pWay));
        return Prepare(pWay->m_Deed);
    }
    /// Brings a new procedure to the state, on its usual way.
    void Reach(int State) {
        Approach(State)();
        ASSERT_EQ(GetState(), State);
    }

private:
    std::function<void()> ApproachFirst(Sequence::Role Role) {
        if (Role == Sequence::eReBalanceCommitWeights) {
            Calibrate();
        }
        MakeAnew();
        TakeCalls();
        switch (Role) {
            case Sequence::eNeutralPosSpindleStop:
                return [this] { m_pSequence->StartPreBalancing(SPEED, 0, 0); };
            case Sequence::eNeutralPosRemoveWeights:
                return [this] { m_pSequence->StartPreBalancing(0, 1, 1); };
            case Sequence::eReBalanceCommitWeights:
                return [this] { m_pSequence->StartReBalancing(0, 0, 1); };
            case Sequence::eFailureWithNoReturn:
                return [this] { m_pSequence->AbortBalancing(11); };
            default:
                return [] {};
        }
    }
    /// The test legs follow one another; all that comes after them follows the last.
    int FindBefore(const Sequence::CState& rState, const CWay& rWay) const {
        if (rState.m_Role == Sequence::eTestUnbalanceSpindleStop && rState.m_Leg > 0) {
            return m_rTables.FindState(Sequence::eTestUnbalanceMeasurement, rState.m_Leg - 1)->m_State;
        }
        const bool bBehindLegs = rWay.m_Before == Sequence::eTestUnbalanceMeasurement;
        return m_rTables.FindState(rWay.m_Before, bBehindLegs ? m_nLegs - 1 : rState.m_Leg)->m_State;
    }
    std::function<void()> Prepare(CWay::Deed Deed) {
        const auto Confirm = [this] { Next(); };
        std::function<void()> Enter = Confirm;
        switch (Deed) {
            case CWay::eConfirm:
                break;
            case CWay::eConfirmAtSpeed:
                m_pSequence->CurrentRPM(SPEED);
                m_pSequence->OutOfLock(0);
                m_pSequence->InvalidRPM(0);
                break;
            case CWay::eConfirmMeasured:
                CompleteMeasurement();
                break;
            case CWay::eCheckMeasured:
                CompleteMeasurement();
                Enter = [this] { Key(CKeyActions::eCheckWeightPositions); };
                break;
            case CWay::eConfirmUnusable:
                m_pMath->m_Status = 1;
                CompleteMeasurement();
                break;
            case CWay::eStopSpindle:
                Enter = [this] { StopSpindle(); };
                break;
            case CWay::eSpinUp:
                Enter = [this] { m_pSequence->CurrentRPM(SPEED); };
                break;
        }
        TakeCalls();
        return Enter;
    }

    const Sequence::CTables& m_rTables;
    std::size_t m_nLegs;

protected:
    CVirtualEventLoop m_Loop;
    CTestInstallation m_Installation;
    CLogCapture m_Log;
    CFakeMainWnd m_Wnd;
    PreBalDB::CPreBalBaseTableEntry m_Entry{"0-0#1#255-4711-33-WHEEL1", "Default"};
    Math* m_pMath = nullptr;
    std::unique_ptr<Probe> m_pSequence;
};
