#include "bench/accuracy/chart.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

#include "platform/paper/svgpaper.h"

namespace {

constexpr CPaperColor INK{0x1A, 0x1A, 0x1A};
constexpr CPaperColor GRID{0xCC, 0xCC, 0xCC};
constexpr CPaperColor WHITE{0xFF, 0xFF, 0xFF};
constexpr CPaperFont TEXT{3.4, false, INK};
constexpr CPaperFont TITLE{4.0, true, INK};
constexpr double WIDTH = 170.0;  // mm
constexpr double LEFT = 18.0;
constexpr double TOP = 12.0;

void DrawBackground(IFPaper& rPaper, double Width, double Height, const std::string& rTitle) {
    rPaper.DrawPolygon({{0.0, 0.0}, {Width, 0.0}, {Width, Height}, {0.0, Height}}, {std::nullopt, WHITE});
    rPaper.DrawText({2.0, 5.5}, rTitle, TITLE, PaperAlign::eLeft);
}

/// From pale to dark by decades, so that it reads in black and white too: good below 1 %, no use above 100 %.
struct CShade {
    double m_From;
    CPaperColor m_Color;
    bool m_bWhiteText;
    const char* m_pName;
};
constexpr std::array<CShade, 6> SHADES{{{0.0, {0xED, 0xF8, 0xE9}, false, "below 1 %"},
                                        {1.0, {0xC7, 0xE9, 0xC0}, false, "1 to 2 %"},
                                        {2.0, {0xFE, 0xE3, 0x91}, false, "2 to 5 %"},
                                        {5.0, {0xFE, 0xB2, 0x4C}, false, "5 to 20 %"},
                                        {20.0, {0xD9, 0x5F, 0x0E}, true, "20 to 100 %"},
                                        {100.0, {0x7F, 0x1D, 0x1D}, true, "over 100 %"}}};

const CShade& GetShade(double Percent) {
    const auto Next =
        std::upper_bound(SHADES.begin(), SHADES.end(), Percent,
                         [](double Value, const CShade& rShade) { return Value < rShade.m_From; });
    return Next == SHADES.begin() ? *Next : *(Next - 1);
}

}  // namespace

std::string WriteShort(double Value) {
    std::array<char, 40> Text{};
    const double Size = std::abs(Value);
    const char* const pFormat = Size >= 100.0 ? "%.0f" : Size >= 10.0 ? "%.3g" : "%.2g";
    std::snprintf(Text.data(), Text.size(), pFormat, Value);
    return Text.data();
}

double CChartAxis::GetPlace(double Value) const {
    const auto Scale = [this](double v) { return m_bLogarithmic ? std::log(std::max(v, 1e-12)) : v; };
    return std::clamp((Scale(Value) - Scale(m_Low)) / (Scale(m_High) - Scale(m_Low)), 0.0, 1.0);
}

std::string CLineChart::Draw() const {
    constexpr double BOTTOM = 92.0;
    constexpr double RIGHT = WIDTH - 5.0;
    constexpr double ROW = 5.0;
    const double Height = BOTTOM + 14.0 + ROW * static_cast<double>((m_Curves.size() + 1) / 2);
    CSvgPaper Paper(WIDTH, Height, m_Title);
    DrawBackground(Paper, WIDTH, Height, m_Title);
    const auto GetX = [&](double Value) { return LEFT + (RIGHT - LEFT) * m_X.GetPlace(Value); };
    const auto GetY = [&](double Value) { return BOTTOM - (BOTTOM - TOP) * m_Y.GetPlace(Value); };
    for (const double Mark : m_X.m_Marks) {
        Paper.DrawLine({GetX(Mark), TOP}, {GetX(Mark), BOTTOM}, {GRID, 0.15});
        Paper.DrawText({GetX(Mark), BOTTOM + 4.2}, WriteShort(Mark), TEXT, PaperAlign::eCentre);
    }
    for (const double Mark : m_Y.m_Marks) {
        Paper.DrawLine({LEFT, GetY(Mark)}, {RIGHT, GetY(Mark)}, {GRID, 0.15});
        Paper.DrawText({LEFT - 1.5, GetY(Mark) + 1.2}, WriteShort(Mark), TEXT, PaperAlign::eRight);
    }
    Paper.DrawPolygon({{LEFT, TOP}, {RIGHT, TOP}, {RIGHT, BOTTOM}, {LEFT, BOTTOM}},
                      {CPaperPen{INK, 0.25}, std::nullopt});
    Paper.DrawText({LEFT, TOP - 1.6}, m_Y.m_Label, TEXT, PaperAlign::eLeft);
    Paper.DrawText({RIGHT, BOTTOM + 9.0}, m_X.m_Label, TEXT, PaperAlign::eRight);
    constexpr double MARK = 0.8;
    for (std::size_t i = 0; i < m_Curves.size(); ++i) {
        const CCurve& rCurve = m_Curves[i];
        std::vector<CPaperPoint> Points;
        for (const CPaperPoint& rPoint : rCurve.m_Points) {
            Points.push_back({GetX(rPoint.m_X), GetY(rPoint.m_Y)});
        }
        const double LegendX = LEFT + (i % 2 == 0 ? 0.0 : (RIGHT - LEFT) / 2.0);
        const double LegendY = BOTTOM + 14.5 + ROW * static_cast<double>(i / 2);
        Paper.DrawPolyline(Points, rCurve.m_Pen);
        Paper.DrawLine({LegendX, LegendY - 1.1}, {LegendX + 10.0, LegendY - 1.1}, rCurve.m_Pen);
        Paper.DrawText({LegendX + 12.0, LegendY}, rCurve.m_Name, TEXT, PaperAlign::eLeft);
        if (rCurve.m_bMarks) {
            Points.push_back({LegendX + 5.0, LegendY - 1.1});
            for (const CPaperPoint& rPoint : Points) {
                Paper.DrawEllipse(rPoint, MARK, MARK, 0.0, {std::nullopt, rCurve.m_Pen.m_Color});
            }
        }
    }
    return Paper.GetSvg();
}

std::string CMapChart::Draw() const {
    constexpr double ROW = 9.0;
    constexpr double RIGHT = WIDTH - 3.0;
    const double Bottom = TOP + ROW * static_cast<double>(m_Rows.size());
    const double Column = (RIGHT - LEFT) / static_cast<double>(m_Columns.size());
    const double Height = Bottom + 23.0 + 5.5 * static_cast<double>(m_Comments.size());
    CSvgPaper Paper(WIDTH, Height, m_Title);
    DrawBackground(Paper, WIDTH, Height, m_Title);
    for (std::size_t y = 0; y < m_Rows.size(); ++y) {
        const double Y = Bottom - ROW * static_cast<double>(y + 1);
        Paper.DrawText({LEFT - 1.5, Y + ROW / 2.0 + 1.2}, m_Rows[y], TEXT, PaperAlign::eRight);
        for (std::size_t x = 0; x < m_Columns.size(); ++x) {
            const CCell& rCell = m_Cells[y][x];
            const double X = LEFT + Column * static_cast<double>(x);
            const CShade* const pShade = rCell.m_Value ? &GetShade(*rCell.m_Value) : nullptr;
            Paper.DrawPolygon({{X, Y}, {X + Column, Y}, {X + Column, Y + ROW}, {X, Y + ROW}},
                              {CPaperPen{WHITE, 0.3}, pShade != nullptr ? pShade->m_Color : GRID});
            if (pShade == nullptr) {
                Paper.DrawLine({X + 1.0, Y + 1.0}, {X + Column - 1.0, Y + ROW - 1.0}, {INK, 0.2});
            }
            const CPaperColor Ink = pShade != nullptr && pShade->m_bWhiteText ? WHITE : INK;
            const double Baseline = rCell.m_Note.empty() ? ROW / 2.0 + 1.2 : 3.9;
            if (rCell.m_Value) {
                Paper.DrawText({X + Column / 2.0, Y + Baseline}, WriteShort(*rCell.m_Value),
                               {3.4, false, Ink}, PaperAlign::eCentre);
            }
            if (!rCell.m_Note.empty()) {
                Paper.DrawText({X + Column / 2.0, Y + 7.6}, rCell.m_Note, {2.6, false, Ink},
                               PaperAlign::eCentre);
            }
        }
    }
    for (std::size_t x = 0; x < m_Columns.size(); ++x) {
        Paper.DrawText({LEFT + Column * (static_cast<double>(x) + 0.5), Bottom + 4.2}, m_Columns[x], TEXT,
                       PaperAlign::eCentre);
    }
    Paper.DrawText({2.0, TOP - 1.6}, m_LabelY, TEXT, PaperAlign::eLeft);
    Paper.DrawText({RIGHT, Bottom + 9.0}, m_LabelX, TEXT, PaperAlign::eRight);
    double Y = Bottom + 15.0;
    Paper.DrawText({2.0, Y}, m_Legend, TEXT, PaperAlign::eLeft);
    Y += 5.5;
    const double Apart = (WIDTH - 4.0) / static_cast<double>(SHADES.size());
    for (std::size_t i = 0; i < SHADES.size(); ++i) {
        const double X = 2.0 + Apart * static_cast<double>(i);
        Paper.DrawPolygon({{X, Y - 3.0}, {X + 6.0, Y - 3.0}, {X + 6.0, Y + 0.6}, {X, Y + 0.6}},
                          {CPaperPen{INK, 0.15}, SHADES[i].m_Color});
        Paper.DrawText({X + 7.2, Y}, SHADES[i].m_pName, TEXT, PaperAlign::eLeft);
    }
    for (const std::string& rComment : m_Comments) {
        Y += 5.5;
        Paper.DrawText({2.0, Y}, rComment, TEXT, PaperAlign::eLeft);
    }
    return Paper.GetSvg();
}
