#pragma once
#include <functional>
#include <memory>

#include "platform/rvmdb/compensationtableentry.h"
#include "rvdlm/m_rtr/rtr_trim/config/compensationbase.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"

/// What the operator chooses for one plane: the method, and below it the items of the method in use. The same
/// for one plane and for each of two.
class CMethodBranch {
public:
    using CWeight = PreBalDB::CWeightCompensationTableEntry;
    using CScrew = PreBalDB::CScrewCompensationTableEntry;
    using AffectedPlane = PreBalDB::CTypeBase::AffectedPlane;
    /// What an entry holds of a plane: one of the two, or none.
    struct CParts {
        const CWeight* m_pWeight = nullptr;
        const CScrew* m_pScrew = nullptr;
    };

    CMethodBranch(PropTree::CPropTree& rTree, AffectedPlane Plane) : m_rTree(rTree), m_Plane(Plane) {}

    /// Shows the method below pParent, and what belongs to it. nPlane: 1 or 2 where the label tells it.
    void SetConfig(int Method, const CParts& rParts, PropTree::CPropTreeItem* pParent, int nPlane,
                   const Base::CStringArray& rNames);
    /// Enters what is shown into the part that the function of its kind gives. Null, or the item that isn't
    /// valid.
    PropTree::CPropTreeItem* GetConfig(const std::function<CWeight&()>& rWeight,
                                       const std::function<CScrew&()>& rScrew) const;
    void SetPlane(AffectedPlane Plane);
    void DeleteItems();

    bool IsComplete() const { return m_pMethod != nullptr && m_pCompensation != nullptr; }
    /// The method isn't that of the items below it any more.
    bool IsMethodChanged() const;
    /// Puts the items of the chosen method in place of those that are there; of rParts only what fits is
    /// shown.
    void Rebuild(const CParts& rParts, const Base::CStringArray& rNames);
    /// The entry has the same kind and the same sense of the scale.
    bool StaysCalibrated(const CParts& rParts) const;
    /// Screws are chosen. Without an item it is asserted.
    bool HasScrewCompensation() const;

private:
    void Fill(int Method, const CParts& rParts, const Base::CStringArray& rNames);
    /// The compensation as one of kind T, in place of one of another kind.
    template <typename T>
    T& Provide();
    void DropCompensation();

    PropTree::CPropTree& m_rTree;
    AffectedPlane m_Plane;
    PropTree::CPropTreeItemCombo* m_pMethod = nullptr;
    std::unique_ptr<CCompensationBase> m_pCompensation;
};
