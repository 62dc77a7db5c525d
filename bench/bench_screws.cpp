// The search for screws against the plain enumeration of all placements: three screws in 24 holes, one
// thread.
//
// Search/N: N entries in the table; the median over random targets that some placement reaches, and the worst
// of 2000 mixed ones (random, near zero, at and beyond the limit of what is in reach), in ms. Each target is
// measured three times and the least counts, so that what else the machine does stays out. Plain is the
// enumeration with sines and cosines at hand, timed over a few of the outer holes and scaled up; Ratio is how
// much longer it takes than the median. Heap is the most that one search has on the heap, from its
// construction to its result, over 200 of the mixed targets.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <random>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/methods/screwsearch.h"
#include "tests/support/countingnew.h"

namespace {

constexpr int HOLES = 24;
constexpr std::size_t TARGETS = 2000;

using Vector = CScrewSearch::CVector;

class CTargets {
public:
    explicit CTargets(const std::vector<double>& rTable) : m_rTable(rTable) {}

    /// The sum of three of the table's screws in three of the holes.
    Vector MakeReachable() {
        Vector Sum;
        std::vector<int> Holes(HOLES);
        for (int i = 0; i < HOLES; ++i) {
            Holes[static_cast<std::size_t>(i)] = i;
        }
        std::shuffle(Holes.begin(), Holes.end(), m_Generator);
        for (std::size_t i = 0; i < 3; ++i) {
            const double Angle = Holes[i] * 2.0 * std::numbers::pi / HOLES;
            const double Weight = m_rTable[m_Generator() % m_rTable.size()];
            Sum.x += Weight * std::cos(Angle);
            Sum.y += Weight * std::sin(Angle);
        }
        return Sum;
    }
    Vector MakeMixed(std::size_t Kind) {
        const double Reach = 2.93 * m_rTable.back();
        switch (Kind % 4) {
            case 0:
                return MakeReachable();
            case 1:
                return MakePolar(Reach * std::sqrt(Uniform(0.0, 1.0)));
            case 2:
                return MakePolar(std::pow(10.0, Uniform(-6.0, 0.0)));
            default:
                return MakePolar(Reach * Uniform(0.9, 1.3));
        }
    }

private:
    double Uniform(double Low, double High) {
        return Low + (High - Low) * static_cast<double>(m_Generator() >> 11U) * 0x1p-53;
    }
    Vector MakePolar(double Length) {
        const double Angle = Uniform(0.0, 2.0 * std::numbers::pi);
        return {Length * std::cos(Angle), Length * std::sin(Angle)};
    }

    const std::vector<double>& m_rTable;
    std::mt19937_64 m_Generator{1};
};

template <typename F>
double MeasureMs(F Work) {
    const auto Begin = std::chrono::steady_clock::now();
    Work();
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - Begin).count();
}

double MeasureSearch(CScrewSearch& rSearch, Vector Target) {
    double Least = 1e9;
    for (int i = 0; i < 3; ++i) {
        Least = std::min(Least, MeasureMs([&] { benchmark::DoNotOptimize(rSearch.Find(Target)); }));
    }
    return Least;
}

/// Bytes on the heap at the most.
std::size_t MeasureHeap(const std::vector<double>& rTable, CTargets& rTargets) {
    constexpr std::size_t HEAP_TARGETS = 200;
    std::size_t nMost = 0;
    for (std::size_t i = 0; i < HEAP_TARGETS; ++i) {
        const Vector Target = rTargets.MakeMixed(i);
        const CHeapCount Count;
        CScrewSearch Search(rTable, true, HOLES);
        benchmark::DoNotOptimize(Search.Find(Target));
        nMost = std::max(nMost, Count.GetPeak());
    }
    return nMost;
}

/// Time of the whole enumeration, from a part of its sets of holes.
double MeasurePlain(const std::vector<double>& rTable, Vector Target) {
    constexpr int SETS = HOLES * (HOLES - 1) * (HOLES - 2) / 6;
    const int nParts = static_cast<int>(std::clamp(4e7 / std::pow(rTable.size(), 3.0), 1.0, 22.0));
    const double Ms = MeasureMs([&] {
        double Best = CScrewSearch::eStart;
        for (int h3 = 2; h3 < 2 + nParts; ++h3) {
            const double Step = 2.0 * std::numbers::pi / HOLES;
            const double C[] = {1.0, std::cos(Step), std::cos(h3 * Step)};
            const double S[] = {0.0, std::sin(Step), std::sin(h3 * Step)};
            for (const double w1 : rTable) {
                for (const double w2 : rTable) {
                    for (const double w3 : rTable) {
                        const double DeltaX = w2 * C[1] + w1 * C[0] + w3 * C[2] - Target.x;
                        const double DeltaY = w2 * S[1] + w1 * S[0] + w3 * S[2] - Target.y;
                        const double Deviation = DeltaX * DeltaX + DeltaY * DeltaY;
                        if (Best - Deviation > CScrewSearch::eMargin) {
                            Best = Deviation;
                        }
                    }
                }
            }
        }
        benchmark::DoNotOptimize(Best);
    });
    return Ms * SETS / nParts;
}

void BM_Search(benchmark::State& rState) {
    std::vector<double> Table;
    for (std::int64_t i = 0; i < rState.range(0); ++i) {
        Table.push_back(0.5 + 10.0 * static_cast<double>(i) / static_cast<double>(rState.range(0)));
    }
    CScrewSearch Search(Table, true, HOLES);
    CTargets Targets(Table);
    std::vector<double> Times;
    double Worst = 0.0;
    for (auto _ : rState) {
        for (std::size_t i = 0; i < TARGETS; ++i) {
            Times.push_back(MeasureSearch(Search, Targets.MakeReachable()));
            Worst = std::max(Worst, MeasureSearch(Search, Targets.MakeMixed(i)));
        }
    }
    std::nth_element(Times.begin(), Times.begin() + static_cast<std::ptrdiff_t>(Times.size() / 2),
                     Times.end());
    const double Median = Times[Times.size() / 2];
    const double Plain = MeasurePlain(Table, Targets.MakeReachable());
    rState.counters["Median_ms"] = Median;
    rState.counters["Worst_ms"] = Worst;
    rState.counters["Plain_ms"] = Plain;
    rState.counters["Ratio"] = Plain / Median;
    rState.counters["Heap_KB"] = static_cast<double>(MeasureHeap(Table, Targets)) / 1024.0;
}
BENCHMARK(BM_Search)->Arg(20)->Arg(50)->Arg(100)->Arg(200)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
