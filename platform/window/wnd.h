#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/window/bitmap.h"
#include "platform/window/font.h"
#include "platform/window/messages.h"
#include "platform/window/notification.h"
#include "platform/window/rect.h"
#include "platform/window/types.h"

class CWnd;

// Style bits of a window. The low 16 bits are the class's own, as bit 0 of a property tree: it tells its
// parent.
constexpr UINT WS_TABSTOP = 0x00010000;  ///< the Tab key brings the focus here
constexpr UINT WS_BORDER = 0x00800000;   ///< an edit box with its frame

/// The pointer over a window.
enum class Cursor { eArrow, eHand, eText, eSplitColumns, eWait };

/// Told of what happens to a window tree, so that a toolkit can show it. One per top-level window.
class IFWindowPeer {
public:
    virtual ~IFWindowPeer() = default;
    /// The tree is on a screen. What isn't is painted when a picture of it is asked for.
    virtual bool IsLookedAt() const { return true; }
    /// Surface, place, visibility, text or any other state of rWnd, a window of the tree, has changed.
    virtual void OnWindowChanged(CWnd& rWnd) = 0;
    /// The top-level window rWnd is no more. Its object may be about to go, too.
    virtual void OnWindowDestroyed(CWnd& rWnd) { (void)rWnd; }
    /// A window below the top-level one is no more. Its object may be about to go, too.
    virtual void OnChildDestroyed(CWnd& rWnd) { (void)rWnd; }
    /// The focus is on another window of this tree, or has left it (null).
    virtual void OnFocusMoved(CWnd* pFocus) { (void)pFocus; }
    /// Draws a control as it is on the screen into rPicture, which has its size. False if it isn't there.
    virtual bool DrawControl(const CWnd& rControl, CBitmap& rPicture) {
        (void)rControl;
        (void)rPicture;
        return false;
    }
};

/// A window: numbered messages with two parameters, a place in its parent, and a backing bitmap. All on the
/// window thread; PostMessage alone may be called from any thread.
///
/// Messages and their answers stand in messages.h. They are the same whether a toolkit shows the window or
/// not: focus, capture, enabled state and the state of controls are kept here, and a toolkit's view follows.
/// Pixels are those of a display of scale 1 everywhere; only surfaces may have more (SetScale).
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

    /// Shows or hides; message 24. If the focus was in a window that is hidden, it goes to the parent.
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
    /// What a screen reader calls the window, where its text doesn't say it.
    void SetAccessibleName(const std::string& rName);
    const std::string& GetAccessibleName() const { return m_AccessibleName; }
    /// The font of the window's text, the default GUI font from the start.
    virtual void SetFont(const CFont& rFont);
    const CFont& GetFont() const { return m_Font; }
    UINT GetStyle() const { return m_Style; }
    /// Style bits, also before the window is created.
    void ModifyStyle(UINT Remove, UINT Add);
    /// A disabled window gets no mouse messages and no focus, nor do its children; it looks grey. Message 10
    /// if that changes.
    void EnableWindow(bool bEnable = true);
    bool IsWindowEnabled() const { return m_bEnabled; }
    void SetCursor(Cursor Shape);
    Cursor GetCursor() const { return m_Cursor; }

    /// Calls the window procedure at once. 0 if the window doesn't exist.
    LRESULT SendMessage(UINT Message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Queues a message through the event loop. False if the window doesn't exist.
    bool PostMessage(UINT Message, WPARAM wParam = 0, LPARAM lParam = 0);
    /// Window timer: message 275 with Id in wParam every Period ms, until killed. Renews a timer of the same
    /// id. False if the window doesn't exist or the platform refuses.
    bool SetTimer(UINT Id, UINT Period);
    bool KillTimer(UINT Id);

    /// It is shown, and a view has its tree on a screen.
    bool IsLookedAt() const;
    /// Message 15 through the loop, once however often it is called before. While nobody looks at the window
    /// it comes when a picture is asked for.
    void Invalidate();
    /// The window's picture, of the size of the client area. Whoever draws into it calls SurfaceChanged.
    /// Asked for while nobody looks, it is painted first if that is due.
    CBitmap& GetSurface();
    /// The picture as it was painted last.
    const CBitmap& GetSurface() const { return m_Surface; }
    void SurfaceChanged();
    /// Message 15 at once, if one is due.
    void PaintIfDue();
    /// The window's picture with its visible children drawn over it, controls as the toolkit draws them.
    CBitmap Compose();
    /// Surfaces of this window and all its children, those to come as well, get Scale times as many pixels
    /// each way, and are painted anew: 2 for a display of twice the usual resolution. Drawing code needn't
    /// know: all coordinates stay. A view sets it to what its screen has.
    void SetScale(double Scale);
    double GetScale() const { return m_Scale; }
    /// A point of this window's client area in that of the top-level window.
    CPoint ClientToTop(CPoint Point) const;

    /// Gives the window the focus: message 8 to the one that had it, then 7 to this one. False, and no
    /// change, if the window or a parent is hidden or disabled, or if it is gone after the messages. With a
    /// view the toolkit's focus follows; when the operator moves that, or leaves the program, the messages
    /// come likewise.
    bool SetFocus();
    /// The window that has the focus, or null.
    static CWnd* GetFocus();
    /// From the toolkit: its focus is on pWnd, or on nothing of ours (null).
    static void OnToolkitFocus(CWnd* pWnd);
    /// The next window below this one with WS_TABSTOP that is shown and enabled, in the order of the tree,
    /// behind pFrom (null: from the beginning, or the end if backwards); null behind the last one.
    CWnd* GetNextTabStop(const CWnd* pFrom, bool bBackwards) const;

    /// All mouse messages come to this window, until a release, or until the window is hidden, disabled or
    /// destroyed, another takes the capture, or the program is left; message 533 to the loser. Take it on a
    /// press only, and release it on the release.
    void SetCapture();
    static void ReleaseCapture();
    static CWnd* GetCapture();
    /// The top-level window in front, or null.
    static CWnd* GetForegroundWindow();
    static void SetForegroundWindow(CWnd* pWnd);
    /// The top-level window with that title, or null.
    static CWnd* FindWindow(const std::string& rTitle);

    void SetPeer(IFWindowPeer* pPeer);

private:
    struct Anchor;

protected:
    /// Handles a message; the base hands message 78 to the parent and answers 0 to all others.
    virtual LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam);
    /// Message 78 to the parent, which answers; 0 without a parent. rNotification gets this window and its
    /// id. The parent may destroy this window meanwhile.
    LRESULT NotifyParent(CWndNotification& rNotification);
    /// The same with nothing but a code.
    LRESULT NotifyParent(int Code);
    /// Create is through with messages 1 and 5.
    virtual void OnCreated() {}
    /// SetWindowText was called.
    virtual void OnTextSet() {}
    /// The window's picture without its children; that of the surface but for controls.
    virtual CBitmap GetPicture() const { return m_Surface; }
    /// The text that the operator has made: SetWindowText without OnTextSet and without telling a view.
    void StoreText(const std::string& rText) { m_Text = rText; }
    /// A view is to look at this window's state again.
    void NotifyPeer();
    /// Where a toolkit shows this tree; null without.
    IFWindowPeer* GetPeer() const;
    /// Made before calls that may end a window: tells afterwards whether it still stands, also when its
    /// object is gone.
    class CGuard {
    public:
        explicit CGuard(const CWnd& rWnd);
        /// The window still stands, in the same life.
        bool IsAlive() const;

    private:
        std::shared_ptr<const Anchor> m_pAnchor;
        std::uint64_t m_Life;
    };

private:
    struct CRegistry;
    static CRegistry& GetRegistry();
    void Begin(CWnd* pParent, const CRect& rRect, UINT Id, bool bVisible);
    LRESULT SendSize();
    /// A window that was hidden may not have been painted for a while.
    void InvalidateTree();
    /// Posts message 15 to those of the tree that it is due for, if somebody looks.
    void PostDuePaints();
    void DestroyChildren();
    /// Ends the window without messages.
    void Forget();
    /// Takes focus and capture from a window that is hidden or disabled, and from its children.
    void Withdraw();
    /// pWnd is this window or somewhere below it.
    bool Holds(const CWnd* pWnd) const;
    /// Shown and enabled, and all parents are.
    bool IsOperable() const;
    /// Moves the focus, with messages; bToToolkit: the toolkit's, too.
    static void MoveFocus(CWnd* pWnd, bool bToToolkit);
    /// Moves the capture, with the message to the loser.
    static void MoveCapture(CWnd* pWnd);
    void AppendTabStops(std::vector<CWnd*>& rStops, const CWnd* pFrom) const;
    void MakeSurface();

    bool m_bExists = false;
    bool m_bDestroying = false;
    bool m_bVisible = false;
    bool m_bMessageOnly = false;
    bool m_bPaintDue = false;
    bool m_bPaintPosted = false;
    bool m_bEnabled = true;
    UINT m_Id = 0;
    UINT m_Style = 0;
    CRect m_Rect;
    std::string m_Text;
    std::string m_AccessibleName;
    CFont m_Font = GetDefaultGuiFont();
    Cursor m_Cursor = Cursor::eArrow;
    double m_Scale = 1.0;
    CWnd* m_pParent = nullptr;
    std::vector<CWnd*> m_Children;
    CBitmap m_Surface;
    IFWindowPeer* m_pPeer = nullptr;
    /// Outlives the window in queued messages and timers, which look in it whether the window still stands.
    std::shared_ptr<Anchor> m_pAnchor;
};
