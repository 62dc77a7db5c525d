#include "rvdlm/m_rtr/rtr_trim/communication/set.h"

#include <gtest/gtest.h>

// 0xFF is what the main window reads as no set known yet.
TEST(CSet, NewOneIsNotKnown) {
    const CSet Set;
    EXPECT_EQ(Set.Number, 0xFF);
    EXPECT_EQ(Set.Name, "");
    EXPECT_EQ(Set.Mode, 0xFF);
    EXPECT_EQ(Set.GetRPMInputPlane1(), 0xFF);
    EXPECT_EQ(Set.GetRPMFactorPlane1(), 0xFF);
    EXPECT_EQ(Set.RPMInputPlane2, 0xFF);
    EXPECT_EQ(Set.RPMFactorPlane2, 0xFF);
    EXPECT_EQ(Set.GetSensorAdaptionPlane1(), 0xFF);
    EXPECT_EQ(Set.SensorAdaptionPlane2, 0xFF);
    EXPECT_EQ(Set.Swap, 0U);
}

TEST(CSet, ModesHaveTheirNumbers) {
    EXPECT_EQ(CSet::eNothing, 0);
    EXPECT_EQ(CSet::ePlane1, 1);
    EXPECT_EQ(CSet::ePlane2, 2);
    EXPECT_EQ(CSet::eBothIndependent, 3);
    EXPECT_EQ(CSet::eTwoPlane, 4);
}
