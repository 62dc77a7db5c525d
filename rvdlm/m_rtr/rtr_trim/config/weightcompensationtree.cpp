#include "rvdlm/m_rtr/rtr_trim/config/weightcompensationtree.h"

#include "rvdlm/m_rtr/rtr_trim/config/directionitem.h"
#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"

using PreBalDB::CWeightCompensationTableEntry;
using PropTree::CPropTreeItem;

void CWeightCompensationTree::SetConfig(const CWeightCompensationTableEntry* pEntry, AffectedPlane Plane,
                                        CPropTreeItem* pParent) {
    m_Plane = Plane;
    if (m_pScale == nullptr) {
        m_pScale = m_rTree.Insert(
            PropertyItems::MakeChoice(PropertyItems::Find<CWeightCompensationTableEntry>("scale")), pParent);
    }
    if (pEntry != nullptr) {
        DirectionItem::Show(*m_pScale, pEntry->GetScalingDirection());
    }
}

CPropTreeItem* CWeightCompensationTree::GetConfig(CWeightCompensationTableEntry& rEntry) const {
    rEntry.SetPlane(m_Plane);
    if (m_pScale != nullptr) {
        rEntry.SetScalingDirection(DirectionItem::Get(*m_pScale));
    }
    return nullptr;
}

int CWeightCompensationTree::GetScalingDirection() const {
    return m_pScale != nullptr ? m_pScale->GetItemValue() : -1;
}

void CWeightCompensationTree::DeleteItems() {
    PropertyItems::DeleteLater(m_rTree, m_pScale);
}
