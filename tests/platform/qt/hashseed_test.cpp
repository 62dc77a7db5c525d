#include <gtest/gtest.h>

#include <QHash>
#include <QString>

// Seeded, the toolkit's hashing slows all floating point of its thread down for good on some processors.
TEST(HashSeed, IsNoneInEveryProgramThatUsesThePlatform) {
    EXPECT_EQ(QHashSeed::globalSeed(), 0U);
    EXPECT_EQ(qHash(QStringLiteral("the same number in each process"), QHashSeed::globalSeed()),
              qHash(QStringLiteral("the same number in each process"), 0));
}
