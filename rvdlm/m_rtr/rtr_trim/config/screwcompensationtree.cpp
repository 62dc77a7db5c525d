#include "rvdlm/m_rtr/rtr_trim/config/screwcompensationtree.h"

#include <algorithm>

#include "rvdlm/m_rtr/rtr_trim/config/directionitem.h"
#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"
#include "rvlib/rvgui/numbertext.h"

using PreBalDB::CScrewCompensationTableEntry;
using PropertyItems::DeleteLater;
using PropTree::CPropTreeItem;
using PropTree::CPropTreeItemCombo;
using RtrTrim::g_pLog;

namespace {

const PreBalDB::CProperty& Property(const char* pName) {
    return PropertyItems::Find<CScrewCompensationTableEntry>(pName);
}

}  // namespace

void CScrewCompensationTree::CreateItems(CPropTreeItem* pParent) {
    // Not limited: its strings are the tables, and they come and go.
    auto pTable = std::make_unique<CPropTreeItemCombo>(0, PropTree::CPropTreeItemCombo::MAX_ITEMS - 1);
    PropertyItems::Describe(*pTable, Property("table").m_Item, 0);
    m_pTable = m_rTree.Insert(std::move(pTable), pParent);
    m_pHoles = m_rTree.Insert(PropertyItems::MakeNumber<unsigned long>(Property("holes")), pParent);
    m_pScrews = m_rTree.Insert(PropertyItems::MakeNumber<unsigned char>(Property("screws")), pParent);
    m_pScale = m_rTree.Insert(PropertyItems::MakeChoice(Property("scale")), pParent);
    m_pReferenceWeight =
        m_rTree.Insert(PropertyItems::MakeText(Property("reference_weight").m_Item, 0), pParent);
}

bool CScrewCompensationTree::HasAllItems() const {
    return m_pTable != nullptr && m_pHoles != nullptr && m_pScrews != nullptr && m_pScale != nullptr &&
           m_pReferenceWeight != nullptr;
}

void CScrewCompensationTree::SetConfig(const CScrewCompensationTableEntry* pEntry, AffectedPlane Plane,
                                       CPropTreeItem* pParent, const Base::CStringArray& rNames) {
    m_Plane = Plane;
    m_Names = rNames;
    if (m_pTable == nullptr) {
        CreateItems(pParent);
    }
    ShowTables(pEntry);
    if (pEntry != nullptr) {
        PropertyItems::ShowNumber(*m_pHoles, Property("holes"), pEntry->GetNumberOfHoles());
        PropertyItems::ShowNumber(*m_pScrews, Property("screws"), pEntry->GetNumberOfScrews());
        DirectionItem::Show(*m_pScale, pEntry->GetScalingDirection());
    }
    constexpr int DIGITS = 6;
    m_pReferenceWeight->SetItemValue(
        pEntry != nullptr ? Gui::WriteFraction(pEntry->GetReferenceWeight(), DIGITS) + " g" : "0 g");
}

void CScrewCompensationTree::ShowTables(const CScrewCompensationTableEntry* pEntry) {
    m_pTable->ResetContent();
    for (const std::string& rName : m_Names) {
        m_pTable->AddString(rName);
    }
    if (m_Names.IsEmpty()) {
        RV_ASSERT_FAIL(g_pLog, "impossible");
        m_pTable->AddString(GetText("ERROR"));
    }
    PropertyItems::Describe(*m_pTable, Property("table").m_Item, 0);
    if (pEntry == nullptr || m_Names.IsEmpty()) {
        m_pTable->SetItemValue(0);
        return;
    }
    const auto Found = std::find(m_Names.begin(), m_Names.end(), pEntry->GetScrewTableName());
    if (Found == m_Names.end()) {
        // A row behind the tables, so that the operator sees which one is gone; it can't be saved.
        m_pTable->AddString("<" + pEntry->GetScrewTableName() + ">");
        m_pTable->SetInfoText(GetText("PB_TABLE_MISSING"));
    }
    m_pTable->SetItemValue(static_cast<int>(Found - m_Names.begin()));
}

CPropTreeItem* CScrewCompensationTree::GetConfig(CScrewCompensationTableEntry& rEntry) const {
    if (!HasAllItems()) {
        return m_pTable;
    }
    rEntry.SetPlane(m_Plane);
    rEntry.SetNumberOfHoles(static_cast<std::uint32_t>(m_pHoles->GetItemValue()));
    const int nTable = m_pTable->GetCurSel();
    const bool bTable = nTable >= 0 && nTable < static_cast<int>(m_Names.GetSize());
    if (bTable) {
        rEntry.SetScrewTableName(m_Names[static_cast<std::size_t>(nTable)]);
    }
    rEntry.SetNumberOfScrews(m_pScrews->GetItemValue());
    rEntry.SetScalingDirection(DirectionItem::Get(*m_pScale));
    return bTable ? nullptr : m_pTable;
}

int CScrewCompensationTree::GetScalingDirection() const {
    return m_pScale != nullptr ? m_pScale->GetItemValue() : -1;
}

void CScrewCompensationTree::DeleteItems() {
    DeleteLater(m_rTree, m_pTable);
    DeleteLater(m_rTree, m_pHoles);
    DeleteLater(m_rTree, m_pScrews);
    DeleteLater(m_rTree, m_pScale);
    DeleteLater(m_rTree, m_pReferenceWeight);
}
