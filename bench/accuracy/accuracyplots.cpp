#include "bench/accuracy/accuracyplots.h"

#include <array>
#include <cmath>
#include <cstdio>

#include "bench/accuracy/chart.h"

namespace {

constexpr CPaperColor BLUE{0x00, 0x38, 0x88};
constexpr CPaperColor RED{0xC0, 0x00, 0x00};
constexpr CPaperColor GREEN{0x00, 0x68, 0x38};
constexpr CPaperColor BLACK{0x1A, 0x1A, 0x1A};

using Dash = CPaperPen::Dash;

/// Noise of the average, the root mean square of its vector, as noise of each of X and Y of a reading.
double ToReadingNoise(double OfAverage, double nReadings) {
    return OfAverage * std::sqrt(nReadings / 2.0);
}

std::string Percent(double Share) {
    return WriteShort(100.0 * Share) + " %";
}

/// Median or nothing, and which share of the runs the module doesn't balance.
CMapChart::CCell MakeCell(const CAccuracyFigures& rFigures) {
    CMapChart::CCell Cell;
    const double Left = static_cast<double>(rFigures.Count(CAccuracyRun::Outcome::eBalanced)) /
                        static_cast<double>(rFigures.GetRuns());
    if (Left >= 0.1) {
        Cell.m_Value = 100.0 * rFigures.m_Residuals.GetQuantile(0.95);
    }
    if (Left < 0.995) {
        Cell.m_Note = WriteShort(std::round(100.0 * (1.0 - Left))) + " %";
    }
    return Cell;
}

void PrintMap(const CMapChart& rMap) {
    std::printf("%s\n\n| |", rMap.m_Title.c_str());
    for (const std::string& rColumn : rMap.m_Columns) {
        std::printf(" %s |", rColumn.c_str());
    }
    std::printf("\n|---|");
    for (std::size_t i = 0; i < rMap.m_Columns.size(); ++i) {
        std::printf("---:|");
    }
    for (std::size_t y = rMap.m_Rows.size(); y-- > 0;) {
        std::printf("\n| %s |", rMap.m_Rows[y].c_str());
        for (const CMapChart::CCell& rCell : rMap.m_Cells[y]) {
            std::printf(" %s |", rCell.m_Value ? WriteShort(*rCell.m_Value).c_str() : "-");
        }
    }
    std::printf("\n\n");
    std::fflush(stdout);
}

CAccuracyConditions MakeOrdinary() {
    CAccuracyConditions Conditions;
    Conditions.m_Samples = {40.0, 40.0};
    Conditions.m_Capacity = {0.2, 0.9};
    Conditions.m_Reading = {1000.0, 6000.0};
    return Conditions;
}

}  // namespace

namespace AccuracyPlots {

std::string DrawDistribution(std::size_t nRuns, std::uint64_t Seed) {
    CLineChart Chart;
    Chart.m_Title = "Residuals after a pre-balancing, noise and rounding only";
    Chart.m_X = {
        "residual, % of the first", 0.1, 100.0, {0.1, 0.2, 0.5, 1.0, 2.0, 5.0, 10.0, 20.0, 50.0, 100.0}};
    Chart.m_Y = {
        "runs that leave at most so much, %", 0.0, 100.0, {0.0, 25.0, 50.0, 75.0, 95.0, 100.0}, false};
    constexpr std::array COLORS = {BLUE, GREEN, BLACK, RED};
    std::size_t nColor = 0;
    for (const CAccuracyWorld& rWorld : CAccuracyWorld::GetAll()) {
        if (rWorld.m_bRebalance) {
            continue;
        }
        const auto Figures = CAccuracyFigures::Make(rWorld, {}, nRuns, Seed);
        CLineChart::CCurve Simulated{rWorld.GetName(), {}, {COLORS.at(nColor), 0.45}};
        Simulated.m_Name.resize(Simulated.m_Name.rfind(','));
        CLineChart::CCurve Theory{"theory", {}, {COLORS.at(nColor++), 0.6, Dash::eDotted}};
        for (int i = 1; i < 200; ++i) {
            const double p = i / 200.0;
            Simulated.m_Points.push_back({100.0 * Figures.m_Residuals.GetQuantile(p), 100.0 * p});
        }
        for (double Share = 0.001; Share <= 1.0; Share *= 1.12) {
            Theory.m_Points.push_back({100.0 * Share, 100.0 * Figures.m_Theory.GetProbability(Share)});
        }
        Chart.m_Curves.push_back(std::move(Simulated));
        Chart.m_Curves.push_back(std::move(Theory));
    }
    return Chart.Draw();
}

std::string DrawTime(std::size_t nRuns, std::uint64_t Seed) {
    constexpr double NOISE = 0.05;
    constexpr std::array READINGS = {5.0, 10.0, 20.0, 40.0, 80.0, 160.0, 320.0};
    struct CCase {
        const char* m_pName;
        CAccuracyWorld m_World;
        double m_Drift;
        bool m_bTextbook;
        CPaperPen m_Pen;
    };
    const std::array CASES = {
        CCase{"one plane, positions not rounded", {}, 0.0, true, {BLACK, 0.4}},
        CCase{"one plane, weights", {}, 0.0, false, {BLUE, 0.4}},
        CCase{"one plane, weights, drift 0.5 %", {}, 0.005, false, {GREEN, 0.4}},
        CCase{"one plane, screws", {false, true, false}, 0.0, false, {RED, 0.4, Dash::eDashed}},
        CCase{"two planes, weights", {true, false, false}, 0.0, false, {BLUE, 0.4, Dash::eDashed}},
    };
    CLineChart Chart;
    Chart.m_Title = "What measurement time buys: noise of a reading 5 % of the first, effect 0.5";
    Chart.m_X = {"readings averaged, 20 a second", 4.0, 400.0, {5.0, 10.0, 20.0, 40.0, 80.0, 160.0, 320.0}};
    Chart.m_Y = {"median residual, % of the first", 0.5, 20.0, {0.5, 1.0, 2.0, 5.0, 10.0, 20.0}};
    std::printf("%s. Median and p95, %%\n\n| readings | time |", Chart.m_Title.c_str());
    for (const CCase& rCase : CASES) {
        std::printf(" %s |", rCase.m_pName);
        Chart.m_Curves.push_back({rCase.m_pName, {}, rCase.m_Pen, true});
    }
    std::printf("\n|---:|---:|---:|---:|---:|---:|---:|\n");
    for (const double nReadings : READINGS) {
        std::printf("| %.0f | %.3g s |", nReadings, nReadings / 20.0);
        for (std::size_t i = 0; i < CASES.size(); ++i) {
            CAccuracyConditions Conditions = MakeOrdinary();
            Conditions.m_Samples = {nReadings, nReadings};
            Conditions.m_Noise = {NOISE, NOISE};
            Conditions.m_Effect = {0.5, 0.5};
            Conditions.m_Drift = {CASES[i].m_Drift, CASES[i].m_Drift};
            const auto Figures = CAccuracyFigures::Make(CASES[i].m_World, Conditions, nRuns, Seed);
            const CShareSample& rShares = CASES[i].m_bTextbook ? Figures.m_Textbook : Figures.m_Residuals;
            const double Median = 100.0 * rShares.GetQuantile(0.5);
            Chart.m_Curves[i].m_Points.push_back({nReadings, Median});
            std::printf(" %.2f, %.2f |", Median, 100.0 * rShares.GetQuantile(0.95));
        }
        std::printf("\n");
        std::fflush(stdout);
    }
    std::printf("\n");
    return Chart.Draw();
}

std::string DrawEffects(std::size_t nRuns, std::uint64_t Seed) {
    constexpr std::array EFFECTS = {0.01, 0.02, 0.05, 0.1, 0.2, 0.5, 1.0, 2.0};
    constexpr std::array NOISES = {0.0005, 0.001, 0.002, 0.005, 0.01, 0.02, 0.05, 0.1};
    CMapChart Map;
    Map.m_Title = "One plane, weights: residual that 95 of 100 runs stay below, % of the first";
    Map.m_LabelX = "effect of the test run, share of the first reading";
    Map.m_LabelY = "noise of the average (root mean square of its vector), % of the first reading";
    Map.m_Legend = "Residual. Small: runs that the module refuses or warns of; crossed out: nine of ten.";
    for (const double Effect : EFFECTS) {
        Map.m_Columns.push_back(WriteShort(Effect));
    }
    for (const double Noise : NOISES) {
        Map.m_Rows.push_back(Percent(Noise));
        Map.m_Cells.emplace_back();
        for (const double Effect : EFFECTS) {
            CAccuracyConditions Conditions = MakeOrdinary();
            const double OfReading = ToReadingNoise(Noise, Conditions.m_Samples.m_Low);
            Conditions.m_Noise = {OfReading, OfReading};
            Conditions.m_Effect = {Effect, Effect};
            // Whole degrees of the test run, too: an effect as small as that takes a large unbalance.
            Conditions.m_Capacity = {Effect < 0.05 ? 0.85 : 0.4, 0.9};
            Map.m_Cells.back().push_back(MakeCell(CAccuracyFigures::Make({}, Conditions, nRuns, Seed)));
        }
    }
    PrintMap(Map);
    return Map.Draw();
}

std::string DrawConditions(std::size_t nRuns, std::uint64_t Seed) {
    constexpr std::array CONDITIONS = {1.0, 1.5, 2.0, 3.0, 5.0, 10.0, 20.0, 50.0};
    constexpr std::array NOISES = {0.0002, 0.0005, 0.001, 0.002, 0.005, 0.01, 0.02, 0.05};
    CMapChart Map;
    Map.m_Title = "Two planes, weights: residual that 95 of 100 planes stay below, % of the first";
    Map.m_LabelX = "condition number of the influence, columns of one length";
    Map.m_LabelY = "noise of the average (root mean square of its vector), % of the first reading";
    Map.m_Legend =
        "Residual. Small: runs that the module warns of, beyond the capacity; crossed out: nine of ten.";
    for (const double Condition : CONDITIONS) {
        Map.m_Columns.push_back(WriteShort(Condition));
    }
    for (const double Noise : NOISES) {
        Map.m_Rows.push_back(Percent(Noise));
        Map.m_Cells.emplace_back();
        for (const double Condition : CONDITIONS) {
            CAccuracyConditions Conditions = MakeOrdinary();
            const double OfReading = ToReadingNoise(Noise, Conditions.m_Samples.m_Low);
            Conditions.m_Noise = {OfReading, OfReading};
            Conditions.m_Effect = {0.5, 0.5};
            Conditions.m_Capacity = {0.4, 0.9};
            Conditions.m_Condition = Condition;
            const CAccuracyWorld World{true, false, false};
            Map.m_Cells.back().push_back(MakeCell(CAccuracyFigures::Make(World, Conditions, nRuns, Seed)));
        }
    }
    PrintMap(Map);
    return Map.Draw();
}

}  // namespace AccuracyPlots
