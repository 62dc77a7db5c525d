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

// Host to module.
constexpr UINT WM_RV_RAWDATA_FIRST = 1035;  ///< 1035 to 1040: a received frame; all treated alike
constexpr UINT WM_RV_RAWDATA_LAST = 1040;
constexpr UINT WM_RV_INITWINDOW = 1045;         ///< wParam module address, lParam bit field
constexpr UINT WM_RV_MODULEACTION = 1058;       ///< wParam action, lParam flag
constexpr UINT WM_RV_DESTROYPENDING = 1088;     ///< the host is about to destroy the window
constexpr UINT WM_RV_PREBALANCINGSTATE = 1123;  ///< wParam wanted state
constexpr UINT WM_RV_QUERYPROGRESS = 1150;      ///< lParam a CPreBalProgress to fill (prebalprogress.h)
constexpr UINT WM_RV_DBINITDONE = 9216;         ///< the module to itself

// Module to host.
constexpr UINT WM_RV_HELPORMENU = 1065;         ///< wParam 111 or 127, lParam 0 or 1
constexpr UINT WM_RV_SETMENU = 1075;            ///< wParam menu number, -1 for none
constexpr UINT WM_RV_SOFTKEYENABLE = 1122;      ///< wParam mask, lParam values of the masked bits
constexpr UINT WM_RV_BALANCINGACTIVITY = 1124;  ///< wParam 0 configuration, 1 pre-, 2 re-balancing
constexpr UINT WM_RV_RESULTSAVED = 1151;        ///< a result was to be saved: wParam 1 it is, 0 it isn't

// Within the module.
constexpr UINT WM_RV_MESSAGEWND = 1066;           ///< foreign thread to window thread
constexpr UINT WM_RV_UPDATECONFIGURATION = 1224;  ///< load the named configuration
constexpr UINT WM_RV_PROCESSNAMECHANGED = 1225;
constexpr UINT WM_RV_SAVECONFIGURATION = 1226;
constexpr UINT WM_RV_UPDATETABS = 1227;         ///< wParam 1 with screws
constexpr UINT WM_RV_CALIBRATEDCHANGED = 1228;  ///< wParam calibrated
constexpr UINT WM_RV_UPDATESCREWTABLE = 1244;
constexpr UINT WM_RV_SCREWTABLENAMECHANGED = 1245;
constexpr UINT WM_RV_SAVESCREWTABLE = 1246;

// Within a property tree. The number is also WM_RV_QUERYPROGRESS; no window gets both.
constexpr UINT WM_RV_DELETEITEM = 1150;  ///< wParam the item to delete, after the event that is being handled

/// Code of rvCOM::Notify: deliver frames of an address to a window.
constexpr UINT RV_NOTIFY_RAWDATA = 1008;
