#include "rvlib/rvbas/base/messagewnd.h"

#include "rvlib/rvbas/log.h"

namespace Base {

bool CMessageWnd::CreateMessageWindow() {
    if (!CreateMessageOnly()) {
        RV_ERROR(g_pLog, "CreateEx(...) failed (%d)!", 0);  // the window layer has no error numbers
        return false;
    }
    return true;
}

LRESULT CMessageWnd::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_RV_MESSAGEWND) {
        OnMessageWndMessage(wParam, lParam);
        return 1;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

}  // namespace Base
