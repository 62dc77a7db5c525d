#include "rvdlm/m_rtr/rtr_trim/communication/statequestion.h"

#include <gtest/gtest.h>

#include "tests/support/frames.h"

namespace {

constexpr const char* REPORT_IN_LOCK = "08 05 00 07 00 00 00 00";
constexpr const char* REPORT_UNLOCKED = "08 05 00 07 00 00 00 20";
constexpr const char* ANSWER_IN_LOCK = "08 05 01 07 00 00 00 00";
constexpr const char* ANSWER_UNLOCKED = "08 05 01 07 00 00 00 20";
constexpr const char* READING = "1E 05 00 01 00 02 00";

/// A module with address 5; this computer is 1.
class StateQuestion : public testing::Test {
protected:
    bool Put(std::uint64_t Now, const char* pFrame) { return m_Question.OnFrame(Now, Bytes(pFrame)); }
    void Ask(std::uint64_t Now) { m_Question.Ask(Now, 1); }

    CStateQuestion m_Question{5};
};

}  // namespace

TEST_F(StateQuestion, IsTheModuleStatesQueryAsItIs) {
    EXPECT_EQ(m_Question.Ask(0, 1), (CStateQuestion::Question{0x08, 1, 5}));
}

TEST_F(StateQuestion, EverythingPassesThatNobodyAskedFor) {
    for (const char* pFrame :
         {REPORT_IN_LOCK, REPORT_IN_LOCK, ANSWER_IN_LOCK, READING, "08 06 01 07", "08 05"}) {
        EXPECT_TRUE(Put(10, pFrame)) << pFrame;
    }
}

TEST_F(StateQuestion, AnswerThatSaysWhatIsKnownHasNoEffect) {
    Put(0, REPORT_IN_LOCK);
    Ask(1000);
    EXPECT_FALSE(Put(1003, ANSWER_IN_LOCK));
    EXPECT_TRUE(m_Question.IsKnownSince(1003));
}

TEST_F(StateQuestion, AnswerWithNewsPassesOnce) {
    Put(0, REPORT_IN_LOCK);
    Ask(1000);
    EXPECT_TRUE(Put(1003, ANSWER_UNLOCKED));
    Ask(2000);
    EXPECT_FALSE(Put(2003, ANSWER_UNLOCKED));
}

TEST_F(StateQuestion, AnswerOlderThanTheReportThatOvertookItCountsForNothing) {
    Put(0, REPORT_UNLOCKED);
    Ask(1000);
    EXPECT_TRUE(Put(1100, REPORT_IN_LOCK));
    EXPECT_FALSE(Put(1700, ANSWER_UNLOCKED));
    // The next one counts again.
    Ask(2000);
    EXPECT_TRUE(Put(2003, ANSWER_UNLOCKED));
}

TEST_F(StateQuestion, EveryQuestionFromBeforeTheReportIsOvertaken) {
    Put(0, REPORT_UNLOCKED);
    Ask(1000);
    Ask(1500);
    Put(1600, REPORT_IN_LOCK);
    EXPECT_FALSE(Put(1700, ANSWER_UNLOCKED));
    EXPECT_FALSE(Put(2200, ANSWER_UNLOCKED));
}

TEST_F(StateQuestion, SpindleThatStopsOvertakesToo) {
    Put(0, REPORT_IN_LOCK);
    Ask(1000);
    m_Question.Overtake();
    EXPECT_FALSE(Put(1700, ANSWER_UNLOCKED));
}

TEST_F(StateQuestion, StateLongBehindItsQuestionIsNoAnswer) {
    Put(0, REPORT_IN_LOCK);
    Ask(1000);
    EXPECT_TRUE(Put(1000 + CStateQuestion::ANSWER_LIFE + 1, ANSWER_IN_LOCK));
}

// What the module reports by itself passes, whatever is asked and unanswered.
TEST_F(StateQuestion, ReportsOfAModuleThatDoesNotAnswerPassAtOnce) {
    for (std::uint64_t Now = 0; Now < 10000; Now += 1000) {
        Ask(Now);
        Ask(Now + 500);
        EXPECT_TRUE(Put(Now + 600, REPORT_UNLOCKED));
        EXPECT_TRUE(Put(Now + 700, REPORT_IN_LOCK));
    }
}

TEST_F(StateQuestion, FramesOfOtherModulesAreNotLookedAt) {
    Put(0, REPORT_IN_LOCK);
    Ask(1000);
    EXPECT_TRUE(Put(1003, "08 06 01 07 00 00 00 00"));
    EXPECT_FALSE(m_Question.IsKnownSince(1003));
    EXPECT_FALSE(Put(1004, ANSWER_IN_LOCK));
}

TEST_F(StateQuestion, IsDueWhenTheStateIsASecondOldAndAgainWhileUnanswered) {
    EXPECT_TRUE(m_Question.IsDue(0));
    Put(100, REPORT_IN_LOCK);
    EXPECT_FALSE(m_Question.IsDue(1099));
    EXPECT_TRUE(m_Question.IsDue(1100));
    Ask(1100);
    EXPECT_FALSE(m_Question.IsDue(1599));
    EXPECT_TRUE(m_Question.IsDue(1600));
    Put(1600, ANSWER_IN_LOCK);
    EXPECT_FALSE(m_Question.IsDue(2599));
}

TEST_F(StateQuestion, IsDueAtOnceForWhatMustBeHeardOfSinceAnInstant) {
    Put(100, REPORT_IN_LOCK);
    EXPECT_FALSE(m_Question.IsDue(200, 100));
    EXPECT_TRUE(m_Question.IsDue(200, 101));
}

TEST_F(StateQuestion, ModuleThatAnswersAndSendsNothingMoreIsDead) {
    Ask(0);
    Put(3, ANSWER_IN_LOCK);
    Ask(1000);
    Ask(1500);
    EXPECT_FALSE(m_Question.IsDead(2499));
    EXPECT_TRUE(m_Question.IsDead(2500));
    Put(2600, READING);
    EXPECT_FALSE(m_Question.IsDead(2700));
}

// It is judged by its reports, then.
TEST_F(StateQuestion, ModuleThatNeverAnswersIsNotDead) {
    Put(0, REPORT_IN_LOCK);
    for (std::uint64_t Now = 1000; Now < 10000; Now += 500) {
        Ask(Now);
        EXPECT_FALSE(m_Question.IsDead(Now));
    }
}

TEST_F(StateQuestion, ModuleThatReportsButAnswersNoMoreIsNotDeadEither) {
    Ask(0);
    Put(3, ANSWER_IN_LOCK);
    Ask(1000);
    Put(2600, READING);
    EXPECT_FALSE(m_Question.IsDead(9000));
}

TEST_F(StateQuestion, WhatWasAskedBeforeARunSaysNothingInIt) {
    Ask(0);
    Put(3, ANSWER_IN_LOCK);
    Ask(1100);
    ASSERT_TRUE(m_Question.IsDead(5000));
    m_Question.Begin();
    EXPECT_FALSE(m_Question.IsDead(5000));
    EXPECT_TRUE(m_Question.IsDue(1101)) << "at once";
}
