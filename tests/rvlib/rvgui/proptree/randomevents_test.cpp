// Whatever is done in whatever order: the tree stays in order. The sequences come from fixed seeds, so that a
// failure repeats; fuzz/ searches for others.
#include <gtest/gtest.h>

#include "tests/sequences/treesequence.h"

TEST(RandomEventsTest, TheTreeStaysInOrder) {
    int nEdits = 0;
    for (unsigned Seed = 0; Seed < 60; ++Seed) {
        CRandomChoices Choices(Seed);
        CTreeSequence Sequence(Choices);
        for (int i = 0; i < 500; ++i) {
            Sequence.Step();
            ASSERT_EQ(Sequence.Check(), "") << "seed " << Seed << ", step " << i;
        }
        nEdits += Sequence.GetEdits();
    }
    EXPECT_GT(nEdits, 500) << "else the sequences would test little";
}
