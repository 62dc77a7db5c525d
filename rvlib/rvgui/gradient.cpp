#include "rvlib/rvgui/gradient.h"

#include <algorithm>

void Gui::FillGradient(CDC& rDC, const CRect& rRect, COLORREF Color) {
    constexpr int STEP = 3;  // by which each row is darker than the one above
    const int nTop = rRect.Height() / 3 + 1;
    for (int i = 0; i < rRect.Height(); ++i) {
        const int nDarker = i < nTop ? 0 : STEP * (i - nTop);
        const auto Darken = [nDarker](int Component) {
            return static_cast<unsigned>(std::max(Component - nDarker, 0));
        };
        rDC.FillSolidRect(CRect(rRect.left, rRect.top + i, rRect.right, rRect.top + i + 1),
                          RGB(Darken(GetRValue(Color)), Darken(GetGValue(Color)), Darken(GetBValue(Color))));
    }
}
