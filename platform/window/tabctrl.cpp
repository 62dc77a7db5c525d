#include "platform/window/tabctrl.h"

#include <algorithm>

#include "platform/window/dc.h"
#include "platform/window/syscolor.h"
#include "platform/window/tabbar.h"

namespace {

/// Of the tabs' window; far from those that pages use.
constexpr UINT BAR_ID = 0xFFFF;

}  // namespace

CTabCtrl::CTabCtrl() : m_pBar(std::make_unique<CTabBar>(*this)) {}

CTabCtrl::~CTabCtrl() = default;

int CTabCtrl::InsertItem(int Index, const std::string& rText, int Image) {
    if (Index < 0 || Index > GetItemCount()) {
        return -1;
    }
    m_Items.insert(m_Items.begin() + Index, {rText, Image});
    // The selected tab stays selected, wherever it moves.
    if (m_CurSel == -1) {
        m_CurSel = 0;
    } else if (Index <= m_CurSel) {
        ++m_CurSel;
    }
    m_pBar->Update();
    return Index;
}

bool CTabCtrl::DeleteItem(int Index) {
    if (Index < 0 || Index >= GetItemCount()) {
        return false;
    }
    m_Items.erase(m_Items.begin() + Index);
    if (Index < m_CurSel) {
        --m_CurSel;
    }
    m_CurSel = std::min(m_CurSel, GetItemCount() - 1);
    m_pBar->Update();
    return true;
}

bool CTabCtrl::SetItemText(int Index, const std::string& rText) {
    if (Index < 0 || Index >= GetItemCount()) {
        return false;
    }
    m_Items[static_cast<std::size_t>(Index)].m_Text = rText;
    m_pBar->Update();
    return true;
}

int CTabCtrl::SetCurSel(int Index) {
    if (Index < 0 || Index >= GetItemCount()) {
        return -1;
    }
    const int Former = m_CurSel;
    m_CurSel = Index;
    m_pBar->Update();
    return Former;
}

void CTabCtrl::SetFont(const CFont& rFont) {
    CWnd::SetFont(rFont);
    m_pBar->SetFont(rFont);
}

void CTabCtrl::SetImageList(const CImageList& rImages) {
    m_Images = rImages;
    m_pBar->Update();
}

CRect CTabCtrl::GetBarArea() const {
    CRect Area = GetClientRect();
    Area.bottom = std::min(TAB_HEIGHT, Area.bottom);
    return Area;
}

CRect CTabCtrl::GetDisplayArea() const {
    CRect Area = GetClientRect();
    Area.top = GetBarArea().bottom;
    return Area;
}

bool CTabCtrl::SelectByOperator(int Index) {
    if (Index < 0 || Index >= GetItemCount()) {
        return false;
    }
    if (Index == m_CurSel) {
        return true;
    }
    const CGuard Guard(*this);
    const bool bRefused = NotifyParent(TCN_SELCHANGING) != 0;
    if (!Guard.IsAlive()) {
        return false;
    }
    if (bRefused) {
        m_pBar->Update();
        return false;
    }
    SetCurSel(Index);
    OnSelectedByOperator();
    if (Guard.IsAlive()) {
        NotifyParent(TCN_SELCHANGE);
    }
    return Guard.IsAlive();
}

LRESULT CTabCtrl::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_CREATE:
            m_pBar->Create(this, GetBarArea(), BAR_ID);
            break;
        case WM_SIZE:
            m_pBar->MoveWindow(GetBarArea());
            break;
        case WM_PAINT:
            CDC(GetSurface()).FillSolidRect(GetClientRect(), GetSysColor(SysColor::eFace));
            SurfaceChanged();
            return 0;
        default:
            break;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}
