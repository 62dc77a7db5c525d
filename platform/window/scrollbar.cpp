#include "platform/window/scrollbar.h"

#include <algorithm>

#include "platform/window/messageparams.h"

void CScrollBar::SetScrollRange(int nMin, int nMax, int nPage) {
    m_nMin = nMin;
    m_nMax = std::max(nMax, nMin);
    m_nPage = std::max(nPage, 0);
    m_nPos = std::clamp(m_nPos, m_nMin, GetLimit());
    NotifyPeer();
}

int CScrollBar::GetLimit() const {
    return std::max(m_nMax - m_nPage, m_nMin);
}

void CScrollBar::SetScrollPos(int nPos) {
    m_nPos = std::clamp(nPos, m_nMin, GetLimit());
    NotifyPeer();
}

int CScrollBar::GetTarget(int Code, int nThumb, int nLine) const {
    switch (Code) {
        case SB_LINEUP:
            return m_nPos - nLine;
        case SB_LINEDOWN:
            return m_nPos + nLine;
        case SB_PAGEUP:
            return m_nPos - m_nPage;
        case SB_PAGEDOWN:
            return m_nPos + m_nPage;
        case SB_THUMBPOSITION:
        case SB_THUMBTRACK:
            return nThumb;
        case SB_TOP:
            return m_nMin;
        case SB_BOTTOM:
            return m_nMax;
        default:
            return m_nPos;
    }
}

void CScrollBar::ScrollByOperator(int Code, int Position) {
    const CGuard Guard(*this);
    if (CWnd* const pParent = GetParent()) {
        pParent->SendMessage(m_Direction == eVertical ? WM_VSCROLL : WM_HSCROLL,
                             MakeScrollParam(Code, Position), reinterpret_cast<LPARAM>(this));
    }
    if (Guard.IsAlive()) {
        NotifyPeer();  // also when the parent left the position alone
    }
}
