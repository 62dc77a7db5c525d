#include "rvlib/rvprt/kestrel/modulestateresponse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Kestrel::CModuleStateRequest;
using Kestrel::CModuleStateResponse;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(KestrelModuleStateResponse, NewOneIsInvalid) {
    const CModuleStateResponse Message(nullptr);
    EXPECT_EQ(Message.m_ModuleState, 255U);
    EXPECT_EQ(Message.m_Parameter, 255U);
    EXPECT_EQ(Message.m_UILocked + Message.m_OutOfLock + Message.m_InvalidRPM, 0U);
    EXPECT_EQ(Message.GetLogID(), "notSet");
    EXPECT_EQ(CModuleStateResponse("MMapper").GetLogID(), "MMapper");
}

TEST(KestrelModuleStateResponse, DecodesTheAnswerOfAModuleInPrebalancing) {
    CModuleStateResponse Message("MMapper");
    EXPECT_EQ(Decode(Message, "07 00 00 00 00"), 5U);
    EXPECT_EQ(Message.m_ModuleState, 7U);
    EXPECT_EQ(Message.m_Parameter, 0U);
    EXPECT_EQ(Message.m_UILocked, 0U);
    EXPECT_EQ(Message.m_OutOfLock, 0U);
    EXPECT_EQ(Message.m_InvalidRPM, 0U);
}

TEST(KestrelModuleStateResponse, FlagsStandInTheirBits) {
    CModuleStateResponse Locked("MMapper");
    Decode(Locked, "07 00 80 00 00");
    EXPECT_EQ(Locked.m_UILocked, 1U);
    EXPECT_EQ(Locked.m_OutOfLock + Locked.m_InvalidRPM, 0U);
    CModuleStateResponse OutOfLock("MMapper");
    Decode(OutOfLock, "07 00 00 00 20");
    EXPECT_EQ(OutOfLock.m_OutOfLock, 1U);
    EXPECT_EQ(OutOfLock.m_UILocked + OutOfLock.m_InvalidRPM, 0U);
    CModuleStateResponse Invalid("MMapper");
    Decode(Invalid, "07 00 00 00 08");
    EXPECT_EQ(Invalid.m_InvalidRPM, 1U);
    EXPECT_EQ(Invalid.m_UILocked + Invalid.m_OutOfLock, 0U);
}

TEST(KestrelModuleStateResponse, OtherBitsAndByteThreeAreNotRead) {
    CModuleStateResponse Message("MMapper");
    Decode(Message, "07 00 7F FF D7");
    EXPECT_EQ(Message.m_UILocked + Message.m_OutOfLock + Message.m_InvalidRPM, 0U);
}

TEST(KestrelModuleStateResponse, StateElevenBecomesInvalidStateAndIsGoodAllTheSame) {
    CModuleStateResponse Message("MMapper");
    EXPECT_EQ(Decode(Message, "0B 00 00 00 00"), 5U);
    EXPECT_EQ(Message.m_ModuleState, 255U);
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), testing::Contains("ModuleState = InvalidState"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(KestrelModuleStateResponse, StateTenIsTheLast) {
    CModuleStateResponse Message("MMapper");
    Decode(Message, "0A 05 00 00 00");
    EXPECT_EQ(Message.m_ModuleState, 10U);
    EXPECT_EQ(Message.m_Parameter, 5U);
}

TEST(KestrelModuleStateResponse, ParameterSixBecomesInvalidParam) {
    CModuleStateResponse Message("MMapper");
    EXPECT_EQ(Decode(Message, "07 06 00 00 00"), 5U);
    EXPECT_EQ(Message.m_Parameter, 255U);
}

TEST(KestrelModuleStateResponse, ShortOrMissingDataFails) {
    for (const char* pHex : {"", "07", "07 00", "07 00 80", "07 00 80 00"}) {
        CModuleStateResponse Message("MMapper");
        EXPECT_EQ(Decode(Message, pHex), 0U) << pHex;
        EXPECT_EQ(Message.m_ModuleState, 255U);
    }
    CModuleStateResponse Message("MMapper");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Message.Decode(nullptr, 5, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
}

TEST(KestrelModuleStateResponse, FurtherBytesAreLeft) {
    CModuleStateResponse Message("MMapper");
    EXPECT_EQ(Decode(Message, "07 00 00 00 00 AA BB"), 5U);
}

TEST(KestrelModuleStateResponse, LogsItsFieldsAsABlock) {
    CModuleStateResponse Message("MMapper");
    Decode(Message, "07 02 80 00 20");
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        ElementsAre("Kestrel::CModuleStateResponse", "UI locked: 1", "ModuleState = PrebalancingStart",
                    "Parameter = SBA2", "OutOfLock: 1", "InvalidRPM: 0"));
}

TEST(KestrelModuleStateRequest, NamesOfAllStates) {
    const std::vector<std::string> Names{"Idle",
                                         "AutomaticModeStop",
                                         "AutomaticModeStart",
                                         "AutomaticNeutralPositionStart",
                                         "ManualModeStop",
                                         "ManualModeStart",
                                         "ManualModeNeutralPositionStart",
                                         "PrebalancingStart",
                                         "SpectrumStart",
                                         "TwoPlaneBalancingStop",
                                         "TwoPlaneBalancingStart"};
    for (std::uint32_t i = 0; i < Names.size(); ++i) {
        EXPECT_EQ(CModuleStateRequest::ModuleStateToString(i), Names[i]);
    }
    EXPECT_STREQ(CModuleStateRequest::ModuleStateToString(255), "InvalidState");
}

TEST(KestrelModuleStateRequest, NamesOfAllParameters) {
    const std::vector<std::string> Names{"NoSBA", "SBA1", "SBA2", "SBA3", "SBA4", "SBA5"};
    for (std::uint32_t i = 0; i < Names.size(); ++i) {
        EXPECT_EQ(CModuleStateRequest::StateParamsToString(i), Names[i]);
    }
    EXPECT_STREQ(CModuleStateRequest::StateParamsToString(255), "InvalidParam");
}

TEST(KestrelModuleStateRequest, ValueWithoutANameAsserts) {
    const CLogCapture Log;
    EXPECT_STREQ(CModuleStateRequest::ModuleStateToString(11), "invalid");
    EXPECT_STREQ(CModuleStateRequest::StateParamsToString(6), "invalid");
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("impossible", "impossible"));
}
