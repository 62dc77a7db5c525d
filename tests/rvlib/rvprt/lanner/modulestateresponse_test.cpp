#include "rvlib/rvprt/lanner/modulestateresponse.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CModuleStateResponse;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr std::uint32_t NO_SWAP = 0;
constexpr std::uint32_t SWAPPED = 1;

/// A flag's place in the frame when planes are not swapped, and the flag of the other plane.
struct CFlagCase {
    std::size_t m_Byte;
    unsigned m_Bit;
    std::uint32_t CModuleStateResponse::*m_pFlag;
    std::uint32_t CModuleStateResponse::*m_pOther;
};

using R = CModuleStateResponse;
const CFlagCase Flags[] = {
    {3, 0, &R::Plane1RotationLimit1Exceeded, &R::Plane2RotationLimit1Exceeded},
    {3, 1, &R::Plane1UnbalanceLimit1Exceeded, &R::Plane2UnbalanceLimit1Exceeded},
    {3, 2, &R::Plane1UnbalanceLimit2Exceeded, &R::Plane2UnbalanceLimit2Exceeded},
    {3, 3, &R::Plane1DSGNocke, &R::Plane2DSGNocke},
    {4, 0, &R::Plane2RotationLimit1Exceeded, &R::Plane1RotationLimit1Exceeded},
    {4, 1, &R::Plane2UnbalanceLimit1Exceeded, &R::Plane1UnbalanceLimit1Exceeded},
    {4, 2, &R::Plane2UnbalanceLimit2Exceeded, &R::Plane1UnbalanceLimit2Exceeded},
    {4, 3, &R::Plane2DSGNocke, &R::Plane1DSGNocke},
    {5, 0, &R::Plane1SensorFailure, &R::Plane2SensorFailure},
    {5, 1, &R::Plane1RotationToSlow, &R::Plane2RotationToSlow},
    {5, 2, &R::Plane1Overamplify, &R::Plane2Overamplify},
    {5, 3, &R::Plane1OutOfLock, &R::Plane2OutOfLock},
    {6, 0, &R::Plane2SensorFailure, &R::Plane1SensorFailure},
    {6, 1, &R::Plane2RotationToSlow, &R::Plane1RotationToSlow},
    {6, 2, &R::Plane2Overamplify, &R::Plane1Overamplify},
    {6, 3, &R::Plane2OutOfLock, &R::Plane1OutOfLock},
};

std::string Payload(std::size_t nByte, unsigned nBit) {
    std::vector<std::uint8_t> Data{1, 0, 0, 0, 0, 0, 0};
    Data.at(nByte) = static_cast<std::uint8_t>(1U << nBit);
    return Hex(Data);
}

/// How many flags of a message are on.
std::uint32_t Sum(const CModuleStateResponse& rMessage) {
    std::uint32_t Result = rMessage.UILocked;
    for (const CFlagCase& rFlag : Flags) {
        Result += rMessage.*rFlag.m_pFlag;
    }
    return Result;
}

}  // namespace

TEST(LannerModuleStateResponse, NewOneIsInvalid) {
    const CModuleStateResponse Message(nullptr);
    EXPECT_EQ(Message.m_ModuleState, 255U);
    EXPECT_EQ(Message.m_Parameter, -1);
    EXPECT_EQ(Sum(Message), 0U);
    EXPECT_EQ(Message.GetLogID(), "notSet");
    EXPECT_EQ(CModuleStateResponse("PreBal").GetLogID(), "PreBal");
}

TEST(LannerModuleStateResponse, EachFlagStandsInItsBit) {
    for (const CFlagCase& rFlag : Flags) {
        CModuleStateResponse Message("PreBal");
        EXPECT_EQ(Decode(Message, Payload(rFlag.m_Byte, rFlag.m_Bit), NO_SWAP), 7U);
        EXPECT_EQ(Message.*rFlag.m_pFlag, 1U) << rFlag.m_Byte << "." << rFlag.m_Bit;
        EXPECT_EQ(Sum(Message), 1U) << rFlag.m_Byte << "." << rFlag.m_Bit;
    }
}

TEST(LannerModuleStateResponse, WithSwapEachFlagGoesToTheOtherPlane) {
    for (const CFlagCase& rFlag : Flags) {
        CModuleStateResponse Message("PreBal");
        EXPECT_EQ(Decode(Message, Payload(rFlag.m_Byte, rFlag.m_Bit), SWAPPED), 7U);
        EXPECT_EQ(Message.*rFlag.m_pOther, 1U) << rFlag.m_Byte << "." << rFlag.m_Bit;
        EXPECT_EQ(Sum(Message), 1U) << rFlag.m_Byte << "." << rFlag.m_Bit;
    }
}

TEST(LannerModuleStateResponse, UILockedIsNotOfAPlane) {
    for (const std::uint32_t Swap : {NO_SWAP, SWAPPED}) {
        CModuleStateResponse Message("PreBal");
        Decode(Message, Payload(2, 7), Swap);
        EXPECT_EQ(Message.UILocked, 1U);
        EXPECT_EQ(Sum(Message), 1U);
    }
}

TEST(LannerModuleStateResponse, OtherBitsAreNotRead) {
    CModuleStateResponse Message("PreBal");
    Decode(Message, "01 FF 7F F0 F0 F0 F0", NO_SWAP);
    EXPECT_EQ(Sum(Message), 0U);
}

TEST(LannerModuleStateResponse, ParameterIsNeverRead) {
    CModuleStateResponse Message("PreBal");
    Decode(Message, "01 05 00 00 00 00 00", NO_SWAP);
    EXPECT_EQ(Message.m_ModuleState, 1U);
    EXPECT_EQ(Message.m_Parameter, -1);
}

TEST(LannerModuleStateResponse, AnyStateButSupervisionModeFailsWithTwoWarnings) {
    for (const char* pState : {"00", "02", "07", "FF"}) {
        const CLogCapture Log;
        CModuleStateResponse Message("PreBal");
        EXPECT_EQ(Decode(Message, std::string(pState) + "00 80 0F 0F 0F 0F", NO_SWAP), 0U);
        EXPECT_EQ(Message.m_ModuleState, 255U);
        EXPECT_EQ(Sum(Message), 0U);
        EXPECT_THAT(Log.GetTexts("Warning"),
                    ElementsAre("unknown ModuleState received", "could not decode ModuleStateResponse"));
    }
}

TEST(LannerModuleStateResponse, ShortOrMissingDataFails) {
    for (std::size_t nSize = 0; nSize < 7; ++nSize) {
        CModuleStateResponse Message("PreBal");
        EXPECT_EQ(Decode(Message, Cut("01 00 80 0F 0F 0F 0F", nSize), NO_SWAP), 0U);
        EXPECT_EQ(Sum(Message), 0U);
    }
    CModuleStateResponse Message("PreBal");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Message.Decode(nullptr, 7, &nUsed, NO_SWAP), 0);
    EXPECT_EQ(nUsed, 0U);
}

TEST(LannerModuleStateResponse, FurtherBytesAreLeft) {
    CModuleStateResponse Message("PreBal");
    EXPECT_EQ(Decode(Message, "01 00 00 00 00 00 00 AA BB", NO_SWAP), 7U);
}

TEST(LannerModuleStateResponse, LogsItsFieldsAsABlock) {
    CModuleStateResponse Message("PreBal");
    Decode(Message, "01 00 80 05 02 08 01", NO_SWAP);
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre("Lanner::CModuleStateResponse", "State = SupervisionMode",
                            "Parameter= 0xFFFFFFFF", "UILocked: 1", "Plane1RotationLimit1Exceeded: 1",
                            "Plane1UnbalanceLimit1Exceeded: 0", "Plane1UnbalanceLimit2Exceeded: 1",
                            "Plane1DSGNocke: 0", "Plane2RotationLimit1Exceeded: 0",
                            "Plane2UnbalanceLimit1Exceeded: 1", "Plane2UnbalanceLimit2Exceeded: 0",
                            "Plane2DSGNocke: 0", "Plane1SensorFailure: 0", "Plane1RotationToSlow: 0",
                            "Plane1Overamplify: 0", "Plane1OutOfLock: 1", "Plane2SensorFailure: 1",
                            "Plane2RotationToSlow: 0", "Plane2Overamplify: 0", "Plane2OutOfLock: 0"));
}

TEST(LannerModuleStateResponse, LogsAnyOtherStateAsInvalid) {
    const CLogCapture Log(true);
    CModuleStateResponse("PreBal").Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), testing::Contains("State = InvalidState"));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}
