// The machines on their own: paths that only a protocol gone wrong would take.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "rvlib/rvprt/kestrel/statemachine/commonstates.h"
#include "rvlib/rvprt/kestrel/statemachine/modulestates.h"
#include "rvlib/rvprt/kestrel/statemachine/setstates.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// What a machine needs around it: every request gets the transaction 77.
template <class Machine>
class CLone : public Machine {
public:
    using Machine::StateToString;
    void SetTransaction(std::uint32_t Id) { this->m_TransactionID = Id; }

private:
    std::uint32_t SendRequestToProtocol(std::uint32_t, std::uint8_t*, std::uint32_t, std::uint32_t,
                                        std::int32_t, CWnd*) override {
        return 77;
    }
    std::uint8_t GetModuleAddress() const override { return 5; }
    const char* GetLogID() const override { return "Lone"; }
};

class CLoneModuleStates : public CLone<Kestrel::CModuleStates> {
public:
    std::vector<Reason> m_Reasons;

private:
    void OnModuleState(Reason Why, const Kestrel::CModuleStateResponse*) override {
        m_Reasons.push_back(Why);
    }
};

class CLoneSetStates : public CLone<Kestrel::CSetStates> {
public:
    std::vector<Reason> m_Reasons;

private:
    void OnSetRequest(Reason Why, const Kestrel::CSet*) override { m_Reasons.push_back(Why); }
};

using CLoneCommonStates = CLone<Kestrel::CCommonStates>;

template <class Machine>
int PutAnswer(Machine& rMachine, std::uint32_t Id, const std::string& rHex) {
    const std::vector<std::uint8_t> Frame = Bytes(rHex);
    return rMachine.PutResponseFromProtocol(Id, Frame.data(), static_cast<std::uint32_t>(Frame.size()));
}

}  // namespace

TEST(KestrelModuleStates, AnswerInIdleStateIsTakenWithAWarning) {
    CLoneModuleStates Machine;
    Machine.SetTransaction(77);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(Machine, 77, "08 05 01 07 00 00 00 00"), 1);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid state"));
    EXPECT_THAT(Machine.m_Reasons, IsEmpty());
}

TEST(KestrelModuleStates, ForeignTransactionIsNotTaken) {
    CLoneModuleStates Machine;
    Machine.QueryModuleState();
    EXPECT_EQ(PutAnswer(Machine, 78, "08 05 01 07 00 00 00 00"), 0);
    EXPECT_EQ(Machine.PutRequestTimeoutProtocol(78), 0);
    EXPECT_THAT(Machine.m_Reasons, IsEmpty());
}

TEST(KestrelModuleStates, TransactionIsForgottenAfterItsEnd) {
    CLoneModuleStates Machine;
    Machine.QueryModuleState();
    EXPECT_EQ(PutAnswer(Machine, 77, "08 05 01 07 00 00 00 00"), 1);
    EXPECT_EQ(PutAnswer(Machine, 77, "08 05 01 07 00 00 00 00"), 0);
    EXPECT_THAT(Machine.m_Reasons, ElementsAre(Comm::eSuccess));
}

TEST(KestrelSetStates, AnswerInIdleStateAsserts) {
    CLoneSetStates Machine;
    Machine.SetTransaction(77);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(Machine, 77, "10 05 01 00 02 01 00 00 01"), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "Failure in Idle state ?!?"));
    EXPECT_THAT(Machine.m_Reasons, IsEmpty());
}

TEST(KestrelCommonStates, AnswerInIdleStateAsserts) {
    CLoneCommonStates Machine;
    Machine.SetTransaction(77);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(Machine, 77, "1C 05 01 B8 0B"), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST(KestrelCommonStates, AnswerOfAnotherCommandAssertsAndIsReadAllTheSame) {
    CLoneCommonStates Machine;
    Machine.QueryRPMData();
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(Machine, 77, "1E 05 01 B8 0B"), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid response"));
    EXPECT_THAT(Log.GetTexts("Warning"), IsEmpty());
}

TEST(KestrelCommonStates, IdentificationWithAnotherSubCodeAsserts) {
    CLoneCommonStates Machine;
    Machine.QueryModuleIdentification();
    std::vector<std::uint8_t> Frame = Bytes("11 05 01 09");
    Frame.resize(49);
    const CLogCapture Log;
    EXPECT_EQ(PutAnswer(Machine, 77, Hex(Frame)), 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid request type"));
    EXPECT_EQ(Machine.GetState(), 0U);
}

TEST(KestrelStates, UnknownStateAssertsAndHasATextPerMachine) {
    const CLogCapture Log;
    EXPECT_STREQ(CLoneModuleStates().StateToString(2), "invalid module state!!");
    EXPECT_STREQ(CLoneSetStates().StateToString(2), "invalid state!");
    EXPECT_STREQ(CLoneCommonStates().StateToString(4), "invalid state");
    EXPECT_EQ(Log.GetAssertions().size(), 3U);
}
