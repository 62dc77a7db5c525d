#include "platform/window/spinbuttonctrl.h"

#include <algorithm>

#include "platform/system/eventloop.h"
#include "platform/window/dc.h"
#include "platform/window/messageparams.h"
#include "platform/window/syscolor.h"

namespace {

constexpr UINT FIRST_REPEAT = 400;
constexpr UINT NEXT_REPEAT = 100;
constexpr std::uint64_t SECOND = 1000;

}  // namespace

void CSpinButtonCtrl::SetRange(int nLower, int nUpper) {
    m_nLower = nLower;
    m_nUpper = nUpper;
    SetPos(m_nPos);
}

void CSpinButtonCtrl::SetPos(int nPos) {
    const auto [nLow, nHigh] = std::minmax(m_nLower, m_nUpper);
    m_nPos = std::clamp(nPos, nLow, nHigh);
}

bool CSpinButtonCtrl::SetAccel(std::span<const CAccel> Steps) {
    if (Steps.empty()) {
        return false;
    }
    m_Accel.assign(Steps.begin(), Steps.end());
    return true;
}

void CSpinButtonCtrl::Click(Button Which) {
    if (Which == eNone || !IsWindowEnabled()) {
        return;
    }
    const CRect Client = GetClientRect();
    const LPARAM lPoint = MakePointParam({Client.Width() / 2, Which == eUp ? 0 : Client.bottom - 1});
    const CGuard Guard(*this);
    SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, lPoint);
    if (Guard.IsAlive()) {
        SendMessage(WM_LBUTTONUP, 0, lPoint);
    }
}

LRESULT CSpinButtonCtrl::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_LBUTTONDOWN:
        case WM_LBUTTONDBLCLK:
            Press(GetPointParam(lParam));
            return 0;
        case WM_LBUTTONUP:
        case WM_CAPTURECHANGED:
            LetGo();
            return 0;
        case WM_ENABLE:
        case WM_SHOWWINDOW:
            if (wParam == 0) {
                LetGo();
            }
            return 0;
        case WM_TIMER:
            if (wParam == REPEAT_TIMER) {
                Repeat();
                return 0;
            }
            break;
        case WM_PAINT:
            Paint();
            return 0;
        default:
            break;
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

void CSpinButtonCtrl::Press(CPoint Point) {
    if (!IsWindowEnabled()) {
        return;
    }
    m_Pressed = Point.y < GetClientRect().Height() / 2 ? eUp : eDown;
    m_PressedAt = IFEventLoop::Current().Now();
    SetCapture();
    SetTimer(REPEAT_TIMER, FIRST_REPEAT);
    Invalidate();
    Step();
}

void CSpinButtonCtrl::LetGo() {
    if (m_Pressed == eNone) {
        return;
    }
    m_Pressed = eNone;
    KillTimer(REPEAT_TIMER);
    Invalidate();
    if (GetCapture() == this) {
        ReleaseCapture();
    }
}

void CSpinButtonCtrl::Repeat() {
    SetTimer(REPEAT_TIMER, NEXT_REPEAT);
    Step();
}

int CSpinButtonCtrl::GetStep() const {
    const std::uint64_t nHeld = (IFEventLoop::Current().Now() - m_PressedAt) / SECOND;
    int nStep = m_Accel.front().m_nStep;
    for (const CAccel& rAccel : m_Accel) {
        if (rAccel.m_nSeconds <= nHeld) {
            nStep = rAccel.m_nStep;
        }
    }
    return nStep;
}

void CSpinButtonCtrl::Step() {
    const bool bUpwards = (m_Pressed == eUp) == (m_nLower <= m_nUpper);
    CDeltaPosNotification Notification;
    Notification.m_Code = UDN_DELTAPOS;
    Notification.m_Pos = m_nPos;
    Notification.m_Delta = bUpwards ? GetStep() : -GetStep();
    const CGuard Guard(*this);
    if (NotifyParent(Notification) != 0 || !Guard.IsAlive()) {
        return;
    }
    const auto [nLow, nHigh] = std::minmax(m_nLower, m_nUpper);
    const int nPos = m_nPos + Notification.m_Delta;
    if (m_bWrap && nPos > nHigh) {
        SetPos(nLow);
    } else if (m_bWrap && nPos < nLow) {
        SetPos(nHigh);
    } else {
        SetPos(nPos);
    }
}

void CSpinButtonCtrl::Paint() {
    {
        CDC DC(GetSurface());
        const CRect Client = GetClientRect();
        const int nMiddle = Client.Height() / 2;
        DC.FillSolidRect(Client, GetSysColor(SysColor::eFace));  // the style's corners are transparent
        DC.DrawPart(CRect(0, 0, Client.right, nMiddle), CDC::eSpinUp, {IsWindowEnabled(), m_Pressed == eUp});
        DC.DrawPart(CRect(0, nMiddle, Client.right, Client.bottom), CDC::eSpinDown,
                    {IsWindowEnabled(), m_Pressed == eDown});
    }
    SurfaceChanged();
}
