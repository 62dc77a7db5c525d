#include "rvlib/rvgui/flextable/flextableitem.h"

#include <optional>

#include "platform/window/syscolor.h"
#include "rvlib/rvgui/numbertext.h"

namespace {

constexpr int DECIMALS = 2;

}  // namespace

void CFlexTableItem::Draw(CDC& rDC, const CRect& rRect) const {
    constexpr int INSET = 3;
    const int Saved = rDC.SaveDC();
    rDC.IntersectClipRect(rRect);
    rDC.SelectFont(m_rWnd.GetFont());
    rDC.SetBkMode(CDC::eTransparent);
    rDC.SetTextColor(GetSysColor(m_rWnd.IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText));
    CRect Text = rRect;
    Text.left += INSET;
    rDC.DrawText(GetDrawnText(), Text, DT_SINGLELINE | DT_VCENTER | DT_LEFT | DT_END_ELLIPSIS);
    rDC.RestoreDC(Saved);
}

void CFlexTableItem::Activate(CEdit& rEdit) {
    m_pEdit = &rEdit;
    m_bActive = true;
    m_bEdited = false;
    rEdit.SetWindowText(GetEditText());
    rEdit.SelectAll();
}

void CFlexTableItem::Deactivate() {
    m_pEdit = nullptr;
    m_bActive = false;
    m_bEdited = false;
}

void CFlexTableItemString::Activate(CEdit& rEdit) {
    rEdit.SetUpperCase(false);
    CFlexTableValueItem::Activate(rEdit);
}

void CFlexTableItemString::OnEditChange() {
    SetTyped(GetEdit()->GetWindowText());
}

std::string CFlexTableItemDouble::GetDrawnText() const {
    return Gui::WriteFraction(GetValue(), DECIMALS) + " " + m_Unit;
}

std::string CFlexTableItemDouble::GetEditText() const {
    return Gui::WriteFraction(GetValue(), DECIMALS);
}

void CFlexTableItemDouble::Activate(CEdit& rEdit) {
    rEdit.SetUpperCase(true);
    CFlexTableValueItem::Activate(rEdit);
}

void CFlexTableItemDouble::OnEditChange() {
    CEdit& rEdit = *GetEdit();
    const std::string Text = Gui::MakePoint(rEdit.GetWindowText());
    // An empty text, a sign or a point alone are steps on the way to a number, and 0 themselves.
    const bool bOnTheWay = Text.find_first_of("0123456789") == std::string::npos;
    if (!Gui::IsFractionText(Text) || (!bOnTheWay && !Gui::ReadFraction(Text))) {
        // All of it selected, as with the numbers of a property tree: what is typed next begins anew.
        rEdit.SetWindowText(Gui::WriteFraction(GetTyped(), DECIMALS));
        rEdit.SelectAll();
        return;
    }
    rEdit.CorrectText(Text);
    SetTyped(Read(Text));
}

double CFlexTableItemDouble::Read(std::string_view Text) {
    const double Number = Gui::ReadFraction(Text).value_or(0.0);
    return Number != 0.0 ? Number : 0.0;  // "-0", too
}
