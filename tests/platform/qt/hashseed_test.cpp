#include <gtest/gtest.h>

#include <QHash>

// Seeded, the toolkit's hashing slows all floating point of its thread down for good on some processors.
TEST(HashSeed, IsNoneInEveryProgramThatUsesThePlatform) {
    EXPECT_EQ(QHashSeed::globalSeed(), 0U);
}
