#include "platform/paper/pdfpaper.h"

#include <QBuffer>
#include <QFont>
#include <QFontMetricsF>
#include <QImage>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QPolygonF>
#include <array>
#include <cmath>
#include <cstdio>

namespace {

/// Device units in a millimetre: sizes of letters are whole device units.
constexpr int UNITS = 100;
constexpr int RESOLUTION = 2540;  ///< the same in dots per inch

QPointF ToPoint(const CPaperPoint& rPoint) {
    return {rPoint.m_X * UNITS, rPoint.m_Y * UNITS};
}

QPolygonF ToPolygon(const std::vector<CPaperPoint>& rPoints) {
    QPolygonF Polygon;
    for (const CPaperPoint& rPoint : rPoints) {
        Polygon << ToPoint(rPoint);
    }
    return Polygon;
}

QColor ToColor(const CPaperColor& rColor) {
    return {rColor.m_Red, rColor.m_Green, rColor.m_Blue};
}

QPen ToPen(const CPaperPen& rPen) {
    QPen Pen(ToColor(rPen.m_Color), rPen.m_Width * UNITS, Qt::SolidLine, Qt::FlatCap, Qt::RoundJoin);
    // Dashes count in widths of the pen.
    if (rPen.m_Dash == CPaperPen::Dash::eDashed) {
        Pen.setDashPattern({1.8 / rPen.m_Width, 1.2 / rPen.m_Width});
    } else if (rPen.m_Dash == CPaperPen::Dash::eDotted) {
        Pen.setDashPattern({0.3 / rPen.m_Width, 0.8 / rPen.m_Width});
    }
    return Pen;
}

QFont ToFont(const CPaperFont& rFont) {
    QFont Font(QStringLiteral("Arial"));
    Font.setPixelSize(static_cast<int>(std::lround(rFont.m_Size * UNITS)));
    Font.setBold(rFont.m_bBold);
    return Font;
}

class CPdfPaper : public IFPdfPaper {
public:
    CPdfPaper(const std::string& rTitle, std::chrono::sys_seconds Date) : m_Date(Date), m_Writer(&m_Buffer) {
        m_Buffer.open(QIODevice::WriteOnly);
        m_Writer.setResolution(RESOLUTION);
        m_Writer.setPageSize(QPageSize(QPageSize::A4));
        m_Writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        m_Writer.setTitle(QString::fromStdString(rTitle));
        m_bGood = m_Painter.begin(&m_Writer);
        m_Painter.setRenderHint(QPainter::LosslessImageRendering);
    }

    double GetWidth() const override {
        return m_Writer.pageLayout().fullRect(QPageLayout::Millimeter).width();
    }
    double GetHeight() const override {
        return m_Writer.pageLayout().fullRect(QPageLayout::Millimeter).height();
    }

    void DrawLine(const CPaperPoint& rFrom, const CPaperPoint& rTo, const CPaperPen& rPen) override {
        m_Painter.setPen(ToPen(rPen));
        m_Painter.drawLine(ToPoint(rFrom), ToPoint(rTo));
    }
    void DrawPolyline(const std::vector<CPaperPoint>& rPoints, const CPaperPen& rPen) override {
        m_Painter.setPen(ToPen(rPen));
        m_Painter.drawPolyline(ToPolygon(rPoints));
    }
    void DrawPolygon(const std::vector<CPaperPoint>& rPoints, const CPaperStyle& rStyle) override {
        Use(rStyle);
        m_Painter.drawPolygon(ToPolygon(rPoints));
    }
    void DrawEllipse(const CPaperPoint& rCentre, double HalfWidth, double HalfHeight, double AngleDeg,
                     const CPaperStyle& rStyle) override {
        Use(rStyle);
        m_Painter.save();
        m_Painter.translate(ToPoint(rCentre));
        m_Painter.rotate(-AngleDeg);  // positive angles of the painter turn clockwise
        m_Painter.drawEllipse(QPointF(0, 0), HalfWidth * UNITS, HalfHeight * UNITS);
        m_Painter.restore();
    }
    void DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                  PaperAlign Align) override {
        const double Width = GetTextWidth(rText, rFont);
        const double Left = Align == PaperAlign::eLeft     ? 0.0
                            : Align == PaperAlign::eCentre ? Width / 2.0
                                                           : Width;
        m_Painter.setPen(ToColor(rFont.m_Color));
        m_Painter.setFont(ToFont(rFont));
        m_Painter.drawText(ToPoint({rPoint.m_X - Left, rPoint.m_Y}), QString::fromStdString(rText));
    }
    double GetTextWidth(const std::string& rText, const CPaperFont& rFont) const override {
        return QFontMetricsF(ToFont(rFont), &m_Writer).horizontalAdvance(QString::fromStdString(rText)) /
               UNITS;
    }
    bool DrawImage(const CPaperPoint& rTopLeft, double Width, double Height,
                   const std::vector<std::uint8_t>& rPicture) override {
        const QImage Image = QImage::fromData(rPicture.data(), static_cast<int>(rPicture.size()));
        if (Image.isNull()) {
            return false;
        }
        m_Painter.drawImage(QRectF(ToPoint(rTopLeft), QSizeF(Width * UNITS, Height * UNITS)), Image);
        return true;
    }
    void BeginPage() override { m_bGood = m_Writer.newPage() && m_bGood; }

    std::vector<std::uint8_t> Finish() override {
        m_bGood = m_Painter.end() && m_bGood;
        m_Buffer.close();
        QByteArray Bytes = m_Buffer.data();
        SetDate(Bytes);
        return m_bGood ? std::vector<std::uint8_t>(Bytes.begin(), Bytes.end()) : std::vector<std::uint8_t>();
    }

private:
    void Use(const CPaperStyle& rStyle) {
        m_Painter.setPen(rStyle.m_Pen ? ToPen(*rStyle.m_Pen) : QPen(Qt::NoPen));
        m_Painter.setBrush(rStyle.m_Fill ? QBrush(ToColor(*rStyle.m_Fill)) : QBrush(Qt::NoBrush));
    }
    /// The writer takes the date from the clock and can't be told another one; one of the same length goes in
    /// its place, so that nothing in the file moves.
    void SetDate(QByteArray& rBytes) const {
        const QByteArray Key = "/CreationDate (D:";
        const auto Begin = rBytes.indexOf(Key);
        const auto End = Begin < 0 ? Begin : rBytes.indexOf(')', Begin);
        if (Begin < 0 || End < 0) {
            return;
        }
        const auto Day = std::chrono::floor<std::chrono::days>(m_Date);
        const std::chrono::year_month_day Date(Day);
        const std::chrono::hh_mm_ss Time(m_Date - Day);
        std::array<char, 64> Text{};
        std::snprintf(Text.data(), Text.size(), "%04d%02u%02u%02d%02d%02dZ00'00'",
                      static_cast<int>(Date.year()), static_cast<unsigned>(Date.month()),
                      static_cast<unsigned>(Date.day()), static_cast<int>(Time.hours().count()),
                      static_cast<int>(Time.minutes().count()), static_cast<int>(Time.seconds().count()));
        const auto Length = End - Begin - Key.size();
        QByteArray New(Text.data());
        // The writer's own is as long as its time zone, in UTC a Z.
        New = New.left(Length).leftJustified(Length, ' ');
        rBytes.replace(Begin + Key.size(), Length, New);
    }

    std::chrono::sys_seconds m_Date;
    QBuffer m_Buffer;
    mutable QPdfWriter m_Writer;
    QPainter m_Painter;
    bool m_bGood = false;
};

}  // namespace

std::unique_ptr<IFPdfPaper> MakePdfPaper(const std::string& rTitle, std::chrono::sys_seconds Date) {
    return std::make_unique<CPdfPaper>(rTitle, Date);
}
