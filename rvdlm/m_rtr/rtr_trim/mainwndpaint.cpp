// What is on the screen, and the menu that goes with it.
#include "contract/hostmessages.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

LRESULT CPreBalancingMainWnd::OnPaint(WPARAM, LPARAM) {
    Repaint(CPreBalancing::ePaintAll);
    return 0;
}

void CPreBalancingMainWnd::Repaint(unsigned Mask) {
    const CRect Client = GetClientRect();
    const bool bAll = Mask == CPreBalancing::ePaintAll;
    if (Client.IsRectEmpty() || !IsShown() || (!bAll && m_pPrebalancingSequence == nullptr)) {
        return;
    }
    // Off-screen, so that nothing flickers. The window's surface is the screen.
    CBitmap Memory;
    Memory.Create(Client.Size(), GetSurface().GetScale());
    {
        CDC MemoryDC(Memory);
        if (bAll) {
            MemoryDC.FillSolidRect(Client, PageStyle::GetPanelColor(MemoryDC));
        } else {
            MemoryDC.BitBlt(Client, GetSurface(), CPoint());
        }
        if (m_pPrebalancingSequence != nullptr) {
            m_pPrebalancingSequence->Paint(&MemoryDC, Client, Mask);
        }
    }
    CDC(GetSurface()).BitBlt(Client, Memory, CPoint());
    SurfaceChanged();
}

void CPreBalancingMainWnd::SetMenu(std::int32_t Menu) {
    m_Menu = Menu;
    RepaintAll();
    PostToParent(WM_RV_SETMENU, static_cast<WPARAM>(Menu));
}

void CPreBalancingMainWnd::SetBalancingActivity(std::int32_t Activity) {
    // 0 posts nothing: that the configuration is back is told when it is shown.
    if (Activity == 1 || Activity == 2) {
        PostToParent(WM_RV_BALANCINGACTIVITY, static_cast<WPARAM>(Activity));
    }
}
