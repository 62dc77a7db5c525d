#include "rvdlm/m_rtr/rtr_trim/prebalnotification.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/logcapture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

CPreBalNotification MakeNotification() {
    CPreBalNotification Result;
    Result.m_Step = 3;
    Result.m_Action = 4;
    Result.m_WeightsPlane1 = {11, 12, 13};
    Result.m_AnglesPlane1 = {21, 22, 23};
    Result.m_WeightsPlane2 = {31, 32, 33};
    Result.m_AnglesPlane2 = {41, 42, 43};
    return Result;
}

// Angle before weight, unlike in memory, and both planes always.
TEST(PreBalNotificationTest, EncodeGivesFourteenValuesInOrder) {
    std::vector<std::int32_t> Data = {99, 98};  // emptied first
    EXPECT_EQ(MakeNotification().Encode(Data), 1);
    EXPECT_THAT(Data, ElementsAre(3, 4, 21, 11, 22, 12, 23, 13, 41, 31, 42, 32, 43, 33));
}

TEST(PreBalNotificationTest, EncodeLogs) {
    const CLogCapture Log(true);
    std::vector<std::int32_t> Data;
    MakeNotification().Encode(Data);
    EXPECT_THAT(
        Log.GetTexts("PbFlow"),
        testing::IsSupersetOf({"Step: Setup", "Action: SetWeights", "Plane 1 Weight1: Angle=21 Weight=11",
                               "Plane 1 Weight2: Angle=22 Weight=12", "Plane 1 Weight3: Angle=23 Weight=13",
                               "Plane 2 Weight1: Angle=41 Weight=31", "Plane 2 Weight2: Angle=42 Weight=32",
                               "Plane 2 Weight3: Angle=43 Weight=33"}));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(PreBalNotificationTest, NewRecordIsZero) {
    std::vector<std::int32_t> Data;
    CPreBalNotification().Encode(Data);
    EXPECT_EQ(Data, std::vector<std::int32_t>(14, 0));
}

TEST(PreBalNotificationTest, StepTexts) {
    const CLogCapture Log;
    const std::vector<const char*> Texts = {"Inactive",     "Parameter",    "ParameterWithReBal",
                                            "Setup",        "ReBalActive",  "Failure",
                                            "SetupAborted", "SetupSuccess", "RebalSuccess"};
    for (std::size_t i = 0; i < Texts.size(); ++i) {
        EXPECT_STREQ(CPreBalNotification::PreBalStepToString(static_cast<std::int32_t>(i)), Texts[i]);
    }
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// The log of a run over the target is to keep this mark; the NC gets the number all the same.
TEST(PreBalNotificationTest, OverTargetStepsHaveNoText) {
    for (const std::int32_t Step : {9, 10, 11, -1}) {
        const CLogCapture Log(true);
        CPreBalNotification Notification;
        Notification.m_Step = Step;
        std::vector<std::int32_t> Data;
        Notification.Encode(Data);
        EXPECT_EQ(Data.front(), Step);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible"));
        EXPECT_THAT(Log.GetTexts("PbFlow"), testing::Contains("Step: UNDEFINED Step"));
    }
}

// Nobody is to see an assertion for a run that is merely over the target, unless the flow is logged.
TEST(PreBalNotificationTest, WithoutTheTopicNothingIsAsserted) {
    const CLogCapture Log;
    CPreBalNotification Notification;
    Notification.m_Step = CPreBalNotification::eSetupOverTarget;
    Notification.Log();
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST(PreBalNotificationTest, ActionTexts) {
    const CLogCapture Log;
    const std::vector<const char*> Texts = {
        "None",       "SetSpindleSpeed", "SpindleStart",       "SpindleStop",
        "SetWeights", "Measure",         "MeasurementValuesOK"};
    for (std::size_t i = 0; i < Texts.size(); ++i) {
        EXPECT_STREQ(CPreBalNotification::ActionToString(static_cast<std::int32_t>(i)), Texts[i]);
    }
    EXPECT_STREQ(CPreBalNotification::ActionToString(7), "UNDEFINED Action");
    EXPECT_STREQ(CPreBalNotification::ActionToString(-1), "UNDEFINED Action");
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

}  // namespace
