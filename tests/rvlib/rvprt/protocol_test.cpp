#include "rvlib/rvprt/protocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "platform/rvcom/rvcom.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "tests/support/casenames.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

namespace {

/// Notes what happens as "instant: what".
class CTestProtocol : public CProtocol {
public:
    /// Sends a request as the state machines do; returns its transaction id.
    std::uint32_t Ask(const std::string& rHex, std::uint32_t Type = eNoSubCode, std::uint32_t msTimeout = 500,
                      std::int32_t nRetries = 3) {
        std::vector<std::uint8_t> Frame = Bytes(rHex);
        return SendRequest(Type, Frame.data(), static_cast<std::uint32_t>(Frame.size()), msTimeout, nRetries,
                           nullptr);
    }
    void Note(const std::string& rText) {
        m_Events.push_back(std::to_string(IFEventLoop::Current().Now()) + ": " + rText);
    }

    std::vector<std::string> m_Events;
    std::vector<std::uint32_t> m_Ids;  ///< of responses and time-outs
    std::function<void()> m_OnResponse;
    std::function<void()> m_OnTimeout;

private:
    void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) override {
        Note("sent " + Hex({pData, nSize}));
    }
    void OnResponse(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) override {
        m_Ids.push_back(TransactionID);
        Note("answer " + Hex({pData, nSize}));
        if (m_OnResponse) {
            m_OnResponse();
        }
    }
    void OnRequestTimeout(std::uint32_t TransactionID) override {
        m_Ids.push_back(TransactionID);
        Note("timeout");
        if (m_OnTimeout) {
            m_OnTimeout();
        }
    }
};

/// A request 1C 01 05 at 0 ms, frames that arrive, and all that must come of it.
struct CRetryCase {
    const char* m_pName;
    std::vector<std::pair<std::uint32_t, const char*>> m_Arriving;  ///< instant, frame
    std::vector<std::string> m_Events;
};

void PrintTo(const CRetryCase& rCase, std::ostream* pOut) {
    *pOut << rCase.m_pName;
}

class CProtocolRetries : public testing::TestWithParam<CRetryCase> {};

}  // namespace

TEST_P(CProtocolRetries, SendsAndReportsAtTheExactInstants) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    ASSERT_NE(Protocol.Ask("1C CD 05"), 0U);
    for (const auto& [Instant, pFrame] : GetParam().m_Arriving) {
        Loop.Advance(static_cast<std::uint32_t>(Instant - Loop.Now()));
        if (Put(Protocol, pFrame) == 0) {
            Protocol.Note("indication");
        }
    }
    Loop.Advance(10000);
    EXPECT_THAT(Protocol.m_Events, ElementsAreArray(GetParam().m_Events));
    EXPECT_FALSE(Protocol.HasActiveTimer());
}

namespace {

constexpr const char* GOOD = "1C 05 01 B8 0B";

INSTANTIATE_TEST_SUITE_P(
    Table, CProtocolRetries,
    testing::Values(
        CRetryCase{"AnsweredAtFirstSending", {{30, GOOD}}, {"0: sent 1C 01 05", "30: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnsweredJustBeforeTheSecondSending",
                   {{499, GOOD}},
                   {"0: sent 1C 01 05", "499: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnsweredAtSecondSending",
                   {{530, GOOD}},
                   {"0: sent 1C 01 05", "500: sent 1C 01 05", "530: answer 1C 05 01 B8 0B"}},
        CRetryCase{
            "AnsweredAtThirdSending",
            {{1030, GOOD}},
            {"0: sent 1C 01 05", "500: sent 1C 01 05", "1000: sent 1C 01 05", "1030: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnsweredAtFourthSending",
                   {{1530, GOOD}},
                   {"0: sent 1C 01 05", "500: sent 1C 01 05", "1000: sent 1C 01 05", "1500: sent 1C 01 05",
                    "1530: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnsweredAt1999",
                   {{1999, GOOD}},
                   {"0: sent 1C 01 05", "500: sent 1C 01 05", "1000: sent 1C 01 05", "1500: sent 1C 01 05",
                    "1999: answer 1C 05 01 B8 0B"}},
        CRetryCase{"Silence",
                   {},
                   {"0: sent 1C 01 05", "500: sent 1C 01 05", "1000: sent 1C 01 05", "1500: sent 1C 01 05",
                    "2000: timeout"}},
        CRetryCase{"LateAnswerIsAnIndication",
                   {{2001, GOOD}},
                   {"0: sent 1C 01 05", "500: sent 1C 01 05", "1000: sent 1C 01 05", "1500: sent 1C 01 05",
                    "2000: timeout", "2001: indication"}},
        CRetryCase{"SecondAnswerIsAnIndication",
                   {{30, GOOD}, {31, GOOD}},
                   {"0: sent 1C 01 05", "30: answer 1C 05 01 B8 0B", "31: indication"}},
        CRetryCase{
            "AnswersToBothSendingsCountOnce",
            {{510, GOOD}, {520, GOOD}},
            {"0: sent 1C 01 05", "500: sent 1C 01 05", "510: answer 1C 05 01 B8 0B", "520: indication"}},
        CRetryCase{"DestinationZeroIsAccepted",
                   {{30, "1C 05 00 B8 0B"}},
                   {"0: sent 1C 01 05", "30: answer 1C 05 00 B8 0B"}},
        CRetryCase{"AnotherDestinationIsNot",
                   {{30, "1C 05 02 B8 0B"}, {40, GOOD}},
                   {"0: sent 1C 01 05", "30: indication", "40: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnotherModuleIsNot",
                   {{30, "1C 06 01 B8 0B"}, {40, GOOD}},
                   {"0: sent 1C 01 05", "30: indication", "40: answer 1C 05 01 B8 0B"}},
        CRetryCase{"AnotherCommandIsNot",
                   {{30, "1E 05 01 B8 0B"}, {40, GOOD}},
                   {"0: sent 1C 01 05", "30: indication", "40: answer 1C 05 01 B8 0B"}},
        CRetryCase{
            "ThreeByteFrameAnswersTypeZero", {{30, "1C 05 01"}}, {"0: sent 1C 01 05", "30: answer 1C 05 01"}},
        CRetryCase{"FramesBelowTheHeaderAreNoAnswer",
                   {{30, "1C 05"}, {31, "1C"}, {32, ""}, {40, GOOD}},
                   {"0: sent 1C 01 05", "30: indication", "31: indication", "32: indication",
                    "40: answer 1C 05 01 B8 0B"}},
        CRetryCase{"WrongFramesDoNotPutOffTheRepetition",
                   {{490, "1C 06 01 B8 0B"}, {499, "08 05 01 07"}},
                   {"0: sent 1C 01 05", "490: indication", "499: indication", "500: sent 1C 01 05",
                    "1000: sent 1C 01 05", "1500: sent 1C 01 05", "2000: timeout"}}),
    [](const auto& rInfo) { return std::string(rInfo.param.m_pName); });

}  // namespace

TEST(CProtocol, SubCodeMatchesInItsLowerSevenBits) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("10 CD 05 02", CProtocol::eSubCode);
    EXPECT_EQ(Put(Protocol, "10 05 01 03 02"), 0);
    EXPECT_EQ(Put(Protocol, "10 05 01 82 02"), 1);  // the request's sub-code plus 0x80
}

TEST(CProtocol, ThreeByteFrameMatchesTypeZeroOnly) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("10 CD 05 00", CProtocol::eSubCode);
    Protocol.Ask("12 CD 05 00 00", CProtocol::eTwoSubCodes);
    Protocol.Ask("08 CD 05", CProtocol::eNoSubCode);
    EXPECT_EQ(Put(Protocol, "10 05 01"), 0);
    EXPECT_EQ(Put(Protocol, "12 05 01"), 0);
    EXPECT_EQ(Put(Protocol, "08 05 01"), 1);
}

TEST(CProtocol, TwoSubCodesMatchExactlyInAllBits) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("12 CD 05 11 22", CProtocol::eTwoSubCodes);
    EXPECT_EQ(Put(Protocol, "12 05 01 91 22"), 0);
    EXPECT_EQ(Put(Protocol, "12 05 01 11 A2"), 0);
    EXPECT_EQ(Put(Protocol, "12 05 01 11"), 0);
    EXPECT_EQ(Put(Protocol, "12 05 01 11 22"), 1);
}

TEST(CProtocol, BytesBehindTheSubCodesDoNotMatter) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("12 CD 05 11 22 33", CProtocol::eTwoSubCodes);
    EXPECT_EQ(Put(Protocol, "12 05 01 11 22 44 55"), 1);
}

TEST(CProtocol, WritesTheTransmitAddressIntoTheCallersFrame) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::vector<std::uint8_t> Frame = Bytes("1C CD 05");
    rvCOM::SetTransmitAddress(0x23);
    Protocol.SendRequest(CProtocol::eNoSubCode, Frame.data(), 3, 500, 3, nullptr);
    rvCOM::SetTransmitAddress(1);
    EXPECT_EQ(Hex(Frame), "1C 23 05");
    // The answer must come to the address under which the question was sent.
    EXPECT_EQ(Put(Protocol, "1C 05 01 B8 0B"), 0);
    EXPECT_EQ(Put(Protocol, "1C 05 23 B8 0B"), 1);
}

TEST(CProtocol, CallersBufferMayBeReusedBetweenRepetitions) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::vector<std::uint8_t> Frame = Bytes("1C CD 05");
    Protocol.SendRequest(CProtocol::eNoSubCode, Frame.data(), 3, 500, 1, nullptr);
    Frame.assign(3, 0xEE);
    Loop.Advance(500);
    EXPECT_THAT(Protocol.m_Events, ElementsAre("0: sent 1C 01 05", "500: sent 1C 01 05"));
}

TEST(CProtocol, NoRetriesMeansOneSending) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("1C CD 05", CProtocol::eNoSubCode, 500, 0);
    Loop.Advance(5000);
    EXPECT_THAT(Protocol.m_Events, ElementsAre("0: sent 1C 01 05", "500: timeout"));
}

TEST(CProtocol, NegativeRetriesMeanOneSending) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("1C CD 05", CProtocol::eNoSubCode, 500, -1);
    Loop.Advance(5000);
    EXPECT_THAT(Protocol.m_Events, ElementsAre("0: sent 1C 01 05", "500: timeout"));
}

TEST(CProtocol, TimeoutZeroSendsOnceAsItIsAndAwaitsNothing) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    EXPECT_EQ(Protocol.Ask("1C CD 05", CProtocol::eNoSubCode, 0), 0U);
    EXPECT_EQ(Put(Protocol, "1C 05 CD B8 0B"), 0);
    Loop.Advance(5000);
    EXPECT_THAT(Protocol.m_Events, ElementsAre("0: sent 1C CD 05"));
}

namespace {

struct CSizeCase {
    std::uint32_t m_Type;
    const char* m_pFrame;
    bool m_bSent;
};

class CProtocolSizes : public testing::TestWithParam<CSizeCase> {};

}  // namespace

TEST_P(CProtocolSizes, SmallestFrameDependsOnTheType) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    TakeShownMessages();
    const CLogCapture Log;
    EXPECT_EQ(Protocol.Ask(GetParam().m_pFrame, GetParam().m_Type) != 0, GetParam().m_bSent);
    const std::vector<CShownMessage> Shown = TakeShownMessages();
    if (GetParam().m_bSent) {
        EXPECT_EQ(Protocol.m_Events.size(), 1U);
        EXPECT_THAT(Shown, IsEmpty());
        EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    } else {
        EXPECT_THAT(Protocol.m_Events, IsEmpty());
        EXPECT_FALSE(Protocol.HasActiveTimer());
        ASSERT_EQ(Shown.size(), 1U);
        EXPECT_EQ(Shown[0].m_Text, "invalid size");
        EXPECT_EQ(Shown[0].m_Title, "Error");
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid size"));
    }
}

INSTANTIATE_TEST_SUITE_P(Table, CProtocolSizes,
                         testing::Values(CSizeCase{0, "1C CD", false}, CSizeCase{0, "1C CD 05", true},
                                         CSizeCase{1, "10 CD 05", false}, CSizeCase{1, "10 CD 05 00", true},
                                         CSizeCase{2, "12 CD 05 00", false},
                                         CSizeCase{2, "12 CD 05 00 00", true},
                                         CSizeCase{3, "12 CD 05 00 00 00", false}),
                         [](const auto& rInfo) {
                             return CaseNames::FromText(
                                 "Type" + std::to_string(rInfo.param.m_Type) + " " + rInfo.param.m_pFrame,
                                 rInfo.index);
                         });

TEST(CProtocol, RefusedTimerSendsNothing) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Loop.FailTimers(1);
    EXPECT_EQ(Protocol.Ask("1C CD 05"), 0U);
    EXPECT_THAT(Protocol.m_Events, IsEmpty());
}

// Deliberate: the request is lost without a report.
TEST(CProtocol, TimerRefusedAtARepetitionLosesTheRequest) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    Protocol.Ask("1C CD 05");
    Loop.Advance(499);
    Loop.FailTimers(1);
    Loop.Advance(5000);
    EXPECT_THAT(Protocol.m_Events, ElementsAre("0: sent 1C 01 05"));
}

TEST(CProtocol, TwoEqualRequestsAreAnsweredInOrder) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const std::uint32_t First = Protocol.Ask("1C CD 05");
    const std::uint32_t Second = Protocol.Ask("1C CD 05");
    EXPECT_NE(First, Second);
    EXPECT_EQ(Put(Protocol, GOOD), 1);
    EXPECT_EQ(Put(Protocol, GOOD), 1);
    EXPECT_EQ(Put(Protocol, GOOD), 0);
    EXPECT_THAT(Protocol.m_Ids, ElementsAre(First, Second));
}

TEST(CProtocol, RequestsOfSeveralKindsWaitSideBySide) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const std::uint32_t State = Protocol.Ask("08 CD 05");
    Loop.Advance(100);
    const std::uint32_t RPM = Protocol.Ask("1C CD 05");
    Loop.Advance(100);
    EXPECT_EQ(Put(Protocol, GOOD), 1);
    Loop.Advance(1800);
    EXPECT_THAT(Protocol.m_Ids, ElementsAre(RPM, State));
    EXPECT_THAT(
        Protocol.m_Events,
        ElementsAre("0: sent 08 01 05", "100: sent 1C 01 05", "200: answer 1C 05 01 B8 0B",
                    "500: sent 08 01 05", "1000: sent 08 01 05", "1500: sent 08 01 05", "2000: timeout"));
}

TEST(CProtocol, TransactionIdStaysOverRepetitionsAndChangesWithTheNextRequest) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const std::uint32_t First = Protocol.Ask("1C CD 05");
    Loop.Advance(1200);
    Put(Protocol, GOOD);
    const std::uint32_t Second = Protocol.Ask("1C CD 05");
    EXPECT_THAT(Protocol.m_Ids, ElementsAre(First));
    EXPECT_NE(First, Second);
}

TEST(CProtocol, TransactionIdsAreSharedByAllProtocols) {
    CVirtualEventLoop Loop;
    CTestProtocol Master;
    CTestProtocol Slave;
    const std::uint32_t First = Master.Ask("1C CD 05");
    EXPECT_EQ(Slave.Ask("1C CD 06"), First + 1);
}

// The id is drawn when a record is retired, not when the next request goes out.
TEST(CProtocol, RetirementDrawsTheRecordsNextId) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const std::uint32_t First = Protocol.Ask("1C CD 05");
    Put(Protocol, GOOD);  // draws First + 1
    CTestProtocol Other;
    EXPECT_EQ(Other.Ask("1C CD 06"), First + 2);
    EXPECT_EQ(Protocol.Ask("1C CD 05"), First + 1);
}

TEST(CProtocol, RequestFromWithinOnResponseTakesAnotherRecord) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::uint32_t Next = 0;
    Protocol.m_OnResponse = [&] {
        Protocol.m_OnResponse = {};
        const std::uint8_t* pData = nullptr;
        std::uint32_t nSize = 0;
        // The record that is being answered is still busy.
        EXPECT_EQ(Protocol.GetRequestData(Protocol.m_Ids[0], &pData, &nSize), 1);
        EXPECT_EQ(nSize, 3U);
        Next = Protocol.Ask("1C CD 05");
    };
    const std::uint32_t First = Protocol.Ask("1C CD 05");
    Loop.Advance(100);
    EXPECT_EQ(Put(Protocol, GOOD), 1);
    EXPECT_NE(Next, 0U);
    EXPECT_NE(Next, First);
    Loop.Advance(700);
    EXPECT_EQ(Put(Protocol, GOOD), 1);
    Loop.Advance(5000);
    EXPECT_THAT(Protocol.m_Ids, ElementsAre(First, Next));
    EXPECT_THAT(Protocol.m_Events,
                ElementsAre("0: sent 1C 01 05", "100: answer 1C 05 01 B8 0B", "100: sent 1C 01 05",
                            "600: sent 1C 01 05", "800: answer 1C 05 01 B8 0B"));
}

TEST(CProtocol, RequestFromWithinOnRequestTimeoutRunsItsWholeCourse) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::uint32_t Next = 0;
    Protocol.m_OnTimeout = [&] {
        Protocol.m_OnTimeout = {};
        Next = Protocol.Ask("1E CD 05");
    };
    const std::uint32_t First = Protocol.Ask("1C CD 05", CProtocol::eNoSubCode, 500, 0);
    Loop.Advance(10000);
    EXPECT_THAT(Protocol.m_Ids, ElementsAre(First, Next));
    EXPECT_THAT(Protocol.m_Events,
                ElementsAre("0: sent 1C 01 05", "500: timeout", "500: sent 1E 01 05", "1000: sent 1E 01 05",
                            "1500: sent 1E 01 05", "2000: sent 1E 01 05", "2500: timeout"));
    EXPECT_FALSE(Protocol.HasActiveTimer());
}

TEST(CProtocol, StoredFrameIsKnownByItsTransaction) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const std::uint32_t Id = Protocol.Ask("10 CD 05 00", CProtocol::eSubCode);
    const std::uint8_t* pData = nullptr;
    std::uint32_t nSize = 0;
    ASSERT_EQ(Protocol.GetRequestData(Id, &pData, &nSize), 1);
    EXPECT_EQ(Hex({pData, nSize}), "10 01 05 00");
    EXPECT_EQ(Protocol.GetRequestData(Id + 1000, &pData, &nSize), 0);
    EXPECT_EQ(pData, nullptr);
    EXPECT_EQ(nSize, 0U);
}

// Too large to be stored: it is sent, but neither matched nor repeated properly.
TEST(CProtocol, FrameOf2048BytesIsSentButNotStored) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::vector<std::uint8_t> Frame(2048, 0x55);
    EXPECT_NE(Protocol.SendRequest(CProtocol::eNoSubCode, Frame.data(), 2048, 500, 1, nullptr), 0U);
    ASSERT_EQ(Protocol.m_Events.size(), 1U);
    EXPECT_EQ(Put(Protocol, "55 55 01"), 0);
    Loop.Advance(500);
    EXPECT_EQ(Protocol.m_Events.back(), "500: sent ");
}

TEST(CProtocol, FrameOf2047BytesIsRepeatedWhole) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    std::vector<std::uint8_t> Frame(2047, 0x55);
    Protocol.SendRequest(CProtocol::eNoSubCode, Frame.data(), 2047, 500, 1, nullptr);
    Loop.Advance(500);
    EXPECT_EQ(Protocol.m_Events.at(1), "500: sent " + Hex(Frame));
}

// Deliberate: all bytes of an idle record read as 0. No module sends such a frame.
TEST(CProtocol, FrameOfZerosMatchesARetiredRecord) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    EXPECT_EQ(Put(Protocol, "00 00 00"), 0);
    Protocol.Ask("1C CD 05");
    EXPECT_EQ(Put(Protocol, "00 00 00"), 0);
    Put(Protocol, GOOD);
    EXPECT_EQ(Put(Protocol, "00 00 00"), 1);
}

TEST(CProtocol, DestructionForgetsWhatIsOutstanding) {
    CVirtualEventLoop Loop;
    const CLogCapture Log;
    {
        CTestProtocol Protocol;
        Protocol.Ask("1C CD 05");
        Protocol.Ask("1E CD 05");
        Protocol.m_OnTimeout = [] { FAIL() << "called after the end"; };
    }
    EXPECT_EQ(Loop.GetTimerCount(), 0U);
    Loop.Advance(5000);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(CProtocol, LogsFramesAndRepetitions) {
    CVirtualEventLoop Loop;
    CTestProtocol Protocol;
    const CLogCapture Log(true);
    const std::uint32_t Id = Protocol.Ask("1C CD 05");
    Loop.Advance(500);
    Put(Protocol, GOOD);
    EXPECT_THAT(Log.GetTexts("ProtocolData"),
                ElementsAre("PC --> Module: sending data", "1C 01 05", "PC --> Module: sending data",
                            "1C 01 05", "Module --> PC: Data received", "1C 05 01 B8 0B"));
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre("Retransmisssion (TransactionID=" + std::to_string(Id) + ")"));
}
