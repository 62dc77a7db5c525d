#pragma once
#include <cstdint>
#include <vector>

#include "platform/window/wnd.h"

/// A host's window that remembers the messages its page sent or posted to it.
class CRecordingHost : public CWnd {
public:
    struct CMessage {
        UINT m_Message = 0;
        std::int32_t m_wParam = 0;
        std::int32_t m_lParam = 0;
        friend bool operator==(const CMessage&, const CMessage&) = default;
    };

    CRecordingHost() { Create(nullptr, CRect(0, 0, 600, 440), 0); }

    /// The messages of one number, in order of arrival.
    std::vector<CMessage> Get(UINT Message) const {
        std::vector<CMessage> Found;
        for (const CMessage& rMessage : m_Messages) {
            if (rMessage.m_Message == Message) {
                Found.push_back(rMessage);
            }
        }
        return Found;
    }
    void Clear() { m_Messages.clear(); }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message > 1000) {
            m_Messages.push_back(
                {Message, static_cast<std::int32_t>(wParam), static_cast<std::int32_t>(lParam)});
            return 1;
        }
        return CWnd::WindowProc(Message, wParam, lParam);
    }

private:
    std::vector<CMessage> m_Messages;
};
