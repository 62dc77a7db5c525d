#pragma once
#include "platform/paper/paper.h"

/// Paper that becomes an SVG element, for pages of HTML: no scripts, no references to anything outside, and
/// for the same drawing the same text.
class CSvgPaper : public IFPaper {
public:
    /// Sizes in mm. The description is for people who don't see it.
    CSvgPaper(double Width, double Height, const std::string& rDescription);

    void DrawLine(const CPaperPoint& rFrom, const CPaperPoint& rTo, const CPaperPen& rPen) override;
    void DrawPolyline(const std::vector<CPaperPoint>& rPoints, const CPaperPen& rPen) override;
    void DrawPolygon(const std::vector<CPaperPoint>& rPoints, const CPaperStyle& rStyle) override;
    void DrawEllipse(const CPaperPoint& rCentre, double HalfWidth, double HalfHeight, double AngleDeg,
                     const CPaperStyle& rStyle) override;
    void DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                  PaperAlign Align) override;

    /// The whole element.
    std::string GetSvg() const { return m_Svg + "</svg>\n"; }

private:
    std::string m_Svg;
};
