#include "rvlib/rvprt/lanner/set.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/window/messagebox.h"
#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr const char* PARAMS = "01 08 00 00 04 01 01 41";
constexpr const char* PARAMS_WITH_SWAP = "01 08 00 00 06 01 01 41";
/// Adaptions 1 and 4.
constexpr const char* PLANE0 = "02 0C 00 00 01 90 01 20 03 10 27 05";
constexpr const char* PLANE1 = "02 0C 01 01 04 91 01 21 03 11 27 06";

/// A set with number 3 of those blocks.
std::string Set(std::initializer_list<std::string> Blocks) {
    std::string Result = "03";
    for (const std::string& rBlock : Blocks) {
        Result += " " + rBlock;
    }
    return Result;
}

}  // namespace

TEST(LannerSet, NewOneHasNoParts) {
    TakeShownMessages();
    const Lanner::CSet Message(nullptr);
    EXPECT_EQ(Message.GetLogID(), "notSet");
    EXPECT_EQ(Message.GetSetParams(), nullptr);
    EXPECT_EQ(Message.GetPlane1(), nullptr);
    EXPECT_EQ(Message.GetPlane2(), nullptr);
    TakeShownMessages();
}

// Of the exchange in the protocol's description: set 3, two planes with swap, name "A", a plane with ID 0.
TEST(LannerSet, DecodesTheDescriptionsExample) {
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, "03 01 08 00 00 06 01 01 41 02 0C 00 00 01 90 01 20 03 10 27 05"), 21U);
    EXPECT_EQ(Message.m_Set, 3);
    ASSERT_NE(Message.GetSetParams(), nullptr);
    EXPECT_EQ(Message.GetSetParams()->Mode, Lanner::CSetParams::eTwoPlane);
    EXPECT_EQ(Message.GetSetParams()->Swap, 1U);
    EXPECT_EQ(Message.GetSetParams()->AnalogScaling, 1);
    EXPECT_EQ(Message.GetSetParams()->SetName, "A");
    EXPECT_EQ(Message.GetPlane1(), nullptr);  // the plane with ID 1, which isn't there
    ASSERT_NE(Message.GetPlane2(), nullptr);
    EXPECT_EQ(Message.GetPlane2()->ID, 0);
    EXPECT_EQ(Message.GetPlane2()->UnbalanceLimit1, 400);
    EXPECT_EQ(Message.GetPlane2()->UnbalanceLimit2, 800);
    EXPECT_EQ(Message.GetPlane2()->RPMLimit1, 10000);
    EXPECT_EQ(Message.GetPlane2()->Offset, 5);
}

TEST(LannerSet, MayEndAfterItsNumber) {
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, "07"), 1U);
    EXPECT_EQ(Message.m_Set, 7);
    EXPECT_EQ(Message.GetSetParams(), nullptr);
}

TEST(LannerSet, BlocksComeInAnyOrder) {
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, Set({PLANE1, PARAMS, PLANE0})), 33U);
    EXPECT_EQ(Message.GetPlane1()->SensorAdaption, 1);
    EXPECT_EQ(Message.GetPlane2()->SensorAdaption, 4);
    EXPECT_EQ(Message.GetSetParams()->SetName, "A");
}

TEST(LannerSet, WithSwapPlane1IsThePlaneWithID1) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PARAMS_WITH_SWAP, PLANE0, PLANE1}));
    EXPECT_EQ(Message.GetPlane1()->ID, 1);
    EXPECT_EQ(Message.GetPlane2()->ID, 0);
}

TEST(LannerSet, ModeByteFiveSwapsBothIndependentPlanes) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({"01 07 00 00 05 00 00", PLANE0, PLANE1}));
    EXPECT_EQ(Message.GetSetParams()->Mode, Lanner::CSetParams::eBothIndependent);
    EXPECT_EQ(Message.GetSetParams()->Swap, 1U);
    EXPECT_EQ(Message.GetPlane1()->ID, 1);
}

TEST(LannerSet, WithoutParamsPlanesAreNotSwappedAndTheOperatorSeesIt) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PLANE0, PLANE1}));
    TakeShownMessages();
    const CLogCapture Log;
    EXPECT_EQ(Message.GetPlane1()->ID, 0);
    EXPECT_EQ(Message.GetPlane2()->ID, 1);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("no set params!", "no set params!"));
    const std::vector<CShownMessage> Shown = TakeShownMessages();
    ASSERT_EQ(Shown.size(), 2U);
    EXPECT_EQ(Shown[0].m_Text, "no set params!");
    EXPECT_EQ(Shown[0].m_Title, "Error");
}

TEST(LannerSet, SecondPlaneBlockOfAnIDReplacesTheFirst) {
    Lanner::CSet Message("PreBal");
    EXPECT_NE(Decode(Message, Set({PARAMS, PLANE0, "02 0C 00 01 07 00 00 00 00 00 00 00"})), 0U);
    EXPECT_EQ(Message.GetPlane1()->SensorAdaption, 7);
    EXPECT_EQ(Message.GetPlane2(), nullptr);
}

TEST(LannerSet, SecondParamsReplaceTheFirst) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PARAMS_WITH_SWAP, PARAMS}));
    EXPECT_EQ(Message.GetSetParams()->Swap, 0U);
}

TEST(LannerSet, NextDecodeForgetsTheParts) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PARAMS, PLANE0}));
    Decode(Message, "04");
    EXPECT_EQ(Message.m_Set, 4);
    EXPECT_EQ(Message.GetSetParams(), nullptr);
    TakeShownMessages();
}

TEST(LannerSet, MissingDataAsserts) {
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Message.Decode(nullptr, 5, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSet::Decode: Null pointer! (pData=0x0, nSize=5)!"));
}

TEST(LannerSet, NoDataAsserts) {
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    const std::uint8_t Byte = 3;
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Message.Decode(&Byte, 0, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
    EXPECT_THAT(Log.GetAssertions(),
                ElementsAre(MatchesRegex(R"(CSet::Decode: Null pointer! \(pData=0x[0-9A-F]+, nSize=0\)!)")));
}

TEST(LannerSet, BlockOfAnotherTypeFails) {
    for (const char* pType : {"00", "03", "FF"}) {
        const CLogCapture Log;
        Lanner::CSet Message("PreBal");
        EXPECT_EQ(Decode(Message, Set({PARAMS, pType})), 0U);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSet::Decode: unknown type!", "No bytes decoded!"));
    }
}

TEST(LannerSet, PlaneWithAnotherIDFails) {
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, Set({PARAMS, "02 0C 02 00 01 00 00 00 00 00 00 00"})), 0U);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid PlaneID"));
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("No bytes decoded!"));
}

// The filler bytes behind the twelve count as a block, and theirs is no type.
TEST(LannerSet, PlaneBlockWithLengthTwentyFailsByItsFiller) {
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, Set({PARAMS, "02 14 00 00 01 90 01 20 03 10 27 05 00 00 00 00 00 00 00 00"})),
              0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSet::Decode: unknown type!", "No bytes decoded!"));
}

// Unless they happen to form a block.
TEST(LannerSet, PlaneBlockWithLengthTwentyIsGoodIfItsFillerIsABlock) {
    Lanner::CSet Message("PreBal");
    EXPECT_NE(Decode(Message, Set({"02 14 00 00 01 90 01 20 03 10 27 05", PARAMS})), 0U);
    ASSERT_NE(Message.GetSetParams(), nullptr);
    EXPECT_EQ(Message.GetSetParams()->SetName, "A");
}

TEST(LannerSet, NameThatOverrunsItsBlockFailsWithoutAnAssertion) {
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, Set({"01 08 00 00 04 01 02 41", PLANE0})), 0U);
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST(LannerSet, BlockThatIsCutOffFailsWithItsOwnAssertion) {
    {
        const CLogCapture Log;
        Lanner::CSet Message("PreBal");
        EXPECT_EQ(Decode(Message, "03 01 08 00 00 04 01 01"), 0U);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: invalid message length!"));
    }
    const CLogCapture Log;
    Lanner::CSet Message("PreBal");
    EXPECT_EQ(Decode(Message, Set({PARAMS, Cut(PLANE0, 11)})), 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre(testing::StartsWith("CSetParams::Decode: not enough data")));
}

TEST(LannerSet, LogsItsPartsWithThePlanesAfterSwap) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PARAMS_WITH_SWAP, PLANE0, PLANE1}));
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        ElementsAre("Lanner::CSet", "Set: 3", "Lanner::CSetParams", "AnalogOutput: Plane1AnalogRPMOutput",
                    "Mode: TwoPlane", "AnalogScaling: 2000PerVolt", "SetName: A", "Swap: 1", "Lanner::CPlane",
                    "ID: 1", "RPMInput: RPM_Plane2", "SensorAdaption: 5:6 0x4", "UnbalanceLimit1: 401",
                    "UnbalanceLimit2: 801", "RPMLimit1: 10001", "Offset: 6", "Lanner::CPlane", "ID: 0",
                    "RPMInput: RPM_Plane1", "SensorAdaption: :3 0x1", "UnbalanceLimit1: 400",
                    "UnbalanceLimit2: 800", "RPMLimit1: 10000", "Offset: 5"));
}

// Logging must not bother the operator.
TEST(LannerSet, LogsWhatIsThereWithoutAnAssertion) {
    Lanner::CSet Message("PreBal");
    Decode(Message, Set({PLANE1}));
    TakeShownMessages();
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"), testing::IsSupersetOf({"Set: 3", "ID: 1"}));
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    EXPECT_THAT(TakeShownMessages(), IsEmpty());
}
