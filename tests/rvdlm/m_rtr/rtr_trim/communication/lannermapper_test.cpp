#include "rvdlm/m_rtr/rtr_trim/communication/lannermapper.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/messagebox.h"
#include "tests/support/fakefromcommunication.h"
#include "tests/support/frames.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* PLANE0 = " 02 0C 00 00 03 90 01 20 03 10 27 05";
constexpr const char* PLANE1 = " 02 0C 01 01 04 90 01 20 03 10 27 05";

/// A set answer: number 3, params with that mode byte and the name "A", further blocks.
std::string SetFrame(const std::string& rMode, const std::string& rBlocks) {
    return "10 09 01 02 03 01 08 00 00 " + rMode + " 01 01 41" + rBlocks;
}

std::string Identification() {
    std::vector<std::uint8_t> Frame = Bytes("11 09 01 08 02 18 0C 07 03 12 AB 0F 78 56 34 12 E8 03 00 00");
    Frame.resize(49);
    return Hex(Frame);
}

/// With the callbacks open, for what a module can't bring about.
class COpenMapper : public CLannerMapper {
public:
    using CLannerMapper::CLannerMapper;
    using CLannerMapper::GetLogID;
    using CLannerMapper::OnModuleState;
    using CLannerMapper::OnQueryModuleIdentification;
    using CLannerMapper::OnRPMData;
    using CLannerMapper::OnSetRequest;
    using CLannerMapper::OnUnbalanceXYValues;
};

class CLannerMapperTest : public testing::Test {
protected:
    CLannerMapperTest() { TakeShownMessages(); }

    void ExpectImpossible(bool bShown) {
        EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("impossible"));
        m_Log.Clear();
        const std::vector<CShownMessage> Shown = TakeShownMessages();
        ASSERT_EQ(Shown.size(), bShown ? 1U : 0U);
        if (bShown) {
            EXPECT_EQ(Shown[0].m_Text, "impossible");
            EXPECT_EQ(Shown[0].m_Title, "Error");
        }
    }

    CVirtualEventLoop m_Loop;
    CFakeFromCommunication m_Window;
    COpenMapper m_Mapper{&m_Window, 9};
    CLogCapture m_Log;
    const std::uint32_t m_Value = 1;
};

constexpr auto NO_REASON = static_cast<Reason>(4);

}  // namespace

// --- identification ---

TEST_F(CLannerMapperTest, ReportsArticleAndSerialAsSent) {
    EXPECT_EQ(m_Mapper.QueryModuleIdentification(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("11 01 09 08"));
    EXPECT_NE(Put(m_Mapper, Identification()), 0);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F 305419896"));
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(CLannerMapperTest, IdentificationIndicationIsPassedUpAsOne) {
    const Lanner::CModuleIdentification Module("PreBal");
    m_Mapper.OnQueryModuleIdentification(Comm::eIndication, &Module);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eIndication  0"));
}

TEST_F(CLannerMapperTest, IdentificationWithoutAModuleIsImpossibleAndCallsNothing) {
    for (const Reason Why : {Comm::eSuccess, Comm::eIndication}) {
        m_Mapper.OnQueryModuleIdentification(Why, nullptr);
        ExpectImpossible(true);
    }
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

// --- set ---

TEST_F(CLannerMapperTest, TranslatesTheSet) {
    EXPECT_EQ(m_Mapper.QueryActiveSet(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("10 01 09 02"));
    Put(m_Mapper, SetFrame("04", std::string(PLANE0) + PLANE1));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eSuccess 3"));
    const CSet& rSet = m_Window.m_Sets.at(0);
    EXPECT_EQ(rSet.Name, "A");
    EXPECT_EQ(rSet.Mode, CSet::eTwoPlane);
    EXPECT_EQ(rSet.RPMFactorPlane1, 1);  // this family has no factors
    EXPECT_EQ(rSet.RPMFactorPlane2, 1);
    EXPECT_EQ(rSet.RPMInputPlane1, 0);
    EXPECT_EQ(rSet.RPMInputPlane2, 1);
    EXPECT_EQ(rSet.SensorAdaptionPlane1, 3);
    EXPECT_EQ(rSet.SensorAdaptionPlane2, 4);
    EXPECT_EQ(rSet.Swap, 0U);
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(CLannerMapperTest, PlanesOfTheSetComeAfterSwap) {
    m_Mapper.QueryActiveSet();
    Put(m_Mapper, SetFrame("06", std::string(PLANE0) + PLANE1));
    const CSet& rSet = m_Window.m_Sets.at(0);
    EXPECT_EQ(rSet.Mode, CSet::eTwoPlane);
    EXPECT_EQ(rSet.Swap, 1U);
    EXPECT_EQ(rSet.RPMInputPlane1, 1);
    EXPECT_EQ(rSet.SensorAdaptionPlane1, 4);
    EXPECT_EQ(rSet.RPMInputPlane2, 0);
    EXPECT_EQ(rSet.SensorAdaptionPlane2, 3);
}

// The description's example: of two swapped planes the one with ID 0 is the second.
TEST_F(CLannerMapperTest, PlaneThatTheSetLacksIsNotKnown) {
    m_Mapper.QueryActiveSet();
    Put(m_Mapper, SetFrame("06", " 02 0C 00 00 01 90 01 20 03 10 27 05"));
    const CSet& rSet = m_Window.m_Sets.at(0);
    EXPECT_EQ(rSet.RPMInputPlane1, 0xFF);
    EXPECT_EQ(rSet.SensorAdaptionPlane1, 0xFF);
    EXPECT_EQ(rSet.RPMInputPlane2, 0);
    EXPECT_EQ(rSet.SensorAdaptionPlane2, 1);
    EXPECT_EQ(rSet.RPMFactorPlane1, 1);
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}

TEST_F(CLannerMapperTest, SetIndicationIsPassedUpAsOne) {
    Put(m_Mapper, SetFrame("01", PLANE0));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eIndication 3"));
}

// Nothing is known of such a set; it goes up all the same.
TEST_F(CLannerMapperTest, SetWithoutParamsAssertsAndIsPassedUp) {
    Put(m_Mapper, std::string("10 09 00 02 03") + PLANE0);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("pSet && pSet->GetSetParams()"));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eIndication 255"));
    EXPECT_THAT(TakeShownMessages(), IsEmpty());
    m_Log.Clear();
    m_Mapper.OnSetRequest(Comm::eSuccess, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("pSet && pSet->GetSetParams()"));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Set eIndication 255", "Set eSuccess 255"));
}

// --- module state ---

TEST_F(CLannerMapperTest, TranslatesTheModuleState) {
    EXPECT_EQ(m_Mapper.QueryModuleState(), 1);
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("08 01 09"));
    Put(m_Mapper, "08 09 01 01 00 80 00 00 08 02");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eSuccess locked 1 lock 1 0 rpm 0 1 wrong 0"));
}

TEST_F(CLannerMapperTest, ModuleStateComesAfterSwap) {
    Put(m_Mapper, SetFrame("06", PLANE0));
    m_Window.m_Calls.clear();
    Put(m_Mapper, "08 09 00 01 00 00 00 00 08 02");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("ModuleState eIndication locked 0 lock 0 1 rpm 1 0 wrong 0"));
}

TEST_F(CLannerMapperTest, ModuleStateWithoutValuesAssertsAndCallsNothing) {
    m_Mapper.OnModuleState(Comm::eSuccess, nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("pResponse"));
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

// --- speed and readings ---

TEST_F(CLannerMapperTest, PassesSpeedAndReadingsThroughWithTheirPlanes) {
    EXPECT_EQ(m_Mapper.QueryRPMData(), 1);
    Put(m_Mapper, "1C 09 01 00 B8 0B");
    Put(m_Mapper, "1C 09 00 01 AE 0B");
    EXPECT_EQ(m_Mapper.QueryUnbalanceXYValues(), 1);
    Put(m_Mapper, "1E 09 01 01 20 01 80 FF");
    Put(m_Mapper, "1E 09 00 00 01 00 02 00");
    EXPECT_THAT(m_Window.m_Sent, ElementsAre("1C 01 09", "1E 01 09"));
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("RPM eSuccess plane 0 3000", "RPM eIndication plane 1 2990",
                                              "XY eSuccess plane 1 288 65408", "XY eIndication plane 0 1 2"));
}

TEST_F(CLannerMapperTest, SpeedWithoutPlaneOrValueIsImpossible) {
    m_Mapper.OnRPMData(Comm::eSuccess, nullptr, &m_Value);
    ExpectImpossible(false);
    m_Mapper.OnRPMData(Comm::eIndication, &m_Value, nullptr);
    ExpectImpossible(false);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

// Deliberate: of a reading's three pointers only the plane is tested.
TEST_F(CLannerMapperTest, ReadingsWithoutAPlaneAreImpossibleAndWithoutValuesAreNot) {
    m_Mapper.OnUnbalanceXYValues(Comm::eSuccess, nullptr, &m_Value, &m_Value);
    ExpectImpossible(false);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    m_Mapper.OnUnbalanceXYValues(Comm::eSuccess, &m_Value, nullptr, nullptr);
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("XY eSuccess plane 1 null null"));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

// --- failures ---

TEST_F(CLannerMapperTest, SilenceIsReportedInEachQuerysOwnCallback) {
    m_Mapper.QueryModuleIdentification();
    m_Mapper.QueryActiveSet();
    m_Mapper.QueryModuleState();
    m_Loop.Advance(2000);
    m_Mapper.QueryRPMData();
    m_Loop.Advance(2000);
    m_Mapper.QueryUnbalanceXYValues();
    m_Loop.Advance(2000);
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("Identification eTimeout null null", "Set eTimeout null",
                            "ModuleState eTimeout locked null lock null null rpm null null wrong null",
                            "RPM eTimeout plane null null", "XY eTimeout plane null null null"));
    EXPECT_EQ(m_Window.m_Sent.size(), 20U);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CLannerMapperTest, UnusableAnswersAreReportedInEachQuerysOwnCallback) {
    m_Mapper.QueryModuleIdentification();
    Put(m_Mapper, "11 09 01 08 00 00");
    m_Mapper.QueryActiveSet();
    Put(m_Mapper, "10 09 01 02 03 07");
    m_Mapper.QueryModuleState();
    Put(m_Mapper, "08 09 01 00 00 00 00 00 00 00");
    m_Mapper.QueryRPMData();
    Put(m_Mapper, "1C 09 01 02 B8 0B");
    m_Mapper.QueryUnbalanceXYValues();
    Put(m_Mapper, "1E 09 01 00 01");
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("Identification eError null null", "Set eError null",
                            "ModuleState eError locked null lock null null rpm null null wrong null",
                            "RPM eError plane null null", "XY eError plane null null null"));
}

// Whatever else comes with it: a failure brings no values.
TEST_F(CLannerMapperTest, FailuresGoUpWithNullValues) {
    m_Mapper.OnRPMData(Comm::eError, &m_Value, &m_Value);
    m_Mapper.OnUnbalanceXYValues(Comm::eTimeout, &m_Value, &m_Value, &m_Value);
    EXPECT_THAT(m_Window.m_Calls,
                ElementsAre("RPM eError plane null null", "XY eTimeout plane null null null"));
}

TEST_F(CLannerMapperTest, AnyOtherReasonIsImpossibleAndCallsNothing) {
    m_Mapper.OnQueryModuleIdentification(NO_REASON, nullptr);
    ExpectImpossible(true);
    m_Mapper.OnSetRequest(NO_REASON, nullptr);
    ExpectImpossible(true);
    m_Mapper.OnModuleState(NO_REASON, nullptr);
    ExpectImpossible(true);
    m_Mapper.OnRPMData(NO_REASON, &m_Value, &m_Value);
    ExpectImpossible(true);
    m_Mapper.OnUnbalanceXYValues(NO_REASON, &m_Value, &m_Value, &m_Value);
    ExpectImpossible(true);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

// --- the rest ---

TEST_F(CLannerMapperTest, WhatTheWindowHasNoUseForEndsInTheLog) {
    const CLogCapture Log(true);
    EXPECT_EQ(Put(m_Mapper, "1D 09 00 01 AE 0B"), 1);
    EXPECT_EQ(Put(m_Mapper, "1F 09 00 AA"), 1);
    EXPECT_EQ(Put(m_Mapper, "11 09 00 04 97 32 05 0A 00 00"), 1);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), testing::Contains("Baudrate = e115200baud30Mhz"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST_F(CLannerMapperTest, FrameOfAnotherModuleIsNotTaken) {
    EXPECT_EQ(Put(m_Mapper, "1C 05 00 01 AE 0B"), 0);
    EXPECT_THAT(m_Window.m_Calls, IsEmpty());
}

TEST_F(CLannerMapperTest, LogIdIsPreBal) {
    EXPECT_STREQ(m_Mapper.GetLogID(), "PreBal");
}

// Each query from the callback of the one before, as the main window does it. Swap is known before the first
// values of a plane come.
TEST_F(CLannerMapperTest, WholeChainFromCallbackToCallback) {
    m_Window.m_OnCall = [&] {
        switch (m_Window.m_Calls.size()) {
            case 1:
                EXPECT_EQ(m_Mapper.QueryActiveSet(), 1);
                break;
            case 2:
                EXPECT_EQ(m_Mapper.QueryModuleState(), 1);
                break;
            case 3:
                EXPECT_EQ(m_Mapper.QueryRPMData(), 1);
                break;
            case 4:
                EXPECT_EQ(m_Mapper.QueryUnbalanceXYValues(), 1);
                break;
            default:
                break;
        }
    };
    m_Mapper.QueryModuleIdentification();
    Put(m_Mapper, Identification());
    Put(m_Mapper, SetFrame("06", std::string(PLANE0) + PLANE1));
    Put(m_Mapper, "08 09 01 01 00 00 00 00 08 00");
    Put(m_Mapper, "1C 09 01 00 B8 0B");
    Put(m_Mapper, "1E 09 01 00 01 00 02 00");
    Put(m_Mapper, "1E 09 00 01 03 00 04 00");
    EXPECT_THAT(m_Window.m_Calls, ElementsAre("Identification eSuccess 12AB0F 305419896", "Set eSuccess 3",
                                              "ModuleState eSuccess locked 0 lock 0 1 rpm 0 0 wrong 0",
                                              "RPM eSuccess plane 1 3000", "XY eSuccess plane 1 1 2",
                                              "XY eIndication plane 0 3 4"));
    m_Window.m_Sent.clear();
    m_Loop.Advance(60000);
    EXPECT_THAT(m_Window.m_Sent, IsEmpty());  // nothing polls
    EXPECT_THAT(m_Log.GetRecords(), IsEmpty());
}
