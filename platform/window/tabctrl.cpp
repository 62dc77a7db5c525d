#include "platform/window/tabctrl.h"

#include <algorithm>

#include "platform/window/dc.h"

namespace {

constexpr COLORREF eFaceColor = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF eLineColor = RGB(0x71, 0x6F, 0x64);
constexpr int eMargin = 10;

}  // namespace

int CTabCtrl::InsertItem(int Index, const std::string& rText) {
    if (Index < 0 || Index > GetItemCount()) {
        return -1;
    }
    m_Items.insert(m_Items.begin() + Index, rText);
    // The selected tab stays selected, wherever it moves.
    if (m_CurSel == -1) {
        m_CurSel = 0;
    } else if (Index <= m_CurSel) {
        ++m_CurSel;
    }
    Invalidate();
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
    Invalidate();
    return true;
}

int CTabCtrl::SetCurSel(int Index) {
    if (Index < 0 || Index >= GetItemCount()) {
        return -1;
    }
    const int Former = m_CurSel;
    m_CurSel = Index;
    Invalidate();
    return Former;
}

CRect CTabCtrl::GetDisplayArea() const {
    CRect Area = GetClientRect();
    Area.top = std::min(Area.top + eTabHeight, Area.bottom);
    return Area;
}

void CTabCtrl::SetFont(const CFont& rFont) {
    m_Font = rFont;
    Invalidate();
}

LRESULT CTabCtrl::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_PAINT) {
        PaintTabs();
        return 0;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

void CTabCtrl::PaintTabs() {
    {
        CDC Dc(GetSurface());
        const CRect Client = GetClientRect();
        Dc.FillSolidRect(Client, eFaceColor);
        Dc.SelectPen(CPen(CPen::eSolid, 1, eLineColor));
        Dc.SelectFont(m_Font);
        const int nBase = eTabHeight - 1;
        Dc.Polyline(std::vector<CPoint>{{0, nBase}, {Client.right - 1, nBase}});
        int x = 2;
        for (int i = 0; i < GetItemCount(); ++i) {
            const std::string& rText = GetItemText(i);
            const int nRight = x + Dc.GetTextExtent(rText).cx + 2 * eMargin;
            const int nTop = i == m_CurSel ? 1 : 3;
            // The selected tab is white and open towards its page.
            CRect Tab(x, nTop, nRight + 1, i == m_CurSel ? nBase + 1 : nBase);
            Dc.FillSolidRect(Tab, i == m_CurSel ? RGB(255, 255, 255) : eFaceColor);
            Dc.Polyline(std::vector<CPoint>{{x, nBase}, {x, nTop}, {nRight, nTop}, {nRight, nBase}});
            Dc.DrawText(rText, Tab, DT_SINGLELINE | DT_VCENTER | DT_CENTER);
            x = nRight;
        }
    }
    SurfaceChanged();
}
