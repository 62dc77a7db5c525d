#pragma once
#include "rvdlm/m_rtr/rtr_trim/config/compensationbase.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"

/// Screws in a ring of holes: their table, the holes, how many screws make a correction, the sense in which
/// the holes count, and the weight that the calibration was made with.
class CScrewCompensationTree : public CCompensationBase {
public:
    CScrewCompensationTree(PropTree::CPropTree& rTree, AffectedPlane Plane)
        : CCompensationBase(rTree, Plane) {}

    PreBalDB::CCompensationTableEntry::CompensationMethod GetCompensationMethod() const override {
        return PreBalDB::CCompensationTableEntry::eScrews;
    }
    void DeleteItems() override;
    int GetScalingDirection() const override;

    /// Shows an entry below pParent; null: the values of a new one, with the first table. A table that isn't
    /// among rNames is shown all the same, behind them.
    void SetConfig(const PreBalDB::CScrewCompensationTableEntry* pEntry, AffectedPlane Plane,
                   PropTree::CPropTreeItem* pParent, const Base::CStringArray& rNames);
    /// Enters what is shown. The item of the table if none is chosen that there is: the name then stays.
    PropTree::CPropTreeItem* GetConfig(PreBalDB::CScrewCompensationTableEntry& rEntry) const;

private:
    void CreateItems(PropTree::CPropTreeItem* pParent);
    void ShowTables(const PreBalDB::CScrewCompensationTableEntry* pEntry);
    bool HasAllItems() const;

    Base::CStringArray m_Names;
    PropTree::CPropTreeItemCombo* m_pTable = nullptr;
    PropTree::CPropTreeItemSpinEdit<unsigned long>* m_pHoles = nullptr;
    PropTree::CPropTreeItemSpinEdit<unsigned char>* m_pScrews = nullptr;
    PropTree::CPropTreeItemCombo* m_pScale = nullptr;
    PropTree::CPropTreeItemStatic* m_pReferenceWeight = nullptr;
};
