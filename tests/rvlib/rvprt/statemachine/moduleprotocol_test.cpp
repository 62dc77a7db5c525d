// What the conversations with both families of modules have in common: one request a machine, repetition,
// failures, and queries from within callbacks.
#include "rvlib/rvprt/statemachine/moduleprotocol.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "tests/rvlib/rvprt/statemachine/families.h"
#include "tests/support/logcapture.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

template <class Family>
class CModuleProtocolTest : public testing::Test {
protected:
    using Protocol = typename Family::Protocol;
    using Exchange = CExchange<Protocol>;

    /// The test for each query, with a module of its own and nothing under way.
    template <class Test>
    static void ForEachQuery(Test&& rTest) {
        for (const Exchange& rExchange : Family::GetExchanges()) {
            SCOPED_TRACE(rExchange.m_Call);
            CVirtualEventLoop Loop;
            Protocol Module;
            rTest(Loop, Module, rExchange);
        }
    }
    static int Ask(Protocol& rModule, const Exchange& rExchange) { return rExchange.m_pQuery(rModule); }
    static void AskAgainFromTheFirstCallback(Protocol& rModule, const Exchange& rExchange) {
        rModule.m_OnCall = [&] {
            if (rModule.m_Calls.size() == 1) {
                EXPECT_EQ(Ask(rModule, rExchange), 1);
            }
        };
    }
    static std::string Success(const Exchange& rExchange) {
        return rExchange.m_Call + " eSuccess " + rExchange.m_Data;
    }
    static std::string Failure(const Exchange& rExchange, const char* pReason) {
        return rExchange.m_Call + " " + pReason + " null";
    }
    /// The frame with another byte at that place.
    static std::string With(const std::string& rHex, std::size_t nByte, std::uint8_t Value) {
        std::vector<std::uint8_t> Frame = Bytes(rHex);
        Frame.at(nByte) = Value;
        return Hex(Frame);
    }
};
TYPED_TEST_SUITE(CModuleProtocolTest, BothFamilies);

constexpr std::size_t SOURCE = 1;
constexpr std::size_t DESTINATION = 2;

}  // namespace

TYPED_TEST(CModuleProtocolTest, EachQuerySendsItsFrameAndReportsTheAnswer) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        EXPECT_EQ(this->Ask(rModule, rExchange), 1);
        EXPECT_THAT(rModule.m_Sent, ElementsAre(rExchange.m_Request));
        EXPECT_NE(Put(rModule, rExchange.m_Answer), 0);
        rLoop.Advance(5000);
        EXPECT_THAT(rModule.m_Sent, ElementsAre(rExchange.m_Request));  // nothing polls, nothing repeats
        EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Success(rExchange)));
        EXPECT_THAT(Log.GetRecords(), IsEmpty());
    });
}

TYPED_TEST(CModuleProtocolTest, UnusableAnswerGivesErrorAndEndsTheQuery) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        EXPECT_NE(Put(rModule, rExchange.m_Unusable), 0);
        rLoop.Advance(5000);
        EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Failure(rExchange, "eError")));
        EXPECT_EQ(rModule.m_Sent.size(), 1U);  // no repetition after an answer, whatever it says
        EXPECT_EQ(this->Ask(rModule, rExchange), 1);
    });
}

// --- one request a machine ---

TYPED_TEST(CModuleProtocolTest, SecondQueryOfAMachineIsRefusedWithAWarning) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        const CLogCapture Log;
        EXPECT_EQ(this->Ask(rModule, rExchange), 0);
        EXPECT_THAT(Log.GetTexts("Warning"),
                    ElementsAre("Command only possible, if no other is in progress: " + rExchange.m_State));
        EXPECT_EQ(rModule.m_Sent.size(), 1U);
    });
}

TYPED_TEST(CModuleProtocolTest, IdentificationSpeedAndReadingsExcludeEachOther) {
    const auto Exchanges = TypeParam::GetExchanges();
    for (const std::size_t nFirst : {0, 3, 4}) {
        CVirtualEventLoop Loop;
        typename TypeParam::Protocol Module;
        this->Ask(Module, Exchanges[nFirst]);
        for (const std::size_t nSecond : {0, 3, 4}) {
            EXPECT_EQ(this->Ask(Module, Exchanges[nSecond]), 0) << nFirst << " " << nSecond;
        }
        EXPECT_EQ(Module.m_Sent.size(), 1U);
    }
}

TYPED_TEST(CModuleProtocolTest, TheThreeMachinesDoNotBlockEachOther) {
    const auto Exchanges = TypeParam::GetExchanges();
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    for (const std::size_t nQuery : {4, 2, 1}) {
        EXPECT_EQ(this->Ask(Module, Exchanges[nQuery]), 1);
    }
    for (const std::size_t nQuery : {1, 2, 4}) {
        Put(Module, Exchanges[nQuery].m_Answer);
    }
    EXPECT_THAT(Module.m_Calls, ElementsAre(this->Success(Exchanges[1]), this->Success(Exchanges[2]),
                                            this->Success(Exchanges[4])));
}

TYPED_TEST(CModuleProtocolTest, RefusedTimerFailsTheQueryAndLeavesTheMachineIdle) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        rLoop.FailTimers(1);
        const CLogCapture Log;
        EXPECT_EQ(this->Ask(rModule, rExchange), 0);
        EXPECT_THAT(Log.GetTexts("Error"), ElementsAre("SendRequestToProtocol failed"));
        EXPECT_THAT(rModule.m_Sent, IsEmpty());
        EXPECT_EQ(this->Ask(rModule, rExchange), 1);
    });
}

// --- repetition ---

TYPED_TEST(CModuleProtocolTest, SilenceEndsAsTimeoutAfterFourSendings) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        this->Ask(rModule, rExchange);
        rLoop.Advance(1999);
        EXPECT_THAT(rModule.m_Calls, IsEmpty());
        rLoop.Advance(1);
        EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Failure(rExchange, "eTimeout")));
        rLoop.Advance(60000);
        EXPECT_EQ(rModule.m_Sent.size(), 4U);
        EXPECT_THAT(rModule.m_Sent, Each(rExchange.m_Request));
        EXPECT_EQ(this->Ask(rModule, rExchange), 1);
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    });
}

// Instant of the answer, and the sendings up to then.
TYPED_TEST(CModuleProtocolTest, AnswerToAnySendingIsASuccess) {
    constexpr std::pair<std::uint32_t, std::size_t> CASES[] = {{0, 1},    {499, 1},  {500, 2}, {999, 2},
                                                               {1000, 3}, {1500, 4}, {1999, 4}};
    for (const auto& [Instant, nSent] : CASES) {
        this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
            SCOPED_TRACE(Instant);
            this->Ask(rModule, rExchange);
            rLoop.Advance(Instant);
            Put(rModule, rExchange.m_Answer);
            rLoop.Advance(5000);
            EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Success(rExchange)));
            EXPECT_EQ(rModule.m_Sent.size(), nSent);
        });
    }
}

// After the time-out nothing awaits the answer any more: it counts as sent by the module itself.
TYPED_TEST(CModuleProtocolTest, AnswerAfterTheTimeoutIsAnIndication) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        rLoop.Advance(2001);
        rModule.m_Calls.clear();
        Put(rModule, rExchange.m_Answer);
        if (rExchange.m_bIndication) {
            EXPECT_THAT(rModule.m_Calls, ElementsAre(rExchange.m_Call + " eIndication " + rExchange.m_Data));
        } else {
            EXPECT_THAT(rModule.m_Calls, IsEmpty());
        }
    });
}

TYPED_TEST(CModuleProtocolTest, SecondAnswerIsAnIndication) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        Put(rModule, rExchange.m_Answer);
        rModule.m_Calls.clear();
        Put(rModule, rExchange.m_Answer);
        EXPECT_EQ(rModule.m_Calls.size(), rExchange.m_bIndication ? 1U : 0U);
    });
}

// --- whose answer it is ---

TYPED_TEST(CModuleProtocolTest, AnswerToAnyDestinationIsAccepted) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        EXPECT_NE(Put(rModule, this->With(rExchange.m_Answer, DESTINATION, 0)), 0);
        EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Success(rExchange)));
    });
}

TYPED_TEST(CModuleProtocolTest, AnswerToAnotherComputerIsNotOurs) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        this->Ask(rModule, rExchange);
        Put(rModule, this->With(rExchange.m_Answer, DESTINATION, 2));
        EXPECT_EQ(this->Ask(rModule, rExchange), 0);  // still open
        Put(rModule, rExchange.m_Answer);
        EXPECT_EQ(rModule.m_Calls.back(), this->Success(rExchange));
    });
}

TYPED_TEST(CModuleProtocolTest, FramesOfAnotherModuleFallThrough) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        EXPECT_EQ(Put(rModule, this->With(rExchange.m_Answer, SOURCE, 6)), 0);
        this->Ask(rModule, rExchange);
        EXPECT_EQ(Put(rModule, this->With(rExchange.m_Answer, SOURCE, 6)), 0);
        EXPECT_THAT(rModule.m_Calls, IsEmpty());
        EXPECT_THAT(Log.GetRecords(), IsEmpty());
    });
}

// The identification has no other command to be told by but its sub-code.
TYPED_TEST(CModuleProtocolTest, IdentificationWithAnotherSubCodeDoesNotReachTheMachine) {
    const auto Query = TypeParam::GetExchanges()[0];
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    this->Ask(Module, Query);
    EXPECT_EQ(Put(Module, this->With(Query.m_Answer, 3, 7)), 0);
    EXPECT_THAT(Module.m_Calls, IsEmpty());
    EXPECT_EQ(this->Ask(Module, Query), 0);
}

// Two tests stand behind each other: 45 bytes from the sub-code on pass the first and fail the second.
TYPED_TEST(CModuleProtocolTest, ShortIdentificationFailsInTheTestOfItsLength) {
    const auto Query = TypeParam::GetExchanges()[0];
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    {
        const CLogCapture Log;
        this->Ask(Module, Query);
        Put(Module, Cut(Query.m_Answer, 47));
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("not enough data", "Invalid response received"));
    }
    const CLogCapture Log;
    this->Ask(Module, Query);
    Put(Module, Cut(Query.m_Answer, 48));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

// --- indications ---

// Addressed to another computer, so that it can't be the answer.
TYPED_TEST(CModuleProtocolTest, ModuleStateIndicationDuringAQueryIsDeliveredAndTheQueryStaysOpen) {
    const auto Query = TypeParam::GetExchanges()[2];
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    this->Ask(Module, Query);
    const CLogCapture Log;
    Put(Module, this->With(Query.m_Answer, DESTINATION, 2));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Indication in invalid state received"));
    EXPECT_EQ(this->Ask(Module, Query), 0);
    Put(Module, Query.m_Answer);
    EXPECT_THAT(Module.m_Calls, ElementsAre("ModuleState eIndication " + Query.m_Data, this->Success(Query)));
}

TYPED_TEST(CModuleProtocolTest, IndicationLeavesARunningQueryAlone) {
    const auto Exchanges = TypeParam::GetExchanges();
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    this->Ask(Module, Exchanges[4]);
    Put(Module, Exchanges[3].m_Answer);
    Put(Module, Exchanges[4].m_Answer);
    EXPECT_THAT(Module.m_Calls,
                ElementsAre("RPM eIndication " + Exchanges[3].m_Data, this->Success(Exchanges[4])));
}

// --- queries from within callbacks ---

TYPED_TEST(CModuleProtocolTest, CallbackOfAnAnswerMaySendTheSameQueryAgain) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        this->AskAgainFromTheFirstCallback(rModule, rExchange);
        this->Ask(rModule, rExchange);
        Put(rModule, rExchange.m_Answer);
        rLoop.Advance(700);
        Put(rModule, rExchange.m_Answer);
        EXPECT_THAT(rModule.m_Calls, ElementsAre(this->Success(rExchange), this->Success(rExchange)));
        EXPECT_EQ(rModule.m_Sent.size(), 3U);  // of which one is a repetition
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    });
}

TYPED_TEST(CModuleProtocolTest, CallbackOfAnErrorMayAskAgain) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        this->AskAgainFromTheFirstCallback(rModule, rExchange);
        this->Ask(rModule, rExchange);
        Put(rModule, rExchange.m_Unusable);
        Put(rModule, rExchange.m_Answer);
        EXPECT_THAT(rModule.m_Calls,
                    ElementsAre(this->Failure(rExchange, "eError"), this->Success(rExchange)));
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    });
}

TYPED_TEST(CModuleProtocolTest, CallbackOfATimeoutMayAskAgain) {
    this->ForEachQuery([&](CVirtualEventLoop& rLoop, auto& rModule, const auto& rExchange) {
        const CLogCapture Log;
        this->AskAgainFromTheFirstCallback(rModule, rExchange);
        this->Ask(rModule, rExchange);
        rLoop.Advance(2100);
        Put(rModule, rExchange.m_Answer);
        rLoop.Advance(5000);
        EXPECT_THAT(rModule.m_Calls,
                    ElementsAre(this->Failure(rExchange, "eTimeout"), this->Success(rExchange)));
        EXPECT_EQ(rModule.m_Sent.size(), 5U);
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    });
}

TYPED_TEST(CModuleProtocolTest, CallbackOfAnIndicationMayAsk) {
    this->ForEachQuery([&](CVirtualEventLoop&, auto& rModule, const auto& rExchange) {
        if (!rExchange.m_bIndication) {
            return;
        }
        this->AskAgainFromTheFirstCallback(rModule, rExchange);
        Put(rModule, rExchange.m_Answer);
        Put(rModule, rExchange.m_Answer);
        EXPECT_THAT(rModule.m_Calls, ElementsAre(rExchange.m_Call + " eIndication " + rExchange.m_Data,
                                                 this->Success(rExchange)));
    });
}

TYPED_TEST(CModuleProtocolTest, CallbackOfALaterMachineMayAskAnEarlierOne) {
    const auto Exchanges = TypeParam::GetExchanges();
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    const CLogCapture Log;
    Module.m_OnCall = [&] {
        if (Module.m_Calls.size() == 1) {
            EXPECT_EQ(this->Ask(Module, Exchanges[2]), 1);
            EXPECT_EQ(this->Ask(Module, Exchanges[1]), 1);
        }
    };
    this->Ask(Module, Exchanges[4]);
    for (const std::size_t nQuery : {4, 1, 2}) {
        Put(Module, Exchanges[nQuery].m_Answer);
    }
    EXPECT_THAT(Module.m_Calls, ElementsAre(this->Success(Exchanges[4]), this->Success(Exchanges[1]),
                                            this->Success(Exchanges[2])));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TYPED_TEST(CModuleProtocolTest, WholeChainOfTheMainWindowFromCallbackToCallback) {
    const auto Exchanges = TypeParam::GetExchanges();
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    const CLogCapture Log;
    Module.m_OnCall = [&] {
        if (Module.m_Calls.size() < Exchanges.size()) {
            EXPECT_EQ(this->Ask(Module, Exchanges[Module.m_Calls.size()]), 1);
        }
    };
    this->Ask(Module, Exchanges[0]);
    std::vector<std::string> Expected;
    for (const auto& rExchange : Exchanges) {
        Loop.Advance(20);
        EXPECT_NE(Put(Module, rExchange.m_Answer), 0);
        Expected.push_back(this->Success(rExchange));
    }
    Loop.Advance(5000);
    EXPECT_EQ(Module.m_Calls, Expected);
    EXPECT_EQ(Module.m_Sent.size(), Exchanges.size());
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TYPED_TEST(CModuleProtocolTest, DestructionForgetsWhatIsOutstanding) {
    CVirtualEventLoop Loop;
    const CLogCapture Log;
    {
        typename TypeParam::Protocol Module;
        for (const auto& rExchange : TypeParam::GetExchanges()) {
            this->Ask(Module, rExchange);
        }
        Module.m_OnCall = [] { FAIL() << "called after the end"; };
    }
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
    Loop.Advance(5000);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// --- the log ---

TYPED_TEST(CModuleProtocolTest, LogsFramesSentAndTaken) {
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    const CLogCapture Log(true);
    for (const auto& rExchange : TypeParam::GetExchanges()) {
        this->Ask(Module, rExchange);
        Put(Module, rExchange.m_Answer);
        if (rExchange.m_bIndication) {
            Put(Module, rExchange.m_Answer);  // values sent by themselves leave no line
        }
    }
    EXPECT_THAT(
        Log.GetTexts("Protocol"),
        ElementsAre("<-- Sending QueryModuleIdentification (0x11-8)",
                    "--> ModuleIdentificationResponse(0x11-8)", TypeParam::SENDING_SET,
                    "--> SetResponse (0x10)", "--> SetIndication (0x10)",
                    "<-- Sending QueryModuleState (0x08)", "--> ModuleStateResponse (0x08)",
                    "--> ModuleStateResponseIndication received (0x08)", "<-- Sending QueryRPMData (0x1C)",
                    "--> RPMDataResponse received(0x1C)...", "<-- Sending QueryUnbalanceXYValues (0x1E)",
                    "--> UnbalanceCoordonatesResponse received(0x1E)..."));
}

TYPED_TEST(CModuleProtocolTest, LogsQueriesAndStateChanges) {
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    const CLogCapture Log(true);
    Module.QueryModuleState();
    Module.QueryActiveSet();
    Module.QueryModuleIdentification();
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        ElementsAre("QueryModuleState called", "NewState: eQueryModuleState (OldState: eModuleStateIdle)",
                    "QueryActiveSet() called", "NewState: eSet (OldState: eSetIdle)",
                    // Names another query; it is meant to stay.
                    "QueryMaxModuleConfiguration called",
                    "New CommonState: eQueryModuleIdentification (OldState: eIdle)"));
}

TYPED_TEST(CModuleProtocolTest, LogsSilence) {
    CVirtualEventLoop Loop;
    typename TypeParam::Protocol Module;
    const CLogCapture Log(true);
    for (const auto& rExchange : TypeParam::GetExchanges()) {
        this->Ask(Module, rExchange);
        Loop.Advance(2000);
    }
    EXPECT_THAT(Log.GetTexts("Protocol"), testing::Contains("--> ModuleStateResponse NoChange(0x08))"));
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                testing::IsSupersetOf({"calling OnQueryModuleIdentification(eTimeout, NULL)",
                                       "calling OnSetRequest(Reason=eTimeout, pSet=NULL)",
                                       "calling OnRPMData(eTimeout, NULL, NULL)",
                                       "calling OnUnbalanceXYValues(eTimeout, NULL, NULL, NULL)"}));
}
