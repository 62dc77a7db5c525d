#pragma once
#include <cstdint>
#include <span>
#include <vector>

#include "platform/window/wnd.h"

/// Two small buttons, the upper one up and the lower one down: drawn by the toolkit's style, operated by
/// mouse messages, so that a program can press them, too (Click). Asks its parent UDN_DELTAPOS
/// (notification.h) for each step. No tab stop; never takes the focus.
///
/// A button that is held repeats after 400 ms and then every 100 ms, in steps that grow with the
/// acceleration. It ends when the button is let go, the capture is lost, or the window is disabled, hidden or
/// destroyed.
class CSpinButtonCtrl : public CWnd {
public:
    /// A step, from nSeconds after the press on.
    struct CAccel {
        std::uint32_t m_nSeconds = 0;
        int m_nStep = 1;
    };

    /// Lower may be above upper: the upper button then counts down. The position is brought into the range.
    void SetRange(int nLower, int nUpper);
    int GetLower() const { return m_nLower; }
    int GetUpper() const { return m_nUpper; }
    int GetPos() const { return m_nPos; }
    /// Clamped to the range. Doesn't ask the parent.
    void SetPos(int nPos);
    /// Whether a step over one end goes to the other; from the start it stays at the end.
    void SetWrap(bool bWrap) { m_bWrap = bWrap; }
    bool IsWrap() const { return m_bWrap; }
    /// In order of seconds; false, and no change, for an empty list. 1 from the start.
    bool SetAccel(std::span<const CAccel> Steps);
    const std::vector<CAccel>& GetAccel() const { return m_Accel; }

    enum Button { eNone, eUp, eDown };
    /// Presses and lets go by mouse messages at the top edge or the bottom edge. Nothing if disabled.
    void Click(Button Which);
    /// The button that is held.
    Button GetPressed() const { return m_Pressed; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    static constexpr UINT REPEAT_TIMER = 1;

    void Paint();
    void Press(CPoint Point);
    void LetGo();
    void Step();
    void Repeat();
    int GetStep() const;

    int m_nLower = 0;
    int m_nUpper = 100;
    int m_nPos = 0;
    bool m_bWrap = false;
    std::vector<CAccel> m_Accel{CAccel{}};
    Button m_Pressed = eNone;
    std::uint64_t m_PressedAt = 0;  ///< ms of the event loop
};
