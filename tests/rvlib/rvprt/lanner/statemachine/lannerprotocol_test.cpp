// What a Lanner module's conversation has of its own; what it shares stands in moduleprotocol_test.cpp.
#include "rvlib/rvprt/lanner/statemachine/lannerprotocol.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "tests/rvlib/rvprt/statemachine/families.h"
#include "tests/support/logcapture.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// Two planes, exchanged; set 3, name "A"; one plane block.
constexpr const char* SWAPPED_SET =
    "10 09 01 02 03 01 08 00 00 06 01 01 41 02 0C 00 00 01 90 01 20 03 10 27 05";
constexpr const char* PLAIN_SET = "10 09 01 02 04 01 08 00 00 04 01 01 42";
/// The first plane out of lock.
constexpr const char* STATE_OUT_OF_LOCK = "08 09 00 01 00 00 00 00 08 00";

class CLannerProtocolTest : public testing::Test {
protected:
    /// The module tells of itself that its planes are exchanged.
    void TurnOnSwap() {
        Put(m_Lanner, SWAPPED_SET);
        m_Lanner.m_Calls.clear();
    }

    CVirtualEventLoop m_Loop;
    CTestLanner m_Lanner;
};

}  // namespace

// --- the exchange of the protocol's description, byte by byte ---

TEST_F(CLannerProtocolTest, AsksForRpmAndReportsItWithItsPlane) {
    EXPECT_EQ(m_Lanner.QueryRPMData(), 1);
    EXPECT_THAT(m_Lanner.m_Sent, ElementsAre("1C 01 09"));
    EXPECT_NE(Put(m_Lanner, "1C 09 01 00 B8 0B"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("RPM eSuccess plane 0 3000"));
}

TEST_F(CLannerProtocolTest, AsksForXYAndReportsSixteenBitsWithTheirPlane) {
    EXPECT_EQ(m_Lanner.QueryUnbalanceXYValues(), 1);
    EXPECT_THAT(m_Lanner.m_Sent, ElementsAre("1E 01 09"));
    EXPECT_NE(Put(m_Lanner, "1E 09 01 01 20 01 80 FF"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("XY eSuccess plane 1 288 65408"));  // 0x0120, 0xFF80
}

// The other family asks with sub-code 0.
TEST_F(CLannerProtocolTest, AsksForTheActiveSetWithSubCodeTwo) {
    EXPECT_EQ(m_Lanner.QueryActiveSet(), 1);
    EXPECT_THAT(m_Lanner.m_Sent, ElementsAre("10 01 09 02"));
    EXPECT_NE(Put(m_Lanner, SWAPPED_SET), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eSuccess 3 A"));
    EXPECT_EQ(m_Lanner.GetSwap(), 1U);
}

TEST_F(CLannerProtocolTest, AsksForTheModuleState) {
    EXPECT_EQ(m_Lanner.QueryModuleState(), 1);
    EXPECT_THAT(m_Lanner.m_Sent, ElementsAre("08 01 09"));
    EXPECT_NE(Put(m_Lanner, "08 09 01 01 00 80 00 00 00 08"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("ModuleState eSuccess 1 01"));
}

TEST_F(CLannerProtocolTest, AsksForTheIdentification) {
    EXPECT_EQ(m_Lanner.QueryModuleIdentification(), 1);
    EXPECT_THAT(m_Lanner.m_Sent, ElementsAre("11 01 09 08"));
    EXPECT_NE(Put(m_Lanner, Identification(9, 49)), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Identification eSuccess 12AB0F 305419896"));
}

TEST_F(CLannerProtocolTest, ModuleStateIndication) {
    Put(m_Lanner, STATE_OUT_OF_LOCK);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("ModuleState eIndication 0 10"));
}

// --- answers ---

TEST_F(CLannerProtocolTest, ModuleStateZeroGivesError) {
    const CLogCapture Log;
    m_Lanner.QueryModuleState();
    Put(m_Lanner, "08 09 01 00 00 00 00 00 00 00");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("ModuleState eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"),
                ElementsAre("unknown ModuleState received", "could not decode ModuleStateResponse",
                            "--> ModuleStateResponse failure(0x08)"));
}

// The shortest answer has a byte more than in the other family.
TEST_F(CLannerProtocolTest, RpmAnswerOfFiveBytesGivesError) {
    const CLogCapture Log;
    m_Lanner.QueryRPMData();
    Put(m_Lanner, "1C 09 01 00 B8");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("RPM eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
}

TEST_F(CLannerProtocolTest, RpmAnswerOfThreeBytesAssertsAndGivesError) {
    const CLogCapture Log;
    m_Lanner.QueryRPMData();
    Put(m_Lanner, "1C 09 01");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("RPM eError null"));
    EXPECT_THAT(Log.GetAssertions(), Contains("Commands should be longer than 3 Bytes (Header)"));
}

TEST_F(CLannerProtocolTest, RpmAnswerWithPlaneTwoGivesError) {
    const CLogCapture Log;
    m_Lanner.QueryRPMData();
    Put(m_Lanner, "1C 09 01 02 B8 0B");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("RPM eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid data", "Invalid response received"));
}

TEST_F(CLannerProtocolTest, XYAnswerWithPlaneTwoGivesError) {
    const CLogCapture Log;
    m_Lanner.QueryUnbalanceXYValues();
    Put(m_Lanner, "1E 09 01 02 20 01 80 FF");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("XY eError null"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid data", "Invalid response received"));
}

TEST_F(CLannerProtocolTest, XYAnswerOfSevenBytesGivesError) {
    m_Lanner.QueryUnbalanceXYValues();
    Put(m_Lanner, "1E 09 01 00 20 01 80");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("XY eError null"));
}

TEST_F(CLannerProtocolTest, SetFailureOfSixBytesIsLoggedTwiceAndGivesError) {
    const CLogCapture Log(true);
    m_Lanner.QueryActiveSet();
    Put(m_Lanner, "10 09 01 02 02 07");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eError null"));
    EXPECT_THAT(Log.GetTexts("Protocol"), Contains("--> SetFailure (Set: 2, Reason: 7 (0x10))"));
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Set Failure Code: 0x07"));
}

// Four bytes are a failure code with the other family only.
TEST_F(CLannerProtocolTest, SetAnswerOfFourOrFiveBytesIsInvalid) {
    for (const char* pFrame : {"10 09 01 02", "10 09 01 02 03"}) {
        const CLogCapture Log;
        m_Lanner.m_Calls.clear();
        m_Lanner.QueryActiveSet();
        Put(m_Lanner, pFrame);
        EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eError null"));
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid response received"));
    }
}

TEST_F(CLannerProtocolTest, SetThatCannotBeDecodedGivesErrorAndLeavesTheSwap) {
    TurnOnSwap();
    const CLogCapture Log;
    m_Lanner.QueryActiveSet();
    Put(m_Lanner, "10 09 01 02 03 01 08 00 00 04 01 01 41 07");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eError null"));
    EXPECT_EQ(m_Lanner.GetSwap(), 1U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSet::Decode: unknown type!", "No bytes decoded!"));
}

// --- swap ---

TEST_F(CLannerProtocolTest, PlanesAreNotSwappedAtFirst) {
    EXPECT_EQ(m_Lanner.GetSwap(), 0U);
}

TEST_F(CLannerProtocolTest, SwappedRpmAnswerOfPlaneZeroReachesPlaneOne) {
    TurnOnSwap();
    m_Lanner.QueryRPMData();
    Put(m_Lanner, "1C 09 01 00 B8 0B");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("RPM eSuccess plane 1 3000"));
}

TEST_F(CLannerProtocolTest, SwapConcernsEveryValueThatNamesItsPlane) {
    TurnOnSwap();
    Put(m_Lanner, "1C 09 00 01 B8 0B");
    Put(m_Lanner, "1D 09 00 00 B8 0B");
    Put(m_Lanner, "1E 09 00 01 20 01 80 FF");
    EXPECT_THAT(m_Lanner.m_Calls,
                ElementsAre("RPM eIndication plane 0 3000", "Amplitude eIndication plane 1 3000",
                            "XY eIndication plane 0 288 65408"));
}

TEST_F(CLannerProtocolTest, SetIndicationTurnsOnTheSwapOfTheNextModuleState) {
    Put(m_Lanner, STATE_OUT_OF_LOCK);
    Put(m_Lanner, SWAPPED_SET);
    Put(m_Lanner, STATE_OUT_OF_LOCK);
    Put(m_Lanner, PLAIN_SET);
    Put(m_Lanner, STATE_OUT_OF_LOCK);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("ModuleState eIndication 0 10", "Set eIndication 3 A",
                                              "ModuleState eIndication 0 01", "Set eIndication 4 B",
                                              "ModuleState eIndication 0 10"));
}

TEST_F(CLannerProtocolTest, SwapConcernsTheAnswerToAModuleStateQueryToo) {
    TurnOnSwap();
    m_Lanner.QueryModuleState();
    Put(m_Lanner, "08 09 01 01 00 00 00 00 08 00");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("ModuleState eSuccess 0 01"));
}

TEST_F(CLannerProtocolTest, SwapConcernsTheBalConfiguration) {
    constexpr const char* FRAME = "11 09 00 00 00 00 10 27 11 12 13 14 21 22 23 24 5A 66";
    Put(m_Lanner, FRAME);
    TurnOnSwap();
    Put(m_Lanner, FRAME);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Bal eIndication 35 19"));  // 0x23 and 0x13
}

TEST_F(CLannerProtocolTest, SwapIsKnownBeforeTheSetIsLoggedAndReported) {
    m_Lanner.QueryActiveSet();
    std::uint32_t SwapInCallback = 99;
    m_Lanner.m_OnCall = [&] { SwapInCallback = m_Lanner.GetSwap(); };
    const CLogCapture Log(true);
    Put(m_Lanner, SWAPPED_SET);
    EXPECT_EQ(SwapInCallback, 1U);
    const std::vector<std::string> Detail = Log.GetTexts("ProtocolDetail");
    EXPECT_LT(std::ranges::find(Detail, "Lanner Swap: 1"), std::ranges::find(Detail, "Lanner::CSet"));
}

TEST_F(CLannerProtocolTest, SetWithoutParamsKeepsTheSwap) {
    TurnOnSwap();
    m_Lanner.QueryActiveSet();
    Put(m_Lanner, "10 09 01 02 04 02 0C 00 00 01 90 01 20 03 10 27 05");
    Put(m_Lanner, "10 09 00 02 05 02 0C 00 00 01 90 01 20 03 10 27 05");
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eSuccess 4 no params", "Set eIndication 5 no params"));
    EXPECT_EQ(m_Lanner.GetSwap(), 1U);
}

// Bit 7 of the sub-code doesn't count when the answer is told, but only sub-code 2 means the set in force.
TEST_F(CLannerProtocolTest, AnswerWithSubCode82IsReportedButLeavesTheSwap) {
    m_Lanner.QueryActiveSet();
    EXPECT_NE(Put(m_Lanner, "10 09 01 82 03 01 08 00 00 06 01 01 41"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Set eSuccess 3 A"));
    EXPECT_EQ(m_Lanner.GetSwap(), 0U);
}

TEST_F(CLannerProtocolTest, FricklSwapDataSourceExchangesOnlyWhenSwapped) {
    std::uint32_t Plane = 0;
    m_Lanner.FricklSwapDataSource(&Plane);
    EXPECT_EQ(Plane, 0U);
    m_Lanner.SetSwap(1);
    m_Lanner.FricklSwapDataSource(&Plane);
    EXPECT_EQ(Plane, 1U);
    m_Lanner.FricklSwapDataSource(&Plane);
    EXPECT_EQ(Plane, 0U);
    m_Lanner.FricklSwapDataSource(nullptr);
}

TEST_F(CLannerProtocolTest, FricklSwapDataSourceShowsThatAnotherPlaneIsImpossible) {
    TakeShownMessages();
    for (const std::uint32_t Swap : {0, 1}) {
        m_Lanner.SetSwap(Swap);
        const CLogCapture Log;
        std::uint32_t Plane = 2;
        m_Lanner.FricklSwapDataSource(&Plane);
        EXPECT_EQ(Plane, 2U);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible"));
        EXPECT_EQ(TakeShownMessages().size(), 1U);
    }
}

// --- indications ---

TEST_F(CLannerProtocolTest, ValuesThatTheModuleSendsByItself) {
    EXPECT_EQ(Put(m_Lanner, "1C 09 00 01 AE 0B"), 1);
    EXPECT_EQ(Put(m_Lanner, "1D 09 00 00 10 27"), 1);
    EXPECT_EQ(Put(m_Lanner, "1E 09 77 00 20 01 80 FF"), 1);  // the destination isn't read
    EXPECT_EQ(Put(m_Lanner, "1F 09 00 AA BB"), 1);
    EXPECT_EQ(Put(m_Lanner, "1F 09 00 AA"), 1);
    EXPECT_THAT(m_Lanner.m_Calls,
                ElementsAre("RPM eIndication plane 1 2990", "Amplitude eIndication plane 0 10000",
                            "XY eIndication plane 0 288 65408", "Diagnosis eIndication AA BB",
                            "Diagnosis eIndication AA"));
}

TEST_F(CLannerProtocolTest, ConfigurationsThatTheModuleSendsByItselfAreLoggedWithTheirLabels) {
    const CLogCapture Log(true);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 00 06 00 10 27 11 12 13 14 21 22 23 24 5A 66"), 1);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 04 97 32 05 0A 00 00"), 1);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 09 2D 37 00 04 05 01 06 01 07 01 08 01 09 01 0A 01 4F 4B 00"), 1);
    EXPECT_THAT(m_Lanner.m_Calls, ElementsAre("Bal eIndication 19 35", "Module eIndication 23",
                                              "DiagnosisData eIndication OK"));
    EXPECT_THAT(Log.GetTexts("Protocol"), ElementsAre("--> BalConfiguration indication received",
                                                      "--> ModuleConfiguration indication received",
                                                      "--> ModuleDiagnosisData indication received"));
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        testing::IsSupersetOf({"Lanner::CBalConfiguration", " Plane1Input: PNP",
                               "calling OnBalConfiguration(CStateBase::eIndication, &BalConfiguration)",
                               "Lanner::CModuleConfiguration", "Baudrate = e115200baud30Mhz",
                               "calling OnModuleConfiguration(eIndication, pModuleConfiguration)",
                               "Lanner::CModuleDiagnosisData", "DiagText= OK",
                               "calling OnModuleDiagnosisData(eIndication, pModuleDiagnosisData)"}));
}

TEST_F(CLannerProtocolTest, ShortConfigurationsByThemselvesAreDropped) {
    EXPECT_EQ(Put(m_Lanner, "11 09 00 00 06 00 10 27 11 12 13 14 21 22 23 24 5A"), 0);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 04 97 32 05 0A 00"), 0);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 09 2D 37 00 04 05 01 06 01 07 01 08 01 09 01 0A"), 0);
    EXPECT_EQ(Put(m_Lanner, "11 09 00 00"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
}

// Limits, defaults and the identification come as answers only.
TEST_F(CLannerProtocolTest, OtherSubCodesByThemselvesAreDroppedWithoutAWord) {
    const CLogCapture Log;
    for (const char* pSubCode : {"01", "02", "03", "05", "06", "07", "08", "0A", "80", "FF"}) {
        EXPECT_EQ(Put(m_Lanner, Cut(std::string("11 09 00 ") + pSubCode, 60)), 0) << pSubCode;
    }
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST_F(CLannerProtocolTest, PlaneTwoByItselfIsDroppedWithAWarning) {
    for (const char* pFrame : {"1C 09 00 02 B8 0B", "1D 09 00 FF B8 0B", "1E 09 00 02 20 01 80 FF"}) {
        const CLogCapture Log;
        EXPECT_EQ(Put(m_Lanner, pFrame), 0) << pFrame;
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid data"));
    }
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
}

TEST_F(CLannerProtocolTest, UnusableIndicationsAreDroppedWithoutAWord) {
    const CLogCapture Log;
    for (const char* pFrame :
         {"", "08", "08 09", "08 09 00", "08 09 00 01", "08 09 00 01 00 80 00 00 00", "10 09 00 02 03",
          "10 09 00 02 03 07 07", "10 09 00 00 03 01 08 00 00 04 01 01 41",
          "10 09 00 82 03 01 08 00 00 04 01 01 41", "1C 09 00", "1C 09 00 00 AE", "1D 09 00 00 AE",
          "1E 09 00 00 20 01 80", "1F 09 00", "20 09 00 00 00 00", "7F 09 00 01 02 03"}) {
        EXPECT_EQ(Put(m_Lanner, pFrame), 0) << pFrame;
    }
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST_F(CLannerProtocolTest, ConfigurationsOfAnotherModuleFallThrough) {
    for (const char* pFrame : {"11 05 00 04 97 32 05 0A 00 00", "1D 05 00 00 10 27", "1F 05 00 AA"}) {
        EXPECT_EQ(Put(m_Lanner, pFrame), 0) << pFrame;
    }
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
}

// Eight bytes are the least; what stands in them must be a set.
TEST_F(CLannerProtocolTest, SetIndicationThatCannotBeDecodedIsDropped) {
    EXPECT_EQ(Put(m_Lanner, "10 09 00 02 03 07 00 00"), 0);
    EXPECT_THAT(m_Lanner.m_Calls, IsEmpty());
}

// --- the rest ---

TEST_F(CLannerProtocolTest, LogIdIsPreBal) {
    EXPECT_STREQ(m_Lanner.GetLogID(), "PreBal");
    EXPECT_EQ(m_Lanner.GetModuleAddress(), 9);
}

// A protocol with nothing overridden but the way to the line takes everything and does nothing with it.
TEST(LannerProtocol, CallbacksHaveDefaultBodies) {
    class CSilent : public Lanner::CLannerProtocol {
    public:
        CSilent() : CLannerProtocol(9) {}

    private:
        void SendRawData(const std::uint8_t*, std::uint32_t) override {}
    };
    CVirtualEventLoop Loop;
    CSilent Protocol;
    const CLogCapture Log;
    Protocol.QueryModuleState();
    Protocol.QueryActiveSet();
    Protocol.QueryModuleIdentification();
    EXPECT_EQ(Put(Protocol, SWAPPED_SET), 1);
    EXPECT_EQ(Put(Protocol, Identification(9, 49)), 1);
    EXPECT_EQ(Put(Protocol, STATE_OUT_OF_LOCK), 1);
    EXPECT_EQ(Put(Protocol, "1C 09 00 01 AE 0B"), 1);
    EXPECT_EQ(Put(Protocol, "1D 09 00 01 AE 0B"), 1);
    EXPECT_EQ(Put(Protocol, "1E 09 00 01 20 01 80 FF"), 1);
    EXPECT_EQ(Put(Protocol, "1F 09 00 01"), 1);
    EXPECT_EQ(Put(Protocol, "11 09 00 00 06 00 10 27 11 12 13 14 21 22 23 24 5A 66"), 1);
    EXPECT_EQ(Put(Protocol, "11 09 00 04 97 32 05 0A 00 00"), 1);
    EXPECT_EQ(Put(Protocol, Cut("11 09 00 09", 20)), 1);
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}
