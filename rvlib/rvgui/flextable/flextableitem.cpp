#include "rvlib/rvgui/flextable/flextableitem.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>

#include "platform/window/syscolor.h"

namespace {

/// "%.2f" with a point, whatever the machine's language.
std::string Format(double Number) {
    std::array<char, std::numeric_limits<double>::max_exponent10 + 16> Text{};
    const auto [pEnd, Error] =
        std::to_chars(Text.data(), Text.data() + Text.size(), Number, std::chars_format::fixed, 2);
    return {Text.data(), pEnd};
}

bool HasOnlyCharactersOfANumber(const std::string& rText) {
    bool bPoint = false;
    for (std::size_t i = 0; i < rText.size(); ++i) {
        const char Character = rText[i];
        const bool bDigit = Character >= '0' && Character <= '9';
        const bool bSign = i == 0 && (Character == '+' || Character == '-');
        const bool bFirstPoint = Character == '.' && !bPoint;
        if (!bDigit && !bSign && !bFirstPoint) {
            return false;
        }
        bPoint = bPoint || bFirstPoint;
    }
    return true;
}

}  // namespace

void CFlexTableItem::Draw(CDC& rDC, const CRect& rRect) const {
    constexpr int c_nInset = 3;
    const int Saved = rDC.SaveDC();
    rDC.IntersectClipRect(rRect);
    rDC.SelectFont(m_rWnd.GetFont());
    rDC.SetBkMode(CDC::eTransparent);
    rDC.SetTextColor(GetSysColor(m_rWnd.IsWindowEnabled() ? SysColor::eWindowText : SysColor::eGrayText));
    CRect Text = rRect;
    Text.left += c_nInset;
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
    return Format(GetValue()) + " " + m_Unit;
}

std::string CFlexTableItemDouble::GetEditText() const {
    return Format(GetValue());
}

void CFlexTableItemDouble::Activate(CEdit& rEdit) {
    rEdit.SetUpperCase(true);
    CFlexTableValueItem::Activate(rEdit);
}

void CFlexTableItemDouble::OnEditChange() {
    CEdit& rEdit = *GetEdit();
    std::string Text = rEdit.GetWindowText();
    std::replace(Text.begin(), Text.end(), ',', '.');
    const double Number = HasOnlyCharactersOfANumber(Text) ? Read(Text) : std::nan("");
    if (!std::isfinite(Number)) {
        // All of it selected, as with the numbers of a property tree: what is typed next begins anew.
        rEdit.SetWindowText(Format(GetTyped()));
        rEdit.SelectAll();
        return;
    }
    if (Text != rEdit.GetWindowText()) {
        const int nAnchor = rEdit.GetAnchor();
        const int nCaret = rEdit.GetCaret();
        rEdit.SetWindowText(Text);
        rEdit.SetSel(nAnchor, nCaret);
    }
    SetTyped(Number);
}

double CFlexTableItemDouble::Read(std::string_view Text) {
    if (!Text.empty() && Text.front() == '+') {
        Text.remove_prefix(1);  // from_chars knows no plus sign
    }
    double Number = 0.0;
    const auto [pEnd, Error] =
        std::from_chars(Text.data(), Text.data() + Text.size(), Number, std::chars_format::fixed);
    if (Error == std::errc::result_out_of_range) {
        return std::numeric_limits<double>::infinity();
    }
    // An empty text, a sign or a point alone are steps on the way to a number, and 0 themselves; so is "-0".
    return Error == std::errc() && Number != 0.0 ? Number : 0.0;
}
