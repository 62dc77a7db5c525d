#include "platform/window/wnd.h"

#include <algorithm>
#include <atomic>
#include <map>

#include "platform/rvcom/rvcom.h"
#include "platform/system/eventloop.h"
#include "platform/window/dc.h"

/// What queued messages and running timers hold in the window's place. Every life of a window, from its
/// creation to its destruction, has a number of its own; work that was queued in an earlier life is dropped.
struct CWnd::Anchor {
    static constexpr std::uint64_t eNotAlive = 0;

    struct CTimer {
        IFEventLoop* m_pLoop = nullptr;
        std::uint32_t m_LoopId = 0;
    };

    void Kill(const CTimer& rTimer) const {
        // A loop that is gone took its timers along.
        if (IFEventLoop::HasCurrent() && &IFEventLoop::Current() == rTimer.m_pLoop) {
            rTimer.m_pLoop->KillTimer(rTimer.m_LoopId);
        }
    }

    CWnd* m_pWnd = nullptr;
    std::atomic<std::uint64_t> m_Life{eNotAlive};
    std::map<UINT, CTimer> m_Timers;
};

/// What windows know of each other across trees.
struct CWnd::CRegistry {
    std::uint64_t m_LastLife = Anchor::eNotAlive;
    std::vector<CWnd*> m_TopLevel;  ///< in order of creation
    CWnd* m_pFocus = nullptr;
    CWnd* m_pForeground = nullptr;
};

CWnd::CRegistry& CWnd::GetRegistry() {
    static CRegistry Registry;
    return Registry;
}

CWnd::CWnd() : m_pAnchor(std::make_shared<Anchor>()) {
    m_pAnchor->m_pWnd = this;
}

CWnd::~CWnd() {
    if (m_bExists) {
        m_bDestroying = true;
        DestroyChildren();
        Forget();
    }
}

bool CWnd::IsAlive(std::uint64_t Life) const {
    return m_pAnchor->m_Life == Life;
}

void CWnd::Begin(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible) {
    m_bExists = true;
    m_bDestroying = false;
    m_bVisible = bVisible;
    m_bPaintPending = false;
    m_Id = Id;
    m_Rect = rRect;
    m_pParent = pParent;
    m_pAnchor->m_Life = ++GetRegistry().m_LastLife;
}

bool CWnd::Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible) {
    if (m_bExists || (pParent != nullptr && (!pParent->m_bExists || pParent->m_bMessageOnly))) {
        return false;
    }
    Begin(pParent, rRect, Id, bVisible);
    m_bMessageOnly = false;
    m_Surface.Create(rRect.Size());
    CRegistry& rRegistry = GetRegistry();
    if (pParent != nullptr) {
        pParent->m_Children.push_back(this);
    } else {
        rRegistry.m_TopLevel.push_back(this);
        if (bVisible && rRegistry.m_pForeground == nullptr) {
            rRegistry.m_pForeground = this;
        }
    }
    // The handlers may destroy the window or delete the object.
    const std::shared_ptr<Anchor> pAnchor = m_pAnchor;
    const std::uint64_t Life = pAnchor->m_Life;
    const LRESULT Answer = SendMessage(WM_CREATE);
    if (pAnchor->m_Life != Life) {
        return false;
    }
    if (Answer == -1) {
        m_bDestroying = true;
        DestroyChildren();
        Forget();
        return false;
    }
    SendSize();
    if (pAnchor->m_Life != Life) {
        return false;
    }
    Invalidate();
    NotifyPeer();
    return true;
}

bool CWnd::CreateMessageOnly() {
    if (m_bExists) {
        return false;
    }
    Begin(nullptr, CRect(), 0, false);
    m_bMessageOnly = true;
    return true;
}

void CWnd::DestroyWindow() {
    if (!m_bExists || m_bDestroying) {
        return;
    }
    m_bDestroying = true;
    if (!m_bMessageOnly) {
        const std::shared_ptr<Anchor> pAnchor = m_pAnchor;
        const std::uint64_t Life = pAnchor->m_Life;
        SendMessage(WM_DESTROY);
        if (pAnchor->m_Life != Life) {
            return;  // The handler deleted the object, or its parent's end took it along.
        }
    }
    DestroyChildren();
    Forget();
}

void CWnd::DestroyChildren() {
    const std::shared_ptr<Anchor> pAnchor = m_pAnchor;
    const std::uint64_t Life = pAnchor->m_Life;
    while (pAnchor->m_Life == Life && !m_Children.empty()) {
        CWnd* pChild = m_Children.front();
        pChild->DestroyWindow();
        if (pAnchor->m_Life == Life && !m_Children.empty() && m_Children.front() == pChild) {
            // The child is in the middle of its own destruction, further up the stack.
            pChild->DestroyChildren();
            pChild->Forget();
        }
    }
}

void CWnd::Forget() {
    m_pAnchor->m_Life = Anchor::eNotAlive;
    for (const auto& [Id, rTimer] : m_pAnchor->m_Timers) {
        m_pAnchor->Kill(rTimer);
    }
    m_pAnchor->m_Timers.clear();
    rvCOM::Forget(this);
    m_bExists = false;
    m_bDestroying = false;
    m_bPaintPending = false;

    CRegistry& rRegistry = GetRegistry();
    if (rRegistry.m_pFocus == this) {
        rRegistry.m_pFocus = nullptr;
    }
    if (m_pParent != nullptr) {
        CWnd* pParent = m_pParent;
        std::erase(pParent->m_Children, this);
        m_pParent = nullptr;
        pParent->NotifyPeer();
        return;
    }
    std::erase(rRegistry.m_TopLevel, this);
    if (rRegistry.m_pForeground == this) {
        const auto Next = std::find_if(rRegistry.m_TopLevel.rbegin(), rRegistry.m_TopLevel.rend(),
                                       [](const CWnd* pWnd) { return pWnd->m_bVisible; });
        rRegistry.m_pForeground = Next == rRegistry.m_TopLevel.rend() ? nullptr : *Next;
    }
    if (m_pPeer != nullptr) {
        m_pPeer->OnWindowDestroyed(*this);
    }
}

bool CWnd::IsShown() const {
    for (const CWnd* pWnd = this; pWnd != nullptr; pWnd = pWnd->m_pParent) {
        if (!pWnd->IsWindowVisible()) {
            return false;
        }
    }
    return true;
}

void CWnd::InvalidateTree() {
    Invalidate();
    for (CWnd* pChild : m_Children) {
        pChild->InvalidateTree();
    }
}

void CWnd::ShowWindow(bool bShow) {
    if (!m_bExists || m_bMessageOnly || m_bVisible == bShow) {
        return;
    }
    m_bVisible = bShow;
    if (bShow) {
        InvalidateTree();
        CRegistry& rRegistry = GetRegistry();
        if (m_pParent == nullptr && rRegistry.m_pForeground == nullptr) {
            rRegistry.m_pForeground = this;
        }
    }
    NotifyPeer();
}

void CWnd::MoveWindow(const CRect& rRect) {
    if (!m_bExists || m_bMessageOnly || m_Rect == rRect) {
        return;
    }
    const bool bSizeChanged = m_Rect.Size() != rRect.Size();
    m_Rect = rRect;
    if (bSizeChanged) {
        m_Surface.Create(rRect.Size());
        const std::shared_ptr<Anchor> pAnchor = m_pAnchor;
        const std::uint64_t Life = pAnchor->m_Life;
        SendSize();
        if (pAnchor->m_Life != Life) {
            return;
        }
        Invalidate();
    }
    NotifyPeer();
}

LRESULT CWnd::SendSize() {
    const auto nWidth = static_cast<LPARAM>(std::clamp(m_Rect.Width(), 0, 0xFFFF));
    const auto nHeight = static_cast<LPARAM>(std::clamp(m_Rect.Height(), 0, 0xFFFF));
    return SendMessage(WM_SIZE, 0, (nHeight << 16) | nWidth);
}

CRect CWnd::GetClientRect() const {
    return {0, 0, std::max(m_Rect.Width(), 0), std::max(m_Rect.Height(), 0)};
}

CWnd* CWnd::GetDlgItem(UINT Id) const {
    const auto Found = std::find_if(m_Children.begin(), m_Children.end(),
                                    [Id](const CWnd* pWnd) { return pWnd->m_Id == Id; });
    return Found == m_Children.end() ? nullptr : *Found;
}

void CWnd::SetWindowText(const std::string& rText) {
    m_Text = rText;
    NotifyPeer();
}

LRESULT CWnd::SendMessage(UINT Message, WPARAM wParam, LPARAM lParam) {
    return m_bExists ? WindowProc(Message, wParam, lParam) : 0;
}

bool CWnd::PostMessage(UINT Message, WPARAM wParam, LPARAM lParam) {
    const std::uint64_t Life = m_pAnchor->m_Life;
    if (Life == Anchor::eNotAlive) {
        return false;
    }
    IFEventLoop::Current().Post([pAnchor = m_pAnchor, Life, Message, wParam, lParam] {
        if (pAnchor->m_Life == Life) {
            pAnchor->m_pWnd->SendMessage(Message, wParam, lParam);
        }
    });
    return true;
}

bool CWnd::SetTimer(UINT Id, UINT Period) {
    if (!m_bExists) {
        return false;
    }
    KillTimer(Id);
    IFEventLoop& rLoop = IFEventLoop::Current();
    const std::uint64_t Life = m_pAnchor->m_Life;
    const std::weak_ptr<Anchor> pWeakAnchor = m_pAnchor;
    const std::uint32_t LoopId = rLoop.SetTimer(Period, [pWeakAnchor, Life, Id](std::uint32_t) {
        const std::shared_ptr<Anchor> pAnchor = pWeakAnchor.lock();
        if (pAnchor != nullptr && pAnchor->m_Life == Life) {
            pAnchor->m_pWnd->SendMessage(WM_TIMER, Id);
        }
    });
    if (LoopId == 0) {
        return false;
    }
    m_pAnchor->m_Timers[Id] = {&rLoop, LoopId};
    return true;
}

bool CWnd::KillTimer(UINT Id) {
    const auto Found = m_pAnchor->m_Timers.find(Id);
    if (Found == m_pAnchor->m_Timers.end()) {
        return false;
    }
    m_pAnchor->Kill(Found->second);
    m_pAnchor->m_Timers.erase(Found);
    return true;
}

void CWnd::Invalidate() {
    if (!m_bExists || m_bMessageOnly || m_bPaintPending) {
        return;
    }
    m_bPaintPending = true;
    IFEventLoop::Current().Post([pAnchor = m_pAnchor, Life = m_pAnchor->m_Life.load()] {
        if (pAnchor->m_Life == Life) {
            // First, so that a handler may ask for the next one.
            pAnchor->m_pWnd->m_bPaintPending = false;
            pAnchor->m_pWnd->SendMessage(WM_PAINT);
        }
    });
}

void CWnd::SurfaceChanged() {
    NotifyPeer();
}

void CWnd::NotifyPeer() {
    CWnd* pRoot = this;
    while (pRoot->m_pParent != nullptr) {
        pRoot = pRoot->m_pParent;
    }
    if (pRoot->m_pPeer != nullptr && m_bExists) {
        pRoot->m_pPeer->OnWindowChanged(*this);
    }
}

CBitmap CWnd::Compose() const {
    CBitmap Result = m_Surface;
    for (const CWnd* pChild : m_Children) {
        if (pChild->m_bVisible) {
            const CBitmap Picture = pChild->Compose();
            CDC(Result).BitBlt(CRect(pChild->m_Rect.TopLeft(), Picture.GetSize()), Picture, CPoint());
        }
    }
    return Result;
}

void CWnd::SetFocus() {
    if (m_bExists) {
        GetRegistry().m_pFocus = this;
    }
}

CWnd* CWnd::GetFocus() {
    return GetRegistry().m_pFocus;
}

CWnd* CWnd::GetForegroundWindow() {
    return GetRegistry().m_pForeground;
}

void CWnd::SetForegroundWindow(CWnd* pWnd) {
    if (pWnd == nullptr || (pWnd->m_bExists && !pWnd->m_bMessageOnly)) {
        while (pWnd != nullptr && pWnd->m_pParent != nullptr) {
            pWnd = pWnd->m_pParent;
        }
        GetRegistry().m_pForeground = pWnd;
    }
}

CWnd* CWnd::FindWindow(const std::string& rTitle) {
    const std::vector<CWnd*>& rTopLevel = GetRegistry().m_TopLevel;
    const auto Found = std::find_if(rTopLevel.begin(), rTopLevel.end(),
                                    [&rTitle](const CWnd* pWnd) { return pWnd->m_Text == rTitle; });
    return Found == rTopLevel.end() ? nullptr : *Found;
}

LRESULT CWnd::WindowProc(UINT, WPARAM, LPARAM) {
    return 0;
}
