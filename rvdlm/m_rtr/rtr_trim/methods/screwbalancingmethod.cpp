#include "rvdlm/m_rtr/rtr_trim/methods/screwbalancingmethod.h"

#include <array>
#include <stdexcept>

#include "contract/menus.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnctestweight.h"
#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"
#include "rvlib/math/matrixlog.h"

using PreBalDB::CTypeBase;

namespace {

constexpr std::uint16_t TEST_HOLE = 1;

}  // namespace

CScrewBalancingMethod::CScrewBalancingMethod(PreBalDB::CScrewCompensationTableEntry& rTableEntry,
                                             unsigned Plane, std::uint32_t nSamples)
    : CPlaneBalancingMethod(nSamples),
      CScrewCompensation(rTableEntry.GetScrewTable(), rTableEntry.GetNumberOfScrews(),
                         static_cast<int>(rTableEntry.GetNumberOfHoles()), Plane, rTableEntry.GetRadius()),
      m_pTableEntry(&rTableEntry),
      m_TestScrewTable(rTableEntry.GetScrewTable()),
      m_UA(2, 1) {
    CScrewBalancingView::m_ScalingDirection = rTableEntry.GetScalingDirection();
    CScrewBalancingView::m_Radius = rTableEntry.GetRadius();
    CScrewBalancingView::m_NumberOfHoles = static_cast<int>(rTableEntry.GetNumberOfHoles());
    m_UA.Null();
    ChooseTestScrew();
    PB_FLOW("ScrewTable: %s", rTableEntry.GetScrewTableName().c_str());
    for (std::size_t i = 0; i < m_TestScrewTable.GetSize(); ++i) {
        PB_FLOW("Screw %2d: %sg", static_cast<int>(i), m_TestScrewTable[i].GetWeightAsString().c_str());
    }
}

void CScrewBalancingMethod::ChooseTestScrew() {
    if (m_TestScrewTable.IsEmpty()) {
        return;
    }
    const int nScrews = static_cast<int>(m_TestScrewTable.GetSize());
    m_TestScrewIndex = nScrews / 2;
    const std::optional<double> Wanted = ReadTestWeightFromNC();
    if (!Wanted) {
        return;
    }
    // What the NC has computed may be off in the last digits of a weight that is in the table.
    constexpr double TOLERANCE = 1e-5;
    m_TestScrewIndex = 0;
    while (m_TestScrewIndex < nScrews - 1 && !(GetTestScrew().GetWeight() + TOLERANCE >= *Wanted)) {
        ++m_TestScrewIndex;
    }
    RV_INFORMATION(RtrTrim::g_pLog, "Setting OPC TestWeight: %d/%sg", m_TestScrewIndex,
                   GetTestScrew().GetWeightAsString().c_str());
}

std::optional<double> CScrewBalancingMethod::ReadTestWeightFromNC() {
    const COpcDatabaseRef Database("CScrewBalancingMethod");
    COPCConnection* const pConnection = COPCConnection::CreateInstance();
    if (!pConnection->IsConnected()) {
        return std::nullopt;
    }
    constexpr const char* KEY = CPreBalInterfaceFromNcTestWeight::KEY;
    const COpcDatabaseRef ItemDatabase(KEY);
    if (ItemDatabase->GetOpcLinkItem(KEY).empty()) {
        return std::nullopt;
    }
    constexpr std::uint32_t UPDATE_RATE = 100;
    const CPreBalInterfaceFromNcTestWeight Item(pConnection->CreateGroup(UPDATE_RATE, 0),
                                                "CScrewBalancingMethod::PreBalInterfaceFromNcTestWeight");
    double Value = 0.0;
    return Item.GetValueFromNC(Value) != 0 ? std::optional(Value) : std::nullopt;
}

const PreBalDB::CScrew& CScrewBalancingMethod::GetTestScrew() const {
    const auto Index = static_cast<std::size_t>(m_TestScrewIndex);
    if (m_TestScrewIndex < 0 || Index >= m_TestScrewTable.GetSize()) {
        throw std::invalid_argument("CScrewBalancingMethod: the screw table has no such screw");
    }
    return m_TestScrewTable[Index];
}

void CScrewBalancingMethod::RemoveScrews() {
    m_Screws.RemoveAll();
    m_UA.SetSize(2, 1);
    m_UA.Null();
}

void CScrewBalancingMethod::SetDisplayMode(DisplayMode Mode) {
    PB_FLOW("CScrewBalancingMethod::SetDisplayMode( Mode=%s) called", DisplayModeToString(Mode));
    CPlaneBalancingMethod::SetDisplayMode(Mode);
    if (Mode == eNeutralPosition) {
        RemoveScrews();
    } else if (Mode == eTestUnbalance) {
        m_Screws.RemoveAll();
        const PreBalDB::CScrew& rScrew = GetTestScrew();
        m_Screws.Add({TEST_HOLE, rScrew.GetWeight(), rScrew.GetScrewName()});
        m_pTableEntry->SetReferenceWeight(rScrew.GetWeight());
    }
}

void CScrewBalancingMethod::SetPlainDisplayMode(DisplayMode Mode) {
    PB_FLOW("CScrewBalancingMethod::SetPlainDisplayMode( Mode=%s) called", DisplayModeToString(Mode));
    CPlaneBalancingMethod::SetDisplayMode(Mode);
}

int CScrewBalancingMethod::GetNeutralPositionMenu(std::uint8_t /*nPlanes*/) {
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return 0;
}

int CScrewBalancingMethod::GetTestUnbalanceMenu() {
    return Menus::eSetScrews;
}

int CScrewBalancingMethod::GetTestUnbalanceChangeMenu() {
    return Menus::eChangeTestScrew;
}

int CScrewBalancingMethod::GetCommitChangeMenu(std::uint8_t nPlanes) {
    return nPlanes == 2 ? Menus::eScrewsOfTwoPlanes : Menus::eScrewsOfOnePlane;
}

int CScrewBalancingMethod::GetCheckWeightsMenu(std::uint8_t nPlanes) {
    return nPlanes == 2 ? Menus::eScrewsOfTwoPlanes : Menus::eScrewsOfOnePlane;
}

const math::matrix<double>* CScrewBalancingMethod::GetTestUnbalanceVectorInDeg() {
    return nullptr;
}

void CScrewBalancingMethod::SetTestUnbalanceVectorInDeg(const math::matrix<double>& /*rPositions*/) {}

bool CScrewBalancingMethod::SetUA(const math::matrix<double>& rUA, double* pPerCentCompensationDifference,
                                  bool /*bAllowEqualAngles*/) {
    PB_FLOW("CScrewBalancingMethod::SetUA(rUA, pPerCentCompensationDifference) called");
    m_Screws.RemoveAll();
    if (rUA(0, 0) == 0.0 && rUA(1, 0) == 0.0) {
        m_UA = rUA;
        return true;
    }
    return UA2Screws(rUA, m_Screws, pPerCentCompensationDifference, m_UA,
                     m_pTableEntry->GetReferenceWeight());
}

math::matrix<double> CScrewBalancingMethod::GetUA() {
    PB_FLOW("CScrewBalancingMethod::GetUA() called");
    LOG_MATRIX(RtrTrim::g_pLog, "m_UA", m_UA);
    return m_UA;
}

void CScrewBalancingMethod::SetRotationDirection(CTypeBase::Direction Value) {
    m_RotationDirection = Value;
}

CTypeBase::Direction CScrewBalancingMethod::GetScalingDirection() {
    const CTypeBase::Direction Value = CTypeBase::eClockwise;
    PB_FLOW("CScrewBalancingMethod::GetScalingDirection() returns: %s", CTypeBase::DirectionToString(Value));
    return Value;
}

bool CScrewBalancingMethod::KeyPressed(CKeyActions::KeyAction Action, int /*Step*/) {
    PB_FLOW("CScrewBalancingMethod::KeyPressed(keyAction=%s) called", CKeyActions::KeyActionToString(Action));
    switch (m_DisplayMode) {
        case eTestUnbalance:
            ChangeTestScrew(Action);
            break;
        case eUACompensation:
            if (Action == CKeyActions::eNeutralPosition) {
                RemoveScrews();
            }
            break;
        default:
            RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
            break;
    }
    return true;
}

void CScrewBalancingMethod::ChangeTestScrew(CKeyActions::KeyAction Action) {
    const int nScrews = static_cast<int>(m_TestScrewTable.GetSize());
    if (Action == CKeyActions::eIncrement) {
        ++m_TestScrewIndex;
    } else if (Action == CKeyActions::eDecrement) {
        --m_TestScrewIndex;
    }
    if (m_TestScrewIndex >= nScrews) {
        m_TestScrewIndex = 0;
    } else if (m_TestScrewIndex < 0) {
        m_TestScrewIndex = nScrews - 1;
    }
    if (m_Screws.GetSize() != 1) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "more than one screw in testmode");
        return;
    }
    const PreBalDB::CScrew& rScrew = GetTestScrew();
    m_Screws[0].m_Weight = rScrew.GetWeight();
    m_Screws[0].m_Name = rScrew.GetScrewName();
    m_pTableEntry->SetReferenceWeight(rScrew.GetWeight());
}

void CScrewBalancingMethod::Paint(CDC* pDC, const CRect& rRect, bool bRedrawAll) {
    m_ShownScrews = m_Screws;
    PaintByMode(pDC, rRect, bRedrawAll,
                [&](const double* pMagnitude, const double* pAngle, const double* pLastMagnitude) {
                    CScrewBalancingView::Paint(pDC, rRect, pMagnitude, pAngle, pLastMagnitude,
                                               pMagnitude == nullptr || bRedrawAll,
                                               m_MeasurementDisplayState);
                });
}

void CScrewBalancingMethod::FillNotification(CPreBalNotification& rNotification) {
    const int nHoles = GetHoleCount();
    if (nHoles < 1) {
        return;
    }
    const double Step = 360.0 / nHoles;
    const bool bFirstPlane = GetPlane() == 0;
    auto& rAngles = bFirstPlane ? rNotification.m_AnglesPlane1 : rNotification.m_AnglesPlane2;
    auto& rWeights = bFirstPlane ? rNotification.m_WeightsPlane1 : rNotification.m_WeightsPlane2;
    for (std::size_t i = 0; i < rAngles.size(); ++i) {
        if (i < m_Screws.GetSize()) {
            rAngles[i] = static_cast<std::int32_t>((m_Screws[i].m_Hole - 1) * Step + 0.5);
            rWeights[i] = static_cast<std::int32_t>(m_Screws[i].m_Weight * 100.0 + 0.5);
        } else {
            rAngles[i] = -1;
            rWeights[i] = 0;
        }
    }
}

void CScrewBalancingMethod::GetWeightPositions(int& /*rAngleWeight1*/, int& /*rAngleWeight2*/) {}
