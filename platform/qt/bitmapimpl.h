#pragma once
// The toolkit's side of CBitmap.
#include <QImage>

#include "platform/window/bitmap.h"

struct CBitmap::Impl {
    QImage m_Image;  ///< its device pixel ratio is the bitmap's scale
    CSize m_Size;    ///< without the scale, which may not divide the image's
};
