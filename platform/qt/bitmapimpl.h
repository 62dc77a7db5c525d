#pragma once
// The toolkit's side of CBitmap.
#include <QImage>

#include "platform/window/bitmap.h"

/// The pixels come into being when somebody draws or looks: most windows of a run that nobody watches are
/// never painted.
struct CBitmap::Impl {
public:
    /// A white picture of that size; an empty one if either is 0.
    void Set(CSize Size, double Scale) {
        m_bWhite = Size.cx > 0 && Size.cy > 0;
        m_Size = m_bWhite ? Size : CSize();
        m_Scale = m_bWhite ? Scale : 1.0;
        m_Image = QImage();
    }
    void Set(const QImage& rImage) {
        m_bWhite = false;
        m_Size = CSize(rImage.width(), rImage.height());
        m_Scale = 1.0;
        m_Image = rImage;
        m_Image.setDevicePixelRatio(m_Scale);
    }

    /// Without the scale, which may not divide the image's.
    CSize GetSize() const { return m_Size; }
    double GetScale() const { return m_Scale; }
    bool IsEmpty() const { return m_Size.cx == 0; }
    /// Nothing was drawn since it became white.
    bool IsWhite() const { return m_bWhite; }
    /// Its device pixel ratio is the bitmap's scale.
    QImage& GetImage() {
        MakePixels();
        return m_Image;
    }
    const QImage& GetImage() const {
        MakePixels();
        return m_Image;
    }

private:
    void MakePixels() const;

    CSize m_Size;
    double m_Scale = 1.0;
    mutable bool m_bWhite = false;  ///< and has no pixels yet
    mutable QImage m_Image;
};
