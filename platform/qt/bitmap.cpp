#include "platform/window/bitmap.h"

#include <algorithm>
#include <cmath>

#include "platform/qt/bitmapimpl.h"

CBitmap::CBitmap() : m_pImpl(std::make_unique<Impl>()) {}

CBitmap::CBitmap(CSize Size) : CBitmap() {
    Create(Size);
}

CBitmap::~CBitmap() = default;

CBitmap::CBitmap(const CBitmap& rOther) : m_pImpl(std::make_unique<Impl>(*rOther.m_pImpl)) {}

CBitmap& CBitmap::operator=(const CBitmap& rOther) {
    *m_pImpl = *rOther.m_pImpl;
    return *this;
}

// What was moved from is an empty bitmap, and still usable.
CBitmap::CBitmap(CBitmap&& rOther) noexcept : CBitmap() {
    std::swap(m_pImpl, rOther.m_pImpl);
}

CBitmap& CBitmap::operator=(CBitmap&& rOther) noexcept {
    std::swap(m_pImpl, rOther.m_pImpl);
    return *this;
}

void CBitmap::Create(CSize Size, double Scale) {
    m_pImpl->m_Size = CSize(std::max(Size.cx, 0), std::max(Size.cy, 0));
    if (m_pImpl->m_Size.cx == 0 || m_pImpl->m_Size.cy == 0) {
        m_pImpl->m_Size = CSize();
        m_pImpl->m_Image = QImage();
        return;
    }
    const auto Scaled = [Scale](int nPixels) { return static_cast<int>(std::ceil(nPixels * Scale)); };
    m_pImpl->m_Image = QImage(Scaled(m_pImpl->m_Size.cx), Scaled(m_pImpl->m_Size.cy), QImage::Format_RGB32);
    m_pImpl->m_Image.setDevicePixelRatio(Scale);
    m_pImpl->m_Image.fill(Qt::white);
}

CSize CBitmap::GetSize() const {
    return m_pImpl->m_Size;
}

double CBitmap::GetScale() const {
    return m_pImpl->m_Image.devicePixelRatio();
}

COLORREF CBitmap::GetPixel(int X, int Y) const {
    if (X < 0 || Y < 0 || X >= m_pImpl->m_Size.cx || Y >= m_pImpl->m_Size.cy) {
        return RGB(0, 0, 0);
    }
    const double Scale = GetScale();
    const QRgb Color = m_pImpl->m_Image.pixel(static_cast<int>(X * Scale), static_cast<int>(Y * Scale));
    return RGB(static_cast<unsigned>(qRed(Color)), static_cast<unsigned>(qGreen(Color)),
               static_cast<unsigned>(qBlue(Color)));
}

bool CBitmap::operator==(const CBitmap& rOther) const {
    return GetScale() == rOther.GetScale() && m_pImpl->m_Image == rOther.m_pImpl->m_Image;
}

bool CBitmap::SavePng(const std::string& rPath) const {
    return m_pImpl->m_Image.save(QString::fromStdString(rPath), "PNG");
}

bool CBitmap::LoadPng(const std::string& rPath) {
    QImage Image;
    if (!Image.load(QString::fromStdString(rPath), "PNG")) {
        return false;
    }
    m_pImpl->m_Image = Image.convertToFormat(QImage::Format_RGB32);
    m_pImpl->m_Image.setDevicePixelRatio(1.0);
    m_pImpl->m_Size = CSize(Image.width(), Image.height());
    return true;
}
