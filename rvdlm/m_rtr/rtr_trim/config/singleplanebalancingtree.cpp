#include "rvdlm/m_rtr/rtr_trim/config/singleplanebalancingtree.h"

#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

using namespace PreBalDB;
using RtrTrim::g_pLog;

namespace {

const CProperty& Property(const char* pName) {
    return PropertyItems::Find<CSinglePlaneBalancingTableEntry>(pName);
}

CMethodBranch::CParts GetParts(const CSinglePlaneBalancingTableEntry& rEntry) {
    return {rEntry.GetWeightCompensationTableEntry(), rEntry.GetScrewCompensationTableEntry()};
}

}  // namespace

void CSinglePlaneBalancingTree::SetConfig(const CSinglePlaneBalancingTableEntry* pEntry,
                                          PropTree::CPropTreeItem* pParent,
                                          const Base::CStringArray& rScrewTableNames) {
    m_ScrewTableNames = rScrewTableNames;
    LinkRotation(this);
    if (pEntry == nullptr) {
        RV_ASSERT_FAIL(g_pLog, "inconstistent");
        return;
    }
    ShowRotation(Property("rotation"), pEntry->GetRotationDirection(), pParent);
    BeginTexts();
    ShowSensor(Property("sensor_adaption"), pEntry->GetSensorAdaption(), pParent);
    ShowSpeedInput(Property("proximity_switch_input"), pEntry->GetProximitySwitchInput(), pParent);
    ShowMatrix(Property("inv_a"), pEntry->GetInvA(), pParent);
    ShowVector(Property("ua"), pEntry->GetUA(), 0, pParent);
    m_Branch.SetConfig(pEntry->GetUsedCompensationMethod(), GetParts(*pEntry), pParent, 0, m_ScrewTableNames);
}

PropTree::CPropTreeItem* CSinglePlaneBalancingTree::GetConfig(CSinglePlaneBalancingTableEntry& rEntry) const {
    if (Item* const pInvalid = GetRotation(rEntry)) {
        return pInvalid;
    }
    return m_Branch.GetConfig(
        [&]() -> CWeightCompensationTableEntry& { return rEntry.CreateWeightCompensationTableEntry(); },
        [&]() -> CScrewCompensationTableEntry& { return rEntry.CreateScrewCompensationTableEntry(); });
}

void CSinglePlaneBalancingTree::UpdateChangedConfig(const CPreBalBaseTableEntry& rEntry,
                                                    int* pStaysCalibrated) {
    *pStaysCalibrated = 0;
    if (!HasRotation() || !m_Branch.IsComplete()) {
        RV_ASSERT_FAIL(g_pLog, "inconsistent");
        return;
    }
    const CSinglePlaneBalancingTableEntry* const pPlane = rEntry.GetSinglePlane();
    const CMethodBranch::CParts Parts = pPlane != nullptr ? GetParts(*pPlane) : CMethodBranch::CParts{};
    if (m_Branch.IsMethodChanged()) {
        // What the entry holds of the method, so that changing back leaves nothing changed.
        m_Branch.Rebuild(Parts, m_ScrewTableNames);
    }
    *pStaysCalibrated =
        pPlane != nullptr && IsRotation(pPlane->GetRotationDirection()) && m_Branch.StaysCalibrated(Parts)
            ? 1
            : 0;
}

void CSinglePlaneBalancingTree::DeleteItems() {
    m_Branch.DeleteItems();
    DeleteCommonItems();
}
