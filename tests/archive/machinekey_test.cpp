#include "archive/machinekey.h"

#include <gtest/gtest.h>

TEST(MachineKey, TellsModuleAndSet) {
    const auto Key = CMachineKey::Parse("0#1#255-0s-486107-930938880-3");
    ASSERT_TRUE(Key);
    EXPECT_EQ(Key->m_Module, "486107-930938880");
    EXPECT_EQ(Key->m_Set, 3U);
}

TEST(MachineKey, ATextOfAnotherFormTellsNothing) {
    EXPECT_FALSE(CMachineKey::Parse(""));
    EXPECT_FALSE(CMachineKey::Parse("grinder"));
    EXPECT_FALSE(CMachineKey::Parse("0#1#255-0-3"));
}

TEST(MachineKey, TellsWhatAConfigurationTakesFromItsSet) {
    const auto Key = CMachineKey::Parse("1#4#7-2-AB-C-12-5");
    ASSERT_TRUE(Key);
    EXPECT_EQ(Key->m_SpeedInput, PreBalDB::CTypeBase::ePlane2);
    EXPECT_EQ(Key->m_Sensor1, 4);
    EXPECT_EQ(Key->m_Sensor2, 7);
    EXPECT_STREQ(Key->GetModeName(), "two-plane");
    EXPECT_EQ(Key->m_Module, "AB-C-12");
    EXPECT_TRUE(Key->IsBalanced(0) && Key->IsBalanced(1));
}

TEST(MachineKey, ASinglePlaneIsThatOfItsMode) {
    const auto Key = CMachineKey::Parse("0#255#7-1-AB-12-5");
    ASSERT_TRUE(Key);
    EXPECT_FALSE(Key->IsBalanced(0));
    EXPECT_TRUE(Key->IsBalanced(1));
}

TEST(MachineKey, ANumberThatIsNoByteIsNoSensor) {
    EXPECT_FALSE(CMachineKey::Parse("0#256#255-0-486107-930938880-1"));
    EXPECT_FALSE(CMachineKey::Parse("2#1#255-0-486107-930938880-1"));
    EXPECT_FALSE(CMachineKey::Parse("0#1#255-3-486107-930938880-1"));
}
