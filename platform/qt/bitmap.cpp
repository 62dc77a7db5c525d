#include "platform/window/bitmap.h"

#include <QBuffer>
#include <QHash>
#include <QImage>
#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>

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

void CBitmap::Impl::MakePixels() const {
    if (!std::exchange(m_bWhite, false)) {
        return;
    }
    const auto Scaled = [this](int nPixels) { return static_cast<int>(std::ceil(nPixels * m_Scale)); };
    m_Image = QImage(Scaled(m_Size.cx), Scaled(m_Size.cy), QImage::Format_RGB32);
    m_Image.setDevicePixelRatio(m_Scale);
    m_Image.fill(Qt::white);
}

void CBitmap::Create(CSize Size, double Scale) {
    m_pImpl->Set(Size, Scale);
}

CSize CBitmap::GetSize() const {
    return m_pImpl->GetSize();
}

double CBitmap::GetScale() const {
    return m_pImpl->GetScale();
}

COLORREF CBitmap::GetPixel(int X, int Y) const {
    if (X < 0 || Y < 0 || X >= GetSize().cx || Y >= GetSize().cy) {
        return RGB(0, 0, 0);
    }
    const double Scale = GetScale();
    const QRgb Color =
        std::as_const(*m_pImpl).GetImage().pixel(static_cast<int>(X * Scale), static_cast<int>(Y * Scale));
    return RGB(static_cast<unsigned>(qRed(Color)), static_cast<unsigned>(qGreen(Color)),
               static_cast<unsigned>(qBlue(Color)));
}

bool CBitmap::operator==(const CBitmap& rOther) const {
    return GetScale() == rOther.GetScale() && GetSize() == rOther.GetSize() &&
           ((m_pImpl->IsWhite() && rOther.m_pImpl->IsWhite()) ||
            std::as_const(*m_pImpl).GetImage() == std::as_const(*rOther.m_pImpl).GetImage());
}

bool CBitmap::SavePng(const std::string& rPath) const {
    return m_pImpl->GetImage().save(QString::fromStdString(rPath), "PNG");
}

namespace {

/// The same picture with a palette, colours rounded to so many bits a channel; nothing if these are too many.
std::optional<QImage> WithPalette(const QImage& rImage, unsigned nBits) {
    constexpr qsizetype LARGEST = 256;
    const QRgb Kept = (0xFFU << (8U - nBits)) & 0xFFU;
    const QRgb Mask = 0xFF000000U | Kept << 16U | Kept << 8U | Kept;
    QImage Result(rImage.size(), QImage::Format_Indexed8);
    QList<QRgb> Colours;
    QHash<QRgb, unsigned char> Places;
    for (int y = 0; y < rImage.height(); ++y) {
        const auto* const pFrom = reinterpret_cast<const QRgb*>(rImage.constScanLine(y));
        unsigned char* const pTo = Result.scanLine(y);
        for (int x = 0; x < rImage.width(); ++x) {
            auto Place = Places.constFind(pFrom[x] & Mask);
            if (Place == Places.constEnd()) {
                if (Colours.size() == LARGEST) {
                    return std::nullopt;
                }
                Place = Places.insert(pFrom[x] & Mask, static_cast<unsigned char>(Colours.size()));
                Colours.push_back(pFrom[x]);  // the first of its like stands for all
            }
            pTo[x] = *Place;
        }
    }
    Result.setColorTable(Colours);
    return Result;
}

}  // namespace

std::vector<unsigned char> CBitmap::ToPng() const {
    const QImage Full = m_pImpl->GetImage().convertToFormat(QImage::Format_RGB32);
    std::optional<QImage> Small;
    for (unsigned nBits = 8; !Small && nBits >= 3; --nBits) {
        Small = WithPalette(Full, nBits);
    }
    QByteArray Bytes;
    QBuffer Buffer(&Bytes);
    if (!Buffer.open(QIODevice::WriteOnly) || !Small.value_or(Full).save(&Buffer, "PNG")) {
        return {};
    }
    return {Bytes.begin(), Bytes.end()};
}

bool CBitmap::LoadPng(const std::string& rPath) {
    QImage Image;
    if (!Image.load(QString::fromStdString(rPath), "PNG")) {
        return false;
    }
    m_pImpl->Set(Image.convertToFormat(QImage::Format_RGB32));
    return true;
}
