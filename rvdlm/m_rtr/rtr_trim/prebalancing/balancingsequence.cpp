#include "rvdlm/m_rtr/rtr_trim/prebalancing/balancingsequence.h"

#include "contract/prebalprogress.h"
#include "contract/warnings.h"
#include "platform/system/eventloop.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/settings/featureflags.h"

namespace {

constexpr std::int32_t PRE_BALANCING_ACTIVITY = 1;
constexpr std::int32_t RE_BALANCING_ACTIVITY = 2;

}  // namespace

// In the order of the roles.
const std::array<CBalancingSequence::Handler, Sequence::eRoleCount> CBalancingSequence::ms_Handlers = {
    &CBalancingSequence::IdleHandler,
    &CBalancingSequence::FailureWithNoReturnHandler,
    &CBalancingSequence::FailureWithResetHandler,
    &CBalancingSequence::NeutralPosSpindleStopHandler,
    &CBalancingSequence::NeutralPosRemoveWeightsHandler,
    &CBalancingSequence::NeutralPosRPMStartHandler,
    &CBalancingSequence::NeutralPosMeasurementHandler,
    &CBalancingSequence::TestUnbalanceSpindleStopHandler,
    &CBalancingSequence::TestUnbalanceSetWeightsHandler,
    &CBalancingSequence::TestUnbalanceRPMStartHandler,
    &CBalancingSequence::TestUnbalanceMeasurementHandler,
    &CBalancingSequence::PreBalanceSpindleStopHandler,
    &CBalancingSequence::PreBalanceSetWeightsHandler,
    &CBalancingSequence::PreBalanceRPMStartHandler,
    &CBalancingSequence::PreBalanceMeasurementHandler,
    &CBalancingSequence::ReBalanceCommitWeightsHandler,
    &CBalancingSequence::ReBalanceRPMStart1Handler,
    &CBalancingSequence::ReBalanceMeasurement1Handler,
    &CBalancingSequence::ReBalanceSpindleStopHandler,
    &CBalancingSequence::ReBalanceSpindleStopCheckWeightsHandler,
    &CBalancingSequence::ReBalanceSetWeightsHandler,
    &CBalancingSequence::ReBalanceCheckWeightsHandler,
    &CBalancingSequence::ReBalanceRPMStart2Handler,
    &CBalancingSequence::ReBalanceMeasurement2Handler,
};

namespace {

/// What follows the last dash of a machine's name; empty if nothing does, or nothing stands before it.
std::string GetSetOfMachine(const std::string& rMachineName) {
    const std::size_t Dash = rMachineName.rfind('-');
    return Dash == std::string::npos || Dash == 0 ? std::string() : rMachineName.substr(Dash + 1);
}

}  // namespace

CBalancingSequence::CBalancingSequence(CPreBalMainWndInterface* pMainWnd,
                                       PreBalDB::CPreBalBaseTableEntry& rEntry,
                                       const std::string& rSecondTitle, const Sequence::CTables& rTables)
    : CPreBalancing(pMainWnd, rEntry, rSecondTitle),
      m_rTables(rTables),
      m_Measuring(m_Planes, rEntry.GetNumberOfSamples()),
      m_Positions(m_Planes, *pMainWnd, GetSetOfMachine(rEntry.GetMachineName())),
      m_Entry(m_Planes, m_Positions, [this]() -> CPlaneBalancingMethod& { return GetActiveMethod(); }),
      m_bVerdictOnFullWindow(IsFeatureEnabled("PreBalancingVerdictOnFullWindow", false)) {
    const std::string Set = GetSetOfMachine(rEntry.GetMachineName());
    if (Set.empty()) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    }
    SetSetText(Set);
    SetProcessName(rEntry.GetProcessName());
}

CBalancingSequence::~CBalancingSequence() {
    CloseLogBlock();
}

int CBalancingSequence::StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) {
    return Start(eStartPreBal, wRPM, NotLocked, InvalidRPM);
}

int CBalancingSequence::StartReBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) {
    return Start(eStartReBal, wRPM, NotLocked, InvalidRPM);
}

int CBalancingSequence::Start(EVENTS Event, std::uint16_t wRPM, int NotLocked, int InvalidRPM) {
    m_RPM = wRPM;
    m_NotLocked = NotLocked;
    m_InvalidRPM = InvalidRPM;
    m_CompensationDifference = 0.0;
    CPreBalancing::CurrentRPM(wRPM);
    return SetEvent(Event);
}

void CBalancingSequence::AbortBalancing(std::uint32_t WarningMode) {
    PB_FLOW("%s::AbortBalancing()", m_rTables.m_pProcedureName);
    m_Event = CEvent(eNewState, 0, WarningMode);
    StopMeasurement();
    Enter(m_rTables.FindState(Sequence::eFailureWithNoReturn, 0)->m_State, WarningMode);
}

int CBalancingSequence::KeyPressed(KeyAction Action) {
    PB_FLOW("%s::KeyPressed(keyAction=%s)", m_rTables.m_pProcedureName, KeyActionToString(Action));
    m_KeyAction = Action;
    return SetEvent(eKeyPressed);
}

bool CBalancingSequence::CommitChanges() {
    if (SetEvent(eCommitChanges) == 0) {
        return false;
    }
    m_pEntry->SetIsCalibrated(1);
    m_pEntry->SetCalibrationDateTime(IFEventLoop::Current().WallClock());
    if (m_Planes.HasWeightsOnly()) {
        StoreWeightPositions();
    }
    return true;
}

bool CBalancingSequence::IsFailureWithNoReturn() const {
    const Sequence::CState* pState = m_rTables.FindState(m_State);
    return pState != nullptr && pState->m_Role == Sequence::eFailureWithNoReturn;
}

void CBalancingSequence::Paint(CDC* pDC, const CRect& rRect, unsigned Mask) {
    const CPaneLayout Layout = CutPane(rRect);
    if ((Mask & (ePaintMethod | ePaintMeasurement)) != 0) {
        PaintMethods(pDC, Layout.m_Method, Mask != ePaintMeasurement);
    }
    PaintViews(pDC, Layout, Mask);
}

void CBalancingSequence::CurrentRPM(std::uint16_t wRPM) {
    PB_FLOW("%s::CurrentRPM(wRPM=%d)", m_rTables.m_pProcedureName, wRPM);
    CPreBalancing::CurrentRPM(wRPM);
    m_RPM = wRPM;
    SetEvent(eRPMChanged);
}

void CBalancingSequence::InvalidRPM(int bInvalid) {
    PB_FLOW("%s::InvalidRPM(flag=%d)", m_rTables.m_pProcedureName, bInvalid);
    m_InvalidRPM = bInvalid;
    SetEvent(eInvalidRPMChanged);
}

void CBalancingSequence::OutOfLock(int bNotLocked) {
    PB_FLOW("%s::OutOfLock(flag=%d)", m_rTables.m_pProcedureName, bNotLocked);
    m_NotLocked = bNotLocked;
    SetEvent(eOutOfLockChanged);
}

Measurement CBalancingSequence::GetMeasurement() const {
    const Sequence::CState* const pState = m_rTables.FindState(m_State);
    return pState == nullptr ? Measurement::eNone : Sequence::GetMeasurement(*pState);
}

void CBalancingSequence::GetProgress(CPreBalProgress& rProgress) const {
    CPreBalancing::GetProgress(rProgress);
    rProgress.m_State = m_rTables.GetStateText(m_State);
    rProgress.m_Measuring.m_Which = GetMeasurement();
    m_Measuring.Describe(rProgress.m_Measuring);
    for (std::size_t i = 0; i < m_Planes.GetCount(); ++i) {
        const CSequencePlane& rPlane = m_Planes.Get(i);
        const CXYMovingAverage& rAverage = rPlane.m_pMethod->m_MovingAverage;
        CPreBalProgress::CReading& rReading = rProgress.m_Readings.at(rPlane.m_Sensor);
        rReading.m_bShown = true;
        rReading.m_bComplete = m_Measuring.IsMeasured(i, CanMeasure() != 0);
        rAverage.GetValues(&rReading.m_Amplitude, &rReading.m_AngleDeg, nullptr, nullptr, nullptr);
        if (const Base::CWDArray<CScrew>* pScrews = rPlane.m_pMethod->GetScrews()) {
            std::vector<CPreBalProgress::CShownScrew> Screws;
            for (const CScrew& rScrew : *pScrews) {
                if (rScrew.m_Hole != 0) {
                    Screws.push_back({rScrew.m_Hole, rScrew.m_Weight});
                }
            }
            rProgress.m_Screws.at(rPlane.m_Sensor) = Screws;
        }
    }
}

bool CBalancingSequence::DependsOnModuleState() const {
    const Sequence::CState* pState = m_rTables.FindState(m_State);
    if (pState == nullptr) {
        return false;
    }
    switch (pState->m_Role) {
        case Sequence::eIdle:
        case Sequence::eFailureWithNoReturn:
        case Sequence::eFailureWithReset:
        case Sequence::eNeutralPosSpindleStop:
        case Sequence::eTestUnbalanceSpindleStop:
        case Sequence::ePreBalanceSpindleStop:
        case Sequence::eReBalanceSpindleStop:
        case Sequence::eReBalanceSpindleStopCheckWeights:
            return false;
        default:
            return true;
    }
}

void CBalancingSequence::StoreWeightPositions() {
    m_Positions.Store();
}

int CBalancingSequence::SetEvent(CEvent Event) {
    m_Event = Event;
    int Result = 0;
    try {
        Result = DispatchEvent(Event);
    } catch (const math::matrix_error& rError) {
        // A stored calibration that can't be calculated with, for example. The run ends, the host goes on.
        RV_ERROR(RtrTrim::g_pLog, "Calculation failed in state %s: %s", m_rTables.GetStateText(m_State),
                 rError.what());
        StopMeasurement();
        FailWithReset(m_Activity == RE_BALANCING_ACTIVITY ? Warnings::eRebalanceNotPossible
                                                          : Warnings::eNoInfluence);
    }
    if (Result == 0 && Event.m_Kind != eCommitChanges) {
        RV_WARNING(RtrTrim::g_pLog, "Invalid Event %s in state %s received", GetEventText(Event),
                   m_rTables.GetStateText(m_State));
    }
    return Result;
}

int CBalancingSequence::DispatchEvent(const CEvent& rEvent) {
    const Sequence::CState* pState = m_rTables.FindState(m_State);
    if (pState == nullptr) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, ("invalid state: " + std::to_string(m_State)).c_str());
        return 0;
    }
    return (this->*ms_Handlers[static_cast<std::size_t>(pState->m_Role)])(rEvent);
}

std::optional<int> CBalancingSequence::Follow(const CEvent& rEvent) {
    const std::optional<Sequence::Trigger> Trigger = FindTrigger(rEvent);
    return Trigger ? Follow(*Trigger) : std::nullopt;
}

std::optional<int> CBalancingSequence::Follow(Sequence::Trigger Trigger) {
    for (const Sequence::CTransition& rRow : m_rTables.m_Transitions) {
        if (rRow.m_From != m_State || rRow.m_Trigger != Trigger || !Holds(rRow.m_Guard)) {
            continue;
        }
        for (const Sequence::Deed ToDo : rRow.m_Deeds) {
            Do(ToDo);
        }
        const int Result = Enter(rRow.m_To, rRow.m_Warning);
        if (rRow.m_Warning != Warnings::eNone) {
            SetWarningMode(rRow.m_Warning);
        }
        return Result;
    }
    return std::nullopt;
}

std::optional<Sequence::Trigger> CBalancingSequence::FindTrigger(const CEvent& rEvent) const {
    switch (rEvent.m_Kind) {
        case eNewState:
            return Sequence::eEntered;
        case eStartPreBal:
            return Sequence::eStartOfPreBalancing;
        case eStartReBal:
            return Sequence::eStartOfReBalancing;
        case eRPMChanged:
            return Sequence::eSpeedReported;
        case eInvalidRPMChanged:
            return Sequence::eSpeedValidityReported;
        case eKeyPressed:
            break;
        default:
            return std::nullopt;
    }
    switch (m_KeyAction) {
        case eNext:
            return Sequence::eKeyNext;
        case eRebalance:
            return Sequence::eKeyRebalance;
        case eCheckWeightPositions:
            return Sequence::eKeyCheckWeights;
        case eNeutralPositionAdjusted:
            return Sequence::eKeyWeightsInPlace;
        case ePositionAdoption:
            return Sequence::eKeyAdoptPositions;
        default:
            return std::nullopt;
    }
}

bool CBalancingSequence::Holds(Sequence::Guard Guard) const {
    switch (Guard) {
        case Sequence::eAlways:
            return true;
        case Sequence::eSpindleStands:
            return m_RPM == 0;
        case Sequence::eSpindleTurns:
            return m_RPM != 0;
        case Sequence::eSpeedValid:
            return m_InvalidRPM == 0;
        case Sequence::eLockedAtValidSpeed:
            return m_InvalidRPM == 0 && (m_NotLocked == 0 || GetIgnoreOutOfLock() != 0);
        case Sequence::eAtCalibratedSpeed:
            return IsAtCalibratedSpeed();
        case Sequence::eMeasured: {
            const Sequence::CMeasuringRule* const pRule = Sequence::FindMeasuringRule(GetStateRow().m_Role);
            return pRule != nullptr && m_pMainWnd->GetMenu() == pRule->m_CompleteMenu;
        }
        case Sequence::eWeightsOnly:
            return m_Planes.HasWeightsOnly();
        case Sequence::eStoredWeights:
            return m_Planes.HasWeightsOnly() && m_Positions.Find().has_value();
        case Sequence::eCalibratedSpindleStops:
            return m_pEntry->IsCalibrated() != 0 && m_InvalidRPM != 0;
        case Sequence::eCalibratedSpindleRuns:
            return m_pEntry->IsCalibrated() != 0 && m_InvalidRPM == 0;
        case Sequence::eGuardCount:
            break;
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return false;
}

void CBalancingSequence::Do(Sequence::Deed Deed) {
    switch (Deed) {
        case Sequence::eNoDeed:
        case Sequence::eDeedCount:
            return;
        case Sequence::eCountStepLeftOut:
            SetCurrentStep(GetCurrentStep() + 1);
            return;
        case Sequence::eReadPositionStore:
            if (m_Planes.HasWeightsOnly()) {
                m_Positions.Reload();
            }
            return;
        case Sequence::eTakePositionsShown:
            if (m_Planes.HasWeightsOnly()) {
                SetFirstPositions(m_Planes.GetWeightPositions());
            }
            return;
        case Sequence::eTakePositionsStored:
            AdoptStoredWeightPositions();
            return;
        case Sequence::eTakeFirstReading:
            ApplyNeutralPositionXYValues();
            return;
        case Sequence::eEndMeasurement:
            StopMeasurement();
            return;
        case Sequence::eTakeTestPositions:
            SetTestPositions(GetStateRow().m_Leg);
            return;
        case Sequence::eStoreCompensation:
            StoreUAOfPlanes();
            return;
        case Sequence::eForgetSteps:
            SetCurrentStep(0);
            return;
    }
}

int CBalancingSequence::Enter(int State, std::uint32_t Warning) {
    const Sequence::CState* pState = m_rTables.FindState(State);
    if (pState == nullptr) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return 0;
    }
    CountStep(pState->m_Steps);
    const int bChanged = ChangeState(State);
    SetMode(pState->m_InstructionMode);
    const int bEntered =
        (this->*ms_Handlers[static_cast<std::size_t>(pState->m_Role)])(CEvent(eNewState, 0, Warning));
    return bChanged != 0 && bEntered != 0 ? 1 : 0;
}

int CBalancingSequence::ChangeState(int NewState) {
    OpenLogBlock(NewState);
    const Sequence::CState* pNew = m_rTables.FindState(NewState);
    const Sequence::CState* pOld = m_rTables.FindState(m_State);
    const auto IsFailure = [](const Sequence::CState* pState) {
        return pState != nullptr && (pState->m_Role == Sequence::eFailureWithNoReturn ||
                                     pState->m_Role == Sequence::eFailureWithReset);
    };
    int Result = 1;
    std::int32_t Activity =
        NewState >= m_rTables.m_FirstReBalanceState ? RE_BALANCING_ACTIVITY : PRE_BALANCING_ACTIVITY;
    if (IsFailure(pNew)) {
        Activity = 0;  // and every state may fail
    } else if (IsFailure(pOld)) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        Result = 0;
    } else if (pOld != nullptr && !m_rTables.IsTransitionAllowed(m_State, NewState)) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "State transition not defined");
        Result = 0;
    }
    if (Activity != m_Activity) {
        m_Activity = Activity;
        m_pMainWnd->SetBalancingActivity(Activity);
    }
    AddToHistory(NewState);
    m_State = NewState;
    if (IsFailure(pNew)) {
        RV_WARNING(RtrTrim::g_pLog, "The run failed after these transitions:\n%s",
                   m_History.ToString().c_str());
    }
    return Result;
}

void CBalancingSequence::AddToHistory(int NewState) {
    m_History.Add({IFEventLoop::Current().Now(), m_rTables.GetStateText(m_State),
                   m_rTables.GetStateText(NewState), GetCause(), GetCurrentStep(), GetNumberOfSteps()});
}

std::string CBalancingSequence::GetCause() const {
    if (!m_Event || m_Event->m_Kind == eNewState) {
        return "AbortBalancing(" + std::to_string(m_Event ? m_Event->m_Warning : 0) + ")";
    }
    std::string Cause = GetEventText(*m_Event);
    switch (m_Event->m_Kind) {
        case eKeyPressed:
            return Cause + " " + KeyActionToString(m_KeyAction);
        case eRPMChanged:
        case eStartPreBal:
        case eStartReBal:
            return Cause + " " + std::to_string(m_RPM) + " rpm";
        case eInvalidRPMChanged:
            return Cause + " " + std::to_string(m_InvalidRPM);
        case eOutOfLockChanged:
            return Cause + " " + std::to_string(m_NotLocked);
        default:
            return Cause;
    }
}

int CBalancingSequence::FailWithReset(std::uint32_t Warning) {
    const int Result = Enter(m_rTables.FindState(Sequence::eFailureWithReset, 0)->m_State, Warning);
    SetWarningMode(Warning);
    return Result;
}

void CBalancingSequence::OpenLogBlock(int NewState) {
    CloseLogBlock();
    if (RtrTrim::g_pLog == nullptr || (RtrTrim::g_pLog->GetLevel() & RtrTrim::PB_FLOW) == 0) {
        return;
    }
    const char* pName = m_rTables.GetStateText(NewState);
    RtrTrim::g_pLog->LogStartBlock(__FILE__, __LINE__, __func__, RtrTrim::PB_FLOW, "PbFlow", pName);
    m_bBlockOpen = true;
    PB_FLOW("%s Step(%d/%d)", pName, static_cast<int>(GetCurrentStep()),
            static_cast<int>(GetNumberOfSteps()));
}

void CBalancingSequence::CloseLogBlock() {
    if (m_bBlockOpen) {
        RtrTrim::g_pLog->LogEndBlock(RtrTrim::PB_FLOW);
        m_bBlockOpen = false;
    }
}
