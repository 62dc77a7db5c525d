#pragma once
#include "platform/window/bitmap.h"
#include "platform/window/dc.h"

/// Small pictures of one size, cut from a strip.
class CImageList {
public:
    /// Cuts rStrip into pictures nWidth wide and as high as the strip; pixels of the colour Mask are
    /// transparent. False, and the list unchanged, if the strip is narrower than one picture.
    bool Create(const CBitmap& rStrip, int nWidth, COLORREF Mask);
    int GetImageCount() const { return m_nCount; }
    CSize GetImageSize() const { return m_Size; }
    /// Draws a picture with its top left at Point; nothing for an index that there isn't.
    void Draw(CDC& rDC, int Index, CPoint Point) const;
    /// One picture alone, on the ground given; empty for an index that there isn't.
    CBitmap GetImage(int Index, COLORREF Ground) const;

private:
    CBitmap m_Strip;
    CSize m_Size;
    int m_nCount = 0;
    COLORREF m_Mask = 0;
};
