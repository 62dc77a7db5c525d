#pragma once
#include <functional>
#include <vector>

#include "platform/window/dc.h"
#include "platform/window/wnd.h"

/// A window of one colour that writes down its messages and what its children tell it, and answers as a test
/// wants.
class CListeningWnd : public CWnd {
public:
    struct CHeard {
        UINT m_Message = 0;
        WPARAM m_wParam = 0;
        LPARAM m_lParam = 0;
    };

    explicit CListeningWnd(COLORREF Color = RGB(0xEC, 0xE9, 0xD8)) : m_Color(Color) {}

    /// All of that number, in their order.
    std::vector<CHeard> Of(UINT Message) const {
        std::vector<CHeard> Result;
        for (const CHeard& rHeard : m_Heard) {
            if (rHeard.m_Message == Message) {
                Result.push_back(rHeard);
            }
        }
        return Result;
    }
    /// The numbers between First and Last, in their order.
    std::vector<UINT> Between(UINT First, UINT Last) const {
        std::vector<UINT> Result;
        for (const CHeard& rHeard : m_Heard) {
            if (rHeard.m_Message >= First && rHeard.m_Message <= Last) {
                Result.push_back(rHeard.m_Message);
            }
        }
        return Result;
    }

    std::vector<CHeard> m_Heard;
    std::vector<int> m_Codes;  ///< of notifications
    /// The answer to a notification; 0 without.
    std::function<LRESULT(CWndNotification&)> OnNotification;
    /// The answer to any other message but those of creation and painting.
    std::function<LRESULT(UINT, WPARAM, LPARAM)> OnMessage;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        switch (Message) {
            case WM_PAINT:
                CDC(GetSurface()).FillSolidRect(GetClientRect(), m_Color);
                SurfaceChanged();
                return 0;
            case WM_CREATE:
            case WM_SIZE:
                return 0;
            case WM_NOTIFY:
                m_Codes.push_back(GetNotification(lParam).m_Code);
                return OnNotification ? OnNotification(GetNotification(lParam)) : 0;
            default:
                m_Heard.push_back({Message, wParam, lParam});
                return OnMessage ? OnMessage(Message, wParam, lParam) : 0;
        }
    }

private:
    COLORREF m_Color;
};
