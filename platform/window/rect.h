#pragma once
#include "platform/window/point.h"
#include "platform/window/size.h"

/// A rectangle in pixels; right and bottom lie just outside.
class CRect {
public:
    constexpr CRect() = default;
    constexpr CRect(int Left, int Top, int Right, int Bottom)
        : left(Left), top(Top), right(Right), bottom(Bottom) {}
    constexpr CRect(CPoint TopLeft, CSize Size)
        : left(TopLeft.x), top(TopLeft.y), right(TopLeft.x + Size.cx), bottom(TopLeft.y + Size.cy) {}
    friend constexpr bool operator==(const CRect&, const CRect&) = default;

    constexpr int Width() const { return right - left; }
    constexpr int Height() const { return bottom - top; }
    constexpr CPoint TopLeft() const { return {left, top}; }
    constexpr CSize Size() const { return {Width(), Height()}; }
    constexpr CPoint CenterPoint() const { return {(left + right) / 2, (top + bottom) / 2}; }
    constexpr bool IsRectEmpty() const { return right <= left || bottom <= top; }
    constexpr bool PtInRect(CPoint Point) const {
        return Point.x >= left && Point.x < right && Point.y >= top && Point.y < bottom;
    }
    constexpr void OffsetRect(int X, int Y) {
        left += X;
        right += X;
        top += Y;
        bottom += Y;
    }
    /// Moves every side inwards.
    constexpr void DeflateRect(int Left, int Top, int Right, int Bottom) {
        left += Left;
        top += Top;
        right -= Right;
        bottom -= Bottom;
    }
    constexpr void DeflateRect(int X, int Y) { DeflateRect(X, Y, X, Y); }

    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
};
