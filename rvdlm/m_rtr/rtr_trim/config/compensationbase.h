#pragma once
#include "platform/rvmdb/compensationtableentry.h"
#include "rvlib/rvgui/proptree/proptree.h"

/// The items that tell how one plane is compensated, below the item of its method. They belong to the tree.
class CCompensationBase : public PreBalDB::CTypeBase {
public:
    virtual ~CCompensationBase() = default;
    virtual PreBalDB::CCompensationTableEntry::CompensationMethod GetCompensationMethod() const = 0;
    /// Has the items deleted once the present event is over: one of them may be in use.
    virtual void DeleteItems() = 0;
    virtual void SetPlane(AffectedPlane Plane) { m_Plane = Plane; }

    /// 0 or 1, as the item of the scale says.
    virtual int GetScalingDirection() const = 0;

protected:
    CCompensationBase(PropTree::CPropTree& rTree, AffectedPlane Plane) : m_rTree(rTree), m_Plane(Plane) {}
    CCompensationBase(const CCompensationBase&) = delete;
    CCompensationBase& operator=(const CCompensationBase&) = delete;

    PropTree::CPropTree& m_rTree;
    AffectedPlane m_Plane;
};
