#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancing.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanebalancingmath.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/twoplanetables.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/weightpair.h"

namespace {

constexpr std::size_t PLANE1 = 0;
constexpr std::size_t PLANE2 = 1;

// In the order of their numbers.
constexpr std::array<const char*, 10> EVENT_TEXTS = {
    "eNewState",              // 0
    "eStartPreBal",           // 1
    "eStartReBal",            // 2
    "eKeyPressed",            // 3
    "eRPMChanged",            // 4
    "ePlane1XYValueChanged",  // 5
    "ePlane2XYValueChanged",  // 6
    "eInvalidRPMChanged",     // 7
    "eOutOfLockChanged",      // 8
    "eCommitChanges",         // 9
};

/// The modes in which a plane's means can be moved.
bool IsActiveMode(CPlaneBalancingMethod::DisplayMode Mode) {
    return Mode == CPlaneBalancingMethod::eNeutralPosition || Mode == CPlaneBalancingMethod::eTestUnbalance ||
           Mode == CPlaneBalancingMethod::eUACompensation;
}

bool IsInactive(const CPlaneBalancingMethod& rMethod) {
    return rMethod.m_DisplayMode == CPlaneBalancingMethod::eInactive;
}

}  // namespace

CTwoPlaneBalancing::CTwoPlaneBalancing(CPreBalMainWndInterface* pMainWnd,
                                       PreBalDB::CPreBalBaseTableEntry& rEntry,
                                       const std::string& rSecondTitle)
    : CBalancingSequence(pMainWnd, rEntry, rSecondTitle, TwoPlane::TABLES),
      m_pMath(std::make_unique<CTwoPlaneBalancingMath>(rEntry.GetNumberOfSamples())) {
    GetPlanes().Add(CreatePlane1Method());
    GetPlanes().Add(CreatePlane2Method());
    Initialise();
}

CTwoPlaneBalancing::CTwoPlaneBalancing(CPreBalMainWndInterface* pMainWnd, CSequencePlane Plane1,
                                       CSequencePlane Plane2, std::unique_ptr<CTwoPlaneBalancingMathIF> pMath,
                                       PreBalDB::CPreBalBaseTableEntry& rEntry,
                                       const std::string& rSecondTitle)
    : CBalancingSequence(pMainWnd, rEntry, rSecondTitle, TwoPlane::TABLES), m_pMath(std::move(pMath)) {
    GetPlanes().Add(std::move(Plane1));
    GetPlanes().Add(std::move(Plane2));
    Initialise();
}

void CTwoPlaneBalancing::Initialise() {
    using PreBalDB::CTypeBase;
    RV_ASSERT_AS(RtrTrim::g_pLog, m_pEntry->GetTwoPlane() != nullptr, "rBaseTableEntry.GetTwoPlane()",
                 "invalid database", false);
    const CTypeBase::Direction Rotation = GetTableEntry().GetRotationDirection();
    GetMethod(PLANE1).SetRotationDirection(Rotation);
    // Plane 2 is seen from the other end.
    GetMethod(PLANE2).SetRotationDirection(Rotation == CTypeBase::eClockwise ? CTypeBase::eCounterClockwise
                                                                             : CTypeBase::eClockwise);
    m_pMath->SetRotationDirectionPlane1(Rotation);
    if (!GetPlanes().HasWeightsOnly()) {
        // Weights beside screws: no step of the run tells the mathematics where they stand in the first
        // measurement. They are opposed there, since no key moves them before, and so it is told here; else
        // their sum would count as 2 in direction 0. Screws have no positions, and don't mind.
        SetOpposedFirstPositions();
    }
}

CTwoPlaneBalancing::~CTwoPlaneBalancing() {
    GetPlanes().Clear();
    m_pMath.reset();
    StopMeasurement();
}

CSequencePlane CTwoPlaneBalancing::CreatePlane1Method() {
    const PreBalDB::CTwoPlaneBalancingTableEntry* pTwoPlane =
        static_cast<const PreBalDB::CPreBalBaseTableEntry*>(m_pEntry)->GetTwoPlane();
    CPlaneRecord Record;
    Record.m_Used = pTwoPlane != nullptr ? pTwoPlane->GetPlane1UsedCompensationMethod()
                                         : PreBalDB::CCompensationTableEntry::eNotChosen;
    Record.CreateWeights = [this]() -> PreBalDB::CWeightCompensationTableEntry& {
        return GetTableEntry().CreatePlane1WeightCompensationTableEntry();
    };
    Record.CreateScrews = [this]() -> PreBalDB::CScrewCompensationTableEntry& {
        return GetTableEntry().CreatePlane1ScrewCompensationTableEntry();
    };
    return MakePlane(PLANE1, 0, Record);
}

CSequencePlane CTwoPlaneBalancing::CreatePlane2Method() {
    const PreBalDB::CTwoPlaneBalancingTableEntry* pTwoPlane =
        static_cast<const PreBalDB::CPreBalBaseTableEntry*>(m_pEntry)->GetTwoPlane();
    CPlaneRecord Record;
    Record.m_Used = pTwoPlane != nullptr ? pTwoPlane->GetPlane2UsedCompensationMethod()
                                         : PreBalDB::CCompensationTableEntry::eNotChosen;
    Record.CreateWeights = [this]() -> PreBalDB::CWeightCompensationTableEntry& {
        return GetTableEntry().CreatePlane2WeightCompensationTableEntry();
    };
    Record.CreateScrews = [this]() -> PreBalDB::CScrewCompensationTableEntry& {
        return GetTableEntry().CreatePlane2ScrewCompensationTableEntry();
    };
    return MakePlane(PLANE2, 1, Record);
}

void CTwoPlaneBalancing::SetOpposedFirstPositions() {
    m_FirstPositions.assign(2, math::MakeVector(0.0, 180.0));
    m_pMath->SetRawUnbalanceVectors(GetMethod(PLANE1).GetScalingDirection(),
                                    GetMethod(PLANE2).GetScalingDirection());
}

int CTwoPlaneBalancing::StartPreBalancing(std::uint16_t wRPM, int NotLocked, int InvalidRPM) {
    if (GetPlanes().HasWeightsOnly()) {
        SetOpposedFirstPositions();
    }
    return CBalancingSequence::StartPreBalancing(wRPM, NotLocked, InvalidRPM);
}

void CTwoPlaneBalancing::RestartMeasurement() {
    CBalancingSequence::RestartMeasurement();
    m_pMath->RestartMeasurement();
}

const char* CTwoPlaneBalancing::STATESToString(int State) {
    return TwoPlane::TABLES.GetStateText(State);
}

const char* CTwoPlaneBalancing::EVENTSToString(int Event) {
    if (Event >= 0 && static_cast<std::size_t>(Event) < EVENT_TEXTS.size()) {
        return EVENT_TEXTS[static_cast<std::size_t>(Event)];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "invalid event";
}

const char* CTwoPlaneBalancing::GetEventText(const CEvent& rEvent) const {
    switch (rEvent.m_Kind) {
        case eXYValueChanged:
            return EVENTSToString(rEvent.m_Plane == PLANE1 ? ePlane1XYValueChanged : ePlane2XYValueChanged);
        case eInvalidRPMChanged:
            return EVENTSToString(eTwoPlaneInvalidRPMChanged);
        case eOutOfLockChanged:
            return EVENTSToString(eTwoPlaneOutOfLockChanged);
        case eCommitChanges:
            return EVENTSToString(eTwoPlaneCommitChanges);
        default:
            return EVENTSToString(rEvent.m_Kind);
    }
}

CPlaneBalancingMethod& CTwoPlaneBalancing::GetActivePlaneMethod() {
    CPlaneBalancingMethod& rMethod1 = GetMethod(PLANE1);
    CPlaneBalancingMethod& rMethod2 = GetMethod(PLANE2);
    if (IsInactive(rMethod2) && IsActiveMode(rMethod1.m_DisplayMode)) {
        return rMethod1;
    }
    if (IsInactive(rMethod1) && IsActiveMode(rMethod2.m_DisplayMode)) {
        return rMethod2;
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "no plane for UA compensation is active");
    return rMethod1;
}

int CTwoPlaneBalancing::toggleActivePlane() {
    CPlaneBalancingMethod& rMethod1 = GetMethod(PLANE1);
    CPlaneBalancingMethod& rMethod2 = GetMethod(PLANE2);
    const CPlaneBalancingMethod::DisplayMode Mode = GetActivePlaneMethod().m_DisplayMode;
    // Plain, so that the positions stay; plane 1 first, either way.
    if (IsInactive(rMethod1) && rMethod2.m_DisplayMode == Mode) {
        rMethod1.SetPlainDisplayMode(Mode);
        rMethod2.SetDisplayMode(CPlaneBalancingMethod::eInactive);
        return 1;
    }
    if (IsInactive(rMethod2) && rMethod1.m_DisplayMode == Mode) {
        rMethod1.SetDisplayMode(CPlaneBalancingMethod::eInactive);
        rMethod2.SetPlainDisplayMode(Mode);
        return 1;
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog,
                   "inconsistency when toggling planes - no or both planes are currently active");
    return 0;
}

void CTwoPlaneBalancing::CheckActivePlane(std::size_t Leg) {
    if (Leg == PLANE1) {
        RV_ASSERT_AS(RtrTrim::g_pLog, &GetActivePlaneMethod() == &GetMethod(PLANE1),
                     "&GetActivePlaneMethod() == &m_rPlane1Method", "active plane should be plane 1", false);
    } else {
        RV_ASSERT_AS(RtrTrim::g_pLog, &GetActivePlaneMethod() == &GetMethod(PLANE2),
                     "&GetActivePlaneMethod() == &m_rPlane2Method", "active plane should be plane 2", false);
    }
}

void CTwoPlaneBalancing::PaintMethods(CDC* pDC, const CRect& rRect, bool bRedrawAll) {
    CRect Left = rRect;
    CRect Right = rRect;
    Left.right = Right.left = rRect.left + rRect.Width() / 2;
    GetMethod(PLANE1).Paint(pDC, Left, bRedrawAll);
    GetMethod(PLANE1).PaintPlaneTitle(pDC, Left, 1);
    GetMethod(PLANE2).Paint(pDC, Right, bRedrawAll);
    GetMethod(PLANE2).PaintPlaneTitle(pDC, Right, 2);
}

int CTwoPlaneBalancing::AddSample(std::size_t Plane) {
    const CSequencePlane& rPlane = GetPlanes().Get(Plane);
    return Plane == PLANE1 ? m_pMath->AddXYValuePlane1(rPlane.m_X, rPlane.m_Y)
                           : m_pMath->AddXYValuePlane2(rPlane.m_X, rPlane.m_Y);
}

void CTwoPlaneBalancing::SetFirstPositions(const std::vector<Matrix>& rPositions) {
    m_FirstPositions = rPositions;
    m_pMath->SetRawUnbalanceVectorsAngles(rPositions.at(PLANE1), rPositions.at(PLANE2),
                                          GetMethod(PLANE1).GetScalingDirection(),
                                          GetMethod(PLANE2).GetScalingDirection());
}

void CTwoPlaneBalancing::ApplyNeutralPositionXYValues() {
    m_pMath->ApplyNeutralPositionXYValues();
}

void CTwoPlaneBalancing::SetTestPositions(std::size_t Leg) {
    CPlaneBalancingMethod& rMethod = GetMethod(Leg);
    const Matrix* const pPositions = rMethod.GetTestUnbalanceVectorInDeg();
    m_bTestChanges.at(Leg) = IsTestChange(Leg, pPositions);
    if (Leg == PLANE1) {
        m_pMath->SetTestUnbalanceVectorCase1(pPositions, rMethod.GetScalingDirection());
    } else {
        m_pMath->SetTestUnbalanceVectorCase2(pPositions, rMethod.GetScalingDirection());
    }
}

std::uint32_t CTwoPlaneBalancing::FinishTestRun(std::size_t Leg, CCalibration& rCalibration) {
    // The mathematics doesn't look at the weights' effect. Weights that weren't moved can have none, and that
    // is told right behind their own leg.
    std::uint32_t Status = 0;
    if (Leg == PLANE1) {
        m_pMath->ApplyTestPlusRawUnbalanceXYValuesCase1(Status);
        return m_bTestChanges.at(Leg) ? Status : NO_INFLUENCE;
    }
    rCalibration.m_InvA.SetSize(4, 4);
    rCalibration.m_UA.assign(2, Matrix(2, 1));
    m_pMath->GetPrebalanceResult(rCalibration.m_InvA, rCalibration.m_UA[PLANE1], rCalibration.m_UA[PLANE2],
                                 Status);
    return m_bTestChanges.at(Leg) ? Status : NO_INFLUENCE;
}

bool CTwoPlaneBalancing::IsTestChange(std::size_t Plane, const Matrix* pPositions) const {
    // Far below what a single degree changes, far above what rounding leaves of weights that changed places.
    constexpr double NO_CHANGE = 0.001;
    return pPositions == nullptr ||
           math::VectorLength(CWeightPair(*pPositions).GetSum() -
                              CWeightPair(m_FirstPositions.at(Plane)).GetSum()) > NO_CHANGE;
}

std::vector<CBalancingSequence::Matrix> CTwoPlaneBalancing::CalculateRebalance() {
    std::vector<Matrix> Results(2, Matrix(2, 1));
    m_pMath->SetMatricesAndGetRebalanceResult(GetTableEntry().GetInvA(), GetTableEntry().GetUAPlane1(),
                                              GetTableEntry().GetUAPlane2(), Results[PLANE1],
                                              Results[PLANE2]);
    return Results;
}

void CTwoPlaneBalancing::SetStoredInvA(const Matrix& rInvA) {
    GetTableEntry().SetInvA(rInvA);
}

CBalancingSequence::Matrix CTwoPlaneBalancing::GetStoredUA(std::size_t Plane) {
    return Plane == PLANE1 ? GetTableEntry().GetUAPlane1() : GetTableEntry().GetUAPlane2();
}

void CTwoPlaneBalancing::SetStoredUA(std::size_t Plane, const Matrix& rUA) {
    if (Plane == PLANE1) {
        GetTableEntry().SetUAPlane1(rUA);
    } else {
        GetTableEntry().SetUAPlane2(rUA);
    }
}
