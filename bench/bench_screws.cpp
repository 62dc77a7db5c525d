// The search for screws against the plain enumeration of all placements: three screws in 24 holes, one
// thread.
//
// Search/N: N entries in the table; the median over random targets that some placement reaches, and the worst
// of 2000 mixed ones (random, near zero, at and beyond the limit of what is in reach), in ms. Each target is
// measured three times and the least counts, so that what else the machine does stays out. Plain is the
// enumeration with sines and cosines at hand, timed over a few of the outer holes and scaled up; Ratio is how
// much longer it takes than the median. Heap is the most that one search has on the heap, from its
// construction to its result, over 200 of the mixed targets.
//
// Tables/...: families of tables of 200 weights that differ by a milligram or more, 20 tables of each and 100
// mixed targets a table. The 99th percentile and the worst, each beside what is wanted of it, and the time of
// the plain enumeration. Adverse is like what a climbing search for slow tables ended
// with.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <ctime>
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

/// Makes tables of 200 weights, in whole milligrams and rising. Of weights that meet the later one moves up.
class CTables {
public:
    enum Family { eOrdinary, eTight, eOutlier, eHalves, eSeries, eNearlyEqual, eClusters, eMixed, eAdverse };

    std::vector<double> Make(Family Kind) {
        std::vector<double> Table;
        const double First = Uniform(0.5, 20.0);
        const double Second = Uniform(0.5, 20.0);
        const double Width = Uniform(0.2, 1.0);
        for (int i = 0; i < ENTRIES; ++i) {
            Table.push_back(std::round(1000.0 * MakeWeight(Kind, i, First, Second, Width)));
        }
        std::sort(Table.begin(), Table.end());
        for (std::size_t i = 1; i < Table.size(); ++i) {
            Table[i] = std::max(Table[i], Table[i - 1] + 1.0);
        }
        for (double& rWeight : Table) {
            rWeight /= 1000.0;
        }
        return Table;
    }

private:
    static constexpr int ENTRIES = 200;

    double Uniform(double Low, double High) {
        return Low + (High - Low) * static_cast<double>(m_Generator() >> 11U) * 0x1p-53;
    }
    double MakeWeight(Family Kind, int i, double First, double Second, double Width) {
        switch (Kind) {
            case eTight:
                return First + Uniform(0.0, Width);
            case eOutlier:
                return i == 0 ? 2.05 * First : First + Uniform(0.0, Width);
            case eHalves:
                return (i % 2 == 0 ? 1.0 : 20.0) + Uniform(0.0, Width);
            case eSeries:
                return First + 0.001 * i;
            case eNearlyEqual:  // ten kinds, each weighed twenty times
                return First + (i % 10) * Width + Uniform(0.0, 0.02);
            case eClusters:  // of every width
                return std::fmod((i % 12) * First * Second, 20.0) + Uniform(0.001, 0.3 * (i % 12 + 1) / 12);
            case eMixed:
                return i % 4 == 0   ? Uniform(0.0, 10.0)
                       : i % 4 == 1 ? First / 4.0 + Uniform(0.0, 0.2)
                       : i % 4 == 2 ? Uniform(9.9, 10.0)
                                    : Uniform(2.0, 3.0);
            case eAdverse:  // dense at both ends of a range with little between
                return i % 10 == 0 ? Uniform(0.0, 12.0) : i % 10 < 6 ? 6.4 + 0.001 * i : 10.2 + 0.001 * i;
            default:
                return 0.5 + Uniform(0.0, First);
        }
    }

    std::mt19937_64 m_Generator{2};
};

/// Processor time of this thread.
template <typename F>
double MeasureMs(F Work) {
    const auto Now = [] {
        timespec Time{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &Time);
        return static_cast<double>(Time.tv_sec) * 1e3 + static_cast<double>(Time.tv_nsec) * 1e-6;
    };
    const double Begin = Now();
    Work();
    return Now() - Begin;
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
        double Best = CScrewSearch::START;
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
                        if (Best - Deviation > CScrewSearch::MARGIN) {
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

double GetPercentile(std::vector<double>& rTimes, double Share) {
    const auto Place =
        std::min(static_cast<std::size_t>(Share * static_cast<double>(rTimes.size())), rTimes.size() - 1);
    std::nth_element(rTimes.begin(), rTimes.begin() + static_cast<std::ptrdiff_t>(Place), rTimes.end());
    return rTimes[Place];
}

void BM_Tables(benchmark::State& rState) {
    constexpr const char* NAMES[] = {"ordinary",     "tight",    "outlier", "halves", "series of 1 mg",
                                     "nearly equal", "clusters", "mixed",   "adverse"};
    const auto Family = static_cast<CTables::Family>(rState.range(0));
    const double WantedP99 = Family == CTables::eOrdinary ? 0.5 : 5.0;
    rState.SetLabel(NAMES[rState.range(0)]);
    constexpr int TABLES = 20;
    constexpr std::size_t TARGETS_A_TABLE = 100;
    constexpr double WANTED_WORST = 10.0;
    CTables Tables;
    std::vector<double> Times;
    std::size_t nHeap = 0;
    double Plain = 0.0;
    for (auto _ : rState) {
        for (int i = 0; i < TABLES; ++i) {
            const std::vector<double> Table = Tables.Make(Family);
            CScrewSearch Search(Table, true, HOLES);
            CTargets Targets(Table);
            for (std::size_t k = 0; k < TARGETS_A_TABLE; ++k) {
                Times.push_back(MeasureSearch(Search, Targets.MakeMixed(k)));
            }
            nHeap = std::max(nHeap, MeasureHeap(Table, Targets));
            Plain = i == 0 ? MeasurePlain(Table, Targets.MakeReachable()) : Plain;
        }
    }
    rState.counters["Median_ms"] = GetPercentile(Times, 0.5);
    rState.counters["P99_ms"] = GetPercentile(Times, 0.99);
    rState.counters["P99_wanted_ms"] = WantedP99;
    rState.counters["Worst_ms"] = GetPercentile(Times, 1.0);
    rState.counters["Worst_wanted_ms"] = WANTED_WORST;
    rState.counters["Plain_ms"] = Plain;
    rState.counters["Heap_KB"] = static_cast<double>(nHeap) / 1024.0;
}
BENCHMARK(BM_Tables)
    ->DenseRange(CTables::eOrdinary, CTables::eAdverse)
    ->Iterations(1)
    ->Unit(benchmark::kMillisecond);

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
    const double Median = GetPercentile(Times, 0.5);
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
