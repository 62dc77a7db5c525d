#include "platform/window/dialog.h"

#include "platform/window/dc.h"
#include "platform/window/edit.h"
#include "platform/window/syscolor.h"

bool CDialog::GotoDlgCtrl(CWnd& rControl) {
    if (!rControl.SetFocus()) {
        return false;
    }
    if (auto* const pEdit = dynamic_cast<CEdit*>(&rControl)) {
        pEdit->SelectAll();
    }
    return true;
}

bool CDialog::StepDlgCtrl(bool bBackwards) {
    CWnd* pNext = GetNextTabStop(GetFocus(), bBackwards);
    if (pNext == nullptr) {
        pNext = GetNextTabStop(nullptr, bBackwards);
    }
    return pNext != nullptr && GotoDlgCtrl(*pNext);
}

LRESULT CDialog::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_PAINT) {
        CDC(GetSurface()).FillSolidRect(GetClientRect(), GetSysColor(SysColor::eFace));
        SurfaceChanged();
        return 0;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}
