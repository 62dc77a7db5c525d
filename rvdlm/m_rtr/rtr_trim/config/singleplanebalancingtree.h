#pragma once
#include "rvdlm/m_rtr/rtr_trim/config/balancingbase.h"

/// The items of a configuration for one plane.
class CSinglePlaneBalancingTree : public CBalancingBase, public CPreBalRotationDirectionInterface {
public:
    explicit CSinglePlaneBalancingTree(PropTree::CPropTree& rTree)
        : CBalancingBase(rTree), m_Branch(rTree, PreBalDB::CTypeBase::ePlane1) {}

    int GetBalancingMode() const override { return eSinglePlane; }
    void DeleteItems() override;
    void UpdateChangedConfig(const PreBalDB::CPreBalBaseTableEntry& rEntry, int* pStaysCalibrated) override;
    void SetPlane(PreBalDB::CTypeBase::AffectedPlane Plane) override { m_Branch.SetPlane(Plane); }
    bool HasScrewCompensation() const override { return m_Branch.HasScrewCompensation(); }

    /// Shows an entry, which must not be null, below pParent.
    void SetConfig(const PreBalDB::CSinglePlaneBalancingTableEntry* pEntry, PropTree::CPropTreeItem* pParent,
                   const Base::CStringArray& rScrewTableNames);
    /// Enters what is shown. Null, or the first item that isn't valid.
    PropTree::CPropTreeItem* GetConfig(PreBalDB::CSinglePlaneBalancingTableEntry& rEntry) const;

    // CPreBalRotationDirectionInterface
    void OnValueFromNC(double Value) override { TakeRotationFromNC(Value); }
    void OnValueFromNCRotationDirectionFailure() override { LogRotationFailure(); }

private:
    CMethodBranch m_Branch;
};
