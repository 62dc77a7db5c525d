// What a device context makes of its own operations; the others are the toolkit's.
#include "platform/window/dc.h"

#include "platform/window/display.h"
#include "platform/window/syscolor.h"

void CDC::FrameRect(const CRect& rRect, COLORREF Color) {
    Draw3dRect(rRect, Color, Color);
}

void CDC::Draw3dRect(const CRect& rRect, COLORREF TopLeft, COLORREF BottomRight) {
    if (rRect.IsRectEmpty()) {
        return;
    }
    FillSolidRect(CRect(rRect.left, rRect.top, rRect.right, rRect.top + 1), TopLeft);
    FillSolidRect(CRect(rRect.left, rRect.top, rRect.left + 1, rRect.bottom), TopLeft);
    FillSolidRect(CRect(rRect.right - 1, rRect.top, rRect.right, rRect.bottom), BottomRight);
    FillSolidRect(CRect(rRect.left, rRect.bottom - 1, rRect.right, rRect.bottom), BottomRight);
}

void CDC::DrawEdge(const CRect& rRect, Edge Kind) {
    const COLORREF Light = GetSysColor(SysColor::eHighlight);
    const COLORREF Face = GetSysColor(SysColor::eFace);
    const COLORREF Shadow = GetSysColor(SysColor::eShadow);
    const COLORREF Dark = GetSysColor(SysColor::eDarkShadow);
    CRect Inner = rRect;
    Inner.DeflateRect(1, 1);
    switch (Kind) {
        case eRaised:
            Draw3dRect(rRect, Light, Dark);
            Draw3dRect(Inner, Face, Shadow);
            break;
        case eSunken:
            Draw3dRect(rRect, Shadow, Light);
            Draw3dRect(Inner, Dark, Face);
            break;
        case eEtched:
            Draw3dRect(rRect, Shadow, Light);
            Draw3dRect(Inner, Light, Shadow);
            break;
    }
}

void CDC::Polyline(std::span<const CPoint> Points) {
    if (Points.empty()) {
        return;
    }
    MoveTo(Points.front());
    for (const CPoint Point : Points.subspan(1)) {
        LineTo(Point);
    }
}

int CDC::GetBitsPerPixel() const {
    return GetDisplayBitsPerPixel();
}

int CDC::GetDotsPerInch() const {
    return 96;
}
