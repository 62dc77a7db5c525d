#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/messages.h"
#include "platform/window/rect.h"
#include "platform/window/types.h"

class CWnd;

/// Told of what happens to a window tree, so that a toolkit can show it. One per top-level window.
class IFWindowPeer {
public:
    virtual ~IFWindowPeer() = default;
    /// Surface, place or visibility of rWnd, a window of the tree, has changed.
    virtual void OnWindowChanged(CWnd& rWnd) = 0;
    /// The top-level window rWnd is no more. Its object may be about to go, too.
    virtual void OnWindowDestroyed(CWnd& rWnd) { (void)rWnd; }
};

/// A window: numbered messages with two parameters, a place in its parent, and a backing bitmap. All on the
/// window thread; PostMessage alone may be called from any thread.
class CWnd {
public:
    CWnd();
    /// Destroys the window if it still exists, without messages to the derived class.
    virtual ~CWnd();
    CWnd(const CWnd&) = delete;
    CWnd& operator=(const CWnd&) = delete;

    /// Creates the window as child of pParent (null: a top-level window) at rRect in the parent's client
    /// area; sends message 1, then 5 (lParam: width, and height shifted by 16 bits). False, and no window, if
    /// it exists already or message 1 answers -1.
    bool Create(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible = true);
    /// Creates a window that is never shown, has no size and receives posted messages and timers only:
    /// neither message 1 nor 2.
    bool CreateMessageOnly();
    /// Sends message 2, destroys the children and the window. Messages still posted to it are dropped. May be
    /// called, and the object deleted, from any of its own handlers.
    void DestroyWindow();
    bool IsWindow() const { return m_bExists; }

    /// Shows or hides.
    void ShowWindow(bool bShow);
    /// Visible itself; a parent may still be hidden.
    bool IsWindowVisible() const { return m_bExists && m_bVisible; }
    /// Visible itself, and all its parents are.
    bool IsShown() const;
    /// Moves and sizes; message 5 if the size changes.
    void MoveWindow(const CRect& rRect);
    /// The client area: left and top are 0.
    CRect GetClientRect() const;
    /// Place in the parent's client area.
    CRect GetRect() const { return m_Rect; }
    CWnd* GetParent() const { return m_pParent; }
    UINT GetDlgCtrlID() const { return m_Id; }
    /// The child with that id, or null.
    CWnd* GetDlgItem(UINT Id) const;
    const std::vector<CWnd*>& GetChildren() const { return m_Children; }
    void SetWindowText(const std::string& rText);
    const std::string& GetWindowText() const { return m_Text; }

    /// Calls the window procedure at once. 0 if the window doesn't exist.
    LRESULT SendMessage(UINT Message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Queues a message through the event loop. False if the window doesn't exist.
    bool PostMessage(UINT Message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Window timer: message 275 with Id in wParam every Period ms, until killed. Renews a timer of the same
    /// id. False if the window doesn't exist or the platform refuses.
    bool SetTimer(UINT Id, UINT Period);
    bool KillTimer(UINT Id);

    /// Message 15 through the loop, once however often it is called before.
    void Invalidate();
    /// The window's picture, of the size of the client area. Whoever draws into it calls SurfaceChanged.
    CBitmap& GetSurface() { return m_Surface; }
    const CBitmap& GetSurface() const { return m_Surface; }
    void SurfaceChanged();
    /// The window's picture with its visible children drawn over it.
    CBitmap Compose() const;

    void SetFocus();
    static CWnd* GetFocus();
    /// The top-level window in front, or null.
    static CWnd* GetForegroundWindow();
    static void SetForegroundWindow(CWnd* pWnd);
    /// The top-level window with that title, or null.
    static CWnd* FindWindow(const std::string& rTitle);

    void SetPeer(IFWindowPeer* pPeer) { m_pPeer = pPeer; }

protected:
    /// Handles a message; the base does nothing and answers 0.
    virtual LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam);

private:
    struct Anchor;
    struct CRegistry;
    static CRegistry& GetRegistry();
    /// Life is the number of the window's life that the caller knows; see Anchor.
    bool IsAlive(std::uint64_t Life) const;
    void Begin(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible);
    LRESULT SendSize();
    void NotifyPeer();
    /// A window that was hidden may not have been painted for a while.
    void InvalidateTree();
    void DestroyChildren();
    /// Ends the window without messages.
    void Forget();

    bool m_bExists = false;
    bool m_bDestroying = false;
    bool m_bVisible = false;
    bool m_bMessageOnly = false;
    bool m_bPaintPending = false;
    UINT m_Id = 0;
    CRect m_Rect;
    std::string m_Text;
    CWnd* m_pParent = nullptr;
    std::vector<CWnd*> m_Children;
    CBitmap m_Surface;
    IFWindowPeer* m_pPeer = nullptr;
    /// Outlives the window in queued messages and timers, which look in it whether the window still stands.
    std::shared_ptr<Anchor> m_pAnchor;
};
