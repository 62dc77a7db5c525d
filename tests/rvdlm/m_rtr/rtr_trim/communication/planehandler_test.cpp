#include "rvdlm/m_rtr/rtr_trim/communication/planehandler.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "tests/support/fakefromcommunication.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint8_t MASTER = 5;
constexpr std::uint8_t SLAVE = 6;
/// Article and serial number: 1 (0x10000 once it has gone into the upper half) and 7.
constexpr const char* MASTER_ARTICLE = "12 AB 0F 01 00 00 00";
constexpr const char* SLAVE_ARTICLE = "34 56 78 07 00 00 00";

/// An identification answer of a module: article and serial number as given.
std::string Identification(std::uint8_t Address, const std::string& rArticleAndSerial) {
    std::vector<std::uint8_t> Frame{0x11, Address, 1, 8, 0, 0, 0, 0, 0};
    const std::vector<std::uint8_t> Part = Bytes(rArticleAndSerial);
    Frame.insert(Frame.end(), Part.begin(), Part.end());
    Frame.resize(49);
    return Hex(Frame);
}

class COneModule : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CFakeFromCommunication m_Window;
    CPlaneHandler m_Handler{&m_Window, MASTER, CPlaneHandler::NO_SLAVE};
};

class CTwoModules : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CFakeFromCommunication m_Window;
    CPlaneHandler m_Handler{&m_Window, MASTER, SLAVE};
};

}  // namespace

// --- identification ---

TEST_F(COneModule, ReportsArticleAndShiftedSerial) {
    const CLogCapture Log;
    EXPECT_EQ(m_Handler.QueryModuleIdentification(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("11 01 05 08"));
    Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F 65536"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// Plausibility only: the report goes out whatever the assertion finds.
TEST_F(COneModule, SerialThatVanishesInTheShiftAssertsAndIsReported) {
    const CLogCapture Log;
    m_Handler.QueryModuleIdentification();
    Put(m_Handler, Identification(MASTER, "12 AB 0F 00 00 01 00"));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F 0"));
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("Invalid serial number!"));
    EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "m_SerialNumber&0xFFFF0000");
}

TEST_F(COneModule, ArticleOfAnotherLengthAssertsAndIsReported) {
    const CLogCapture Log;
    const std::string Article = "12";
    const std::uint32_t Serial = 1;
    m_Handler.OnQueryModuleIdentification(MASTER, Comm::eSuccess, &Article, &Serial);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12 65536"));
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("Incorrect F-Number!"));
    EXPECT_EQ(Log.GetRecords().at(0).m_Expression, "m_ArticleNumber.GetLength() == 6");
}

TEST_F(COneModule, SecondIdentificationBeginsAfresh) {
    for (int i = 0; i < 2; ++i) {
        m_Handler.QueryModuleIdentification();
        Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    }
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("Identification eSuccess 12AB0F 65536", "Identification eSuccess 12AB0F 65536"));
}

TEST_F(COneModule, IdentificationIndicationIsIgnored) {
    const std::string Article = "12AB0F";
    const std::uint32_t Serial = 1;
    m_Handler.OnQueryModuleIdentification(MASTER, Comm::eIndication, &Article, &Serial);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

TEST_F(COneModule, UnusableIdentificationIsReportedAsError) {
    m_Handler.QueryModuleIdentification();
    std::vector<std::uint8_t> Frame = Bytes(Identification(MASTER, MASTER_ARTICLE));
    Frame.resize(48);
    Put(m_Handler, Hex(Frame));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eError null null"));
}

TEST_F(CTwoModules, MasterArticleFirst) {
    EXPECT_EQ(m_Handler.QueryModuleIdentification(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("11 01 05 08", "11 01 06 08"));
    Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, Identification(SLAVE, SLAVE_ARTICLE));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F-345678 65543"));
}

TEST_F(CTwoModules, SlaveArticleFirst) {
    m_Handler.QueryModuleIdentification();
    Put(m_Handler, Identification(SLAVE, SLAVE_ARTICLE));
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F-345678 65543"));
}

// A slave's serial number above 0xFFFF reaches into the master's half, so that the slave alone looks
// complete: its article has seven characters by the dash.
TEST_F(CTwoModules, SlaveSerialIsNotMasked) {
    m_Handler.QueryModuleIdentification();
    Put(m_Handler, Identification(SLAVE, "34 56 78 07 00 01 00"));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess -345678 65543"));
}

TEST_F(CTwoModules, SerialWithoutALowerHalfIsNeverReported) {
    m_Handler.QueryModuleIdentification();
    Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    Put(m_Handler, Identification(SLAVE, "34 56 78 00 00 00 00"));
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

TEST_F(CTwoModules, SlaveIsNotAskedWhenTheMasterCannotBe) {
    m_Handler.QueryRPMData();  // blocks the master's machine
    m_Window.m_Sent.clear();
    EXPECT_EQ(m_Handler.QueryModuleIdentification(), 0);
    EXPECT_THAT(m_Window.m_Sent, IsEmpty());
}

TEST_F(CTwoModules, EachSilentModuleIsReported) {
    m_Handler.QueryModuleIdentification();
    m_Loop.Advance(2000);
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("Identification eTimeout null null", "Identification eTimeout null null"));
}

// --- set ---

TEST_F(COneModule, SetOfOneModule) {
    const CLogCapture Log;
    EXPECT_EQ(m_Handler.QueryActiveSet(), 1);
    Put(m_Handler, "10 05 01 00 02 03 00 00 07");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 2"));
    const CSet& rSet = m_Window.m_Sets.at(0);
    EXPECT_EQ(rSet.Mode, 1);
    EXPECT_EQ(rSet.Name, "");
    EXPECT_EQ(rSet.RPMFactorPlane1, 3);
    EXPECT_EQ(rSet.RPMInputPlane1, 0);
    EXPECT_EQ(rSet.SensorAdaptionPlane1, 7);
    EXPECT_EQ(rSet.RPMFactorPlane2, 1);  // keeps the window's test of both factors quiet
    EXPECT_EQ(rSet.RPMInputPlane2, 0xFF);
    EXPECT_EQ(rSet.SensorAdaptionPlane2, 0xFF);
    EXPECT_EQ(rSet.Swap, 0U);
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST_F(COneModule, UnknownFactorAssertsAndIsReported) {
    const CLogCapture Log;
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 05 01 00 02 FF 00 00 07");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 2"));
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid parameters!"));
}

TEST_F(COneModule, SetIndicationIsPassedUpAsOne) {
    Put(m_Handler, "10 05 00 00 03 01 00 00 01");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eIndication 3"));
}

// Deliberate: neither a failed set nor a failed module state reaches its own callback on this road.
TEST_F(COneModule, FailedSetIsReportedAsIdentification) {
    m_Handler.QueryActiveSet();
    m_Loop.Advance(2000);
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 05 01 00 02 07");
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("Identification eTimeout null null", "Identification eError null null"));
}

TEST_F(CTwoModules, SetComesAfterTheSecondAnswer) {
    EXPECT_EQ(m_Handler.QueryActiveSet(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("10 01 05 00", "10 01 06 00"));
    Put(m_Handler, "10 05 01 00 02 01 00 00 07");
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, "10 06 01 00 09 02 00 00 08");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 2"));  // the slave's number is dropped
    const CSet& rSet = m_Window.m_Sets.at(0);
    EXPECT_EQ(rSet.Mode, 4);
    EXPECT_EQ(rSet.RPMFactorPlane1, 1);
    EXPECT_EQ(rSet.RPMInputPlane1, 0);
    EXPECT_EQ(rSet.SensorAdaptionPlane1, 7);
    EXPECT_EQ(rSet.RPMFactorPlane2, 2);
    EXPECT_EQ(rSet.RPMInputPlane2, 0);
    EXPECT_EQ(rSet.SensorAdaptionPlane2, 8);
}

TEST_F(CTwoModules, SetComesAfterTheSecondAnswerInTheOtherOrderToo) {
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 06 01 00 09 02 00 00 08");
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, "10 05 01 00 02 01 00 00 07");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 2"));
}

TEST_F(CTwoModules, SetIndicationAfterBothAreKnownIsReportedAtOnce) {
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 05 01 00 02 01 00 00 07");
    Put(m_Handler, "10 06 01 00 02 01 00 00 08");
    Put(m_Handler, "10 05 00 00 04 01 00 00 07");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 2", "Set eIndication 4"));
}

TEST_F(CTwoModules, NewQueryForgetsTheFormerSet) {
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 05 01 00 02 01 00 00 07");
    Put(m_Handler, "10 06 01 00 02 01 00 00 08");
    m_Handler.QueryActiveSet();
    Put(m_Handler, "10 06 01 00 02 01 00 00 08");
    EXPECT_EQ(m_Window.m_Calls.size(), 1U);
}

TEST_F(CTwoModules, SetOfAnUnknownAddressChangesNothing) {
    CSet Set;
    Set.Number = 9;
    Set.RPMFactorPlane1 = 1;
    m_Handler.OnSetRequest(77, Comm::eSuccess, &Set);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

// --- module state ---

TEST_F(COneModule, StateOfOneModuleIsReportedAtOnce) {
    EXPECT_EQ(m_Handler.QueryModuleState(), 1);
    Put(m_Handler, "08 05 01 07 00 80 00 28");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 1 lock 1 0 rpm 1 0 wrong 0"));
}

TEST_F(COneModule, AnyStateButPrebalancingStartIsWrong) {
    for (const char* pState : {"00", "06", "08", "0A", "0B"}) {
        m_Window.m_Calls.clear();
        Put(m_Handler, std::string("08 05 00 ") + pState + " 00 00 00 00");
        EXPECT_THAT(m_Window.m_Calls,
                    ElementsAre("ModuleState eIndication locked 0 lock 0 0 rpm 0 0 wrong 1"))
            << pState;
    }
}

TEST_F(COneModule, TimedOutModuleStateArrivesAsIdentificationOnly) {
    m_Handler.QueryModuleState();
    m_Loop.Advance(2000);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eTimeout null null"));
}

TEST_F(CTwoModules, MasterStateAloneIsNotReportedTheSlavesThenIs) {
    EXPECT_EQ(m_Handler.QueryModuleState(), 1);
    Put(m_Handler, "08 05 01 07 00 80 00 20");
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, "08 06 01 07 00 00 00 08");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 1 lock 1 0 rpm 0 1 wrong 0"));
}

TEST_F(CTwoModules, SecondStateOfTheMasterReplacesTheFirst) {
    m_Handler.QueryModuleState();
    Put(m_Handler, "08 05 01 07 00 80 00 20");
    Put(m_Handler, "08 05 00 00 00 00 00 08");
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    Put(m_Handler, "08 06 01 07 00 00 00 00");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 0 lock 0 0 rpm 1 0 wrong 1"));
}

TEST_F(CTwoModules, LockAndWrongStateOfEitherModuleCount) {
    m_Handler.QueryModuleState();
    Put(m_Handler, "08 05 01 07 00 00 00 00");
    Put(m_Handler, "08 06 01 09 00 80 00 00");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 1 lock 0 0 rpm 0 0 wrong 1"));
}

TEST_F(CTwoModules, IndicationReportsAtOnceWithTheOtherPlanesLastValues) {
    m_Handler.QueryModuleState();
    Put(m_Handler, "08 05 01 07 00 00 00 20");
    Put(m_Handler, "08 06 01 07 00 00 00 00");
    Put(m_Handler, "08 06 00 07 00 00 00 08");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 0 lock 1 0 rpm 0 0 wrong 0",
                                              "ModuleState eIndication locked 0 lock 1 0 rpm 0 1 wrong 0"));
}

TEST_F(CTwoModules, NewQueryWaitsForBothAgain) {
    m_Handler.QueryModuleState();
    Put(m_Handler, "08 05 01 07 00 00 00 20");
    Put(m_Handler, "08 06 01 07 00 00 00 00");
    m_Handler.QueryModuleState();
    Put(m_Handler, "08 06 01 07 00 00 00 00");
    EXPECT_EQ(m_Window.m_Calls.size(), 1U);
}

TEST_F(CTwoModules, StateWithoutValuesOrOfAnUnknownAddressIsImpossible) {
    TakeShownMessages();
    const CLogCapture Log;
    const std::uint32_t Flag = 0;
    m_Handler.OnModuleState(MASTER, Comm::eSuccess, &Flag, nullptr, &Flag, nullptr, nullptr, &Flag);
    m_Handler.OnModuleState(77, Comm::eSuccess, &Flag, &Flag, &Flag, nullptr, nullptr, &Flag);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
    EXPECT_EQ(TakeShownMessages().size(), 2U);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

TEST_F(COneModule, StateReportWithoutAStateAsserts) {
    TakeShownMessages();
    const CLogCapture Log;
    m_Handler.OnModuleState(MASTER, Comm::eSuccess, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "must be received!"));
    EXPECT_EQ(m_Window.m_Calls.size(), 1U);  // an assertion doesn't change the flow
    EXPECT_EQ(TakeShownMessages().size(), 1U);
}

// --- speed and readings ---

TEST_F(CTwoModules, RpmIsAskedOfTheMasterOnly) {
    EXPECT_EQ(m_Handler.QueryRPMData(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("1C 01 05"));
    Put(m_Handler, "1C 05 01 B8 0B");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eSuccess plane 0 3000"));
}

TEST_F(CTwoModules, SlavesRpmIndicationHasPlaneOne) {
    Put(m_Handler, "1C 06 00 AE 0B");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eIndication plane 1 2990"));
}

TEST_F(CTwoModules, ReadingsComePlaneByPlane) {
    EXPECT_EQ(m_Handler.QueryUnbalanceXYValues(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("1E 01 05", "1E 01 06"));
    Put(m_Handler, "1E 06 01 20 01 80 FF");
    Put(m_Handler, "1E 05 01 01 00 02 00");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("XY eSuccess plane 1 288 65408", "XY eSuccess plane 0 1 2"));
}

TEST_F(CTwoModules, FailuresOfSpeedAndReadingsGoUpWithNullValues) {
    m_Handler.QueryRPMData();
    m_Loop.Advance(2000);
    m_Handler.QueryUnbalanceXYValues();
    Put(m_Handler, "1E 05 01 20 01");
    m_Loop.Advance(2000);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eTimeout plane 0 null", "XY eError plane 0 null null",
                                              "XY eTimeout plane 1 null null"));
}

TEST_F(CTwoModules, ValuesOfAnUnknownAddressKeepItAsPlane) {
    TakeShownMessages();
    const CLogCapture Log;
    const std::uint32_t Value = 1;
    m_Handler.OnRPMData(77, Comm::eIndication, &Value);
    m_Handler.OnUnbalanceXYValues(78, Comm::eIndication, &Value, &Value);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
    EXPECT_EQ(TakeShownMessages().size(), 2U);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eIndication plane 77 1", "XY eIndication plane 78 1 1"));
}

TEST_F(COneModule, FrameOfAnotherModuleIsNotTaken) {
    EXPECT_EQ(Put(m_Handler, "1C 06 00 AE 0B"), 0);
    EXPECT_EQ(Put(m_Handler, "1C 05 00 AE 0B"), 1);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eIndication plane 0 2990"));
}

// The result is the AND of both modules', so that no frame is taken by two; nobody reads it.
TEST_F(CTwoModules, FrameIsNeverTakenByBoth) {
    EXPECT_EQ(Put(m_Handler, "1C 05 00 AE 0B"), 0);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eIndication plane 0 2990"));
}

// --- no master ---

TEST(CPlaneHandler, MasterAddressZeroIsRefusedWithAMessage) {
    CVirtualEventLoop Loop;
    CFakeFromCommunication Window;
    TakeShownMessages();
    const CLogCapture Log;
    CPlaneHandler Handler(&Window, 0, CPlaneHandler::NO_SLAVE);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("Incorrect master module address!"));
    const std::vector<CShownMessage> Shown = TakeShownMessages();
    ASSERT_EQ(Shown.size(), 1U);
    EXPECT_EQ(Shown[0].m_Text, "Incorrect master module address!");
    EXPECT_EQ(Shown[0].m_Title, "Error");
}

TEST(CPlaneHandler, RpmQueryWithoutMasterAnswersOneAndSendsNothing) {
    CVirtualEventLoop Loop;
    CFakeFromCommunication Window;
    CPlaneHandler Handler(&Window, 0, CPlaneHandler::NO_SLAVE);
    EXPECT_EQ(Handler.QueryRPMData(), 1);
    EXPECT_THAT(Window.m_Sent, IsEmpty());
    TakeShownMessages();
}

TEST(CPlaneHandler, EveryOperationWithoutMasterIsHarmless) {
    CVirtualEventLoop Loop;
    CFakeFromCommunication Window;
    CPlaneHandler Handler(&Window, 0, CPlaneHandler::NO_SLAVE);
    Handler.QueryModuleIdentification();
    Handler.QueryActiveSet();
    Handler.QueryModuleState();
    Handler.QueryUnbalanceXYValues();
    Put(Handler, "1C 05 00 AE 0B");
    Loop.Advance(5000);
    EXPECT_THAT(Window.m_Sent, IsEmpty());
    EXPECT_THAT(Window.m_Calls, IsEmpty());
    TakeShownMessages();
}

// --- the main window's chain of queries, each from the callback of the one before ---

TEST_F(CTwoModules, WholeChainFromCallbackToCallback) {
    const CLogCapture Log;
    m_Window.m_OnCall = [&] {
        switch (m_Window.m_Calls.size()) {
            case 1:
                EXPECT_EQ(m_Handler.QueryActiveSet(), 1);
                break;
            case 2:
                EXPECT_EQ(m_Handler.QueryModuleState(), 1);
                break;
            case 3:
                EXPECT_EQ(m_Handler.QueryRPMData(), 1);
                break;
            case 4:
                EXPECT_EQ(m_Handler.QueryUnbalanceXYValues(), 1);
                break;
            default:
                break;
        }
    };
    m_Handler.QueryModuleIdentification();
    Put(m_Handler, Identification(MASTER, MASTER_ARTICLE));
    Put(m_Handler, Identification(SLAVE, SLAVE_ARTICLE));
    Put(m_Handler, "10 05 01 00 02 01 00 00 07");
    Put(m_Handler, "10 06 01 00 02 01 00 00 07");
    Put(m_Handler, "08 05 01 07 00 00 00 00");
    Put(m_Handler, "08 06 01 07 00 00 00 00");
    Put(m_Handler, "1C 05 01 B8 0B");
    Put(m_Handler, "1E 05 01 01 00 02 00");
    Put(m_Handler, "1E 06 01 03 00 04 00");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F-345678 65543", "Set eSuccess 2",
                                              "ModuleState eSuccess locked 0 lock 0 0 rpm 0 0 wrong 0",
                                              "RPM eSuccess plane 0 3000", "XY eSuccess plane 0 1 2",
                                              "XY eSuccess plane 1 3 4"));
    m_Window.m_Sent.clear();
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Window.m_Sent, IsEmpty());  // nothing polls
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST_F(COneModule, LostAnswerIsAskedForAgainAndReportedOnce) {
    m_Handler.QueryRPMData();
    m_Loop.Advance(1200);
    EXPECT_THAT(m_Window.m_Sent, Each("1C 01 05"));
    EXPECT_EQ(m_Window.m_Sent.size(), 3U);
    Put(m_Handler, "1C 05 01 B8 0B");
    m_Loop.Advance(5000);
    EXPECT_EQ(m_Window.m_Sent.size(), 3U);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eSuccess plane 0 3000"));
}
