#pragma once
#include <array>

#include "rvdlm/m_rtr/rtr_trim/config/balancingbase.h"

/// The items of a configuration for two coupled planes: as for one, and the method for each of them.
class CTwoPlaneBalancingTree : public CBalancingBase, public CPreBalRotationDirectionInterface {
public:
    explicit CTwoPlaneBalancingTree(PropTree::CPropTree& rTree);

    int GetBalancingMode() const override { return eTwoPlanes; }
    void DeleteItems() override;
    void UpdateChangedConfig(const PreBalDB::CPreBalBaseTableEntry& rEntry, int* pStaysCalibrated) override;
    /// Each of the two planes is what it is.
    void SetPlane(PreBalDB::CTypeBase::AffectedPlane /*Plane*/) override {}
    bool HasScrewCompensation() const override;

    /// Shows an entry, which must not be null, below pParent.
    void SetConfig(const PreBalDB::CTwoPlaneBalancingTableEntry* pEntry, int BalMode,
                   PropTree::CPropTreeItem* pParent, const Base::CStringArray& rScrewTableNames);
    /// Enters what is shown. Null, or the first item that isn't valid.
    PropTree::CPropTreeItem* GetConfig(PreBalDB::CTwoPlaneBalancingTableEntry& rEntry) const;

    // CPreBalRotationDirectionInterface
    void OnValueFromNC(double Value) override { TakeRotationFromNC(Value); }
    void OnValueFromNCRotationDirectionFailure() override { LogRotationFailure(); }

private:
    /// New items below both methods, of which some have changed.
    void Rebuild(const PreBalDB::CTwoPlaneBalancingTableEntry* pEntry, const std::array<bool, 2>& rChanged);

    std::array<CMethodBranch, 2> m_Branches;
};
