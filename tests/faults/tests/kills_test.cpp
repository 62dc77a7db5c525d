// A run that is killed, or whose disk fails, at calls that change something: each part of the installation is
// then as before the run or as after it, and the program has told which. bench/kills does it at each call.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/faults/diskplan.h"
#include "tests/faults/faultseries.h"

using testing::IsEmpty;

namespace {

class KillsTest : public testing::Test {
protected:
    /// So many of the calls, spread over the run.
    static void Disturb(CFaultSeries& rSeries, const char* pKind, std::size_t nCases,
                        unsigned long nFaults = 0) {
        const std::size_t nCalls = rSeries.GetCalls().size();
        for (std::size_t i = 0; i < nCases; ++i) {
            const unsigned long At = 1 + (2 * i + 1) * nCalls / (2 * nCases);
            const auto Outcome = rSeries.Run({pKind, At, nFaults}, i + 1 == nCases / 2);
            EXPECT_THAT(Outcome.m_Faults, IsEmpty())
                << pKind << " at call " << At << ", " << Outcome.m_Call << "\n"
                << Outcome.m_Left << "\n"
                << Outcome.m_Program.m_Output;
        }
    }
};

TEST_F(KillsTest, WhatARunHasLeftWhereverItWasDisturbedIsOldOrNew) {
    CFaultSeries Series;
    Disturb(Series, DiskPlan::KILL, 8);
    Disturb(Series, DiskPlan::TORN, 6);
    Disturb(Series, DiskPlan::FULL, 6);
    Disturb(Series, DiskPlan::ERROR, 5);
    Disturb(Series, DiskPlan::ERROR, 3, 1);
    Disturb(Series, DiskPlan::SHORT, 2);
}

TEST_F(KillsTest, ANewInstallationWhoseFirstRunIsKilledServesTheNextOne) {
    CFaultSeries Series(true);
    Disturb(Series, DiskPlan::KILL, 4);
    Disturb(Series, DiskPlan::FULL, 2);
}

}  // namespace
