#pragma once
#include <vector>

#include "platform/paper/paper.h"

/// Another paper from a place on.
class CShiftedPaper : public IFPaper {
public:
    CShiftedPaper(IFPaper& rPaper, const CPaperPoint& rOrigin) : m_rPaper(rPaper), m_Origin(rOrigin) {}

    void DrawLine(const CPaperPoint& rFrom, const CPaperPoint& rTo, const CPaperPen& rPen) override {
        m_rPaper.DrawLine(Shift(rFrom), Shift(rTo), rPen);
    }
    void DrawPolyline(const std::vector<CPaperPoint>& rPoints, const CPaperPen& rPen) override {
        m_rPaper.DrawPolyline(Shift(rPoints), rPen);
    }
    void DrawPolygon(const std::vector<CPaperPoint>& rPoints, const CPaperStyle& rStyle) override {
        m_rPaper.DrawPolygon(Shift(rPoints), rStyle);
    }
    void DrawEllipse(const CPaperPoint& rCentre, double HalfWidth, double HalfHeight, double AngleDeg,
                     const CPaperStyle& rStyle) override {
        m_rPaper.DrawEllipse(Shift(rCentre), HalfWidth, HalfHeight, AngleDeg, rStyle);
    }
    void DrawText(const CPaperPoint& rPoint, const std::string& rText, const CPaperFont& rFont,
                  PaperAlign Align) override {
        m_rPaper.DrawText(Shift(rPoint), rText, rFont, Align);
    }

private:
    CPaperPoint Shift(const CPaperPoint& rPoint) const {
        return {rPoint.m_X + m_Origin.m_X, rPoint.m_Y + m_Origin.m_Y};
    }
    std::vector<CPaperPoint> Shift(std::vector<CPaperPoint> Points) const {
        for (CPaperPoint& rPoint : Points) {
            rPoint = Shift(rPoint);
        }
        return Points;
    }

    IFPaper& m_rPaper;
    CPaperPoint m_Origin;
};
