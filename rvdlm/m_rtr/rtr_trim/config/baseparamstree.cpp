#include "rvdlm/m_rtr/rtr_trim/config/baseparamstree.h"

#include "platform/system/localtime.h"
#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvdlm/m_rtr/rtr_trim/config/singleplanebalancingtree.h"
#include "rvdlm/m_rtr/rtr_trim/config/twoplanebalancingtree.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/nc/linkeditem.h"

using namespace PreBalDB;
using PropertyItems::DeleteLater;
using PropTree::CPropTreeItem;
using PropTree::CPropTreeItemStatic;
using RtrTrim::g_pLog;

namespace {

constexpr const char* HEADING_HELP = "PB_013";

const CProperty& Property(const char* pName) {
    return PropertyItems::Find<CPreBalBaseTableEntry>(pName);
}

std::string GetHeading(CPreBalDatabase::BalancingMode BalMode) {
    switch (BalMode) {
        case CPreBalDatabase::eModePlane1:
        case CPreBalDatabase::eModePlane2:
            return GetText("PREBALANCING_HEADER");
        case CPreBalDatabase::eModeTwoPlane: {
            const std::string Key = "PREBALANCING_HEADER_2LEVEL";
            const std::string Text = GetText(Key);
            return Text == Key ? "2LEVEL_PRE_BAL" : Text;
        }
    }
    RV_ASSERT_FAIL(g_pLog, "impossible");
    return {};
}

}  // namespace

CBaseParamsTree::CBaseParamsTree() = default;
CBaseParamsTree::~CBaseParamsTree() = default;

void CBaseParamsTree::SetConfig(const CPreBalBaseTableEntry& rEntry, BalancingMode BalMode,
                                const Base::CStringArray& rScrewTableNames) {
    m_pTargetFromNC.reset();
    m_pTargetFromNC = LinkSetting<CPreBalInterfaceFromNcTargetUnbalance>(
        "CBaseParamsTree::CPreBalInterfaceFromNCTargetUnbalance",
        static_cast<CPreBalTargetUnbalanceInterface*>(this));
    ShowHeading(BalMode);
    m_IsCalibrated = rEntry.IsCalibrated();
    if (m_pRPMTolerance == nullptr) {
        m_pRPMTolerance =
            m_Tree.Insert(PropertyItems::MakeNumber<unsigned long>(Property("rpm_tolerance")), m_pHeading);
        m_pTargetUnbalance =
            m_Tree.Insert(PropertyItems::MakeNumber<unsigned long>(Property("target_unbalance")), m_pHeading);
        m_pMeasuringTime =
            m_Tree.Insert(PropertyItems::MakeNumber<double>(Property("measurement_time_s")), m_pHeading);
    }
    ShowCalibration(rEntry);
    PropertyItems::ShowNumber(*m_pRPMTolerance, Property("rpm_tolerance"), rEntry.GetRPMTolerance());
    ShowTarget(rEntry.GetTargetUnbalance());
    PropertyItems::ShowNumber(*m_pMeasuringTime, Property("measurement_time_s"), rEntry.GetNumberOfSamples());
    ShowPlanes(rEntry, BalMode, rScrewTableNames);
}

void CBaseParamsTree::ShowHeading(BalancingMode BalMode) {
    const std::string Heading = GetHeading(BalMode);
    if (m_pHeading == nullptr) {
        m_pHeading = m_Tree.Insert(std::make_unique<CPropTreeItemStatic>());
        m_pHeading->SetHelpKey(HEADING_HELP);
        m_pHeading->SetInfoText(GetText("PREBALANCING_HEADER_INFO"));
        m_pHeading->Expand();
    }
    m_pHeading->SetLabelText(Heading);
}

void CBaseParamsTree::ShowCalibration(const CPreBalBaseTableEntry& rEntry) {
    if (m_IsCalibrated == 0) {
        DeleteLater(m_Tree, m_pDate);
        DeleteLater(m_Tree, m_pTime);
        DeleteLater(m_Tree, m_pCalibratedRPM);
        return;
    }
    const CProperty& rMoment = Property("calibrated_unix_time");
    if (m_pDate == nullptr) {
        const CPropTreeItem* const pBefore = m_pRPMTolerance;
        m_pDate = m_Tree.Insert(PropertyItems::MakeText(rMoment.m_Item, 0), m_pHeading, pBefore);
        m_pTime = m_Tree.Insert(PropertyItems::MakeText(rMoment.m_TimeItem, 0), m_pHeading, pBefore);
        m_pCalibratedRPM =
            m_Tree.Insert(PropertyItems::MakeText(Property("calibrated_rpm").m_Item, 0), m_pHeading, pBefore);
    }
    m_pDate->SetItemValue(FormatLocalTime(rEntry.GetCalibrationDateTime(), "%d.%m.%Y"));
    m_pTime->SetItemValue(FormatLocalTime(rEntry.GetCalibrationDateTime(), "%H:%M:%S"));
    m_pCalibratedRPM->SetItemValue(std::to_string(rEntry.GetCalibratedRPM()));
}

void CBaseParamsTree::ShowTarget(std::uint32_t Stored) {
    PropertyItems::ShowNumber(*m_pTargetUnbalance, Property("target_unbalance"), Stored);
    if (m_pTargetFromNC == nullptr) {
        return;
    }
    double Value = 0.0;
    if (m_pTargetFromNC->GetValueFromNC(Value) == 0) {
        RV_ERROR(g_pLog, "Opc: SetItemValue failed!");
    } else {
        OnValueFromNC(Value);
    }
}

void CBaseParamsTree::OnValueFromNC(double Value) {
    if (m_pTargetUnbalance == nullptr) {
        return;
    }
    // Written so that what is no number is refused, too.
    if (Value >= static_cast<double>(m_pTargetUnbalance->GetMin()) &&
        Value <= static_cast<double>(m_pTargetUnbalance->GetMax())) {
        m_pTargetUnbalance->SetItemValue(static_cast<unsigned long>(Value));
    } else {
        RV_ERROR(g_pLog, "the NC's unbalance target is refused: %g is outside %s", Value,
                 m_pTargetUnbalance->GetRangeText().c_str());
    }
}

void CBaseParamsTree::OnValueFromNCTargetUnbalanceFailure() {
    RV_ERROR(g_pLog, "OPC Item read failed!");
}

template <typename T>
T& CBaseParamsTree::Provide() {
    auto* pTree = dynamic_cast<T*>(m_pBalancing.get());
    if (pTree == nullptr) {
        DropPlanes();
        auto pNew = std::make_unique<T>(m_Tree);
        pTree = pNew.get();
        m_pBalancing = std::move(pNew);
    }
    pTree->SetPlane(m_Plane);
    return *pTree;
}

void CBaseParamsTree::ShowPlanes(const CPreBalBaseTableEntry& rEntry, BalancingMode BalMode,
                                 const Base::CStringArray& rScrewTableNames) {
    const CSinglePlaneBalancingTableEntry* const pSingle = rEntry.GetSinglePlane();
    const CTwoPlaneBalancingTableEntry* const pTwo = rEntry.GetTwoPlane();
    if (pSingle != nullptr) {
        RV_ASSERT_AS(g_pLog,
                     BalMode == CPreBalDatabase::eModePlane1 || BalMode == CPreBalDatabase::eModePlane2,
                     "BalMode == PreBalDB::CPreBalDatabase::eModePlane1 || BalMode == "
                     "PreBalDB::CPreBalDatabase::eModePlane2",
                     "inconsistent configuration", false);
        Provide<CSinglePlaneBalancingTree>().SetConfig(pSingle, m_pHeading, rScrewTableNames);
    }
    if (pTwo != nullptr) {
        RV_ASSERT_AS(g_pLog, BalMode == CPreBalDatabase::eModeTwoPlane,
                     "BalMode == PreBalDB::CPreBalDatabase::eModeTwoPlane", "inconsistent configuration",
                     false);
        Provide<CTwoPlaneBalancingTree>().SetConfig(pTwo, BalMode, m_pHeading, rScrewTableNames);
    }
    if (pSingle == nullptr && pTwo == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "Invalid configuration");
        DropPlanes();  // what is shown of another entry must not be saved with this one
    }
}

void CBaseParamsTree::DropPlanes() {
    if (m_pBalancing != nullptr) {
        m_pBalancing->DeleteItems();
        m_pBalancing.reset();
    }
}

CPropTreeItem* CBaseParamsTree::GetConfig(CPreBalBaseTableEntry& rEntry) const {
    if (m_pRPMTolerance == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "invalid configuration");
        return nullptr;
    }
    rEntry.SetIsCalibrated(m_IsCalibrated);
    rEntry.SetRPMTolerance(
        static_cast<std::uint32_t>(PropertyItems::GetNumber(*m_pRPMTolerance, Property("rpm_tolerance"))));
    rEntry.SetTargetUnbalance(static_cast<std::uint32_t>(
        PropertyItems::GetNumber(*m_pTargetUnbalance, Property("target_unbalance"))));
    rEntry.SetNumberOfSamples(static_cast<std::uint32_t>(
        PropertyItems::GetNumber(*m_pMeasuringTime, Property("measurement_time_s"))));
    if (m_pBalancing == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "invalid configuration");
        return nullptr;
    }
    switch (m_pBalancing->GetBalancingMode()) {
        case CBalancingBase::eSinglePlane:
            return dynamic_cast<CSinglePlaneBalancingTree&>(*m_pBalancing)
                .GetConfig(rEntry.CreateSinglePlane());
        case CBalancingBase::eTwoPlanes:
            return dynamic_cast<CTwoPlaneBalancingTree&>(*m_pBalancing).GetConfig(rEntry.CreateTwoPlane());
        default:
            RV_ASSERT_FAIL(g_pLog, "impossible");
            return nullptr;
    }
}

void CBaseParamsTree::SetPlane(CTypeBase::AffectedPlane Plane) {
    m_Plane = Plane;
    if (m_pBalancing != nullptr) {
        m_pBalancing->SetPlane(Plane);
    }
}

bool CBaseParamsTree::HasScrewCompensation() const {
    return m_pBalancing != nullptr && m_pBalancing->HasScrewCompensation();
}

void CBaseParamsTree::UpdateChangedConfig(const CPreBalBaseTableEntry& rEntry) {
    if (m_pBalancing == nullptr) {
        return;
    }
    int StaysCalibrated = 0;
    m_pBalancing->UpdateChangedConfig(rEntry, &StaysCalibrated);
    m_IsCalibrated = StaysCalibrated != 0 ? rEntry.IsCalibrated() : 0;
}

void CBaseParamsTree::DeleteItems() {
    m_pTargetFromNC.reset();
    DropPlanes();
    for (CPropTreeItemStatic** const ppItem : {&m_pDate, &m_pTime, &m_pCalibratedRPM}) {
        DeleteLater(m_Tree, *ppItem);
    }
    DeleteLater(m_Tree, m_pRPMTolerance);
    DeleteLater(m_Tree, m_pTargetUnbalance);
    DeleteLater(m_Tree, m_pMeasuringTime);
    DeleteLater(m_Tree, m_pHeading);  // last: what is below it would go with it
}
