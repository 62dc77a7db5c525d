#pragma once
// Numbers of the window messages. The numbers are a contract with hosts: never renumber.
#include "platform/window/types.h"

// Messages of the window layer itself, each with who sends it and what an answer means. Where nothing is
// said, the answer is 0 and nobody looks at it. Points are packed by MakePointParam (messageparams.h) and
// count in the client area of the window that gets the message, whatever the display's scale.
constexpr UINT WM_CREATE = 1;   ///< the window stands; -1 refuses
constexpr UINT WM_DESTROY = 2;  ///< its last message
constexpr UINT WM_SIZE = 5;     ///< lParam width, and height shifted by 16 bits
/// The window has the focus: wParam the CWnd that lost it, or 0.
constexpr UINT WM_SETFOCUS = 7;
/// The window has lost the focus: wParam the CWnd that gets it, or 0 (another program, no window).
constexpr UINT WM_KILLFOCUS = 8;
constexpr UINT WM_ENABLE = 10;  ///< wParam 1: the window may be used now; 0: it may not
constexpr UINT WM_PAINT = 15;   ///< to draw the surface anew
/// The window itself was shown (wParam 1) or hidden (0), already done. Its children aren't told.
constexpr UINT WM_SHOWWINDOW = 24;
/// A child tells its parent something: wParam the child's id, lParam a CWndNotification (notification.h),
/// which also says what an answer means. The base class passes it on to its own parent.
constexpr UINT WM_NOTIFY = 78;

// Keys, to the window that has the focus. A nonzero answer: the key was used. A key that wasn't goes on:
// first to the toolkit's control, if the window is one, then to the window's parents, then to the host.
constexpr UINT WM_KEYDOWN = 256;  ///< wParam VK_ number (keys.h), lParam bit 30 set for a key that repeats
constexpr UINT WM_KEYUP = 257;    ///< wParam VK_ number
/// wParam a Unicode character, behind message 256 of its key, and only if that wasn't used. Backspace (8),
/// tab, Enter (13) and Escape are no characters here.
constexpr UINT WM_CHAR = 258;

constexpr UINT WM_INITDIALOG = 272;  ///< a CDialog to itself, with all that message 1 made
constexpr UINT WM_TIMER = 275;       ///< wParam the timer's id
/// A scroll bar tells its parent: wParam an SB_ code and the position (messageparams.h), lParam the
/// CScrollBar.
constexpr UINT WM_HSCROLL = 276;
constexpr UINT WM_VSCROLL = 277;

// Mouse, to the window under the pointer or to the one that has the capture: wParam MK_ flags of what is
// down, lParam the point. A finger on a touch screen is the left button. A double click is 513, 514, 515,
// 514. Windows that are disabled, and the parents of those that get a message, get none.
constexpr UINT WM_MOUSEMOVE = 512;
constexpr UINT WM_LBUTTONDOWN = 513;
constexpr UINT WM_LBUTTONUP = 514;
constexpr UINT WM_LBUTTONDBLCLK = 515;
constexpr UINT WM_RBUTTONDOWN = 516;
constexpr UINT WM_RBUTTONUP = 517;
constexpr UINT WM_RBUTTONDBLCLK = 518;
constexpr UINT WM_MBUTTONDOWN = 519;
constexpr UINT WM_MBUTTONUP = 520;
constexpr UINT WM_MBUTTONDBLCLK = 521;
/// Also with the way of the wheel, 120 a notch, positive away from the operator (GetWheelParam). A nonzero
/// answer: used. What isn't goes on to the parents.
constexpr UINT WM_MOUSEWHEEL = 522;
/// The window has lost the capture: lParam the CWnd that has it now, or 0. Whatever was being dragged ends.
constexpr UINT WM_CAPTURECHANGED = 533;
constexpr UINT WM_MOUSELEAVE = 675;  ///< the pointer has left the window

/// A foreign thread to the window's thread: what both parameters mean is between the two.
constexpr UINT WM_RV_MESSAGEWND = 1066;
