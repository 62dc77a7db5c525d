#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancing.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanebalancingmath.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/singleplanetables.h"

namespace {

// In the order of EVENTS. eCommitChanges has no text: it is the one event whose refusal isn't logged.
constexpr std::array<const char*, 8> EVENT_TEXTS = {
    "eNewState",           // 0
    "eStartPreBal",        // 1
    "eStartReBal",         // 2
    "eKeyPressed",         // 3
    "eRPMChanged",         // 4
    "eXYValueChanged",     // 5
    "eInvalidRPMChanged",  // 6
    "eOutOfLockChanged",   // 7
};

}  // namespace

CSinglePlaneBalancing::CSinglePlaneBalancing(CPreBalMainWndInterface* pMainWnd, int Plane,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSecondTitle)
    : CBalancingSequence(pMainWnd, rEntry, rSecondTitle, SinglePlane::TABLES),
      m_pMath(std::make_unique<CSinglePlaneBalancingMath>(rEntry.GetNumberOfSamples())) {
    GetPlanes().Add(CreateMethod(Plane));
    Initialise();
}

CSinglePlaneBalancing::CSinglePlaneBalancing(CPreBalMainWndInterface* pMainWnd, CSequencePlane Plane,
                                             std::unique_ptr<CSinglePlaneBalancingMathIF> pMath,
                                             PreBalDB::CPreBalBaseTableEntry& rEntry,
                                             const std::string& rSecondTitle)
    : CBalancingSequence(pMainWnd, rEntry, rSecondTitle, SinglePlane::TABLES), m_pMath(std::move(pMath)) {
    GetPlanes().Add(std::move(Plane));
    Initialise();
}

void CSinglePlaneBalancing::Initialise() {
    RV_ASSERT_AS(RtrTrim::g_pLog, m_pEntry->GetSinglePlane() != nullptr, "rBaseTableEntry.GetSinglePlane()",
                 "invalid database", false);
    const PreBalDB::CTypeBase::Direction Rotation = GetTableEntry().GetRotationDirection();
    GetMethod().SetRotationDirection(Rotation);
    m_pMath->SetRotationDirection(Rotation);
    m_pMath->SetScalingDirection(GetMethod().GetScalingDirection());
}

CSinglePlaneBalancing::~CSinglePlaneBalancing() {
    GetPlanes().Clear();
    m_pMath.reset();
    StopMeasurement();
}

CSequencePlane CSinglePlaneBalancing::CreateMethod(int Plane) {
    const PreBalDB::CSinglePlaneBalancingTableEntry* pSinglePlane =
        static_cast<const PreBalDB::CPreBalBaseTableEntry*>(m_pEntry)->GetSinglePlane();
    CPlaneRecord Record;
    Record.m_Used = pSinglePlane != nullptr ? pSinglePlane->GetUsedCompensationMethod()
                                            : PreBalDB::CCompensationTableEntry::eNotChosen;
    Record.CreateWeights = [this]() -> PreBalDB::CWeightCompensationTableEntry& {
        return GetTableEntry().CreateWeightCompensationTableEntry();
    };
    Record.CreateScrews = [this]() -> PreBalDB::CScrewCompensationTableEntry& {
        return GetTableEntry().CreateScrewCompensationTableEntry();
    };
    return MakePlane(Plane == 0 ? 0 : 1, 0, Record);
}

void CSinglePlaneBalancing::RestartMeasurement() {
    CBalancingSequence::RestartMeasurement();
    m_pMath->RestartMeasurement();
}

const char* CSinglePlaneBalancing::STATESToString(int State) {
    return SinglePlane::TABLES.GetStateText(State);
}

const char* CSinglePlaneBalancing::EVENTSToString(int Event) {
    if (Event >= 0 && static_cast<std::size_t>(Event) < EVENT_TEXTS.size()) {
        return EVENT_TEXTS[static_cast<std::size_t>(Event)];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "Invalid event";
}

const char* CSinglePlaneBalancing::GetEventText(const CEvent& rEvent) const {
    return EVENTSToString(rEvent.m_Kind);
}

CPlaneBalancingMethod& CSinglePlaneBalancing::GetActiveMethod() {
    return GetMethod();
}

void CSinglePlaneBalancing::PaintMethods(CDC* pDC, const CRect& rRect, bool bRedrawAll) {
    GetMethod().Paint(pDC, rRect, bRedrawAll);
}

int CSinglePlaneBalancing::AddSample(std::size_t Plane) {
    const CSequencePlane& rPlane = GetPlanes().Get(Plane);
    return m_pMath->AddXYValue(rPlane.m_X, rPlane.m_Y);
}

void CSinglePlaneBalancing::SetFirstPositions(const std::vector<Matrix>& rPositions) {
    m_pMath->SetRawUnbalanceVector(rPositions.front(), GetMethod().GetScalingDirection());
}

void CSinglePlaneBalancing::ApplyNeutralPositionXYValues() {
    m_pMath->ApplyNeutralPositionXYValues();
}

void CSinglePlaneBalancing::SetTestPositions(std::size_t /*Leg*/) {
    m_pMath->SetTestUnbalanceVector(GetMethod().GetTestUnbalanceVectorInDeg(),
                                    GetMethod().GetScalingDirection());
}

std::uint32_t CSinglePlaneBalancing::FinishTestRun(std::size_t /*Leg*/, CCalibration& rCalibration) {
    std::uint32_t Status = 0;
    rCalibration.m_InvA.SetSize(2, 2);
    rCalibration.m_UA.assign(1, Matrix(2, 1));
    m_pMath->GetPrebalanceResult(rCalibration.m_InvA, rCalibration.m_UA.front(), Status);
    return Status;
}

std::vector<CBalancingSequence::Matrix> CSinglePlaneBalancing::CalculateRebalance() {
    Matrix Result(2, 1);
    m_pMath->SetMathMatrices(GetTableEntry().GetInvA(), GetTableEntry().GetUA());
    m_pMath->GetRebalanceResult(Result);
    return {Result};
}

void CSinglePlaneBalancing::SetStoredInvA(const Matrix& rInvA) {
    GetTableEntry().SetInvA(rInvA);
}

CBalancingSequence::Matrix CSinglePlaneBalancing::GetStoredUA(std::size_t /*Plane*/) {
    return GetTableEntry().GetUA();
}

void CSinglePlaneBalancing::SetStoredUA(std::size_t /*Plane*/, const Matrix& rUA) {
    GetTableEntry().SetUA(rUA);
}
