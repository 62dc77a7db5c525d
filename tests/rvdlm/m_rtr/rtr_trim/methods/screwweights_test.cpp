// The weights of a screw table as the search sees them: their groups, and where a weight lies in them.
#include "rvdlm/m_rtr/rtr_trim/methods/screwweights.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

using testing::ElementsAre;

namespace {

std::vector<double> GetAll(const CScrewWeights& rWeights) {
    std::vector<double> All;
    for (std::size_t i = 0; i < rWeights.GetSize(); ++i) {
        All.push_back(rWeights.GetWeight(i));
    }
    return All;
}

/// Each weight is in one group, and the groups tell what is in them.
void ExpectSound(const CScrewWeights& rWeights) {
    std::size_t From = 0;
    for (const CScrewWeights::CGroup& rGroup : rWeights.GetGroups()) {
        EXPECT_EQ(rGroup.m_From, From);
        ASSERT_GT(rGroup.m_To, From);
        EXPECT_EQ(rGroup.m_Min, rWeights.GetWeight(From));
        EXPECT_EQ(rGroup.m_Max, rWeights.GetWeight(rGroup.m_To - 1));
        From = rGroup.m_To;
    }
    EXPECT_EQ(From, rWeights.GetSize());
}

}  // namespace

TEST(ScrewWeights, RiseAndKnowTheFirstEntryOfEach) {
    const double Nan = std::numeric_limits<double>::quiet_NaN();
    const double Infinite = std::numeric_limits<double>::infinity();
    const CScrewWeights Weights(std::vector<double>{3.0, Nan, 1.0, 3.0, -Infinite, 2.0, 1.0});
    EXPECT_THAT(GetAll(Weights), ElementsAre(1.0, 2.0, 3.0));
    EXPECT_THAT((std::vector<int>{Weights.GetEntry(0), Weights.GetEntry(1), Weights.GetEntry(2)}),
                ElementsAre(2, 5, 0));
    ExpectSound(Weights);
}

TEST(ScrewWeights, EvenOnesAreOneGroup) {
    std::vector<double> Table;
    for (int i = 0; i < 50; ++i) {
        Table.push_back(0.5 + 0.2 * i);
    }
    const CScrewWeights Weights(Table);
    EXPECT_EQ(Weights.GetGroups().size(), 1U);
    ExpectSound(Weights);
}

TEST(ScrewWeights, AWideGapPartsThem) {
    std::vector<double> Table{40.0};
    for (int i = 0; i < 50; ++i) {
        Table.push_back(1.0 + 0.001 * i);
        Table.push_back(20.0 + 0.001 * i);
    }
    const CScrewWeights Weights(Table);
    ASSERT_EQ(Weights.GetGroups().size(), 3U);
    EXPECT_EQ(Weights.GetGroups()[0].m_To, 50U);
    EXPECT_EQ(Weights.GetGroups()[1].m_To, 100U);
    ExpectSound(Weights);
}

// Each gap is wide beside all narrower ones, and yet the search can't go through any number of groups.
TEST(ScrewWeights, GroupsStayFewHoweverManyGapsAreWide) {
    std::vector<double> Wider;
    std::vector<double> Narrower;
    for (int i = 0; i < 60; ++i) {
        Wider.push_back(1e-3 * std::pow(1.5, i));
        Narrower.push_back(1e8 - 1e-3 * std::pow(1.5, i));
    }
    const CScrewWeights WiderWeights(Wider);
    EXPECT_EQ(WiderWeights.GetGroups().size(), 16U);
    EXPECT_EQ(WiderWeights.GetGroups().back().m_From, 59U) << "the widest gaps part them";
    ExpectSound(WiderWeights);
    const CScrewWeights NarrowerWeights(Narrower);
    EXPECT_EQ(NarrowerWeights.GetGroups().size(), 16U);
    EXPECT_EQ(NarrowerWeights.GetGroups().front().m_To, 1U);
    ExpectSound(NarrowerWeights);
}

TEST(ScrewWeights, TheNearestAndThoseInARangeAreFound) {
    std::mt19937 Generator(1);
    std::uniform_real_distribution<double> Wide(0.0, 10.0);
    std::uniform_real_distribution<double> Dense(3.0, 3.01);
    std::vector<double> Table{80.0};
    for (int i = 0; i < 100; ++i) {
        Table.push_back(Wide(Generator));
        Table.push_back(Dense(Generator));
    }
    const CScrewWeights Weights(Table);
    for (const CScrewWeights::CGroup& rGroup : Weights.GetGroups()) {
        for (int i = 0; i < 500; ++i) {
            const double Value = i % 2 == 0 ? Wide(Generator) : Dense(Generator);
            const double Found = Weights.GetWeight(Weights.FindNearest(rGroup, Value));
            const double Width = 0.1 * Wide(Generator);
            const auto [From, To] = Weights.Find(rGroup, Value - Width, Value + Width);
            for (std::size_t k = rGroup.m_From; k < rGroup.m_To; ++k) {
                EXPECT_LE(std::abs(Found - Value), std::abs(Weights.GetWeight(k) - Value));
                if (std::abs(Weights.GetWeight(k) - Value) <= Width) {
                    EXPECT_TRUE(From <= k && k < To) << Weights.GetWeight(k);
                }
            }
        }
    }
}
