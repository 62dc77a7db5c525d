#pragma once
#include <memory>

#include "platform/rvmdb/prebaldatabase.h"
#include "rvdlm/m_rtr/rtr_trim/config/balancingbase.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromnctargetunbalance.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"

/// A configuration as a property tree: what every configuration has, and below it what one plane or two have.
/// Filled from an entry, which it writes back to on demand only: until then a change is seen here alone.
/// Window thread only.
class CBaseParamsTree : public CPreBalTargetUnbalanceInterface {
public:
    CBaseParamsTree();
    ~CBaseParamsTree() override;
    CBaseParamsTree(const CBaseParamsTree&) = delete;
    CBaseParamsTree& operator=(const CBaseParamsTree&) = delete;

    /// Shows an entry, with what the NC asks for in place of what is stored.
    void SetConfig(const PreBalDB::CPreBalBaseTableEntry& rEntry,
                   PreBalDB::CPreBalDatabase::BalancingMode BalMode,
                   const Base::CStringArray& rScrewTableNames);
    /// Enters what is shown, calibrated or not included. Null, or the first item whose value isn't valid.
    PropTree::CPropTreeItem* GetConfig(PreBalDB::CPreBalBaseTableEntry& rEntry) const;
    /// The plane that a single-plane configuration is for.
    void SetPlane(PreBalDB::CTypeBase::AffectedPlane Plane);
    bool HasScrewCompensation() const;

    // CPreBalTargetUnbalanceInterface
    /// A target beyond the limits of the page is refused.
    void OnValueFromNC(double Value) override;
    void OnValueFromNCTargetUnbalanceFailure() override;

    PropTree::CPropTree& GetTree() { return m_Tree; }
    const PropTree::CPropTree& GetTree() const { return m_Tree; }

protected:
    /// An item was changed: what belongs to another method appears, and the calibration may be over with what
    /// is shown now. The entry stays as it is.
    void UpdateChangedConfig(const PreBalDB::CPreBalBaseTableEntry& rEntry);
    /// What is shown can go on from the entry's calibration.
    bool IsShownCalibrated() const { return m_IsCalibrated != 0; }
    /// Has all items deleted once the present event is over.
    void DeleteItems();

private:
    using Item = PropTree::CPropTreeItem;
    using BalancingMode = PreBalDB::CPreBalDatabase::BalancingMode;

    void ShowHeading(BalancingMode BalMode);
    void ShowCalibration(const PreBalDB::CPreBalBaseTableEntry& rEntry);
    void ShowTarget(std::uint32_t Stored);
    void ShowPlanes(const PreBalDB::CPreBalBaseTableEntry& rEntry, BalancingMode BalMode,
                    const Base::CStringArray& rScrewTableNames);
    /// The plane tree as one of kind T, in place of one of the other kind.
    template <typename T>
    T& Provide();
    void DropPlanes();

    PropTree::CPropTree m_Tree;
    PropTree::CPropTreeItemStatic* m_pHeading = nullptr;
    // Only while the entry is calibrated.
    PropTree::CPropTreeItemStatic* m_pDate = nullptr;
    PropTree::CPropTreeItemStatic* m_pTime = nullptr;
    PropTree::CPropTreeItemStatic* m_pCalibratedRPM = nullptr;
    PropTree::CPropTreeItemSpinEdit<unsigned long>* m_pRPMTolerance = nullptr;
    PropTree::CPropTreeItemSpinEdit<unsigned long>* m_pTargetUnbalance = nullptr;
    PropTree::CPropTreeItemSpinEdit<double>* m_pMeasuringTime = nullptr;
    std::unique_ptr<CBalancingBase> m_pBalancing;
    std::unique_ptr<CPreBalInterfaceFromNcTargetUnbalance> m_pTargetFromNC;
    PreBalDB::CTypeBase::AffectedPlane m_Plane = PreBalDB::CTypeBase::ePlane1;
    int m_IsCalibrated = 0;
};
