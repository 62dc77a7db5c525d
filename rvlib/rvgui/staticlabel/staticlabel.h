#pragma once
#include <optional>
#include <string>

#include "platform/window/dc.h"
#include "platform/window/wnd.h"

/// A label: one line of text on a plain background or a gradient, which differ by whether it is enabled.
class CStaticLabel : public CWnd {
public:
    CStaticLabel() = default;

    /// The window's text, so that a screen reader has it, too.
    void SetText(const std::string& rText) { SetWindowText(rText); }
    const std::string& GetText() const { return GetWindowText(); }
    void SetBackground(COLORREF Enabled, COLORREF Disabled);
    void SetGradient(bool bEnabled, bool bDisabled);
    /// Without a font no text is drawn.
    void SetFont(const CFont& rFont) override;
    void SetTextColor(COLORREF Color);
    /// Where other windows begin to cover the label: a text that is longer ends there in an ellipsis. From
    /// the start the text has the whole width, and is cut at its end.
    void SetTextEnd(int X);

    /// Draws into rRect; what the window does for its client area.
    void Paint(CDC& rDC, const CRect& rRect) const;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnTextSet() override { Invalidate(); }

private:
    /// How the label looks in one of its two states.
    struct CLook {
        bool m_bGradient = false;
        COLORREF m_Background = RGB(236, 233, 216);
    };

    CLook m_Enabled;
    CLook m_Disabled;
    COLORREF m_TextColor = RGB(0, 0, 0);
    bool m_bHasFont = false;
    std::optional<int> m_TextEnd;
};
