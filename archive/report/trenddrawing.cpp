#include "archive/report/trenddrawing.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "archive/report/reportcolors.h"
#include "archive/report/reporttext.h"

using namespace ReportColors;

namespace {

constexpr double WIDTH = 176.0;  // mm
constexpr double HEIGHT = 58.0;
constexpr double LEFT = 14.0;
constexpr double RIGHT = WIDTH - 4.0;
constexpr double TOP = 9.0;
constexpr double BOTTOM = HEIGHT - 8.0;
constexpr double LETTER = 2.9;
constexpr double MARK = 1.1;
/// What is smaller isn't told apart from nothing.
constexpr double SMALLEST = 0.01;

double GetLogarithm(double Value) {
    return std::log10(std::isfinite(Value) ? std::max(Value, SMALLEST) : SMALLEST);
}

class CChart {
public:
    CChart(const CTrendDrawing& rDrawing, IFPaper& rPaper) : m_rDrawing(rDrawing), m_rPaper(rPaper) {
        double Min = 1e9;
        double Max = -1e9;
        for (const CReportTrendPoint& rPoint : rDrawing.m_Points) {
            for (const double Value : {rPoint.m_Before, rPoint.m_After}) {
                Min = std::min(Min, GetLogarithm(Value));
                Max = std::max(Max, GetLogarithm(Value));
            }
        }
        m_Min = static_cast<int>(std::floor(Min));
        m_Max = std::max(static_cast<int>(std::ceil(Max)), m_Min + 1);
    }

    void Paint() {
        PaintAxes();
        std::vector<CPaperPoint> Before;
        std::vector<CPaperPoint> After;
        for (std::size_t i = 0; i < m_rDrawing.m_Points.size(); ++i) {
            Before.push_back({GetX(i), GetY(m_rDrawing.m_Points[i].m_Before)});
            After.push_back({GetX(i), GetY(m_rDrawing.m_Points[i].m_After)});
        }
        m_rPaper.DrawPolyline(Before, {PALE, 0.3, CPaperPen::Dash::eDashed});
        m_rPaper.DrawPolyline(After, {BLUE, 0.35});
        for (std::size_t i = 0; i < Before.size(); ++i) {
            PaintBefore(Before[i]);
            if (m_rDrawing.m_Points[i].m_bWithin) {
                PaintWithin(After[i]);
            } else {
                PaintOver(After[i]);
            }
        }
        PaintLegend();
    }

private:
    double GetX(std::size_t i) const {
        const auto n = static_cast<double>(m_rDrawing.m_Points.size());
        return LEFT + (RIGHT - LEFT) * (static_cast<double>(i) + 0.5) / n;
    }
    double GetY(double Value) const {
        return BOTTOM - (BOTTOM - TOP) * (GetLogarithm(Value) - m_Min) / (m_Max - m_Min);
    }
    void PaintAxes() {
        for (int Decade = m_Min; Decade <= m_Max; ++Decade) {
            const double Y = GetY(std::pow(10.0, Decade));
            m_rPaper.DrawLine({LEFT, Y}, {RIGHT, Y}, {GRID, Decade == m_Min ? 0.3 : 0.15});
            m_rPaper.DrawText({LEFT - 1.5, Y + LETTER * 0.35}, ReportText::Digits(std::pow(10.0, Decade), 1),
                              {LETTER, false, PALE}, PaperAlign::eRight);
        }
        m_rPaper.DrawText({LEFT - 1.5, TOP - 4.0}, m_rDrawing.m_Unit, {LETTER, false, PALE},
                          PaperAlign::eRight);
        m_rPaper.DrawText({GetX(0) - 3.0, HEIGHT - 2.5}, m_rDrawing.m_FirstDate, {LETTER, false, PALE},
                          PaperAlign::eLeft);
        if (m_rDrawing.m_Points.size() > 1) {
            m_rPaper.DrawText({RIGHT, HEIGHT - 2.5}, m_rDrawing.m_LastDate, {LETTER, false, PALE},
                              PaperAlign::eRight);
        }
    }
    void PaintBefore(const CPaperPoint& rPlace) {
        m_rPaper.DrawEllipse(rPlace, MARK, MARK, 0.0, {CPaperPen{INK, 0.3}, WHITE});
    }
    void PaintWithin(const CPaperPoint& rPlace) { PaintSquare(rPlace, {CPaperPen{BLUE, 0.3}, BLUE}); }
    void PaintOver(const CPaperPoint& rPlace) {
        PaintSquare(rPlace, {CPaperPen{RED, 0.4}, WHITE});
        for (const double Side : {-1.0, 1.0}) {
            m_rPaper.DrawLine({rPlace.m_X - MARK, rPlace.m_Y - Side * MARK},
                              {rPlace.m_X + MARK, rPlace.m_Y + Side * MARK}, {RED, 0.4});
        }
    }
    void PaintSquare(const CPaperPoint& rPlace, const CPaperStyle& rStyle) {
        m_rPaper.DrawPolygon({{rPlace.m_X - MARK, rPlace.m_Y - MARK},
                              {rPlace.m_X + MARK, rPlace.m_Y - MARK},
                              {rPlace.m_X + MARK, rPlace.m_Y + MARK},
                              {rPlace.m_X - MARK, rPlace.m_Y + MARK}},
                             rStyle);
    }
    void PaintLegend() {
        constexpr double Y = 2.5;
        constexpr double APART = 50.0;
        double X = LEFT + 10.0;
        PaintBefore({X, Y});
        for (const std::string* const pWord :
             {&m_rDrawing.m_Before, &m_rDrawing.m_Within, &m_rDrawing.m_Over}) {
            m_rPaper.DrawText({X + 3.0, Y + LETTER * 0.35}, *pWord, {LETTER, false, INK}, PaperAlign::eLeft);
            X += APART;
            if (pWord == &m_rDrawing.m_Before) {
                PaintWithin({X, Y});
            } else if (pWord == &m_rDrawing.m_Within) {
                PaintOver({X, Y});
            }
        }
    }

    const CTrendDrawing& m_rDrawing;
    IFPaper& m_rPaper;
    int m_Min = 0;
    int m_Max = 1;
};

}  // namespace

CReportDrawing CTrendDrawing::Make(CTrendDrawing Drawing) {
    CReportDrawing Result;
    Result.m_Width = WIDTH;
    Result.m_Height = HEIGHT;
    Result.m_Description = Drawing.m_Description;
    Result.m_Paint = [Drawing = std::move(Drawing)](IFPaper& rPaper) { CChart(Drawing, rPaper).Paint(); };
    return Result;
}
