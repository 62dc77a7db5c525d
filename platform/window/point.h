#pragma once

/// A point in pixels; y grows downwards.
class CPoint {
public:
    constexpr CPoint() = default;
    constexpr CPoint(int X, int Y) : x(X), y(Y) {}
    friend constexpr bool operator==(const CPoint&, const CPoint&) = default;
    constexpr CPoint operator+(const CPoint& rOther) const { return {x + rOther.x, y + rOther.y}; }
    constexpr CPoint operator-(const CPoint& rOther) const { return {x - rOther.x, y - rOther.y}; }

    int x = 0;
    int y = 0;
};
