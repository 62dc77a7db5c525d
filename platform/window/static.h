#pragma once
#include "platform/window/wnd.h"

/// A text on the page, grey when disabled. The mouse goes through it to the window beneath. Derived classes
/// may draw something else on message 15.
class CStatic : public CWnd {
public:
    /// DT_ flags of the text; left, top and wrapped at words from the start.
    void SetFormat(unsigned Format);
    unsigned GetFormat() const { return m_Format; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    void OnTextSet() override { Invalidate(); }

private:
    void Paint();

    unsigned m_Format = 0x0010;
};
