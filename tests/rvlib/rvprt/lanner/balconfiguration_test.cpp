#include "rvlib/rvprt/lanner/balconfiguration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CBalConfiguration;
using testing::ElementsAre;

namespace {

constexpr std::uint32_t NO_SWAP = 0;
constexpr std::uint32_t SWAPPED = 1;
constexpr const char* GOOD = "06 EE 10 27 11 12 13 14 21 22 23 24 5A 66";

}  // namespace

TEST(LannerBalConfiguration, NewOneHasNoFlagsAndUnknownRates) {
    const CBalConfiguration Message(nullptr);
    EXPECT_EQ(Message.Plane1Input + Message.Plane2Input + Message.RPMLimitLocked, 0U);
    EXPECT_EQ(Message.RPMLimit, 0xFF);
    EXPECT_EQ(Message.Plane1MaxRPMDataRate, 0xFF);
    EXPECT_EQ(Message.Plane2ConfigurationXY, 0xFF);
    EXPECT_EQ(Message.MaxDiagnosisDatrate, 0xFF);
    EXPECT_EQ(Message.ConfigurationDiagnosis, 0xFF);
    EXPECT_EQ(Message.GetLogID(), "notSet");
}

TEST(LannerBalConfiguration, DecodesAllFields) {
    CBalConfiguration Message("PreBal");
    EXPECT_EQ(Decode(Message, GOOD, NO_SWAP), 14U);
    EXPECT_EQ(Message.Plane1Input, 0U);
    EXPECT_EQ(Message.Plane2Input, 1U);
    EXPECT_EQ(Message.RPMLimitLocked, 1U);
    EXPECT_EQ(Message.RPMLimit, 10000);
    EXPECT_EQ(Message.Plane1MaxRPMDataRate, 0x11);
    EXPECT_EQ(Message.Plane1MaxUnbalanceAmplitudeDatarate, 0x12);
    EXPECT_EQ(Message.Plane1MaxXYDatarate, 0x13);
    EXPECT_EQ(Message.Plane1ConfigurationXY, 0x14);
    EXPECT_EQ(Message.Plane2MaxRPMDataRate, 0x21);
    EXPECT_EQ(Message.Plane2MaxUnbalanceAmplitudeDatarate, 0x22);
    EXPECT_EQ(Message.Plane2MaxXYDatarate, 0x23);
    EXPECT_EQ(Message.Plane2ConfigurationXY, 0x24);
    EXPECT_EQ(Message.MaxDiagnosisDatrate, 5);  // the upper four bits
    EXPECT_EQ(Message.ConfigurationDiagnosis, 0x66);
}

TEST(LannerBalConfiguration, WithSwapTheRatesGoToTheOtherPlaneAndTheInputsStay) {
    CBalConfiguration Message("PreBal");
    EXPECT_EQ(Decode(Message, GOOD, SWAPPED), 14U);
    EXPECT_EQ(Message.Plane1Input, 0U);
    EXPECT_EQ(Message.Plane2Input, 1U);
    EXPECT_EQ(Message.Plane1MaxRPMDataRate, 0x21);
    EXPECT_EQ(Message.Plane1MaxUnbalanceAmplitudeDatarate, 0x22);
    EXPECT_EQ(Message.Plane1MaxXYDatarate, 0x23);
    EXPECT_EQ(Message.Plane1ConfigurationXY, 0x24);
    EXPECT_EQ(Message.Plane2MaxRPMDataRate, 0x11);
    EXPECT_EQ(Message.Plane2MaxUnbalanceAmplitudeDatarate, 0x12);
    EXPECT_EQ(Message.Plane2MaxXYDatarate, 0x13);
    EXPECT_EQ(Message.Plane2ConfigurationXY, 0x14);
}

TEST(LannerBalConfiguration, FlagsStandInTheirBits) {
    CBalConfiguration First("PreBal");
    Decode(First, Cut("01", 14), NO_SWAP);
    EXPECT_EQ(First.Plane1Input, 1U);
    EXPECT_EQ(First.Plane2Input + First.RPMLimitLocked, 0U);
    CBalConfiguration Others("PreBal");
    Decode(Others, Cut("F8", 14), NO_SWAP);
    EXPECT_EQ(Others.Plane1Input + Others.Plane2Input + Others.RPMLimitLocked, 0U);
}

TEST(LannerBalConfiguration, ShortOrMissingDataFailsWithAWarning) {
    for (std::size_t nSize = 0; nSize < 14; ++nSize) {
        const CLogCapture Log;
        CBalConfiguration Message("PreBal");
        EXPECT_EQ(Decode(Message, Cut(GOOD, nSize), NO_SWAP), 0U);
        EXPECT_EQ(Message.Plane1MaxRPMDataRate, 0xFF);
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("not enough data to decode"));
    }
}

TEST(LannerBalConfiguration, InputsHaveNames) {
    EXPECT_STREQ(CBalConfiguration::InputToString(0), "PNP");
    EXPECT_STREQ(CBalConfiguration::InputToString(1), "NPN");
    EXPECT_STREQ(CBalConfiguration::InputToString(2), "Invalid Input");
}

// The labels begin with a blank, and the limit has none; both are meant.
TEST(LannerBalConfiguration, LogsItsFieldsAsABlock) {
    CBalConfiguration Message("PreBal");
    Decode(Message, GOOD, NO_SWAP);
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre("Lanner::CBalConfiguration", " Plane1Input: PNP", " Plane2Input: NPN",
                            " RPMLimitLocked: 1", " Plane1MaxRPMDataRate: 0x11",
                            " Plane1MaxUnbalanceAmplitudeDatarate: 0x12", " Plane1MaxXYDatarate: 0x13",
                            " Plane1ConfigurationXY: 0x14", " Plane2MaxRPMDataRate: 0x21",
                            " Plane2MaxUnbalanceAmplitudeDatarate: 0x22", " Plane2MaxXYDatarate: 0x23",
                            " Plane2ConfigurationXY: 0x24", " MaxDiagnosisDatrate: 0x05",
                            " ConfigurationDiagnosis: 0x66"));
}
