#include "platform/paper/svgpaper.h"

#include <array>
#include <cstdio>

#include "platform/paper/markup.h"

namespace {

/// Hundredths of a millimetre, finer than any printer.
std::string Number(double Value) {
    std::array<char, 40> Text{};
    std::snprintf(Text.data(), Text.size(), "%.2f", Value);
    return std::string(Text.data()) == "-0.00" ? "0.00" : Text.data();
}

std::string Attribute(const char* pName, const std::string& rValue) {
    return std::string(" ") + pName + "=\"" + rValue + "\"";
}

std::string Color(const CPaperColor& rColor) {
    std::array<char, 8> Text{};
    std::snprintf(Text.data(), Text.size(), "#%02x%02x%02x", rColor.m_Red, rColor.m_Green, rColor.m_Blue);
    return Text.data();
}

std::string Stroke(const CPaperPen& rPen) {
    std::string Text = Attribute("stroke", Color(rPen.m_Color)) +
                       Attribute("stroke-width", Number(rPen.m_Width)) +
                       Attribute("stroke-linejoin", "round");
    if (rPen.m_Dash == CPaperPen::Dash::eDashed) {
        Text += Attribute("stroke-dasharray", "1.80 1.20");
    } else if (rPen.m_Dash == CPaperPen::Dash::eDotted) {
        Text += Attribute("stroke-dasharray", "0.30 0.80");
    }
    return Text;
}

std::string Style(const CPaperStyle& rStyle) {
    return Attribute("fill", rStyle.m_Fill ? Color(*rStyle.m_Fill) : "none") +
           (rStyle.m_Pen ? Stroke(*rStyle.m_Pen) : "");
}

std::string Points(const std::vector<CPaperPoint>& rPoints) {
    std::string Text;
    for (const CPaperPoint& rPoint : rPoints) {
        Text += (Text.empty() ? "" : " ") + Number(rPoint.m_X) + "," + Number(rPoint.m_Y);
    }
    return Attribute("points", Text);
}

}  // namespace

CSvgPaper::CSvgPaper(double Width, double Height, const std::string& rDescription) {
    m_Svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" role=\"img\"" +
            Attribute("aria-label", EscapeMarkup(rDescription)) + Attribute("width", Number(Width) + "mm") +
            Attribute("height", Number(Height) + "mm") +
            Attribute("viewBox", "0 0 " + Number(Width) + " " + Number(Height)) +
            " font-family=\"Arial, 'Liberation Sans', Helvetica, sans-serif\">\n";
}

void CSvgPaper::DrawLine(const CPaperPoint& rFrom, const CPaperPoint& rTo, const CPaperPen& rPen) {
    m_Svg += "<line" + Attribute("x1", Number(rFrom.m_X)) + Attribute("y1", Number(rFrom.m_Y)) +
             Attribute("x2", Number(rTo.m_X)) + Attribute("y2", Number(rTo.m_Y)) + Stroke(rPen) + "/>\n";
}

void CSvgPaper::DrawPolyline(const std::vector<CPaperPoint>& rPoints, const CPaperPen& rPen) {
    m_Svg += "<polyline" + Points(rPoints) + Attribute("fill", "none") + Stroke(rPen) + "/>\n";
}

void CSvgPaper::DrawPolygon(const std::vector<CPaperPoint>& rPoints, const CPaperStyle& rStyle) {
    m_Svg += "<polygon" + Points(rPoints) + Style(rStyle) + "/>\n";
}

void CSvgPaper::DrawEllipse(const CPaperPoint& rCentre, double HalfWidth, double HalfHeight, double AngleDeg,
                            const CPaperStyle& rStyle) {
    m_Svg += "<ellipse" + Attribute("cx", Number(rCentre.m_X)) + Attribute("cy", Number(rCentre.m_Y)) +
             Attribute("rx", Number(HalfWidth)) + Attribute("ry", Number(HalfHeight));
    if (AngleDeg != 0.0) {
        // Positive angles of SVG turn clockwise.
        m_Svg += Attribute("transform", "rotate(" + Number(-AngleDeg) + " " + Number(rCentre.m_X) + " " +
                                            Number(rCentre.m_Y) + ")");
    }
    m_Svg += Style(rStyle) + "/>\n";
}

void CSvgPaper::DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                         PaperAlign Align) {
    const char* const pAnchor = Align == PaperAlign::eLeft     ? "start"
                                : Align == PaperAlign::eCentre ? "middle"
                                                               : "end";
    m_Svg += "<text" + Attribute("x", Number(rPoint.m_X)) + Attribute("y", Number(rPoint.m_Y)) +
             Attribute("font-size", Number(rFont.m_Size)) + Attribute("text-anchor", pAnchor) +
             Attribute("fill", Color(rFont.m_Color)) +
             (rFont.m_bBold ? Attribute("font-weight", "bold") : "") + ">" + EscapeMarkup(rText) +
             "</text>\n";
}
