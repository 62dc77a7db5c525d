// What a Kestrel module's conversation has of its own; what it shares stands in moduleprotocol_test.cpp.
#include "rvlib/rvprt/kestrel/statemachine/kestrelprotocol.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "tests/rvlib/rvprt/statemachine/families.h"
#include "tests/support/logcapture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class CKestrelProtocolTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CTestKestrel m_Kestrel;
};

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
    EXPECT_NE(Put(m_Kestrel, Identification(5, 49)), 0);
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
    Put(m_Kestrel, Identification(5, 48));
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(5, 47));
    m_Kestrel.QueryModuleIdentification();
    Put(m_Kestrel, Identification(5, 49));
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("Identification eError null", "Identification eError null",
                                               "Identification eSuccess 12AB0F 305419896"));
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

// --- indications ---

TEST_F(CKestrelProtocolTest, IndicationThatFitsAsTheAnswerIsTheAnswer) {
    m_Kestrel.QueryModuleState();
    Put(m_Kestrel, "08 05 00 07 00 80 00 00");
    EXPECT_THAT(m_Kestrel.m_Calls, ElementsAre("ModuleState eSuccess 7 100"));
    EXPECT_EQ(m_Kestrel.QueryModuleState(), 1);
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

// --- the rest ---

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
