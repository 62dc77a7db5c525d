#include "platform/qt/mirror.h"

#include "platform/qt/inputevents.h"

void CMirror::Follow() {
    if (m_pWnd == nullptr) {
        return;
    }
    QWidget& rWidget = GetWidget();
    const CRect Rect = m_pWnd->GetRect();
    const CRect Client = m_pWnd->GetClientRect();  // its size is never negative
    if (!rWidget.isWindow()) {
        rWidget.setGeometry(Rect.left, Rect.top, Client.right, Client.bottom);
    }
    rWidget.setEnabled(m_pWnd->IsWindowEnabled());
    rWidget.setAccessibleName(QString::fromStdString(m_pWnd->GetAccessibleName()));
}

bool CMirror::SendKey(const QKeyEvent& rEvent) {
    if (m_pWnd == nullptr) {
        return true;
    }
    const UINT Key = GetVirtualKey(rEvent);
    if (rEvent.type() == QEvent::KeyRelease) {
        // A key that repeats goes down many times, and up once.
        return Key != 0 && !rEvent.isAutoRepeat() && m_pWnd->SendMessage(WM_KEYUP, Key) != 0;
    }
    if (Key != 0 && m_pWnd->SendMessage(WM_KEYDOWN, Key, GetRepeatParam(rEvent)) != 0) {
        return true;
    }
    for (const char32_t Character : GetCharacters(rEvent)) {
        if (m_pWnd == nullptr || m_pWnd->SendMessage(WM_CHAR, Character) != 0) {
            return true;
        }
    }
    return m_pWnd == nullptr;
}
