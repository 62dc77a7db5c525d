#pragma once
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A place in mm; y counts downwards.
struct CPaperPoint {
    double m_X = 0.0;
    double m_Y = 0.0;
};

struct CPaperColor {
    std::uint8_t m_Red = 0;
    std::uint8_t m_Green = 0;
    std::uint8_t m_Blue = 0;

    bool operator==(const CPaperColor&) const = default;
};

struct CPaperPen {
    enum class Dash : std::uint8_t { eSolid, eDashed, eDotted };

    CPaperColor m_Color;
    double m_Width = 0.25;  ///< mm
    Dash m_Dash = Dash::eSolid;
};

/// The outline and the inside of a shape; either may be missing.
struct CPaperStyle {
    std::optional<CPaperPen> m_Pen;
    std::optional<CPaperColor> m_Fill;
};

struct CPaperFont {
    double m_Size = 3.2;  ///< mm from line to line, without what lies between lines
    bool m_bBold = false;
    CPaperColor m_Color;
};

enum class PaperAlign : std::uint8_t { eLeft, eCentre, eRight };

/// Something to draw on in vectors that is printed or shown as it stands: it has no pixels and is never
/// painted over. Places are counted from the top left corner.
class IFPaper {
public:
    virtual ~IFPaper() = default;

    virtual void DrawLine(const CPaperPoint& rFrom, const CPaperPoint& rTo, const CPaperPen& rPen) = 0;
    virtual void DrawPolyline(const std::vector<CPaperPoint>& rPoints, const CPaperPen& rPen) = 0;
    virtual void DrawPolygon(const std::vector<CPaperPoint>& rPoints, const CPaperStyle& rStyle) = 0;
    /// An ellipse with these half axes; the first one is turned counter-clockwise from the right by the
    /// angle.
    virtual void DrawEllipse(const CPaperPoint& rCentre, double HalfWidth, double HalfHeight, double AngleDeg,
                             const CPaperStyle& rStyle) = 0;
    /// One line of UTF-8; the point is where its baseline begins, has its middle, or ends.
    virtual void DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                          PaperAlign Align) = 0;
};

/// Paper in pages.
class IFPagedPaper : public IFPaper {
public:
    virtual double GetWidth() const = 0;  ///< mm
    virtual double GetHeight() const = 0;
    virtual double GetTextWidth(const std::string& rText, const CPaperFont& rFont) const = 0;
    /// A picture of a raster format (PNG). False, and nothing drawn, if it can't be read.
    virtual bool DrawImage(const CPaperPoint& rTopLeft, double Width, double Height,
                           const std::vector<std::uint8_t>& rPicture) = 0;
    /// What is drawn from now on stands on a further page; the first one is there from the beginning.
    virtual void BeginPage() = 0;
};
