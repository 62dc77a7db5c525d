#include "rvdlm/m_rtr/rtr_trim/config/twoplanebalancingtree.h"

#include <algorithm>

#include "platform/rvmdb/prebaldatabase.h"
#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

using namespace PreBalDB;
using RtrTrim::g_pLog;
using CParts = CMethodBranch::CParts;

namespace {

const CProperty& Property(const char* pName) {
    return PropertyItems::Find<CTwoPlaneBalancingTableEntry>(pName);
}

std::array<CParts, 2> GetParts(const CTwoPlaneBalancingTableEntry& rEntry) {
    return {
        CParts{rEntry.GetPlane1WeightCompensationTableEntry(), rEntry.GetPlane1ScrewCompensationTableEntry()},
        CParts{rEntry.GetPlane2WeightCompensationTableEntry(),
               rEntry.GetPlane2ScrewCompensationTableEntry()}};
}

}  // namespace

CTwoPlaneBalancingTree::CTwoPlaneBalancingTree(PropTree::CPropTree& rTree)
    : CBalancingBase(rTree),
      m_Branches{CMethodBranch(rTree, CTypeBase::ePlane1), CMethodBranch(rTree, CTypeBase::ePlane2)} {}

void CTwoPlaneBalancingTree::SetConfig(const CTwoPlaneBalancingTableEntry* pEntry, int BalMode,
                                       PropTree::CPropTreeItem* pParent,
                                       const Base::CStringArray& rScrewTableNames) {
    RV_ASSERT_AS(g_pLog, BalMode == CPreBalDatabase::eModeTwoPlane,
                 "PreBalDB::CPreBalDatabase::eModeTwoPlane == BalMode", "invalid mode", false);
    m_ScrewTableNames = rScrewTableNames;
    LinkRotation(this);
    if (pEntry == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "inconstistent");
        return;
    }
    ShowRotation(Property("rotation"), pEntry->GetRotationDirection(), pParent);
    BeginTexts();
    ShowSensor(Property("plane1_sensor_adaption"), pEntry->GetPlane1SensorAdaption(), pParent);
    ShowSensor(Property("plane2_sensor_adaption"), pEntry->GetPlane2SensorAdaption(), pParent);
    ShowSpeedInput(Property("proximity_switch_input"), pEntry->GetProximitySwitchInput(), pParent);
    ShowMatrix(Property("inv_a"), pEntry->GetInvA(), pParent);
    ShowVector(Property("ua_plane1"), pEntry->GetUAPlane1(), 0, pParent);
    ShowVector(Property("ua_plane2"), pEntry->GetUAPlane2(), 2, pParent);
    const std::array<CParts, 2> Parts = GetParts(*pEntry);
    m_Branches[0].SetConfig(pEntry->GetPlane1UsedCompensationMethod(), Parts[0], pParent, 1,
                            m_ScrewTableNames);
    m_Branches[1].SetConfig(pEntry->GetPlane2UsedCompensationMethod(), Parts[1], pParent, 2,
                            m_ScrewTableNames);
}

PropTree::CPropTreeItem* CTwoPlaneBalancingTree::GetConfig(CTwoPlaneBalancingTableEntry& rEntry) const {
    if (Item* const pInvalid = GetRotation(rEntry)) {
        return pInvalid;
    }
    Item* const pInvalid1 = m_Branches[0].GetConfig(
        [&]() -> CWeightCompensationTableEntry& { return rEntry.CreatePlane1WeightCompensationTableEntry(); },
        [&]() -> CScrewCompensationTableEntry& { return rEntry.CreatePlane1ScrewCompensationTableEntry(); });
    Item* const pInvalid2 = m_Branches[1].GetConfig(
        [&]() -> CWeightCompensationTableEntry& { return rEntry.CreatePlane2WeightCompensationTableEntry(); },
        [&]() -> CScrewCompensationTableEntry& { return rEntry.CreatePlane2ScrewCompensationTableEntry(); });
    return pInvalid1 != nullptr ? pInvalid1 : pInvalid2;
}

void CTwoPlaneBalancingTree::Rebuild(const CTwoPlaneBalancingTableEntry* pEntry,
                                     const std::array<bool, 2>& rChanged) {
    // Of the plane whose method stays, what is shown and not saved yet has to come back; what isn't edited
    // here comes from the entry.
    CTwoPlaneBalancingTableEntry TemporaryCopy;
    const std::array<CParts, 2> Stored = pEntry != nullptr ? GetParts(*pEntry) : std::array<CParts, 2>{};
    if (Stored[0].m_pScrew != nullptr) {
        TemporaryCopy.CreatePlane1ScrewCompensationTableEntry() = *Stored[0].m_pScrew;
    }
    if (Stored[1].m_pScrew != nullptr) {
        TemporaryCopy.CreatePlane2ScrewCompensationTableEntry() = *Stored[1].m_pScrew;
    }
    GetConfig(TemporaryCopy);
    const std::array<CParts, 2> Shown = GetParts(TemporaryCopy);
    for (std::size_t i = 0; i < m_Branches.size(); ++i) {
        // A method that is new has no part in the copy: then what the entry holds of it, so that changing
        // back leaves nothing changed.
        m_Branches[i].Rebuild(rChanged[i] ? Stored[i] : Shown[i], m_ScrewTableNames);
    }
}

void CTwoPlaneBalancingTree::UpdateChangedConfig(const CPreBalBaseTableEntry& rEntry, int* pStaysCalibrated) {
    *pStaysCalibrated = 0;
    if (!HasRotation() || !m_Branches[0].IsComplete() || !m_Branches[1].IsComplete()) {
        RV_ASSERT_FAIL(g_pLog, "inconsistent");
        return;
    }
    const CTwoPlaneBalancingTableEntry* const pPlanes = rEntry.GetTwoPlane();
    const std::array<bool, 2> Changed = {m_Branches[0].IsMethodChanged(), m_Branches[1].IsMethodChanged()};
    if (Changed[0] || Changed[1]) {
        Rebuild(pPlanes, Changed);
    }
    if (pPlanes == nullptr || !IsRotation(pPlanes->GetRotationDirection())) {
        return;
    }
    const std::array<CParts, 2> Parts = GetParts(*pPlanes);
    *pStaysCalibrated =
        m_Branches[0].StaysCalibrated(Parts[0]) && m_Branches[1].StaysCalibrated(Parts[1]) ? 1 : 0;
}

bool CTwoPlaneBalancingTree::HasScrewCompensation() const {
    const bool bScrews1 = m_Branches[0].HasScrewCompensation();
    return m_Branches[1].HasScrewCompensation() || bScrews1;
}

void CTwoPlaneBalancingTree::DeleteItems() {
    for (CMethodBranch& rBranch : m_Branches) {
        rBranch.DeleteItems();
    }
    DeleteCommonItems();
}
