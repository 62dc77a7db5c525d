#include "rvdlm/m_rtr/rtr_trim/pagepainter.h"

#include "platform/window/dc.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "rvdlm/m_rtr/rtr_trim/prebalancing/prebalancing.h"

void RepaintPage(CWnd& rWnd, CPreBalancing* pProcedure, unsigned Mask) {
    const CRect Client = rWnd.GetClientRect();
    const bool bAll = Mask == CPreBalancing::ePaintAll;
    if (Client.IsRectEmpty() || !rWnd.IsShown() || (!bAll && pProcedure == nullptr)) {
        return;
    }
    // Off-screen, so that nothing flickers. The window's surface is the screen.
    CBitmap Memory;
    Memory.Create(Client.Size(), rWnd.GetSurface().GetScale());
    {
        CDC MemoryDC(Memory);
        if (bAll) {
            MemoryDC.FillSolidRect(Client, PageStyle::GetPanelColor(MemoryDC));
        } else {
            MemoryDC.BitBlt(Client, rWnd.GetSurface(), CPoint());
        }
        if (pProcedure != nullptr) {
            pProcedure->Paint(&MemoryDC, Client, Mask);
        }
    }
    CDC(rWnd.GetSurface()).BitBlt(Client, Memory, CPoint());
    rWnd.SurfaceChanged();
}
