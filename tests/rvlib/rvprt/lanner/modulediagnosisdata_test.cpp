#include "rvlib/rvprt/lanner/modulediagnosisdata.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CModuleDiagnosisData;
using testing::ElementsAre;

namespace {

constexpr const char* FIXED_PART = "2D 37 00 04 05 01 06 01 07 01 08 01 09 01 FF FF";

}  // namespace

TEST(LannerModuleDiagnosisData, DecodesAllFields) {
    CModuleDiagnosisData Message("PreBal");
    EXPECT_EQ(Decode(Message, FIXED_PART), 16U);
    EXPECT_EQ(Message.CurrentTemperature, 45);
    EXPECT_EQ(Message.MaxTemperature, 55);
    EXPECT_EQ(Message.DiagByte4, 4);
    EXPECT_EQ(Message.PICVersion, 261);
    EXPECT_EQ(Message.SignalCount, 262);
    EXPECT_EQ(Message.CurrentProfibusCommunicationClock, 263);
    EXPECT_EQ(Message.DiagWord4, 264);
    EXPECT_EQ(Message.DiagWord5, 265);
    EXPECT_EQ(Message.DiagWord6, 65535);
    EXPECT_EQ(Message.DiagText, "");
}

TEST(LannerModuleDiagnosisData, ReservedFlagsStandInTheirBits) {
    CModuleDiagnosisData Flags("PreBal");
    Decode(Flags, Cut("00 00 C9", 16));
    EXPECT_EQ(Flags.ReservedDiagFlag0, 1U);
    EXPECT_EQ(Flags.ReservedDiagFlag3, 1U);
    EXPECT_EQ(Flags.ReservedDiagValue4, 0);
    EXPECT_EQ(Flags.ReservedDiagFlag6, 1U);
    EXPECT_EQ(Flags.ReservedDiagFlag7, 1U);
    CModuleDiagnosisData Others("PreBal");
    Decode(Others, Cut("00 00 26", 16));
    EXPECT_EQ(Others.ReservedDiagFlag0 + Others.ReservedDiagFlag3 + Others.ReservedDiagFlag6 +
                  Others.ReservedDiagFlag7,
              0U);
    EXPECT_EQ(Others.ReservedDiagValue4, 2);
}

TEST(LannerModuleDiagnosisData, TextEndsWithAZeroByte) {
    CModuleDiagnosisData Message("PreBal");
    EXPECT_EQ(Decode(Message, std::string(FIXED_PART) + "4F 4B 00 58"), 19U);
    EXPECT_EQ(Message.DiagText, "OK");
}

TEST(LannerModuleDiagnosisData, TextEndsWithTheFrame) {
    CModuleDiagnosisData Message("PreBal");
    EXPECT_EQ(Decode(Message, std::string(FIXED_PART) + "4F 4B"), 18U);
    EXPECT_EQ(Message.DiagText, "OK");
}

TEST(LannerModuleDiagnosisData, ShortOrMissingDataFailsWithAWarning) {
    for (std::size_t nSize = 0; nSize < 16; ++nSize) {
        const CLogCapture Log;
        CModuleDiagnosisData Message("PreBal");
        EXPECT_EQ(Decode(Message, Cut(FIXED_PART, nSize)), 0U);
        EXPECT_EQ(Message.CurrentTemperature, 0);
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("invalid message length"));
    }
}

TEST(LannerModuleDiagnosisData, LogsItsFieldsAsABlock) {
    CModuleDiagnosisData Message("PreBal");
    Decode(Message, std::string(FIXED_PART) + "4F 4B");
    Message.ReservedDiagValue4 = 3;
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(Log.GetTexts("ProtocolDetail"),
                ElementsAre("Lanner::CModuleDiagnosisData", "CurrentTemperature 45", "MaxTemperature= 55",
                            "ReservedDiagFlag0= 0", "ReservedDiagFlag3= 0", "ReservedDiagValue4= 3",
                            "ReservedDiagFlag6= 0", "ReservedDiagFlag7= 0", "DiagByte4= 4", "PICVersion= 261",
                            "SignalCount= 262", "CurrentProfibusCommunicationClock= 263", "DiagWord4= 264",
                            "DiagWord5= 265", "DiagWord6= 65535", "DiagText= OK"));
}
