#include "platform/qt/inputevents.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QWheelEvent>
#include <algorithm>
#include <array>

#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "platform/window/messages.h"
#include "platform/window/wnd.h"

namespace {

struct CKeyEntry {
    int m_QtKey;
    UINT m_VirtualKey;
};

constexpr std::array KEYS{
    CKeyEntry{Qt::Key_Backspace, VK_BACK},  CKeyEntry{Qt::Key_Tab, VK_TAB},
    CKeyEntry{Qt::Key_Backtab, VK_TAB},     CKeyEntry{Qt::Key_Return, VK_RETURN},
    CKeyEntry{Qt::Key_Enter, VK_RETURN},    CKeyEntry{Qt::Key_Shift, VK_SHIFT},
    CKeyEntry{Qt::Key_Control, VK_CONTROL}, CKeyEntry{Qt::Key_Alt, VK_MENU},
    CKeyEntry{Qt::Key_Escape, VK_ESCAPE},   CKeyEntry{Qt::Key_Space, VK_SPACE},
    CKeyEntry{Qt::Key_PageUp, VK_PRIOR},    CKeyEntry{Qt::Key_PageDown, VK_NEXT},
    CKeyEntry{Qt::Key_End, VK_END},         CKeyEntry{Qt::Key_Home, VK_HOME},
    CKeyEntry{Qt::Key_Left, VK_LEFT},       CKeyEntry{Qt::Key_Up, VK_UP},
    CKeyEntry{Qt::Key_Right, VK_RIGHT},     CKeyEntry{Qt::Key_Down, VK_DOWN},
    CKeyEntry{Qt::Key_Insert, VK_INSERT},   CKeyEntry{Qt::Key_Delete, VK_DELETE},
};

constexpr std::array PAD_KEYS{
    CKeyEntry{Qt::Key_Asterisk, VK_MULTIPLY}, CKeyEntry{Qt::Key_Plus, VK_ADD},
    CKeyEntry{Qt::Key_Minus, VK_SUBTRACT},    CKeyEntry{Qt::Key_Period, VK_DECIMAL},
    CKeyEntry{Qt::Key_Comma, VK_DECIMAL},     CKeyEntry{Qt::Key_Slash, VK_DIVIDE},
};

template <std::size_t Count>
UINT Find(const std::array<CKeyEntry, Count>& rKeys, int QtKey) {
    const auto Found = std::find_if(rKeys.begin(), rKeys.end(),
                                    [QtKey](const CKeyEntry& rEntry) { return rEntry.m_QtKey == QtKey; });
    return Found == rKeys.end() ? 0 : Found->m_VirtualKey;
}

/// VK_ numbers of a row of keys that follow one another in both numberings.
UINT FindInRow(int QtKey, int QtFirst, int QtLast, UINT First) {
    return QtKey >= QtFirst && QtKey <= QtLast ? First + static_cast<UINT>(QtKey - QtFirst) : 0;
}

}  // namespace

UINT GetVirtualKey(const QKeyEvent& rEvent) {
    const int Key = rEvent.key();
    if (rEvent.modifiers().testFlag(Qt::KeypadModifier)) {
        if (const UINT Digit = FindInRow(Key, Qt::Key_0, Qt::Key_9, VK_NUMPAD0); Digit != 0) {
            return Digit;
        }
        if (const UINT Pad = Find(PAD_KEYS, Key); Pad != 0) {
            return Pad;
        }
    }
    if (const UINT Digit = FindInRow(Key, Qt::Key_0, Qt::Key_9, '0'); Digit != 0) {
        return Digit;
    }
    if (const UINT Letter = FindInRow(Key, Qt::Key_A, Qt::Key_Z, 'A'); Letter != 0) {
        return Letter;
    }
    if (const UINT Function = FindInRow(Key, Qt::Key_F1, Qt::Key_F12, VK_F1); Function != 0) {
        return Function;
    }
    return Find(KEYS, Key);
}

LPARAM GetRepeatParam(const QKeyEvent& rEvent) {
    return rEvent.isAutoRepeat() ? 1 | KF_REPEAT : 1;
}

std::u32string GetCharacters(const QKeyEvent& rEvent) {
    // A command types nothing, whatever text comes with it. Control and Alt together are AltGr on some
    // keyboards.
    const Qt::KeyboardModifiers Commands = rEvent.modifiers() & (Qt::ControlModifier | Qt::AltModifier);
    if (Commands == Qt::ControlModifier || Commands == Qt::AltModifier) {
        return {};
    }
    std::u32string Result;
    for (const uint Character : rEvent.text().toUcs4()) {
        if (QChar::isPrint(Character)) {
            Result += static_cast<char32_t>(Character);
        }
    }
    return Result;
}

WPARAM GetMouseFlags(const QSinglePointEvent& rEvent) {
    WPARAM Flags = 0;
    const auto Add = [&Flags](bool bDown, WPARAM Flag) { Flags |= bDown ? Flag : 0; };
    Add(rEvent.buttons().testFlag(Qt::LeftButton), MK_LBUTTON);
    Add(rEvent.buttons().testFlag(Qt::RightButton), MK_RBUTTON);
    Add(rEvent.buttons().testFlag(Qt::MiddleButton), MK_MBUTTON);
    Add(rEvent.modifiers().testFlag(Qt::ShiftModifier), MK_SHIFT);
    Add(rEvent.modifiers().testFlag(Qt::ControlModifier), MK_CONTROL);
    return Flags;
}

UINT GetMouseMessage(const QMouseEvent& rEvent) {
    if (rEvent.type() == QEvent::MouseMove) {
        return WM_MOUSEMOVE;
    }
    // Each button has three numbers in a row: down, up, double click.
    UINT Down = 0;
    switch (rEvent.button()) {
        case Qt::LeftButton:
            Down = WM_LBUTTONDOWN;
            break;
        case Qt::RightButton:
            Down = WM_RBUTTONDOWN;
            break;
        case Qt::MiddleButton:
            Down = WM_MBUTTONDOWN;
            break;
        default:
            return 0;
    }
    switch (rEvent.type()) {
        case QEvent::MouseButtonRelease:
            return Down + 1;
        case QEvent::MouseButtonDblClick:
            return Down + 2;
        default:
            return Down;
    }
}

void SendWheel(CWnd& rWnd, QWheelEvent& rEvent) {
    rEvent.accept();  // the parents' widgets needn't ask again
    const int nDelta = rEvent.angleDelta().y();
    if (nDelta == 0) {
        return;
    }
    const WPARAM Parameter = MakeWheelParam(GetMouseFlags(rEvent), nDelta);
    const QPoint Pixel = rEvent.position().toPoint();
    CPoint Point(Pixel.x(), Pixel.y());
    CWnd* pWnd = &rWnd;
    while (pWnd != nullptr) {
        // A window that doesn't use it doesn't end by it either.
        CWnd* const pParent = pWnd->GetParent();
        const CPoint InParent = Point + pWnd->GetRect().TopLeft();
        if (pWnd->SendMessage(WM_MOUSEWHEEL, Parameter, MakePointParam(Point)) != 0) {
            return;
        }
        pWnd = pParent;
        Point = InParent;
    }
}
