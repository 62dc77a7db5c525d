#include "rvlib/rvprt/lanner/plane.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CPlane;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::MatchesRegex;

namespace {

constexpr const char* GOOD = "02 0C 01 01 05 90 01 20 03 10 27 05";

}  // namespace

TEST(LannerPlane, NewOneIsNotKnown) {
    const CPlane Plane(nullptr);
    EXPECT_EQ(Plane.ID, 255);
    EXPECT_EQ(Plane.SensorAdaption, 255);
    EXPECT_EQ(Plane.GetLogID(), "notSet");
}

TEST(LannerPlane, DecodesAllFields) {
    CPlane Plane("PreBal");
    EXPECT_EQ(Decode(Plane, GOOD), 12U);
    EXPECT_EQ(Plane.ID, 1);
    EXPECT_EQ(Plane.RPMInput, 1);
    EXPECT_EQ(Plane.SensorAdaption, 5);
    EXPECT_EQ(Plane.UnbalanceLimit1, 400);
    EXPECT_EQ(Plane.UnbalanceLimit2, 800);
    EXPECT_EQ(Plane.RPMLimit1, 10000);
    EXPECT_EQ(Plane.Offset, 5);
}

TEST(LannerPlane, LimitsAreUnsigned) {
    CPlane Plane("PreBal");
    Decode(Plane, "02 0C 00 00 00 FF FF FE FF FD FF FF");
    EXPECT_EQ(Plane.UnbalanceLimit1, 65535);
    EXPECT_EQ(Plane.UnbalanceLimit2, 65534);
    EXPECT_EQ(Plane.RPMLimit1, 65533);
    EXPECT_EQ(Plane.Offset, 255);
}

TEST(LannerPlane, OnlyBitZeroOfTheInputCounts) {
    CPlane Plane("PreBal");
    Decode(Plane, "02 0C 00 FE 00 00 00 00 00 00 00 00");
    EXPECT_EQ(Plane.RPMInput, 0);
}

// Deliberate: a block always takes 12 bytes.
TEST(LannerPlane, LongerBlockTakesTwelveBytesAllTheSame) {
    CPlane Plane("PreBal");
    EXPECT_EQ(Decode(Plane, "02 0E 01 01 05 90 01 20 03 10 27 05 EE EE"), 12U);
}

TEST(LannerPlane, AdaptionOutOfRangeIsLoggedAndGoodAllTheSame) {
    const CLogCapture Log;
    CPlane Last("PreBal");
    Decode(Last, "02 0C 00 00 1F 00 00 00 00 00 00 00");
    EXPECT_EQ(Last.SensorAdaption, 31);
    EXPECT_THAT(Log.GetRecords(), IsEmpty());
    CPlane Beyond("PreBal");
    EXPECT_EQ(Decode(Beyond, "02 0C 00 00 20 00 00 00 00 00 00 00"), 12U);
    EXPECT_EQ(Beyond.SensorAdaption, 255);
    EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("Invalid SensorAdaption received"));
}

TEST(LannerPlane, NamesOfAllAdaptions) {
    const std::vector<std::string> Names{":6", ":3", ":2", ":1", "5:6", "5:3", "5:2", "5:1"};
    for (std::uint8_t i = 0; i < 32; ++i) {
        EXPECT_EQ(CPlane::SensorAdaptionToString(i), i < Names.size() ? Names[i] : std::to_string(i));
    }
    EXPECT_EQ(CPlane::SensorAdaptionToString(32), "UnknownAdaption");
    EXPECT_EQ(CPlane::SensorAdaptionToString(255), "UnknownAdaption");
}

TEST(LannerPlane, MissingDataAsserts) {
    const CLogCapture Log;
    CPlane Plane("PreBal");
    std::uint32_t nUsed = 99;
    EXPECT_EQ(Plane.Decode(nullptr, 12, &nUsed), 0);
    EXPECT_EQ(nUsed, 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CPlane::Decode: Null pointer!"));
}

// The texts name the other kind of block; they are meant to stay.
TEST(LannerPlane, FewerThanTwelveBytesAssertInTheNameOfTheSetParams) {
    for (std::size_t nSize = 1; nSize < 12; ++nSize) {
        const CLogCapture Log;
        CPlane Plane("PreBal");
        EXPECT_EQ(Decode(Plane, Cut(GOOD, nSize)), 0U);
        EXPECT_THAT(
            Log.GetAssertions(),
            ElementsAre(MatchesRegex(R"(CSetParams::Decode: not enough data \(pData=0x[0-9A-F]+\)!)")));
    }
}

TEST(LannerPlane, AnotherTypeAssertsInTheNameOfTheSetParams) {
    const CLogCapture Log;
    CPlane Plane("PreBal");
    EXPECT_EQ(Decode(Plane, "01 0C 01 01 05 90 01 20 03 10 27 05"), 0U);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: unknown type!"));
}

TEST(LannerPlane, BadLengthAssertsInTheNameOfTheSetParams) {
    for (const char* pLength : {"00", "0B", "0D"}) {
        const CLogCapture Log;
        CPlane Plane("PreBal");
        EXPECT_EQ(Decode(Plane, std::string("02 ") + pLength + "01 01 05 90 01 20 03 10 27 05"), 0U);
        EXPECT_EQ(Plane.ID, 255);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("CSetParams::Decode: invalid message length!"));
    }
}
