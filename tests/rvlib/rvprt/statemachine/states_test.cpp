// The machines of both families on their own: paths that only a protocol gone wrong would take.
#include <gmock/gmock.h>

#include "tests/rvlib/rvprt/statemachine/families.h"
#include "tests/rvlib/rvprt/statemachine/lonemachine.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

template <class Family>
class CStatesTest : public testing::Test {
protected:
    static std::string Answer(std::size_t nQuery) { return Family::GetExchanges()[nQuery].m_Answer; }

    CLoneModuleStates<Family> m_ModuleStates;
    CLoneSetStates<Family> m_SetStates;
    CLone<Family, typename Family::CommonStates> m_CommonStates;
};
TYPED_TEST_SUITE(CStatesTest, BothFamilies);

constexpr std::size_t SET = 1;
constexpr std::size_t MODULE_STATE = 2;
constexpr std::size_t RPM = 3;

}  // namespace

TYPED_TEST(CStatesTest, ModuleStateInIdleStateIsTakenWithAWarning) {
    this->m_ModuleStates.SetTransaction(LONE_TRANSACTION);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_ModuleStates, this->Answer(MODULE_STATE)), 1);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid state"));
    EXPECT_THAT(this->m_ModuleStates.m_Reasons, IsEmpty());
}

TYPED_TEST(CStatesTest, ModuleStateTimeoutInIdleStateAsserts) {
    this->m_ModuleStates.SetTransaction(LONE_TRANSACTION);
    const CLogCapture Log;
    EXPECT_EQ(this->m_ModuleStates.PutRequestTimeoutProtocol(LONE_TRANSACTION), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid state"));
    EXPECT_THAT(this->m_ModuleStates.m_Reasons, ElementsAre(Comm::eTimeout));
}

TYPED_TEST(CStatesTest, ForeignTransactionIsNotTaken) {
    this->m_ModuleStates.QueryModuleState();
    this->m_SetStates.QueryActiveSet();
    this->m_CommonStates.QueryRPMData();
    EXPECT_EQ(PutAnswer(this->m_ModuleStates, this->Answer(MODULE_STATE), LONE_TRANSACTION + 1), 0);
    EXPECT_EQ(PutAnswer(this->m_SetStates, this->Answer(SET), LONE_TRANSACTION + 1), 0);
    EXPECT_EQ(PutAnswer(this->m_CommonStates, this->Answer(RPM), LONE_TRANSACTION + 1), 0);
    EXPECT_EQ(this->m_ModuleStates.PutRequestTimeoutProtocol(LONE_TRANSACTION + 1), 0);
    EXPECT_EQ(this->m_SetStates.PutRequestTimeoutProtocol(LONE_TRANSACTION + 1), 0);
    EXPECT_EQ(this->m_CommonStates.PutRequestTimeoutProtocol(LONE_TRANSACTION + 1), 0);
    EXPECT_THAT(this->m_ModuleStates.m_Reasons, IsEmpty());
    EXPECT_THAT(this->m_SetStates.m_Reasons, IsEmpty());
    EXPECT_NE(this->m_CommonStates.GetState(), 0U);
}

// Deliberate: the other two machines keep their transaction.
TYPED_TEST(CStatesTest, TheModuleStatesTransactionIsForgottenAfterItsEnd) {
    this->m_ModuleStates.QueryModuleState();
    EXPECT_EQ(PutAnswer(this->m_ModuleStates, this->Answer(MODULE_STATE)), 1);
    EXPECT_EQ(PutAnswer(this->m_ModuleStates, this->Answer(MODULE_STATE)), 0);
    EXPECT_THAT(this->m_ModuleStates.m_Reasons, ElementsAre(Comm::eSuccess));
}

TYPED_TEST(CStatesTest, SetInIdleStateAsserts) {
    this->m_SetStates.SetTransaction(LONE_TRANSACTION);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_SetStates, this->Answer(SET)), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "Failure in Idle state ?!?"));
    EXPECT_THAT(this->m_SetStates.m_Reasons, IsEmpty());
}

TYPED_TEST(CStatesTest, SetInAnUnknownStateAsserts) {
    this->m_SetStates.SetTransaction(LONE_TRANSACTION);
    this->m_SetStates.SetState(5);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_SetStates, this->Answer(SET)), 1);
    EXPECT_THAT(Log.GetAssertions(), testing::Contains("invalid state"));
    EXPECT_THAT(this->m_SetStates.m_Reasons, IsEmpty());
}

TYPED_TEST(CStatesTest, ValueInIdleStateAsserts) {
    this->m_CommonStates.SetTransaction(LONE_TRANSACTION);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_CommonStates, this->Answer(RPM)), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TYPED_TEST(CStatesTest, AnswerOfAnotherCommandAssertsAndIsReadAllTheSame) {
    this->m_CommonStates.QueryRPMData();
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_CommonStates, "1E" + this->Answer(RPM).substr(2)), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid response"));
    EXPECT_THAT(Log.GetTexts("Warning"), IsEmpty());
}

TYPED_TEST(CStatesTest, IdentificationWithAnotherSubCodeAsserts) {
    this->m_CommonStates.QueryModuleIdentification();
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(this->m_CommonStates, Cut("11 05 01 09", 49)), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid request type"));
    EXPECT_EQ(this->m_CommonStates.GetState(), 0U);
}

TYPED_TEST(CStatesTest, UnknownStateAssertsAndHasATextPerMachine) {
    const CLogCapture Log;
    EXPECT_STREQ(this->m_ModuleStates.StateToString(99), "invalid module state!!");
    EXPECT_STREQ(this->m_SetStates.StateToString(99), "invalid state!");
    EXPECT_STREQ(this->m_CommonStates.StateToString(99), "invalid state");
    EXPECT_EQ(Log.GetAssertions().size(), 3U);
}
