// Who has the focus and who the capture.
#include <algorithm>

#include "platform/window/wnd.h"
#include "platform/window/wndregistry.h"

bool CWnd::Holds(const CWnd* pWnd) const {
    while (pWnd != nullptr && pWnd != this) {
        pWnd = pWnd->m_pParent;
    }
    return pWnd != nullptr;
}

bool CWnd::IsOperable() const {
    for (const CWnd* pWnd = this; pWnd != nullptr; pWnd = pWnd->m_pParent) {
        if (!pWnd->IsWindowVisible() || !pWnd->m_bEnabled) {
            return false;
        }
    }
    return true;
}

bool CWnd::SetFocus() {
    if (!IsOperable()) {
        return false;
    }
    const CGuard Guard(*this);
    MoveFocus(this, true);
    return Guard.IsAlive() && GetFocus() == this;
}

CWnd* CWnd::GetFocus() {
    return GetRegistry().m_pFocus;
}

void CWnd::OnToolkitFocus(CWnd* pWnd) {
    MoveFocus(pWnd, false);
}

void CWnd::MoveFocus(CWnd* pWnd, bool bToToolkit) {
    CRegistry& rRegistry = GetRegistry();
    CWnd* const pFormer = rRegistry.m_pFocus;
    rRegistry.m_pFocus = pWnd;
    if (bToToolkit) {
        // First, so that handlers find both in agreement. What the toolkit reports of it is no news here.
        CWnd* const pShown = pWnd != nullptr ? pWnd : pFormer;
        if (IFWindowPeer* const pPeer = pShown != nullptr ? pShown->GetPeer() : nullptr) {
            pPeer->OnFocusMoved(pWnd);
        }
    }
    // Handlers may move the focus on, or destroy windows: then the inner call has told whom the last place
    // concerns, and there is nothing left to tell here.
    while (rRegistry.m_pTold != rRegistry.m_pFocus) {
        if (rRegistry.m_pTold != nullptr) {
            rRegistry.m_pLost = rRegistry.m_pTold;
            rRegistry.m_pTold = nullptr;
            rRegistry.m_pLost->SendMessage(WM_KILLFOCUS, reinterpret_cast<WPARAM>(rRegistry.m_pFocus));
        } else {
            CWnd* const pLost = rRegistry.m_pLost;
            rRegistry.m_pLost = nullptr;
            rRegistry.m_pTold = rRegistry.m_pFocus;
            rRegistry.m_pTold->SendMessage(WM_SETFOCUS, reinterpret_cast<WPARAM>(pLost));
        }
    }
    if (rRegistry.m_pFocus == nullptr) {
        rRegistry.m_pLost = nullptr;
    }
}

void CWnd::Withdraw() {
    const CRegistry& rRegistry = GetRegistry();
    const CGuard Guard(*this);
    if (Holds(rRegistry.m_pCapture)) {
        MoveCapture(nullptr);
    }
    if (Guard.IsAlive() && Holds(rRegistry.m_pFocus)) {
        MoveFocus(m_pParent != nullptr && m_pParent->IsOperable() ? m_pParent : nullptr, true);
    }
}

void CWnd::SetCapture() {
    if (IsOperable()) {
        MoveCapture(this);
    }
}

void CWnd::ReleaseCapture() {
    MoveCapture(nullptr);
}

CWnd* CWnd::GetCapture() {
    return GetRegistry().m_pCapture;
}

void CWnd::MoveCapture(CWnd* pWnd) {
    CRegistry& rRegistry = GetRegistry();
    CWnd* const pLoser = rRegistry.m_pCapture;
    rRegistry.m_pCapture = pWnd;
    if (pLoser != nullptr && pLoser != pWnd) {
        pLoser->SendMessage(WM_CAPTURECHANGED, 0, reinterpret_cast<LPARAM>(pWnd));
    }
}

void CWnd::AppendTabStops(std::vector<CWnd*>& rStops, const CWnd* pFrom) const {
    for (CWnd* pChild : m_Children) {
        const bool bOperable = pChild->m_bVisible && pChild->m_bEnabled;
        // Where the search begins counts as well, whatever it is.
        if (pChild == pFrom || (bOperable && (pChild->m_Style & WS_TABSTOP) != 0)) {
            rStops.push_back(pChild);
        }
        if (bOperable) {
            pChild->AppendTabStops(rStops, pFrom);
        }
    }
}

CWnd* CWnd::GetNextTabStop(const CWnd* pFrom, bool bBackwards) const {
    std::vector<CWnd*> Stops;
    AppendTabStops(Stops, pFrom);
    if (bBackwards) {
        std::reverse(Stops.begin(), Stops.end());
    }
    auto Next = std::find(Stops.begin(), Stops.end(), pFrom);
    Next = Next == Stops.end() ? Stops.begin() : Next + 1;
    return Next == Stops.end() ? nullptr : *Next;
}
