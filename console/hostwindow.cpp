#include "console/hostwindow.h"

#include "contract/hostmessages.h"
#include "platform/rvcom/rvcom.h"
#include "platform/window/messages.h"

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
                SetSoftkeyBits(SoftkeyMask::eReBalancing, lParam != 0 ? SoftkeyMask::eReBalancing : 0);
            }
            break;
        case WM_RV_RESULTSAVED:
            m_ResultSaved = wParam != 0;
            break;
        case WM_RV_SOFTKEYENABLE:
            SetSoftkeyBits(static_cast<std::int32_t>(wParam), static_cast<std::int32_t>(lParam));
            break;
        case WM_RV_HELPORMENU:
            m_Page = static_cast<std::uint32_t>(wParam);
            break;
        case WM_RV_RAWDATA_FIRST:
            return OnRawData(wParam, lParam);
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

void CHostWindow::SetSoftkeyBits(std::int32_t Mask, std::int32_t Values) {
    m_SoftkeyBits = (m_SoftkeyBits & ~Mask) | (Values & Mask);
}

LRESULT CHostWindow::OnRawData(WPARAM wParam, LPARAM lParam) {
    // The buffer's handle (low byte first), one unused byte, then the frame.
    constexpr std::size_t HEADER = 3;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    const auto* const pBuffer = reinterpret_cast<const std::uint8_t*>(wParam);
    const std::span<const std::uint8_t> Buffer(pBuffer, static_cast<std::size_t>(lParam));
    if (OnFrame) {
        OnFrame(Buffer.subspan(HEADER));
    }
    rvCOM::FreeBuffer(static_cast<std::uint16_t>(Buffer[0] | (Buffer[1] << 8U)));
    return 0;
}
