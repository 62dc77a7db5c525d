#include "archive/report/polardrawing.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

#include "archive/report/reportcolors.h"
#include "archive/report/reporttext.h"

using namespace ReportColors;

namespace {

constexpr double TITLE = 6.0;  // mm, heights
constexpr double RIM = 5.0;
constexpr double LEGEND_LINE = 4.0;
constexpr double LETTER = 2.9;
constexpr double MARK = 1.25;
constexpr int SPOKE = 30;

double GetLength(const CVectorReading& rVector) {
    return std::hypot(rVector.m_X, rVector.m_Y);
}

double GetReachOf(const CPolarDrawing::CStation& rStation) {
    return GetLength(rStation.m_Mean) + (rStation.m_Ellipse ? rStation.m_Ellipse->m_SemiMajor : 0.0);
}

/// Three to five rings at 1, 2 or 5 times a power of ten.
double ChooseStep(double Reach) {
    const double Wanted = std::max(Reach, 1e-6) * 1.06;
    const double Decade = std::pow(10.0, std::floor(std::log10(Wanted / 5.0)));
    for (const double Factor : {1.0, 2.0, 5.0}) {
        if (Factor * Decade * 5.0 >= Wanted * 0.9999) {
            return Factor * Decade;
        }
    }
    return 10.0 * Decade;
}

class CPlot {
public:
    CPlot(const CPolarDrawing& rDrawing, double Step, IFPaper& rPaper)
        : m_rDrawing(rDrawing),
          m_Step(Step),
          m_rPaper(rPaper),
          m_Radius(CPolarDrawing::WIDTH / 2.0 - 2.0 * RIM),
          m_Centre{CPolarDrawing::WIDTH / 2.0, TITLE + RIM + m_Radius} {}

    void Paint() {
        m_rPaper.DrawText({CPolarDrawing::WIDTH / 2.0, 4.0}, m_rDrawing.m_Title, {3.4, true, INK},
                          PaperAlign::eCentre);
        PaintGrid();
        if (m_rDrawing.m_Target > 0.0 && m_rDrawing.m_Target <= m_rDrawing.m_Full) {
            const double Radius = m_rDrawing.m_Target * GetScale();
            m_rPaper.DrawEllipse(m_Centre, Radius, Radius, 0.0,
                                 {CPaperPen{GREEN, 0.5, CPaperPen::Dash::eDashed}, std::nullopt});
        }
        for (const CVectorReading& rReading : m_rDrawing.m_Readings) {
            if (IsInside(rReading)) {
                m_rPaper.DrawEllipse(ToPoint(rReading), 0.3, 0.3, 0.0, {std::nullopt, PALE});
            }
        }
        for (std::size_t i = 1; i < m_rDrawing.m_Stations.size(); ++i) {
            PaintWay(m_rDrawing.m_Stations[i - 1].m_Mean, m_rDrawing.m_Stations[i].m_Mean);
        }
        for (const CPolarDrawing::CStation& rStation : m_rDrawing.m_Stations) {
            PaintEllipse(rStation);
        }
        for (const CPolarDrawing::CStation& rStation : m_rDrawing.m_Stations) {
            if (IsInside(rStation.m_Mean)) {
                PaintMark(ToPoint(rStation.m_Mean), rStation.m_Which);
            }
        }
        PaintLegend();
    }

private:
    double GetScale() const { return m_Radius / m_rDrawing.m_Full; }
    CPaperPoint ToPoint(const CVectorReading& rVector) const {
        return {m_Centre.m_X + rVector.m_X * GetScale(), m_Centre.m_Y - rVector.m_Y * GetScale()};
    }
    CPaperPoint OnCircle(double Degrees, double Distance) const {
        const double a = Degrees * std::numbers::pi / 180.0;
        return {m_Centre.m_X + std::cos(a) * Distance, m_Centre.m_Y - std::sin(a) * Distance};
    }
    bool IsInside(const CVectorReading& rVector) const {
        return GetLength(rVector) <= m_rDrawing.m_Full * 1.0001;
    }

    void PaintGrid() {
        const CPaperPen Thin{GRID, 0.15};
        const int nRings = static_cast<int>(std::lround(m_rDrawing.m_Full / m_Step));
        for (int i = 1; i <= nRings; ++i) {
            const double Radius = m_Radius * i / nRings;
            m_rPaper.DrawEllipse(m_Centre, Radius, Radius, 0.0,
                                 {i == nRings ? CPaperPen{PALE, 0.25} : Thin, std::nullopt});
        }
        for (int Degrees = 0; Degrees < 360; Degrees += SPOKE) {
            m_rPaper.DrawLine(OnCircle(Degrees, Degrees % 90 == 0 ? 0.0 : m_Radius * 0.1),
                              OnCircle(Degrees, m_Radius), Thin);
            const CPaperPoint Place = OnCircle(Degrees, m_Radius + 3.4);
            m_rPaper.DrawText({Place.m_X, Place.m_Y + LETTER * 0.35}, std::to_string(Degrees) + "°",
                              {LETTER * 0.9, false, PALE}, PaperAlign::eCentre);
        }
        constexpr double NUMBERS = 285.0;  // degrees: between two spokes
        for (int i = 1; i <= nRings; ++i) {
            const CPaperPoint Place = OnCircle(NUMBERS, m_Radius * i / nRings);
            m_rPaper.DrawText({Place.m_X, Place.m_Y - 0.5}, ReportText::Digits(m_Step * i, 1),
                              {LETTER * 0.85, false, PALE}, PaperAlign::eCentre);
        }
    }

    /// From one measurement to the next, as far as it lies within the rim.
    void PaintWay(const CVectorReading& rFrom, const CVectorReading& rTo) {
        // Where |from + t (to - from)| is the rim's radius.
        const double X = rTo.m_X - rFrom.m_X;
        const double Y = rTo.m_Y - rFrom.m_Y;
        const double a = X * X + Y * Y;
        const double b = rFrom.m_X * X + rFrom.m_Y * Y;
        const double c =
            rFrom.m_X * rFrom.m_X + rFrom.m_Y * rFrom.m_Y - m_rDrawing.m_Full * m_rDrawing.m_Full;
        const double Root = b * b - a * c;
        if (a <= 0.0 || Root <= 0.0) {
            return;
        }
        const double Begin = std::max(0.0, (-b - std::sqrt(Root)) / a);
        const double End = std::min(1.0, (-b + std::sqrt(Root)) / a);
        if (Begin >= End) {
            return;
        }
        const CPaperPoint From = ToPoint({rFrom.m_X + Begin * X, rFrom.m_Y + Begin * Y});
        const CPaperPoint To = ToPoint({rFrom.m_X + End * X, rFrom.m_Y + End * Y});
        m_rPaper.DrawLine(From, To, {BLUE, 0.35});
        const double Length = std::hypot(To.m_X - From.m_X, To.m_Y - From.m_Y);
        constexpr double HEAD = 2.6;
        if (End < 1.0 || Length < 2.5 * HEAD) {
            return;
        }
        const CPaperPoint Along{(To.m_X - From.m_X) / Length, (To.m_Y - From.m_Y) / Length};
        const CPaperPoint Tip{To.m_X - Along.m_X * MARK * 1.3, To.m_Y - Along.m_Y * MARK * 1.3};
        const auto Corner = [&](double Side) {
            return CPaperPoint{Tip.m_X - Along.m_X * HEAD - Along.m_Y * HEAD * Side,
                               Tip.m_Y - Along.m_Y * HEAD + Along.m_X * HEAD * Side};
        };
        m_rPaper.DrawPolygon({Tip, Corner(0.35), Corner(-0.35)}, {std::nullopt, BLUE});
    }

    void PaintEllipse(const CPolarDrawing::CStation& rStation) {
        if (!rStation.m_Ellipse || !IsInside(rStation.m_Mean)) {
            return;
        }
        const CEllipse& rEllipse = *rStation.m_Ellipse;
        m_rPaper.DrawEllipse(ToPoint({rEllipse.m_X, rEllipse.m_Y}), rEllipse.m_SemiMajor * GetScale(),
                             rEllipse.m_SemiMinor * GetScale(), rEllipse.m_AngleDeg,
                             {CPaperPen{INK, 0.25}, std::nullopt});
    }

    void PaintMark(const CPaperPoint& rPlace, Measurement Which) {
        const CPaperStyle Hollow{CPaperPen{INK, 0.35}, WHITE};
        const CPaperStyle Full{CPaperPen{INK, 0.35}, INK};
        const auto Place = [&rPlace](double X, double Y) {
            return CPaperPoint{rPlace.m_X + X * MARK, rPlace.m_Y + Y * MARK};
        };
        switch (Which) {
            case Measurement::eTest1:
                m_rPaper.DrawPolygon({Place(-1, -1), Place(1, -1), Place(1, 1), Place(-1, 1)}, Hollow);
                break;
            case Measurement::eTest2:
                m_rPaper.DrawPolygon({Place(0, -1.4), Place(1.4, 0), Place(0, 1.4), Place(-1.4, 0)}, Hollow);
                break;
            case Measurement::eFinal:
                m_rPaper.DrawPolygon({Place(0, -1.3), Place(1.2, 0.9), Place(-1.2, 0.9)}, Full);
                break;
            default:
                m_rPaper.DrawEllipse(rPlace, MARK, MARK, 0.0, Hollow);
        }
    }

    void PaintLegend() {
        double Y = m_Centre.m_Y + m_Radius + RIM + LEGEND_LINE;
        constexpr double LEFT = 10.0;
        constexpr double WORDS = 14.5;
        for (const CPolarDrawing::CStation& rStation : m_rDrawing.m_Stations) {
            if (!IsInside(rStation.m_Mean)) {
                continue;
            }
            PaintMark({LEFT, Y - 1.0}, rStation.m_Which);
            m_rPaper.DrawText({WORDS, Y}, rStation.m_Label, {LETTER, false, INK}, PaperAlign::eLeft);
            Y += LEGEND_LINE;
        }
        if (m_rDrawing.m_Target > 0.0) {
            m_rPaper.DrawLine({LEFT - 3.0, Y - 1.0}, {LEFT + 3.0, Y - 1.0},
                              {GREEN, 0.5, CPaperPen::Dash::eDashed});
            m_rPaper.DrawText({WORDS, Y}, m_rDrawing.m_TargetLabel, {LETTER, false, INK}, PaperAlign::eLeft);
        }
    }

    const CPolarDrawing& m_rDrawing;
    double m_Step;
    IFPaper& m_rPaper;
    double m_Radius;
    CPaperPoint m_Centre;
};

}  // namespace

double CPolarDrawing::GetReach() const {
    double Reach = m_Target;
    for (const CStation& rStation : m_Stations) {
        Reach = std::max(Reach, GetReachOf(rStation));
    }
    return Reach;
}

double CPolarDrawing::GetEndReach() const {
    double Reach = m_Target;
    if (!m_Stations.empty()) {
        Reach = std::max(Reach, GetReachOf(m_Stations.back()));
    }
    return Reach;
}

CReportDrawing CPolarDrawing::Make(CPolarDrawing Drawing, double Reach) {
    const double Step = ChooseStep(Reach);
    Drawing.m_Full = Step * std::ceil(std::max(Reach, 1e-6) * 1.06 / Step * 0.9999);
    CReportDrawing Result;
    Result.m_Width = WIDTH;
    const double Lines =
        static_cast<double>(Drawing.m_Stations.size()) + (Drawing.m_Target > 0.0 ? 1.0 : 0.0);
    Result.m_Height = TITLE + WIDTH - 2.0 * RIM + LEGEND_LINE * (Lines + 0.5);
    Result.m_Description = Drawing.m_Description;
    Result.m_Paint = [Drawing = std::move(Drawing), Step](IFPaper& rPaper) {
        CPlot(Drawing, Step, rPaper).Paint();
    };
    return Result;
}
