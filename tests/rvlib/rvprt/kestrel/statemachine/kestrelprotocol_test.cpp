#include "rvlib/rvprt/kestrel/statemachine/kestrelprotocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Notes frames sent and callbacks, each as one line of text.
class CTestKestrel : public Kestrel::CKestrelProtocol {
public:
    CTestKestrel() : CKestrelProtocol(5) {}

    std::vector<std::string> m_Sent;
    std::vector<std::string> m_Calls;
    std::function<void()> m_OnCall;  ///< called after each callback was noted

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override {
        m_Sent.push_back(Hex({pData, nSize}));
    }
    void OnModuleState(Reason Why, const Kestrel::CModuleStateResponse* p) override {
        Note("ModuleState", Why,
             p == nullptr ? "null"
                          : std::to_string(p->m_ModuleState) + " " + std::to_string(p->m_UILocked) +
                                std::to_string(p->m_OutOfLock) + std::to_string(p->m_InvalidRPM));
    }
    void OnSetRequest(Reason Why, const Kestrel::CSet* p) override {
        Note("Set", Why,
             p == nullptr ? "null"
                          : std::to_string(p->m_Set) + " " + std::to_string(p->m_RPMFactor) + " " +
                                std::to_string(p->m_SensorAdaption));
    }
    void OnQueryModuleIdentification(Reason Why, const Kestrel::CModuleIdentification* p) override {
        Note("Identification", Why,
             p == nullptr ? "null" : p->m_ArticleNumber + " " + std::to_string(p->m_SerialNumber));
    }
    void OnRPMData(Reason Why, const std::uint32_t* p) override {
        Note("RPM", Why, p == nullptr ? "null" : std::to_string(*p));
    }
    void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pX, const std::uint32_t* pY) override {
        EXPECT_EQ(pX == nullptr, pY == nullptr);
        Note("XY", Why, pX == nullptr ? "null" : std::to_string(*pX) + " " + std::to_string(*pY));
    }
    void Note(const std::string& rWhat, Reason Why, const std::string& rData) {
        m_Calls.push_back(rWhat + " " + Comm::ReasonToString(Why) + " " + rData);
        if (m_OnCall) {
            m_OnCall();
        }
    }
};

class CKestrelProtocolTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CTestKestrel m_Kestrel;
};

/// An identification answer of nSize bytes.
std::string Identification(std::size_t nSize) {
    std::vector<std::uint8_t> Frame = Bytes("11 05 01 08 02 18 0C 07 03 12 AB 0F 78 56 34 12 E8 03 00 00");
    Frame.resize(nSize);
    return Hex(Frame);
}

}  // namespace

// --- the exchange of the protocol's description, byte by byte ---

TEST_F(CKestrelProtocolTest, AsksForRpmAndReportsIt) {
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("1C 01 05"));
    EXPECT_NE(Put(m_Kestrel, "1C 05 01 B8 0B"), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eSuccess 3000"));
}

TEST_F(CKestrelProtocolTest, AsksForXYAndReportsSixteenBits) {
    EXPECT_EQ(m_Kestrel.QueryUnbalanceXYValues(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("1E 01 05"));
    EXPECT_NE(Put(m_Kestrel, "1E 05 01 20 01 80 FF"), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("XY eSuccess 288 65408"));  // 0x0120, 0xFF80
}

TEST_F(CKestrelProtocolTest, AsksForTheActiveSetWithSubCodeZero) {
    EXPECT_EQ(m_Kestrel.QueryActiveSet(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("10 01 05 00"));
    EXPECT_NE(Put(m_Kestrel, "10 05 01 00 02 01 00 00 01"), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eSuccess 2 1 1"));
}

TEST_F(CKestrelProtocolTest, AsksForTheModuleState) {
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("08 01 05"));
    EXPECT_NE(Put(m_Kestrel, "08 05 01 07 00 00 00 00"), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eSuccess 7 000"));
}

TEST_F(CKestrelProtocolTest, AsksForTheIdentification) {
    EXPECT_EQ(m_Kestrel.QueryModuleIdentification(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("11 01 05 08"));
    EXPECT_NE(Put(m_Kestrel, Identification(49)), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Identification eSuccess 12AB0F 305419896"));
}

TEST_F(CKestrelProtocolTest, ModuleStateIndicationForAnyAddress) {
    Put(m_Kestrel, "08 05 00 07 00 80 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eIndication 7 100"));
}

TEST_F(CKestrelProtocolTest, RpmIndication) {
    EXPECT_EQ(Put(m_Kestrel, "1C 05 00 AE 0B"), 1);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eIndication 2990"));
}

TEST_F(CKestrelProtocolTest, XYIndication) {
    EXPECT_EQ(Put(m_Kestrel, "1E 05 00 20 01 80 FF"), 1);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("XY eIndication 288 65408"));
}

TEST_F(CKestrelProtocolTest, SetIndicationHasSubCodeZero) {
    EXPECT_EQ(Put(m_Kestrel, "10 05 00 00 03 02 00 00 08"), 1);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eIndication 3 2 8"));
    EXPECT_EQ(Put(m_Kestrel, "10 05 00 80 03 02 00 00 08"), 0);
    EXPECT_EQ(Put(m_Kestrel, "10 05 00 02 03 02 00 00 08"), 0);
    EXPECT_EQ(m_Kestrel.m_Calls.size(), 1U);
}

// --- messages as answers ---

TEST_F(CKestrelProtocolTest, StateElevenIsAGoodAnswerAndLogsInvalidState) {
    const CLogCapture Log(true);
    m_Kestrel.QueryModuleState();
    Put(m_Kestrel, "08 05 01 0B 00 00 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eSuccess 255 000"));
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), Contains("ModuleState = InvalidState"));
}

TEST_F(CKestrelProtocolTest, IdentificationOf49BytesDecodesAndOf48DoesNot) {
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(48));
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(47));
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(49));
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Identification eError null", "Identification eError null",
                                               "Identification eSuccess 12AB0F 305419896"));
}

// Two tests stand behind each other: 45 bytes from the sub-code on pass the first and fail the second.
TEST_F(CKestrelProtocolTest, ShortIdentificationFailsInTheTestOfItsLength) {
    {
        const CLogCapture Log;
        m_Kestrel.QueryModuleIdentification();
        Put(m_Kestrel, Identification(47));  // 44 from the sub-code on
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("not enough data", "Invalid response received"));
    }
    const CLogCapture Log;
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(48));  // 45
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST_F(CKestrelProtocolTest, SetAnswerOfEightBytesGivesError) {
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 00 02 01 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eError null"));
}

TEST_F(CKestrelProtocolTest, SubCode80InTheAnswerStillMatches) {
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 80 02 01 00 00 01");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eSuccess 2 1 1"));
}

TEST_F(CKestrelProtocolTest, SetFailureOfSixBytesIsLoggedAndGivesError) {
    const CLogCapture Log(true);
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 00 02 07");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eError null"));
    EXPECT_THAT(Log.GetTexts("Protocol"), Contains("--> SetFailure (Set: 2, Reason: 7 (0x10))"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST_F(CKestrelProtocolTest, SetFailureOfFourBytesLogsItsCode) {
    const CLogCapture Log;
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 80");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Set Failure Code: 0x80"));
}

TEST_F(CKestrelProtocolTest, SetAnswerOfFiveBytesIsInvalid) {
    const CLogCapture Log;
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 00 02");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST_F(CKestrelProtocolTest, RpmAnswerOfFourBytesGivesError) {
    const CLogCapture Log;
    m_Kestrel.QueryRPMData();
    Put(m_Kestrel, "1C 05 01 B8");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST_F(CKestrelProtocolTest, XYAnswerOfSixBytesGivesError) {
    m_Kestrel.QueryUnbalanceXYValues();
    Put(m_Kestrel, "1E 05 01 20 01 80");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("XY eError null"));
}

TEST_F(CKestrelProtocolTest, ModuleStateAnswerOfSevenBytesGivesError) {
    const CLogCapture Log;
    m_Kestrel.QueryModuleState();
    Put(m_Kestrel, "08 05 01 07 00 80 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("--> ModuleStateResponse failure(0x08)"));
}

// Header alone: matches as an answer of type 0, asserts its length, and still ends as an error.
TEST_F(CKestrelProtocolTest, RpmAnswerOfThreeBytesAssertsAndGivesError) {
    const CLogCapture Log;
    m_Kestrel.QueryRPMData();
    Put(m_Kestrel, "1C 05 01");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eError null"));
    EXPECT_THAT(Log.GetAssertions(), Contains("Commands should be longer than 3 Bytes (Header)"));
}

// --- one request a machine ---

TEST_F(CKestrelProtocolTest, RpmQueryDuringAnXYQueryIsRefusedWithAWarning) {
    ASSERT_EQ(m_Kestrel.QueryUnbalanceXYValues(), 1);
    const CLogCapture Log;
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 0);
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre("Command only possible, if no other is in progress: eQueryUnbalanceCoordinates"));
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("1E 01 05"));
}

TEST_F(CKestrelProtocolTest, TheThreeMachinesDoNotBlockEachOther) {
    EXPECT_EQ(m_Kestrel.QueryUnbalanceXYValues(), 1);
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
    EXPECT_EQ(m_Kestrel.QueryActiveSet(), 1);
    EXPECT_THAT(m_Kestrel.m_Sent, ElementsAre("1E 01 05", "08 01 05", "10 01 05 00"));
    Put(m_Kestrel, "10 05 01 00 02 01 00 00 01");
    Put(m_Kestrel, "08 05 01 07 00 00 00 00");
    Put(m_Kestrel, "1E 05 01 20 01 80 FF");
    EXPECT_THAT(m_Kestrel.m_Calls,
                ElementsAre("Set eSuccess 2 1 1", "ModuleState eSuccess 7 000", "XY eSuccess 288 65408"));
}

TEST_F(CKestrelProtocolTest, EachMachineRefusesASecondQueryOfItsOwn) {
    m_Kestrel.QueryModuleState();
    m_Kestrel.QueryActiveSet();
    m_Kestrel.QueryModuleIdentification();
    const CLogCapture Log;
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 0);
    EXPECT_EQ(m_Kestrel.QueryActiveSet(), 0);
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 0);
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre("Command only possible, if no other is in progress: eQueryModuleState",
                            "Command only possible, if no other is in progress: eSet",
                            "Command only possible, if no other is in progress: eQueryModuleIdentification"));
}

TEST_F(CKestrelProtocolTest, RefusedTimerFailsTheQueryAndLeavesTheMachineIdle) {
    m_Loop.FailTimers(1);
    const CLogCapture Log;
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 0);
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre("SendRequestToProtocol failed"));
    EXPECT_THAT(m_Kestrel.m_Sent, IsEmpty());
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 1);
}

// --- silence ---

TEST_F(CKestrelProtocolTest, EachQueryEndsAsTimeoutAfterFourSendings) {
    const CLogCapture Log(true);
    m_Kestrel.QueryModuleState();
    m_Kestrel.QueryActiveSet();
    m_Kestrel.QueryModuleIdentification();
    m_Loop.Advance(1999);
    EXPECT_THAT(m_Kestrel.m_Calls, IsEmpty());
    EXPECT_EQ(m_Kestrel.m_Sent.size(), 12U);
    m_Loop.Advance(1);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eTimeout null", "Set eTimeout null",
                                               "Identification eTimeout null"));
    EXPECT_THAT(Log.GetTexts("Protocol"), Contains("--> ModuleStateResponse NoChange(0x08))"));
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), Contains("calling OnSetRequest(Reason=eTimeout, pSet=NULL)"));
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                Contains("calling OnQueryModuleIdentification(eTimeout, NULL)"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST_F(CKestrelProtocolTest, RpmAndXYEndAsTimeout) {
    m_Kestrel.QueryRPMData();
    m_Loop.Advance(2000);
    m_Kestrel.QueryUnbalanceXYValues();
    m_Loop.Advance(2000);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eTimeout null", "XY eTimeout null"));
}

TEST_F(CKestrelProtocolTest, MachinesAreIdleAgainAfterATimeout) {
    m_Kestrel.QueryModuleState();
    m_Kestrel.QueryActiveSet();
    m_Kestrel.QueryRPMData();
    m_Loop.Advance(2000);
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
    EXPECT_EQ(m_Kestrel.QueryActiveSet(), 1);
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 1);
}

// After the time-out nothing awaits the answer any more: it counts as sent by the module itself.
TEST_F(CKestrelProtocolTest, AnswerAfterTheTimeoutIsAnIndication) {
    m_Kestrel.QueryRPMData();
    m_Loop.Advance(2000);
    Put(m_Kestrel, "1C 05 01 B8 0B");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eTimeout null", "RPM eIndication 3000"));
}

// --- queries from within callbacks ---

TEST_F(CKestrelProtocolTest, CallbackMaySendTheNextQueryOfTheSameMachine) {
    m_Kestrel.m_OnCall = [&] {
        if (m_Kestrel.m_Calls.size() == 1) {
            EXPECT_EQ(m_Kestrel.QueryUnbalanceXYValues(), 1);
        }
    };
    m_Kestrel.QueryRPMData();
    Put(m_Kestrel, "1C 05 01 B8 0B");
    Put(m_Kestrel, "1E 05 01 20 01 80 FF");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eSuccess 3000", "XY eSuccess 288 65408"));
}

TEST_F(CKestrelProtocolTest, TimeoutCallbackMayAskAgain) {
    m_Kestrel.m_OnCall = [&] {
        if (m_Kestrel.m_Calls.size() == 1) {
            EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
        }
    };
    m_Kestrel.QueryModuleState();
    m_Loop.Advance(2100);
    Put(m_Kestrel, "08 05 01 07 00 00 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eTimeout null", "ModuleState eSuccess 7 000"));
}

TEST_F(CKestrelProtocolTest, ErrorCallbackMayAskAgain) {
    const CLogCapture Log;
    m_Kestrel.m_OnCall = [&] {
        if (m_Kestrel.m_Calls.size() == 1) {
            EXPECT_EQ(m_Kestrel.QueryActiveSet(), 1);
        }
    };
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 00 02 07");
    Put(m_Kestrel, "10 05 01 00 02 01 00 00 01");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Set eError null", "Set eSuccess 2 1 1"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST_F(CKestrelProtocolTest, WholeChainOfTheMainWindowFromCallbackToCallback) {
    const CLogCapture Log;
    m_Kestrel.m_OnCall = [&] {
        switch (m_Kestrel.m_Calls.size()) {
            case 1:
                EXPECT_EQ(m_Kestrel.QueryActiveSet(), 1);
                break;
            case 2:
                EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
                break;
            case 3:
                EXPECT_EQ(m_Kestrel.QueryRPMData(), 1);
                break;
            case 4:
                EXPECT_EQ(m_Kestrel.QueryUnbalanceXYValues(), 1);
                break;
            default:
                break;
        }
    };
    m_Kestrel.QueryModuleIdentification();
    for (const std::string& rFrame : {Identification(49), std::string("10 05 01 00 02 01 00 00 01"),
                                      std::string("08 05 01 07 00 00 00 00"), std::string("1C 05 01 B8 0B"),
                                      std::string("1E 05 01 20 01 80 FF")}) {
        m_Loop.Advance(20);
        EXPECT_NE(Put(m_Kestrel, rFrame), 0);
    }
    m_Loop.Advance(5000);
    EXPECT_EQ(m_Kestrel.m_Calls.size(), 5U);
    EXPECT_EQ(m_Kestrel.m_Sent.size(), 5U);  // nothing polls, nothing repeats
    EXPECT_EQ(m_Kestrel.m_Calls.back(), "XY eSuccess 288 65408");
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// --- indications ---

// Addressed to another computer, so that it can't be the answer.
TEST_F(CKestrelProtocolTest, ModuleStateIndicationDuringAQueryIsDeliveredAndTheQueryStaysOpen) {
    m_Kestrel.QueryModuleState();
    const CLogCapture Log;
    Put(m_Kestrel, "08 05 02 07 00 80 00 00");
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Indication in invalid state received"));
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 0);
    Put(m_Kestrel, "08 05 01 07 00 00 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls,
                ElementsAre("ModuleState eIndication 7 100", "ModuleState eSuccess 7 000"));
}

TEST_F(CKestrelProtocolTest, IndicationThatFitsAsTheAnswerIsTheAnswer) {
    m_Kestrel.QueryModuleState();
    Put(m_Kestrel, "08 05 00 07 00 80 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eSuccess 7 100"));
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
}

TEST_F(CKestrelProtocolTest, IndicationOfAnotherModuleFallsThrough) {
    for (const char* pFrame : {"08 06 00 07 00 80 00 00", "10 06 00 00 03 02 00 00 08", "1C 06 00 AE 0B",
                               "1E 06 00 20 01 80 FF"}) {
        EXPECT_EQ(Put(m_Kestrel, pFrame), 0) << pFrame;
    }
    EXPECT_THAT(m_Kestrel.m_Calls, IsEmpty());
}

TEST_F(CKestrelProtocolTest, UnusableIndicationsAreDroppedWithoutAWord) {
    const CLogCapture Log;
    for (const char* pFrame :
         {"", "08", "08 05", "08 05 00", "08 05 00 07", "08 05 00 07 00 80 00", "10 05 00 00",
          "10 05 00 00 03", "10 05 00 00 03 02 00 00", "1C 05 00", "1C 05 00 AE", "1E 05 00",
          "1E 05 00 20 01 80", "11 05 00 08 00 00", "7F 05 00 01 02 03"}) {
        EXPECT_EQ(Put(m_Kestrel, pFrame), 0) << pFrame;
    }
    EXPECT_THAT(m_Kestrel.m_Calls, IsEmpty());
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST_F(CKestrelProtocolTest, DestinationOfAnIndicationIsNotRead) {
    EXPECT_EQ(Put(m_Kestrel, "1C 05 77 AE 0B"), 1);
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eIndication 2990"));
}

TEST_F(CKestrelProtocolTest, IndicationLeavesARunningQueryAlone) {
    m_Kestrel.QueryUnbalanceXYValues();
    Put(m_Kestrel, "1C 05 00 AE 0B");
    Put(m_Kestrel, "1E 05 01 20 01 80 FF");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("RPM eIndication 2990", "XY eSuccess 288 65408"));
}

TEST_F(CKestrelProtocolTest, IdentificationWithAnotherSubCodeDoesNotReachTheMachine) {
    m_Kestrel.QueryModuleIdentification();
    std::vector<std::uint8_t> Frame = Bytes(Identification(49));
    Frame[3] = 9;
    EXPECT_EQ(Put(m_Kestrel, Hex(Frame)), 0);
    EXPECT_THAT(m_Kestrel.m_Calls, IsEmpty());
    EXPECT_EQ(m_Kestrel.QueryRPMData(), 0);  // the query stays open
}

// --- the log ---

TEST_F(CKestrelProtocolTest, LogsFramesSentAndTaken) {
    const CLogCapture Log(true);
    m_Kestrel.QueryModuleState();
    Put(m_Kestrel, "08 05 01 07 00 00 00 00");
    m_Kestrel.QueryActiveSet();
    Put(m_Kestrel, "10 05 01 00 02 01 00 00 01");
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(49));
    m_Kestrel.QueryRPMData();
    Put(m_Kestrel, "1C 05 01 B8 0B");
    m_Kestrel.QueryUnbalanceXYValues();
    Put(m_Kestrel, "1E 05 01 20 01 80 FF");
    Put(m_Kestrel, "08 05 00 07 00 00 00 00");
    Put(m_Kestrel, "10 05 00 00 02 01 00 00 01");
    Put(m_Kestrel, "1C 05 00 B8 0B");  // values sent by themselves leave no line
    EXPECT_THAT(
        Log.GetTexts("Protocol"),
        ElementsAre("<-- Sending QueryModuleState (0x08)", "--> ModuleStateResponse (0x08)",
                    "<-- Sending QuerySet (0x10)", "--> SetResponse (0x10)",
                    "<-- Sending QueryModuleIdentification (0x11-8)",
                    "--> ModuleIdentificationResponse(0x11-8)", "<-- Sending QueryRPMData (0x1C)",
                    "--> RPMDataResponse received(0x1C)...", "<-- Sending QueryUnbalanceXYValues (0x1E)",
                    "--> UnbalanceCoordonatesResponse received(0x1E)...",
                    "--> ModuleStateResponseIndication received (0x08)", "--> SetIndication (0x10)"));
}

TEST_F(CKestrelProtocolTest, LogsQueriesAndStateChanges) {
    const CLogCapture Log(true);
    m_Kestrel.QueryModuleState();
    m_Kestrel.QueryActiveSet();
    m_Kestrel.QueryModuleIdentification();
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        ElementsAre("QueryModuleState called", "NewState: eQueryModuleState (OldState: eModuleStateIdle)",
                    "QueryActiveSet() called", "NewState: eSet (OldState: eSetIdle)",
                    // Names another query; it is meant to stay.
                    "QueryMaxModuleConfiguration called",
                    "New CommonState: eQueryModuleIdentification (OldState: eIdle)"));
}

TEST_F(CKestrelProtocolTest, LogIdIsMMapper) {
    EXPECT_STREQ(m_Kestrel.GetLogID(), "MMapper");
    EXPECT_EQ(m_Kestrel.GetModuleAddress(), 5);
}

// A protocol with nothing overridden but the way to the line takes everything and does nothing with it.
TEST(KestrelProtocol, CallbacksHaveDefaultBodies) {
    class CSilent : public Kestrel::CKestrelProtocol {
    public:
        CSilent() : CKestrelProtocol(5) {}

    private:
        void SendRawData(const std::uint8_t*, std::uint32_t) override {}
    };
    CVirtualEventLoop Loop;
    CSilent Protocol;
    const CLogCapture Log;
    Protocol.QueryModuleState();
    Protocol.QueryActiveSet();
    Protocol.QueryRPMData();
    EXPECT_EQ(Put(Protocol, "08 05 01 07 00 00 00 00"), 1);
    EXPECT_EQ(Put(Protocol, "10 05 01 00 02 01 00 00 01"), 1);
    EXPECT_EQ(Put(Protocol, "1C 05 01 B8 0B"), 1);
    EXPECT_EQ(Put(Protocol, "1E 05 01 20 01 80 FF"), 1);
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}
