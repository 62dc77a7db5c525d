#include "rvdlm/m_rtr/rtr_trim/silencewatch.h"
#include "tests/support/casenames.h"

#include <gtest/gtest.h>

namespace {

constexpr std::uint64_t TICK = 250;

/// A plane whose module reports with a period, watched four times a second.
class SilenceWatch : public testing::TestWithParam<std::uint64_t> {
protected:
    /// Lets time pass up to an instant; the module reports if it has a period. Whether the plane was ever
    /// silent.
    bool PassTo(std::uint64_t Until, std::uint64_t Period) {
        bool bEverSilent = false;
        for (; m_Now < Until; m_Now += 10) {
            if (Period != 0 && m_Now % Period == 0) {
                m_Watch.OnReading(m_Now, true);
            }
            if (m_Now % TICK == 0) {
                bEverSilent = m_Watch.Tick(m_Now) || bEverSilent;
            }
        }
        return bEverSilent;
    }
    /// When the plane counts as silent, if nothing comes any more.
    std::uint64_t FindSilence() {
        while (!m_Watch.Tick(m_Now)) {
            m_Now += 10;
        }
        return m_Now;
    }
    void Turn(bool bInLock = true) { m_Watch.OnConditions(m_Now, true, bInLock); }

    std::uint64_t m_Now = 0;
    CSilenceWatch m_Watch;
};

}  // namespace

TEST_P(SilenceWatch, ModuleOfThisPeriodIsNeverSilentWhileItReports) {
    Turn();
    EXPECT_FALSE(PassTo(60000, GetParam()));
}

TEST_P(SilenceWatch, ModuleOfThisPeriodIsSilentWhenAReportIsOverdue) {
    Turn();
    PassTo(20001, GetParam());  // the last report at a multiple of the period
    const std::uint64_t Last = 20000 / GetParam() * GetParam();
    const std::uint64_t Silent = FindSilence();
    EXPECT_GT(Silent, Last + GetParam() + 400);
    EXPECT_LE(Silent, Last + std::max<std::uint64_t>(1000, GetParam() + GetParam() / 4 + 500));
}

INSTANTIATE_TEST_SUITE_P(Periods, SilenceWatch, testing::Values(50, 200, 1000, 2000, 5000),
                         CaseNames::ByNumber("Ms"));

using SilenceWatchOnce = SilenceWatch;

TEST_F(SilenceWatchOnce, ReadingsCountAgainAsSoonAsTheyCome) {
    Turn();
    PassTo(1000, 50);
    ASSERT_TRUE(PassTo(3000, 0));
    EXPECT_TRUE(m_Watch.IsSilent());
    m_Watch.OnReading(m_Now, true);
    EXPECT_FALSE(m_Watch.IsSilent());
    EXPECT_FALSE(m_Watch.Tick(m_Now));
}

TEST_F(SilenceWatchOnce, SpindleAtRestMayBeSilent) {
    Turn();
    PassTo(1000, 50);
    m_Watch.OnConditions(m_Now, false, true);
    EXPECT_FALSE(PassTo(100000, 0));
    // The silence at rest doesn't count once the spindle turns.
    Turn();
    EXPECT_FALSE(PassTo(m_Now + 900, 0));
    EXPECT_TRUE(PassTo(m_Now + 400, 0));
}

TEST_F(SilenceWatchOnce, SilenceEndsWhenTheSpindleStops) {
    Turn();
    PassTo(1000, 50);
    ASSERT_TRUE(PassTo(3000, 0));
    m_Watch.OnConditions(m_Now, false, true);
    EXPECT_FALSE(m_Watch.IsSilent());
    Turn();
    EXPECT_FALSE(PassTo(m_Now + 900, 0));
}

TEST_F(SilenceWatchOnce, RestIsNoPeriod) {
    Turn();
    PassTo(1001, 50);
    m_Watch.OnConditions(m_Now, false, true);
    m_Now = 4000;
    Turn();
    m_Watch.OnReading(m_Now, true);
    EXPECT_EQ(m_Watch.GetLimit(), CSilenceWatch::SHORTEST_LIMIT);
}

TEST_F(SilenceWatchOnce, NothingIsExpectedOutOfLock) {
    Turn(false);
    EXPECT_FALSE(PassTo(100000, 0));
}

// A reading from before the lock is of another state of the rotor: it doesn't cover for one in lock.
TEST_F(SilenceWatchOnce, FirstReadingInLockMustComeBeforeSamplingHasGotFar) {
    Turn(false);
    PassTo(30001, 5000);
    m_Now = 30010;
    Turn();
    EXPECT_EQ(FindSilence(), 30010U + CSilenceWatch::FIRST_READING);
}

TEST_F(SilenceWatchOnce, RunOnADeadLineIsSilentHoweverFastTheModuleWasBefore) {
    Turn();
    PassTo(1000, 50);
    m_Watch.Begin();
    m_Now = 50000;
    Turn();
    EXPECT_FALSE(m_Watch.IsSilent());
    EXPECT_EQ(FindSilence(), 50000U + CSilenceWatch::FIRST_READING);
}

// The answer to a question comes between two reports and makes neither gap a period.
TEST_F(SilenceWatchOnce, AnswersSayNothingOfThePeriod) {
    Turn();
    PassTo(10001, 5000);
    const std::uint64_t Limit = m_Watch.GetLimit();
    m_Watch.OnReading(13000, false);
    m_Watch.OnReading(15000, true);
    EXPECT_EQ(m_Watch.GetLimit(), Limit);
    EXPECT_EQ(Limit, 6750U);
}

// Only the first answer to a question that was repeated is told as one.
TEST_F(SilenceWatchOnce, FurtherAnswersToARepeatedQuestionAreNoReports) {
    Turn();
    m_Watch.OnReading(3000, false);
    m_Watch.OnReading(3500, true);
    m_Watch.OnReading(4000, true);
    EXPECT_EQ(m_Watch.GetLimit(), 6750U);
}

TEST_F(SilenceWatchOnce, OutageIsNoPeriod) {
    Turn();
    PassTo(1000, 50);
    m_Now = 9000;
    PassTo(9001, 50);
    EXPECT_EQ(m_Watch.GetLimit(), CSilenceWatch::SHORTEST_LIMIT);
}

TEST_F(SilenceWatchOnce, ModuleThatBecomesFasterIsKnownAsSuch) {
    Turn();
    PassTo(20001, 5000);
    PassTo(22001, 200);
    EXPECT_EQ(m_Watch.GetLimit(), CSilenceWatch::SHORTEST_LIMIT);
}
