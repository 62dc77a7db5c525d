// What one search for screws has on the heap: three screws of 200 in 24 holes, the largest case that matters.
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
#include <vector>

#include "rvdlm/m_rtr/rtr_trim/methods/screwsearch.h"
#include "tests/support/countingnew.h"

namespace {

constexpr std::size_t ENTRIES = 200;
constexpr int HOLES = 24;
constexpr std::size_t LIMIT = 1024 * 1024;

/// The most bytes of a search from its construction to its result, the object itself included.
std::size_t Measure(const std::vector<double>& rTable, CScrewSearch::CVector Target) {
    const CHeapCount Count;
    CScrewSearch Search(rTable, true, HOLES);
    EXPECT_TRUE(Search.Find(Target));
    return Count.GetPeak() + sizeof(CScrewSearch);
}

}  // namespace

TEST(ScrewSearchMemory, IsCounted) {
    if (!CHeapCount::IsCounting()) {
        GTEST_SKIP() << "the sanitizer counts for itself";
    }
    const CHeapCount Count;
    {
        const std::vector<double> Kept(1000);
        const std::vector<double> More(2000);
    }
    const std::vector<double> Last(10);
    EXPECT_GE(Count.GetPeak(), 3000 * sizeof(double));
    EXPECT_LT(Count.GetPeak(), 3000 * sizeof(double) + 100);
    EXPECT_EQ(Count.GetAllocations(), 3U);
}

TEST(ScrewSearchMemory, StaysBelowOneMegabyteWithARealTable) {
    if (!CHeapCount::IsCounting()) {
        GTEST_SKIP() << "the sanitizer counts for itself";
    }
    std::vector<double> Table;
    for (std::size_t i = 0; i < ENTRIES; ++i) {
        Table.push_back(0.5 + 0.05 * static_cast<double>(i));
    }
    // From nothing to far out of reach, towards a hole and between two.
    for (const double Length : {0.0, 1e-6, 0.3, 7.0, 20.0, 29.3, 30.0, 45.0, 1e5}) {
        for (const double Angle : {0.0, 7.5, 123.0}) {
            const double a = Angle * std::numbers::pi / 180.0;
            EXPECT_LT(Measure(Table, {Length * std::cos(a), Length * std::sin(a)}), LIMIT)
                << Length << " g at " << Angle;
        }
    }
}

// Placements that differ by less than what makes one better: millions of them are in question, and the room
// for them decides.
TEST(ScrewSearchMemory, StaysBelowOneMegabyteWithWeightsOfNothing) {
    if (!CHeapCount::IsCounting()) {
        GTEST_SKIP() << "the sanitizer counts for itself";
    }
    std::vector<double> Table;
    for (std::size_t i = 0; i < ENTRIES; ++i) {
        Table.push_back(1e-7 * std::pow(0.999, static_cast<double>(i)));
    }
    EXPECT_LT(Measure(Table, {0.0, 0.0}), LIMIT);
}
