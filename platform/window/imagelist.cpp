#include "platform/window/imagelist.h"

bool CImageList::Create(const CBitmap& rStrip, int nWidth, COLORREF Mask) {
    const CSize Size = rStrip.GetSize();
    if (nWidth < 1 || Size.cx < nWidth) {
        return false;
    }
    m_Strip = rStrip;
    m_Size = CSize(nWidth, Size.cy);
    m_nCount = Size.cx / nWidth;
    m_Mask = Mask;
    return true;
}

void CImageList::Draw(CDC& rDC, int Index, CPoint Point) const {
    if (Index >= 0 && Index < m_nCount) {
        rDC.TransparentBlt(CRect(Point, m_Size), m_Strip, CPoint(Index * m_Size.cx, 0), m_Mask);
    }
}

CBitmap CImageList::GetImage(int Index, COLORREF Ground) const {
    if (Index < 0 || Index >= m_nCount) {
        return {};
    }
    CBitmap Image(m_Size);
    CDC DC(Image);
    DC.FillSolidRect(CRect(CPoint(), m_Size), Ground);
    Draw(DC, Index, CPoint());
    return Image;
}
