#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/rvmdb/prebalbasetableentry.h"
#include "platform/rvmdb/property.h"
#include "rvdlm/m_rtr/rtr_trim/config/methodbranch.h"
#include "rvdlm/m_rtr/rtr_trim/nc/prebalinterfacefromncrotationdirection.h"
#include "rvlib/math/matrix.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"

/// The items that depend on whether one plane or two are balanced, and what both cases share: rotation,
/// sensors, speed input, and the figures of the calibration. The items belong to the tree.
class CBalancingBase {
public:
    enum Planes : std::uint8_t { eSinglePlane = 0, eTwoPlanes = 1 };

    virtual ~CBalancingBase() = default;
    virtual int GetBalancingMode() const = 0;
    /// Has the items deleted once the present event is over: one of them may be in use.
    virtual void DeleteItems() = 0;
    /// An item was changed: puts the items of another method into place, and says whether a calibration
    /// outlasts what is shown now. Nothing is written to the entry, so changing back brings it back.
    virtual void UpdateChangedConfig(const PreBalDB::CPreBalBaseTableEntry& rEntry,
                                     int* pStaysCalibrated) = 0;
    virtual void SetPlane(PreBalDB::CTypeBase::AffectedPlane Plane) = 0;
    virtual bool HasScrewCompensation() const = 0;

    CBalancingBase(const CBalancingBase&) = delete;
    CBalancingBase& operator=(const CBalancingBase&) = delete;

protected:
    using Item = PropTree::CPropTreeItem;

    explicit CBalancingBase(PropTree::CPropTree& rTree) : m_rTree(rTree) {}

    /// Links the NC's item anew; pTarget gets its values.
    void LinkRotation(CPreBalRotationDirectionInterface* pTarget);
    /// Shows the direction of the entry, or the NC's if it is linked. The item is made below pParent.
    void ShowRotation(const PreBalDB::CProperty& rProperty, PreBalDB::CTypeBase::Direction Stored,
                      Item* pParent);
    /// The NC's value goes to the item, and whoever shows the tree is told as of an operator's change.
    void TakeRotationFromNC(double Value);
    static void LogRotationFailure();
    /// Enters the direction that is shown. The item if it shows none.
    Item* GetRotation(PreBalDB::CPlaneBalancingTableEntry& rEntry) const;
    bool HasRotation() const { return m_pRotation != nullptr; }
    bool IsRotation(PreBalDB::CTypeBase::Direction Stored) const;

    // Lines of text, made below pParent in the order of the first calls, and filled anew by later ones
    // between BeginTexts and the end.
    void BeginTexts() { m_nNextText = 0; }
    void ShowText(const PreBalDB::CProperty& rProperty, const std::string& rValue, Item* pParent);
    void ShowSensor(const PreBalDB::CProperty& rProperty, std::uint8_t Adaption, Item* pParent);
    void ShowSpeedInput(const PreBalDB::CProperty& rProperty, PreBalDB::CTypeBase::AffectedPlane Input,
                        Item* pParent);
    /// "INV(0, 0)" and so on, by rows.
    void ShowMatrix(const PreBalDB::CProperty& rProperty, const math::matrix<double>& rMatrix, Item* pParent);
    /// "UA(0)" and so on, counted from nFirst.
    void ShowVector(const PreBalDB::CProperty& rProperty, const math::matrix<double>& rVector, int nFirst,
                    Item* pParent);

    void DeleteCommonItems();

    PropTree::CPropTree& m_rTree;
    Base::CStringArray m_ScrewTableNames;

private:
    PropTree::CPropTreeItemStatic& NextText(const PreBalDB::CProperty::CItem& rLine, int nPlane,
                                            Item* pParent);

    PropTree::CPropTreeItemCombo* m_pRotation = nullptr;
    std::vector<PropTree::CPropTreeItemStatic*> m_Texts;
    std::size_t m_nNextText = 0;
    std::unique_ptr<CPreBalInterfaceFromNcRotationDirection> m_pRotationFromNC;
};
