#pragma once
// Items of the property tree, made from what is known of a property (platform/rvmdb/recordfields.cpp).
#include <cmath>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/recordfields.h"
#include "rvlib/rvgui/proptree/proptree.h"
#include "rvlib/rvgui/proptree/proptreeitemcombo.h"
#include "rvlib/rvgui/proptree/proptreeitemspinedit.h"
#include "rvlib/rvgui/proptree/proptreeitemstatic.h"

namespace PropertyItems {

/// A property of a kind of record by its name, which must be one.
template <typename Record>
const PreBalDB::CProperty& Find(std::string_view Name) {
    for (const PreBalDB::CRecordField<Record>& rField : PreBalDB::CConfigurationFields::Of<Record>()) {
        if (rField.m_Property.m_pName == Name) {
            return rField.m_Property;
        }
    }
    throw std::logic_error("no property " + std::string(Name));
}

/// Text of a label, behind which the plane stands if there is one to tell (1 or 2).
std::string GetLabel(const char* pTextKey, int nPlane);
/// Label, help topic and what the info pane tells: the text of the label's key and "_INFO".
void Describe(PropTree::CPropTreeItem& rItem, const PreBalDB::CProperty::CItem& rLine, int nPlane);

std::unique_ptr<PropTree::CPropTreeItemStatic> MakeText(const PreBalDB::CProperty::CItem& rLine, int nPlane);
/// The first choice is selected. nPlane: in place of the property's own one.
std::unique_ptr<PropTree::CPropTreeItemCombo> MakeChoice(const PreBalDB::CProperty& rProperty, int nPlane);
inline std::unique_ptr<PropTree::CPropTreeItemCombo> MakeChoice(const PreBalDB::CProperty& rProperty) {
    return MakeChoice(rProperty, rProperty.m_nPlane);
}

/// Tells, in the log and the info pane, of a stored value that the page can't show.
void NoteCorrection(PropTree::CPropTreeItem& rItem, const PreBalDB::CProperty& rProperty,
                    const std::string& rStored, bool bCorrected);
/// A number as it stands in notes: without zeros that tell nothing.
std::string WriteNumber(double Value);

/// With range, step and unit of the property; its default is shown.
template <typename T>
std::unique_ptr<PropTree::CPropTreeItemSpinEdit<T>> MakeNumber(const PreBalDB::CProperty& rProperty) {
    const PreBalDB::CProperty::CRange& rRange = rProperty.m_Range.value();
    const double Default = rProperty.ToUnit(static_cast<double>(std::get<std::int64_t>(rProperty.m_Default)));
    const std::string Unit = *rProperty.m_pUnit != '\0' ? GetText(rProperty.m_pUnit) : std::string();
    auto pItem = std::make_unique<PropTree::CPropTreeItemSpinEdit<T>>(
        static_cast<T>(rRange.m_Min), static_cast<T>(rRange.m_Max), static_cast<T>(Default),
        static_cast<T>(rRange.m_Step), PropTree::CSpinEditLook{.m_Unit = Unit});
    Describe(*pItem, rProperty.m_Item, rProperty.m_nPlane);
    return pItem;
}

/// Shows what is stored; a value beyond the item's limits goes to the nearest one, with a note.
template <typename T>
void ShowNumber(PropTree::CPropTreeItemSpinEdit<T>& rItem, const PreBalDB::CProperty& rProperty,
                double Stored) {
    const double Shown = rProperty.ToUnit(Stored);
    const bool bCorrected =
        Shown < static_cast<double>(rItem.GetMin()) || Shown > static_cast<double>(rItem.GetMax());
    rItem.SetItemValue(static_cast<T>(Shown));
    NoteCorrection(rItem, rProperty, WriteNumber(Shown), bCorrected);
}

/// What is to be stored for the number that is shown.
template <typename T>
double GetNumber(const PropTree::CPropTreeItemSpinEdit<T>& rItem, const PreBalDB::CProperty& rProperty) {
    return rProperty.FromUnit(static_cast<double>(rItem.GetItemValue()));
}

/// Posts that the item is to go when the present event is over, and forgets it. Without the tree's window it
/// goes at once.
void DeleteLater(PropTree::CPropTree& rTree, PropTree::CPropTreeItem* pItem);
template <typename Item>
void DeleteLater(PropTree::CPropTree& rTree, Item*& rpItem) {
    DeleteLater(rTree, static_cast<PropTree::CPropTreeItem*>(rpItem));
    rpItem = nullptr;
}

}  // namespace PropertyItems
