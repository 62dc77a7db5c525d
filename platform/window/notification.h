#pragma once
// What a child tells its parent by message 78, and what the answer means.
#include "platform/window/types.h"

class CWnd;

// Of a CEdit.
constexpr int EN_SETFOCUS = 0x0100;
constexpr int EN_KILLFOCUS = 0x0200;
/// The operator has changed the text (never the program). Nonzero refuses: the former text and selection come
/// back. A handler that writes another text with SetWindowText answers 0, and that text stands.
constexpr int EN_CHANGE = 0x0300;

// Of a CComboBox.
/// The operator has chosen another item (never the program). Nonzero refuses: the former one comes back.
constexpr int CBN_SELCHANGE = 1;
constexpr int CBN_SETFOCUS = 3;
constexpr int CBN_KILLFOCUS = 4;
constexpr int CBN_DROPDOWN = 7;  ///< the list is about to open
constexpr int CBN_CLOSEUP = 8;   ///< it has closed; before CBN_SELCHANGE

// Of a CTabCtrl.
constexpr int TCN_SELCHANGE = -551;    ///< the operator has selected another tab (never the program)
constexpr int TCN_SELCHANGING = -552;  ///< he is about to: nonzero refuses

/// Of a CSpinButtonCtrl, a CDeltaPosNotification: the position is about to change, still the old one in the
/// control. Nonzero: the parent has dealt with it, the control leaves its position alone.
constexpr int UDN_DELTAPOS = -722;

/// Who tells what. Controls and parents may put their own in a class derived from this one.
struct CWndNotification {
    CWnd* m_pFrom = nullptr;
    UINT m_Id = 0;  ///< of the window that tells
    int m_Code = 0;
};

/// UDN_DELTAPOS.
struct CDeltaPosNotification : CWndNotification {
    int m_Pos = 0;    ///< before the step
    int m_Delta = 0;  ///< the step, positive for the upper button; position + delta may lie outside the range
};

/// The notification in the lParam of message 78. Its code tells of what derived class it is.
inline CWndNotification& GetNotification(LPARAM lParam) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    return *reinterpret_cast<CWndNotification*>(lParam);
}
