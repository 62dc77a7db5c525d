#include "rvlib/rvprt/lanner/moduleconfiguration.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/rvlib/rvprt/decode.h"
#include "tests/support/logcapture.h"

using Lanner::CModuleConfiguration;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(LannerModuleConfiguration, NewOneHasNoBaudrate) {
    const CModuleConfiguration Message(nullptr);
    EXPECT_STREQ(CModuleConfiguration::BaudrateToString(Message.Baudrate), "eInvalidBaudRate");
    EXPECT_EQ(Message.GetLogID(), "notSet");
}

TEST(LannerModuleConfiguration, DecodesAllFields) {
    CModuleConfiguration Message("PreBal");
    EXPECT_EQ(Decode(Message, "97 32 05 0A EE EE"), 6U);
    EXPECT_EQ(Message.Baudrate, 23);
    EXPECT_EQ(Message.StopBit, 1);
    EXPECT_EQ(Message.FanPowerOnTemperature, 50);
    EXPECT_EQ(Message.TestFlags, 5);
    EXPECT_EQ(Message.AttachedSlaveModuleID, 10);
}

TEST(LannerModuleConfiguration, BitSixOfTheBaudrateIsIgnored) {
    CModuleConfiguration Message("PreBal");
    Decode(Message, "57 00 00 00 00 00");
    EXPECT_EQ(Message.Baudrate, 23);
    EXPECT_EQ(Message.StopBit, 0);
}

TEST(LannerModuleConfiguration, ShortOrMissingDataFailsWithAWarning) {
    for (std::size_t nSize = 0; nSize < 6; ++nSize) {
        const CLogCapture Log;
        CModuleConfiguration Message("PreBal");
        EXPECT_EQ(Decode(Message, Cut("97 32 05 0A", nSize)), 0U);
        EXPECT_EQ(Message.Baudrate, 255);
        EXPECT_THAT(Log.GetTexts("Warning"), ElementsAre("not enough data to decode"));
    }
}

TEST(LannerModuleConfiguration, NamesOfAllBaudrates) {
    const CLogCapture Log;
    const std::vector<std::string> At20MHz{"1200",  "2400",   "4800",   "9600",   "19200", "38400",
                                           "57600", "125000", "156250", "208333", "312500"};
    for (std::uint8_t i = 0; i < At20MHz.size(); ++i) {
        EXPECT_EQ(CModuleConfiguration::BaudrateToString(i), "e" + At20MHz[i] + "baud20Mhz");
    }
    EXPECT_STREQ(CModuleConfiguration::BaudrateToString(16), "e1200Baud30Mhz");  // with a capital letter
    const std::vector<std::string> At30MHz{"2400",  "4800",   "9600",   "19200", "38400",
                                           "57600", "115200", "230400", "460800"};
    for (std::uint8_t i = 17; i <= 25; ++i) {
        EXPECT_EQ(CModuleConfiguration::BaudrateToString(i), "e" + At30MHz.at(i - 17U) + "baud30Mhz");
    }
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
}

TEST(LannerModuleConfiguration, BaudrateWithoutANameAsserts) {
    for (const std::uint8_t Baudrate : std::vector<std::uint8_t>{11, 15, 26, 63, 254}) {
        const CLogCapture Log;
        CModuleConfiguration::BaudrateToString(Baudrate);
        EXPECT_THAT(Log.GetAssertions(), ElementsAre("Invalid Baud Rate"));
    }
}

TEST(LannerModuleConfiguration, StopBitWithoutANameAsserts) {
    const CLogCapture Log;
    EXPECT_STREQ(CModuleConfiguration::StopBitToString(0), "e1StopBit");
    EXPECT_STREQ(CModuleConfiguration::StopBitToString(1), "e2StopBits");
    EXPECT_THAT(Log.GetAssertions(), IsEmpty());
    CModuleConfiguration::StopBitToString(2);
    EXPECT_THAT(Log.GetAssertions(), ElementsAre("invalid StopBits"));
}

TEST(LannerModuleConfiguration, LogsItsFieldsAsABlock) {
    CModuleConfiguration Message("PreBal");
    Decode(Message, "97 32 05 0A 00 00");
    const CLogCapture Log(true);
    Message.Log();
    EXPECT_THAT(
        Log.GetTexts("ProtocolDetail"),
        ElementsAre("Lanner::CModuleConfiguration", "Baudrate = e115200baud30Mhz", "StopBit = e2StopBits",
                    "FanPowerOnTemperature = 50", "TestFlags = 5", "AttachedSlaveModuleID = 10"));
}
