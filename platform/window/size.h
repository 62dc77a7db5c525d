#pragma once

/// Width and height in pixels.
class CSize {
public:
    constexpr CSize() = default;
    constexpr CSize(int Width, int Height) : cx(Width), cy(Height) {}
    friend constexpr bool operator==(const CSize&, const CSize&) = default;

    int cx = 0;
    int cy = 0;
};
