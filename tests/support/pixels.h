#pragma once
#include <algorithm>
#include <cstdlib>
#include <optional>

#include "platform/window/bitmap.h"
#include "platform/window/rect.h"

// Looking at pictures by their pixels.

inline CRect GetWhole(const CBitmap& rBitmap) {
    return {CPoint(), rBitmap.GetSize()};
}

/// The smallest rectangle around all pixels of rWithin that Wanted says yes to; nothing if there is none.
template <typename Predicate>
std::optional<CRect> FindPixels(const CBitmap& rBitmap, const CRect& rWithin, Predicate Wanted) {
    std::optional<CRect> Found;
    for (int y = rWithin.top; y < rWithin.bottom; ++y) {
        for (int x = rWithin.left; x < rWithin.right; ++x) {
            if (!Wanted(rBitmap.GetPixel(x, y))) {
                continue;
            }
            if (!Found) {
                Found = CRect(x, y, x + 1, y + 1);
            }
            Found->left = std::min(Found->left, x);
            Found->right = std::max(Found->right, x + 1);
            Found->bottom = y + 1;
        }
    }
    return Found;
}

/// Around all pixels of exactly this colour.
inline std::optional<CRect> FindColor(const CBitmap& rBitmap, const CRect& rWithin, COLORREF Color) {
    return FindPixels(rBitmap, rWithin, [Color](COLORREF Pixel) { return Pixel == Color; });
}

/// Around all that isn't of the background's colour.
inline std::optional<CRect> FindInk(const CBitmap& rBitmap, const CRect& rWithin, COLORREF Background) {
    return FindPixels(rBitmap, rWithin, [Background](COLORREF Pixel) { return Pixel != Background; });
}

inline std::optional<CRect> FindInk(const CBitmap& rBitmap) {
    return FindInk(rBitmap, GetWhole(rBitmap), RGB(255, 255, 255));
}

inline int CountPixels(const CBitmap& rBitmap, const CRect& rWithin, COLORREF Color) {
    int nCount = 0;
    for (int y = rWithin.top; y < rWithin.bottom; ++y) {
        for (int x = rWithin.left; x < rWithin.right; ++x) {
            nCount += rBitmap.GetPixel(x, y) == Color ? 1 : 0;
        }
    }
    return nCount;
}

inline int CountPixels(const CBitmap& rBitmap, COLORREF Color) {
    return CountPixels(rBitmap, GetWhole(rBitmap), Color);
}

/// Around all pixels in which two pictures of one size differ.
inline std::optional<CRect> FindDifference(const CBitmap& rFirst, const CBitmap& rSecond) {
    std::optional<CRect> Found;
    for (int y = 0; y < rFirst.GetSize().cy; ++y) {
        for (int x = 0; x < rFirst.GetSize().cx; ++x) {
            if (rFirst.GetPixel(x, y) != rSecond.GetPixel(x, y)) {
                if (!Found) {
                    Found = CRect(x, y, x + 1, y + 1);
                }
                Found->left = std::min(Found->left, x);
                Found->right = std::max(Found->right, x + 1);
                Found->bottom = y + 1;
            }
        }
    }
    return Found;
}

/// The edges of curves are smooth, so a pixel there may be a shade off.
inline bool IsAlmost(COLORREF Color, COLORREF Wanted, int nTolerance = 16) {
    return std::abs(GetRValue(Color) - GetRValue(Wanted)) < nTolerance &&
           std::abs(GetGValue(Color) - GetGValue(Wanted)) < nTolerance &&
           std::abs(GetBValue(Color) - GetBValue(Wanted)) < nTolerance;
}
