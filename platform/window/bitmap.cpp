#include "platform/window/bitmap.h"

#include <algorithm>

#include "platform/qt/bitmapimpl.h"

CBitmap::CBitmap() : m_pImpl(std::make_unique<Impl>()) {}

CBitmap::CBitmap(CSize Size) : CBitmap() {
    Create(Size);
}

CBitmap::~CBitmap() = default;

CBitmap::CBitmap(const CBitmap& rOther) : m_pImpl(std::make_unique<Impl>(*rOther.m_pImpl)) {}

CBitmap& CBitmap::operator=(const CBitmap& rOther) {
    m_pImpl->m_Image = rOther.m_pImpl->m_Image;
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

void CBitmap::Create(CSize Size) {
    const QSize Wanted(std::max(Size.cx, 0), std::max(Size.cy, 0));
    if (Wanted.isEmpty()) {
        m_pImpl->m_Image = QImage();
        return;
    }
    m_pImpl->m_Image = QImage(Wanted, QImage::Format_RGB32);
    m_pImpl->m_Image.fill(Qt::white);
}

CSize CBitmap::GetSize() const {
    return {m_pImpl->m_Image.width(), m_pImpl->m_Image.height()};
}

COLORREF CBitmap::GetPixel(int X, int Y) const {
    if (!m_pImpl->m_Image.valid(X, Y)) {
        return RGB(0, 0, 0);
    }
    const QRgb Color = m_pImpl->m_Image.pixel(X, Y);
    return RGB(static_cast<unsigned>(qRed(Color)), static_cast<unsigned>(qGreen(Color)),
               static_cast<unsigned>(qBlue(Color)));
}

bool CBitmap::operator==(const CBitmap& rOther) const {
    return m_pImpl->m_Image == rOther.m_pImpl->m_Image;
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
    return true;
}
