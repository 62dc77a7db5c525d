#include "contract/initflags.h"

#include <gtest/gtest.h>

TEST(InitFlags, FieldsLieWhereTheHostPutsThem) {
    constexpr CInitFlags Flags(0x05020601);
    EXPECT_EQ(Flags.GetBalancingMode(), 1);
    EXPECT_EQ(Flags.GetSlaveAddress(), 6);
    EXPECT_EQ(Flags.GetIdentification(), 2);
    EXPECT_EQ(Flags.GetHardwareType(), 5);
    EXPECT_EQ(Flags.GetPlane(), 1);
    EXPECT_TRUE(Flags.HasSlave());
    EXPECT_TRUE(Flags.IsKestrel());
    EXPECT_FALSE(Flags.IsLanner());
}

TEST(InitFlags, ZeroAndAllOnesAreNoSlave) {
    EXPECT_FALSE(CInitFlags(0x010000).HasSlave());
    EXPECT_FALSE(CInitFlags(0x01FF00).HasSlave());
    EXPECT_TRUE(CInitFlags(0x01FE00).HasSlave());
}

// Hosts may fill the upper half of a 64-bit parameter by sign extension.
TEST(InitFlags, BitsAboveTheFieldsDoNotCount) {
    EXPECT_EQ(CInitFlags(static_cast<std::intptr_t>(static_cast<std::int32_t>(0xFF010002))).GetHardwareType(),
              0xFF);
}

TEST(InitFlags, WhatIsPutInComesOut) {
    constexpr CInitFlags Flags(2, 6, CInitFlags::LANNER, CInitFlags::PLANE2_HARDWARE);
    EXPECT_EQ(Flags.GetValue(), 0x05090602);
    EXPECT_EQ(CInitFlags(0, CInitFlags::NO_SLAVE, CInitFlags::KESTREL).GetValue(), 0x0001FF00);
    EXPECT_FALSE(CInitFlags(0, CInitFlags::NO_SLAVE, CInitFlags::KESTREL).HasSlave());
    EXPECT_EQ(Flags.GetPlane(), 1);
    EXPECT_TRUE(Flags.IsLanner());
}
