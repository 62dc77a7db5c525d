#include "platform/window/wnd.h"

#include <algorithm>

#include "platform/window/dc.h"
#include "platform/window/wndend.h"
#include "platform/window/wndregistry.h"

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

CWnd::CGuard::CGuard(const CWnd& rWnd) : m_pAnchor(rWnd.m_pAnchor), m_Life(m_pAnchor->m_Life) {}

bool CWnd::CGuard::IsAlive() const {
    return m_Life != Anchor::NOT_ALIVE && m_pAnchor->m_Life == m_Life;
}

void CWnd::Begin(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible) {
    m_bExists = true;
    m_bDestroying = false;
    m_bVisible = bVisible;
    m_bPaintDue = false;
    m_bPaintPosted = false;
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
    if (pParent != nullptr) {
        m_Scale = pParent->m_Scale;
    }
    MakeSurface();
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
    const CGuard Guard(*this);
    const LRESULT Answer = SendMessage(WM_CREATE);
    if (!Guard.IsAlive()) {
        return false;
    }
    if (Answer == -1) {
        m_bDestroying = true;
        DestroyChildren();
        Forget();
        return false;
    }
    SendSize();
    if (!Guard.IsAlive()) {
        return false;
    }
    Invalidate();
    NotifyPeer();
    OnCreated();
    return Guard.IsAlive();
}

void CWnd::MakeSurface() {
    m_Surface.Create(m_Rect.Size(), m_Scale);
}

void CWnd::SetScale(double Scale) {
    if (m_Scale != Scale) {
        m_Scale = Scale;
        MakeSurface();
        Invalidate();
    }
    for (CWnd* pChild : m_Children) {
        pChild->SetScale(Scale);
    }
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
        const CGuard Guard(*this);
        SendMessage(WM_DESTROY);
        if (!Guard.IsAlive()) {
            return;  // The handler deleted the object, or its parent's end took it along.
        }
    }
    DestroyChildren();
    Forget();
}

void CWnd::DestroyChildren() {
    const CGuard Guard(*this);
    while (Guard.IsAlive() && !m_Children.empty()) {
        CWnd* pChild = m_Children.front();
        pChild->DestroyWindow();
        if (Guard.IsAlive() && !m_Children.empty() && m_Children.front() == pChild) {
            // The child is in the middle of its own destruction, further up the stack.
            pChild->DestroyChildren();
            pChild->Forget();
        }
    }
}

void CWnd::Forget() {
    m_pAnchor->m_Life = Anchor::NOT_ALIVE;
    for (const auto& [Id, rTimer] : m_pAnchor->m_Timers) {
        m_pAnchor->Kill(rTimer);
    }
    m_pAnchor->m_Timers.clear();
    TellWindowEnd(*this);
    m_bExists = false;
    m_bDestroying = false;

    CRegistry& rRegistry = GetRegistry();
    for (CWnd** ppWnd :
         {&rRegistry.m_pFocus, &rRegistry.m_pTold, &rRegistry.m_pLost, &rRegistry.m_pCapture}) {
        if (*ppWnd == this) {
            *ppWnd = nullptr;
        }
    }
    if (m_pParent != nullptr) {
        CWnd* pParent = m_pParent;
        if (IFWindowPeer* const pPeer = GetPeer()) {
            pPeer->OnChildDestroyed(*this);
        }
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

void CWnd::PostDuePaints() {
    if (m_bPaintDue) {
        Invalidate();
    }
    for (CWnd* pChild : m_Children) {
        pChild->PostDuePaints();
    }
}

void CWnd::ShowWindow(bool bShow) {
    if (!m_bExists || m_bMessageOnly || m_bVisible == bShow) {
        return;
    }
    const CGuard Guard(*this);
    m_bVisible = bShow;
    if (bShow) {
        InvalidateTree();
        CRegistry& rRegistry = GetRegistry();
        if (m_pParent == nullptr && rRegistry.m_pForeground == nullptr) {
            rRegistry.m_pForeground = this;
        }
    } else {
        Withdraw();
    }
    if (Guard.IsAlive()) {
        NotifyPeer();
        SendMessage(WM_SHOWWINDOW, bShow ? 1 : 0);
    }
}

void CWnd::EnableWindow(bool bEnable) {
    if (m_bEnabled == bEnable) {
        return;
    }
    m_bEnabled = bEnable;
    if (!m_bExists || m_bMessageOnly) {
        return;
    }
    const CGuard Guard(*this);
    if (!bEnable) {
        Withdraw();
    }
    if (Guard.IsAlive()) {
        Invalidate();
        NotifyPeer();
        SendMessage(WM_ENABLE, bEnable ? 1 : 0);
    }
}

void CWnd::MoveWindow(const CRect& rRect) {
    if (!m_bExists || m_bMessageOnly || m_Rect == rRect) {
        return;
    }
    const bool bSizeChanged = m_Rect.Size() != rRect.Size();
    m_Rect = rRect;
    if (bSizeChanged) {
        MakeSurface();
        const CGuard Guard(*this);
        SendSize();
        if (!Guard.IsAlive()) {
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
    OnTextSet();
    NotifyPeer();
}

void CWnd::SetAccessibleName(const std::string& rName) {
    m_AccessibleName = rName;
    NotifyPeer();
}

void CWnd::SetFont(const CFont& rFont) {
    m_Font = rFont;
    Invalidate();
    NotifyPeer();
}

void CWnd::ModifyStyle(UINT Remove, UINT Add) {
    m_Style = (m_Style & ~Remove) | Add;
    NotifyPeer();
}

void CWnd::SetCursor(Cursor Shape) {
    if (m_Cursor != Shape) {
        m_Cursor = Shape;
        NotifyPeer();
    }
}

CPoint CWnd::ClientToTop(CPoint Point) const {
    for (const CWnd* pWnd = this; pWnd->m_pParent != nullptr; pWnd = pWnd->m_pParent) {
        Point = Point + pWnd->m_Rect.TopLeft();
    }
    return Point;
}

LRESULT CWnd::SendMessage(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (Message == WM_PAINT) {
        m_bPaintDue = false;  // first, so that a handler may ask for the next one
    }
    return m_bExists ? WindowProc(Message, wParam, lParam) : 0;
}

bool CWnd::PostMessage(UINT Message, WPARAM wParam, LPARAM lParam) {
    const std::uint64_t Life = m_pAnchor->m_Life;
    if (Life == Anchor::NOT_ALIVE) {
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

bool CWnd::IsLookedAt() const {
    const IFWindowPeer* const pPeer = GetPeer();
    return pPeer != nullptr && IsShown() && pPeer->IsLookedAt();
}

void CWnd::Invalidate() {
    if (!m_bExists || m_bMessageOnly) {
        return;
    }
    m_bPaintDue = true;
    if (m_bPaintPosted || !IsLookedAt()) {
        return;
    }
    m_bPaintPosted = true;
    IFEventLoop::Current().Post([pAnchor = m_pAnchor, Life = m_pAnchor->m_Life.load()] {
        if (pAnchor->m_Life == Life) {
            pAnchor->m_pWnd->m_bPaintPosted = false;
            pAnchor->m_pWnd->PaintIfDue();
        }
    });
}

void CWnd::PaintIfDue() {
    if (m_bPaintDue) {
        SendMessage(WM_PAINT);
    }
}

CBitmap& CWnd::GetSurface() {
    if (m_bPaintDue && !IsLookedAt()) {
        PaintIfDue();
    }
    return m_Surface;
}

void CWnd::SurfaceChanged() {
    NotifyPeer();
}

void CWnd::SetPeer(IFWindowPeer* pPeer) {
    m_pPeer = pPeer;
    PostDuePaints();
}

IFWindowPeer* CWnd::GetPeer() const {
    const CWnd* pTop = this;
    while (pTop->m_pParent != nullptr) {
        pTop = pTop->m_pParent;
    }
    return pTop->m_pPeer;
}

void CWnd::NotifyPeer() {
    IFWindowPeer* const pPeer = GetPeer();
    if (pPeer != nullptr && m_bExists) {
        pPeer->OnWindowChanged(*this);
    }
}

CBitmap CWnd::Compose() {
    PaintIfDue();
    CBitmap Result = GetPicture();
    for (CWnd* pChild : m_Children) {
        if (pChild->m_bVisible) {
            const CBitmap Picture = pChild->Compose();
            CDC(Result).BitBlt(CRect(pChild->m_Rect.TopLeft(), Picture.GetSize()), Picture, CPoint());
        }
    }
    return Result;
}

LRESULT CWnd::NotifyParent(CWndNotification& rNotification) {
    rNotification.m_pFrom = this;
    rNotification.m_Id = m_Id;
    return m_pParent != nullptr
               ? m_pParent->SendMessage(WM_NOTIFY, m_Id, reinterpret_cast<LPARAM>(&rNotification))
               : 0;
}

LRESULT CWnd::NotifyParent(int Code) {
    CWndNotification Notification;
    Notification.m_Code = Code;
    return NotifyParent(Notification);
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

LRESULT CWnd::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    return Message == WM_NOTIFY && m_pParent != nullptr ? m_pParent->SendMessage(Message, wParam, lParam) : 0;
}
