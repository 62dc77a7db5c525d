#include "rvlib/rvprt/lanner/setparams.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CSetParams;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

/// A block with that mode byte.
std::string WithMode(const std::string& rMode) {
    return "01 07 00 00 " + rMode + " 00 00";
}

}  // namespace

TEST(LannerSetParams, DecodesAllFields) {
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "01 0A 00 01 04 02 03 41 42 43"), 10U);
    EXPECT_EQ(Params.AnalogOutput, 1);
    EXPECT_EQ(Params.Mode, CSetParams::eTwoPlane);
    EXPECT_EQ(Params.AnalogScaling, 2);
    EXPECT_EQ(Params.SetName, "ABC");
    EXPECT_EQ(Params.Swap, 0U);
}

TEST(LannerSetParams, ModeByteGivesModeAndSwap) {
    struct CCase {
        const char* m_pByte;
        std::uint8_t m_Mode;
        std::uint32_t m_Swap;
        const char* m_pName;
    };
    for (const CCase& rCase :
         {CCase{"00", 0, 0, "Nothing"}, CCase{"01", 1, 0, "Plane1"}, CCase{"02", 2, 0, "Plane2"},
          CCase{"03", 3, 0, "BothIndependent"}, CCase{"04", 4, 0, "TwoPlane"},
          CCase{"05", 3, 1, "BothIndependent"}, CCase{"06", 4, 1, "TwoPlane"}}) {
        const CLogCapture Log;
        CSetParams Params("PreBal");
        EXPECT_EQ(Decode(Params, WithMode(rCase.m_pByte)), 7U);
        EXPECT_EQ(Params.Mode, rCase.m_Mode) << rCase.m_pByte;
        EXPECT_EQ(Params.Swap, rCase.m_Swap) << rCase.m_pByte;
        EXPECT_STREQ(CSetParams::ModeToString(Params.Mode), rCase.m_pName);
        EXPECT_THAT(Log.GetRecords(), IsEmpty());
    }
}

TEST(LannerSetParams, UndefinedModeIsLoggedAndGoodAllTheSame) {
    for (const char* pByte : {"07", "80", "FF"}) {
        const CLogCapture Log;
        CSetParams Params("PreBal");
        Params.Swap = 1;
        EXPECT_EQ(Decode(Params, WithMode(pByte)), 7U);
        EXPECT_EQ(Params.Mode, 255);
        EXPECT_EQ(Params.Swap, 0U);
        EXPECT_STREQ(CSetParams::ModeToString(Params.Mode), "UndefinedMode");
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("undefined mode"));
    }
}

TEST(LannerSetParams, ScalingsHaveNames) {
    for (unsigned i = 0; i < 8; ++i) {
        CSetParams Params("PreBal");
        Decode(Params, "01 07 00 00 00 0" + std::to_string(i) + " 00");
        EXPECT_EQ(CSetParams::AnalogScalingToString(Params.AnalogScaling),
                  std::to_string(i + 1) + "000PerVolt");
    }
}

TEST(LannerSetParams, UndefinedScalingIsLoggedAndGoodAllTheSame) {
    const CLogCapture Log;
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "01 07 00 00 00 0A 00"), 7U);
    EXPECT_EQ(Params.AnalogScaling, 255);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Undefined scaling received: 0x0A"));
}

TEST(LannerSetParams, OnlyBitZeroOfTheOutputCounts) {
    CSetParams Params("PreBal");
    Decode(Params, "01 07 00 FE 00 00 00");
    EXPECT_EQ(Params.AnalogOutput, 0);
    EXPECT_STREQ(CSetParams::AnalogOutputToString(0), "Plane1AnalogRPMOutput");
    EXPECT_STREQ(CSetParams::AnalogOutputToString(1), "Plane2AnalogRPMOutput");
}

TEST(LannerSetParams, BlockTakesTheLengthThatItClaims) {
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "01 0B 00 00 00 00 01 41 EE EE EE 02 0C"), 11U);
    EXPECT_EQ(Params.SetName, "A");
}

TEST(LannerSetParams, NameMayFillTheBlockToItsEnd) {
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "01 09 00 00 00 00 02 41 42"), 9U);
    EXPECT_EQ(Params.SetName, "AB");
}

// The frame would hold the name; the block doesn't.
TEST(LannerSetParams, NameThatOverrunsTheBlockFailsWithoutAnAssertion) {
    const CLogCapture Log;
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "01 08 00 00 00 00 02 41 42"), 0U);
    EXPECT_EQ(Params.SetName, "");
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

// Long enough to be a block, too short for the name's length.
TEST(LannerSetParams, BlockThatEndsBeforeTheNameFailsWithoutAnAssertion) {
    const CLogCapture Log;
    for (const char* pHex : {"01 05 00 00 00", "01 06 00 00 00 00"}) {
        CSetParams Params("PreBal");
        EXPECT_EQ(Decode(Params, pHex), 0U) << pHex;
    }
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
}

TEST(LannerSetParams, MissingDataAsserts) {
    const CLogCapture Log;
    CSetParams Params("PreBal");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Params.Decode(nullptr, 7, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: Null pointer!"));
}

TEST(LannerSetParams, FewerThanFiveBytesAssert) {
    for (std::size_t nSize = 1; nSize < 5; ++nSize) {
        const CLogCapture Log;
        CSetParams Params("PreBal");
        EXPECT_EQ(Decode(Params, Cut("01 07 00 00", nSize)), 0U);
        EXPECT_THAT(
            Log.GetAssertions(),
            ElementsAre(MatchesRegex(R"(CSetParams::Decode: not enough data \(pData=0x[0-9A-F]+\)!)")));
    }
}

TEST(LannerSetParams, AnotherTypeAsserts) {
    const CLogCapture Log;
    CSetParams Params("PreBal");
    EXPECT_EQ(Decode(Params, "02 07 00 00 00 00 00"), 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: unknown type!"));
}

// Too short, longer than what is left, and a third byte that isn't 0.
TEST(LannerSetParams, BadLengthAsserts) {
    for (const char* pHex : {"01 04 00 00 00 00 00", "01 08 00 00 00 00 00", "01 07 01 00 00 00 00"}) {
        const CLogCapture Log;
        CSetParams Params("PreBal");
        EXPECT_EQ(Decode(Params, pHex), 0U);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: invalid message length!")) << pHex;
    }
}
