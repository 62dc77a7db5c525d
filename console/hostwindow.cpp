#include "console/hostwindow.h"

#include "platform/window/messages.h"

namespace {

/// Bit of message 1122: re-balancing is possible.
constexpr WPARAM REBALANCE_BIT = 64;

}  // namespace

bool CHostWindow::Open(CSize Size) {
    if (!Create(nullptr, CRect(CPoint(0, 0), Size), 0)) {
        return false;
    }
    SetWindowText(TITLE);
    SetForegroundWindow(this);
    return true;
}

LRESULT CHostWindow::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_RV_SETMENU:
            m_Menu = static_cast<std::int32_t>(wParam);
            break;
        case WM_RV_BALANCINGACTIVITY:
            m_Activity = static_cast<std::int32_t>(wParam);
            if (m_Activity == 0) {
                m_bConfigured = true;
                m_bCalibrated = lParam != 0;
            }
            break;
        case WM_RV_SOFTKEYENABLE:
            if ((wParam & REBALANCE_BIT) != 0) {
                m_bCalibrated = (static_cast<WPARAM>(lParam) & REBALANCE_BIT) != 0;
            }
            break;
        case WM_SIZE:
            for (CWnd* pChild : GetChildren()) {
                pChild->MoveWindow(GetClientRect());
            }
            return 0;
        default:
            return CWnd::WindowProc(Message, wParam, lParam);
    }
    if (OnChanged) {
        OnChanged();
    }
    return 1;
}
