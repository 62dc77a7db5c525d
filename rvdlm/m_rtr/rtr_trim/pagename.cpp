#include "rvdlm/m_rtr/rtr_trim/pagename.h"

#include <algorithm>
#include <array>
#include <utility>

#include "platform/window/display.h"
#include "platform/window/keys.h"
#include "platform/window/syscolor.h"

namespace {

constexpr int FEW_BITS = 9;  // displays below it have a palette

}  // namespace

CPageName::CPageName(const CStyle& rStyle, CHandlers Handlers)
    : m_Style(rStyle), m_Handlers(std::move(Handlers)) {
    m_Spin.SetRange(0, 0);
    const std::array Step{CSpinButtonCtrl::CAccel{0, 1}};
    m_Spin.SetAccel(Step);
}

void CPageName::CreateOn(CWnd& rPage, const std::string& rTitle) {
    CFont Font = GetDefaultGuiFont();
    Font.m_Weight = CFont::BOLD;
    SetFont(Font);
    SetHighlighted(true);
    Create(&rPage, CRect(), LABEL_ID);
    m_Field.Create(this, CRect(), FIELD_ID);
    m_Spin.Create(this, CRect(), SPIN_ID);
    SetTitle(rTitle);
    Place();
}

void CPageName::Place() {
    if (GetParent() == nullptr) {
        return;
    }
    constexpr CSize SPIN_SIZE(15, 20);
    const int nWidth = GetParent()->GetClientRect().Width();
    const int nField = nWidth / 2 - 6;
    MoveWindow(CRect(CPoint(10, 8), CSize(std::max(nWidth - 14, 0), 24)));
    m_Field.MoveWindow(CRect(CPoint(nField, 2), CSize(std::max(nWidth - nWidth / 2 - 26, 0), SPIN_SIZE.cy)));
    m_Spin.MoveWindow(CRect(CPoint(nWidth - 31, 2), SPIN_SIZE));
    SetTextEnd(nField);
}

void CPageName::SetTitle(const std::string& rTitle) {
    SetText(rTitle);
    m_Field.SetAccessibleName(rTitle);
}

void CPageName::SetHighlighted(bool bHighlighted) {
    const bool bGradient = GetDisplayBitsPerPixel() >= FEW_BITS;
    const COLORREF Face = GetSysColor(SysColor::eFace);
    const COLORREF Color = bGradient ? m_Style.m_Color : m_Style.m_PlainColor;
    SetBackground(bHighlighted ? Color : Face, Face);
    SetGradient(bHighlighted && bGradient, false);
}

void CPageName::SetName(const std::string& rName) {
    m_Name = rName;
    m_Field.SetWindowText(rName);
}

void CPageName::EndEditing() {
    if (IsEdited()) {
        m_Name = m_Field.GetWindowText();
        m_Handlers.m_OnNameTaken();
    }
}

bool CPageName::FocusField() {
    if (!m_Field.SetFocus()) {
        return false;
    }
    m_Field.SelectAll();  // also if it had the focus before
    return true;
}

int CPageName::Find(const Base::CStringArray& rNames, const std::string& rName) {
    const auto Found = std::find(rNames.begin(), rNames.end(), rName);
    return Found == rNames.end() ? -1 : static_cast<int>(Found - rNames.begin());
}

int CPageName::GetStepTarget(int nDelta) const {
    const int nLower = m_Spin.GetLower();
    const int nUpper = m_Spin.GetUpper();
    const int nTarget = m_Spin.GetPos() + nDelta;
    if (!m_Style.m_bWrap) {
        return std::clamp(nTarget, nLower, nUpper);
    }
    return nTarget < nLower ? nUpper : nTarget > nUpper ? nLower : nTarget;
}

LRESULT CPageName::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_NOTIFY) {
        const CWndNotification& rNotification = GetNotification(lParam);
        switch (rNotification.m_Code) {
            case EN_SETFOCUS:
                OnFieldFocus();
                return 0;
            case EN_KILLFOCUS:
                OnFieldLeft();
                return 0;
            case UDN_DELTAPOS:
                EndEditing();
                m_Handlers.m_OnStep(static_cast<const CDeltaPosNotification&>(rNotification).m_Delta);
                return 1;  // the page has set the position: its rules hold, not the control's
            default:
                return 0;
        }
    }
    return CStaticLabel::WindowProc(Message, wParam, lParam);
}

void CPageName::OnFieldFocus() {
    const CGuard Guard(*this);
    m_Handlers.m_OnFocus();
    if (Guard.IsAlive()) {
        m_Field.SelectAll();
    }
}

void CPageName::OnFieldLeft() {
    const CGuard Guard(*this);
    EndEditing();
    if (Guard.IsAlive()) {
        m_Field.SetSel(-1, 0);  // a selection would look as if the focus were here
    }
}

LRESULT CPageName::CField::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_KEYDOWN && m_rOwner.OnKeyDown(static_cast<UINT>(wParam))) {
        return 1;
    }
    return CEdit::WindowProc(Message, wParam, lParam);
}

bool CPageName::OnKeyDown(UINT Key) {
    if (!IsEdited() || (Key != VK_RETURN && Key != VK_ESCAPE)) {
        return false;  // nothing to end: the key is the page's
    }
    if (Key == VK_RETURN) {
        EndEditing();
    } else {
        SetName(std::string(m_Name));
        m_Field.SelectAll();
    }
    return true;
}
