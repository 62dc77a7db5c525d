#include "simulator/spindle.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "platform/system/virtualeventloop.h"

namespace {

class SpindleTest : public testing::Test {
protected:
    SpindleTest() {
        m_Spindle.OnChanged = [this] {
            m_Changes.push_back(std::to_string(m_Loop.Now()) +
                                (m_Spindle.IsTurning() ? " turning" : " standing") +
                                (m_Spindle.IsInLock() ? " lock" : " no lock") +
                                (m_Spindle.IsInvalid() ? " invalid" : " valid"));
        };
    }

    CVirtualEventLoop m_Loop;
    CSpindle m_Spindle{1500.0};
    std::vector<std::string> m_Changes;
};

TEST_F(SpindleTest, StandsAtFirst) {
    EXPECT_EQ(m_Spindle.GetSpeed(), 0.0);
    EXPECT_FALSE(m_Spindle.IsTurning());
    EXPECT_TRUE(m_Spindle.IsInLock());
    EXPECT_TRUE(m_Spindle.IsInvalid());
}

// 3000 rpm at 1500 rpm a second take 2 s, and the lock 500 ms more.
TEST_F(SpindleTest, RampsUpAndIsInLockHalfASecondAfter) {
    m_Spindle.SetCommanded(3000.0);
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(1000);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 1500.0);
    m_Loop.Advance(999);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 2998.5);
    EXPECT_TRUE(m_Spindle.IsInvalid());
    m_Loop.Advance(1);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 3000.0);
    EXPECT_FALSE(m_Spindle.IsInvalid());
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(499);
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(1);
    EXPECT_TRUE(m_Spindle.IsInLock());
    m_Loop.Advance(60000);
    EXPECT_EQ(m_Changes, (std::vector<std::string>{"0 turning no lock invalid", "2000 turning no lock valid",
                                                   "2500 turning lock valid"}));
}

TEST_F(SpindleTest, StandsAgainAfterTheRampDown) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(10000);
    m_Changes.clear();
    m_Spindle.SetCommanded(0.0);
    m_Loop.Advance(1999);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 1.5);
    EXPECT_TRUE(m_Spindle.IsTurning());
    m_Loop.Advance(10000);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 0.0);
    EXPECT_EQ(m_Changes,
              (std::vector<std::string>{"10000 turning no lock invalid", "12000 standing no lock invalid",
                                        "12500 standing lock invalid"}));
}

TEST_F(SpindleTest, ANewCommandTurnsTheRampAroundWhereItIs) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(1000);
    m_Spindle.SetCommanded(600.0);
    m_Loop.Advance(300);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 1050.0);
    m_Loop.Advance(10000);
    EXPECT_DOUBLE_EQ(m_Spindle.GetSpeed(), 600.0);
    // 1500 to 600 rpm take 600 ms from 1000 on; nothing is left of the first ramp's end.
    EXPECT_EQ(m_Changes,
              (std::vector<std::string>{"0 turning no lock invalid", "1000 turning no lock invalid",
                                        "1600 turning no lock valid", "2100 turning lock valid"}));
}

TEST_F(SpindleTest, ANewCommandWhileTheLockIsAwaitedBeginsAfresh) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(2300);
    m_Spindle.SetCommanded(3150.0);
    m_Loop.Advance(10000);
    EXPECT_EQ(m_Changes.back(), "2900 turning lock valid");
    EXPECT_EQ(m_Changes.size(), 5U);
}

TEST_F(SpindleTest, TheLockMayBeLostAtASteadySpeedAndComesBackByItself) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(10000);
    m_Changes.clear();
    m_Spindle.LoseLock(300);
    m_Loop.Advance(299);
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(10000);
    EXPECT_EQ(m_Changes,
              (std::vector<std::string>{"10000 turning no lock valid", "10300 turning lock valid"}));
}

TEST_F(SpindleTest, ALockLostInARampIsBackOnlyWhenBothAreOver) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(2400);
    m_Spindle.LoseLock(300);
    m_Loop.Advance(200);
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(10000);
    EXPECT_EQ(m_Changes.back(), "2700 turning lock valid");
}

TEST_F(SpindleTest, TheSameCommandAgainChangesNothing) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(500);
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Advance(1500);
    EXPECT_FALSE(m_Spindle.IsInvalid());
    m_Loop.Advance(500);
    m_Spindle.SetCommanded(3000.0);
    EXPECT_TRUE(m_Spindle.IsInLock());
    EXPECT_EQ(m_Changes.size(), 3U);
}

TEST_F(SpindleTest, BelowSixtyRpmTheSpeedStaysInvalid) {
    m_Spindle.SetCommanded(59.9);
    m_Loop.Advance(5000);
    EXPECT_TRUE(m_Spindle.IsInvalid());
    EXPECT_TRUE(m_Spindle.IsInLock());
    m_Spindle.SetCommanded(60.0);
    m_Loop.Advance(5000);
    EXPECT_FALSE(m_Spindle.IsInvalid());
}

TEST_F(SpindleTest, ALateTimerDoesNotPutOffTheLock) {
    m_Spindle.SetCommanded(3000.0);
    m_Loop.Sleep(2400);  // the thread is held up beyond the end of the ramp
    m_Loop.Advance(99);
    EXPECT_FALSE(m_Spindle.IsInLock());
    m_Loop.Advance(1);
    EXPECT_TRUE(m_Spindle.IsInLock());
}

TEST_F(SpindleTest, AnEndedSpindleLeavesNoTimer) {
    {
        CSpindle Other(100.0);
        Other.SetCommanded(1000.0);
        EXPECT_EQ(m_Loop.GetTimerCount(), 1U);
    }
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
}

}  // namespace
