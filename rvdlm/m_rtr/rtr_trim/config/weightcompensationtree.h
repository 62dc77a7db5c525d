#pragma once
#include "rvdlm/m_rtr/rtr_trim/config/compensationbase.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"

/// Two movable weights: the sense in which their scale counts.
class CWeightCompensationTree : public CCompensationBase {
public:
    CWeightCompensationTree(PropTree::CPropTree& rTree, AffectedPlane Plane)
        : CCompensationBase(rTree, Plane) {}

    PreBalDB::CCompensationTableEntry::CompensationMethod GetCompensationMethod() const override {
        return PreBalDB::CCompensationTableEntry::eWeights;
    }
    void DeleteItems() override;
    int GetScalingDirection() const override;

    /// Shows an entry below pParent; without one (null) what stands there stays, at first the default.
    void SetConfig(const PreBalDB::CWeightCompensationTableEntry* pEntry, AffectedPlane Plane,
                   PropTree::CPropTreeItem* pParent);
    /// Enters what is shown. Null: nothing here can be invalid.
    PropTree::CPropTreeItem* GetConfig(PreBalDB::CWeightCompensationTableEntry& rEntry) const;

private:
    PropTree::CPropTreeItemCombo* m_pScale = nullptr;
};
