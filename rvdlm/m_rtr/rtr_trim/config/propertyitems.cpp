#include "rvdlm/m_rtr/rtr_trim/config/propertyitems.h"

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/rvgui/numbertext.h"

using namespace PropTree;
using PreBalDB::CProperty;

namespace PropertyItems {

namespace {

std::string GetInfo(const CProperty::CItem& rLine) {
    const std::string Key = std::string(rLine.m_pTextKey) + "_INFO";
    const std::string Text = GetText(Key);
    return Text == Key ? std::string() : Text;
}

}  // namespace

std::string GetLabel(const char* pTextKey, int nPlane) {
    const std::string Text = GetText(pTextKey);
    return nPlane == 0 ? Text : Text + " " + GetText("PB_PLANE_TEXT") + " " + std::to_string(nPlane);
}

void Describe(CPropTreeItem& rItem, const CProperty::CItem& rLine, int nPlane) {
    rItem.SetLabelText(GetLabel(rLine.m_pTextKey, nPlane));
    rItem.SetInfoText(GetInfo(rLine));
    rItem.SetHelpKey(rLine.m_pHelpKey);
}

std::unique_ptr<CPropTreeItemStatic> MakeText(const CProperty::CItem& rLine, int nPlane) {
    auto pItem = std::make_unique<CPropTreeItemStatic>();
    Describe(*pItem, rLine, nPlane);
    return pItem;
}

std::unique_ptr<CPropTreeItemCombo> MakeChoice(const CProperty& rProperty, int nPlane) {
    auto pItem = std::make_unique<CPropTreeItemCombo>(0, static_cast<int>(rProperty.m_Choices.size()) - 1);
    for (const CProperty::CChoice& rChoice : rProperty.m_Choices) {
        pItem->AddString(GetText(rChoice.m_pTextKey));
    }
    pItem->SetItemValue(0);
    Describe(*pItem, rProperty.m_Item, nPlane);
    return pItem;
}

void NoteCorrection(CPropTreeItem& rItem, const CProperty& rProperty, const std::string& rStored,
                    bool bCorrected) {
    std::string Info = GetInfo(rProperty.m_Item);
    if (bCorrected) {
        RV_WARNING(RtrTrim::g_pLog, "%s is stored as %s, outside %s: shown, and saved next time, as %s",
                   rProperty.m_pName, rStored.c_str(), rItem.GetRangeText().c_str(),
                   rItem.GetValueText().c_str());
        Info = GetText("PB_VALUE_CORRECTED") + " " + rStored + ". " + Info;
    }
    rItem.SetInfoText(Info);
}

std::string WriteNumber(double Value) {
    constexpr int DIGITS = 2;
    return Value == std::trunc(Value) ? Gui::WriteFraction(Value, 0) : Gui::WriteFraction(Value, DIGITS);
}

void DeleteLater(CPropTree& rTree, CPropTreeItem* pItem) {
    if (pItem != nullptr && !rTree.PostMessage(WM_RV_DELETEITEM, reinterpret_cast<WPARAM>(pItem))) {
        rTree.Delete(pItem);
    }
}

}  // namespace PropertyItems
