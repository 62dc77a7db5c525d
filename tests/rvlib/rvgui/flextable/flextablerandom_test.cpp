// Whatever comes, in whatever order: some things always hold. The sequences come from fixed seeds, so that a
// failure repeats; fuzz/ searches for others.
#include <gtest/gtest.h>

#include "tests/sequences/tablesequence.h"
#include "tests/support/casenames.h"

namespace {

class RandomFlexTableTest : public testing::TestWithParam<unsigned> {};

TEST_P(RandomFlexTableTest, FocusCursorAndTheLastRowAreInOrderWhateverHappens) {
    CRandomChoices Choices(GetParam());
    CTableSequence Sequence(Choices);
    unsigned nMostRows = 0;
    for (int i = 0; i < 600; ++i) {
        Sequence.Step();
        ASSERT_EQ(Sequence.Check(), "") << "step " << i;
        nMostRows = std::max(nMostRows, Sequence.GetRowCount());
    }
    EXPECT_GT(nMostRows, 3u) << "else the sequence would test little";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomFlexTableTest, testing::Range(1u, 9u), CaseNames::ByNumber("Seed"));

}  // namespace
