// A configuration without a window: what the balancing module's set makes of it.
#include "rvdlm/m_rtr/rtr_trim/config/configurationmodel.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/rvmdb/configurationfields.h"
#include "tests/support/logcapture.h"

using namespace PreBalDB;
using ConfigurationModel::CModuleSet;
using ConfigurationModel::IsCalibrated;
using ConfigurationModel::Prepare;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr CModuleSet PLANE1 = {CPreBalDatabase::eModePlane1, 3, 255, CTypeBase::ePlane1};
constexpr CModuleSet PLANE2 = {CPreBalDatabase::eModePlane2, 4, 255, CTypeBase::ePlane2};
constexpr CModuleSet TWO_PLANE = {CPreBalDatabase::eModeTwoPlane, 3, 4, CTypeBase::ePlane1};

class CConfigurationModelTest : public testing::Test {
protected:
    /// As it would be stored.
    CDirectSQL::CValue Get(const std::string& rField) {
        return ConfigurationFields::Read(m_Entry).at(rField);
    }

    CLogCapture m_Log;
    CPreBalBaseTableEntry m_Entry{"M-1", "Wheel"};
};

}  // namespace

TEST_F(CConfigurationModelTest, NoEntryAndANewOneAreNotCalibrated) {
    EXPECT_FALSE(IsCalibrated(nullptr));
    EXPECT_FALSE(IsCalibrated(&m_Entry));
    m_Entry.SetIsCalibrated(1);
    EXPECT_TRUE(IsCalibrated(&m_Entry));
}

TEST_F(CConfigurationModelTest, OnePlaneGetsItsSensorInputAndWeights) {
    EXPECT_FALSE(Prepare(m_Entry, PLANE1));
    EXPECT_EQ(Get("single_plane.sensor_adaption"), CDirectSQL::CValue(std::int64_t{3}));
    EXPECT_EQ(Get("single_plane.proximity_switch_input"), CDirectSQL::CValue(std::int64_t{0}));
    EXPECT_EQ(Get("weight_compensation.single.plane"), CDirectSQL::CValue(std::int64_t{0}));
    EXPECT_EQ(m_Entry.GetTwoPlane(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigurationModelTest, PlaneTwoIsToldToItsMeans) {
    m_Entry.CreateSinglePlane().CreateScrewCompensationTableEntry();
    EXPECT_TRUE(Prepare(m_Entry, PLANE2)) << "screws";
    EXPECT_EQ(Get("single_plane.sensor_adaption"), CDirectSQL::CValue(std::int64_t{4}));
    EXPECT_EQ(Get("single_plane.proximity_switch_input"), CDirectSQL::CValue(std::int64_t{1}));
    EXPECT_EQ(Get("screw_compensation.single.plane"), CDirectSQL::CValue(std::int64_t{1}));
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigurationModelTest, TwoPlanesGetBothSensorsAndEachItsMeans) {
    m_Entry.CreateTwoPlane().CreatePlane2ScrewCompensationTableEntry();
    EXPECT_TRUE(Prepare(m_Entry, TWO_PLANE)) << "screws in one of them";
    EXPECT_EQ(Get("two_plane.plane1_sensor_adaption"), CDirectSQL::CValue(std::int64_t{3}));
    EXPECT_EQ(Get("two_plane.plane2_sensor_adaption"), CDirectSQL::CValue(std::int64_t{4}));
    EXPECT_EQ(Get("weight_compensation.plane1.plane"), CDirectSQL::CValue(std::int64_t{0}));
    EXPECT_EQ(Get("screw_compensation.plane2.plane"), CDirectSQL::CValue(std::int64_t{1}));
    EXPECT_EQ(m_Entry.GetSinglePlane(), nullptr);
    EXPECT_THAT(m_Log.GetAssertions(), IsEmpty());
}

TEST_F(CConfigurationModelTest, TwoPlanesWithWeightsUseNoScrews) {
    EXPECT_FALSE(Prepare(m_Entry, TWO_PLANE));
    m_Entry.GetTwoPlane()->CreatePlane1ScrewCompensationTableEntry();
    EXPECT_TRUE(Prepare(m_Entry, TWO_PLANE));
}

TEST_F(CConfigurationModelTest, WhatThePagesHaveSetStays) {
    m_Entry.SetIsCalibrated(1);
    m_Entry.CreateSinglePlane().SetRotationDirection(CTypeBase::eCounterClockwise);
    m_Entry.GetSinglePlane()->CreateScrewCompensationTableEntry().SetNumberOfHoles(18);
    CFieldValues Expected = ConfigurationFields::Read(m_Entry);
    Prepare(m_Entry, PLANE1);
    Expected["single_plane.sensor_adaption"] = std::int64_t{3};
    Expected["single_plane.proximity_switch_input"] = std::int64_t{0};
    Expected["screw_compensation.single.plane"] = std::int64_t{0};
    EXPECT_EQ(ConfigurationFields::Read(m_Entry), Expected);
}

TEST_F(CConfigurationModelTest, ASetThatLacksSomethingIsAsserted) {
    Prepare(m_Entry, {CPreBalDatabase::eModePlane1, 255, 255, CTypeBase::eUnknownPlane});
    EXPECT_THAT(m_Log.GetAssertions(),
                ElementsAre("Proximity Switch Input is invalid!", "Sensor Adaption 1 invalid!"));
}

TEST_F(CConfigurationModelTest, TwoPlanesNeedASecondSensor) {
    Prepare(m_Entry, {CPreBalDatabase::eModeTwoPlane, 3, 255, CTypeBase::ePlane1});
    EXPECT_THAT(m_Log.GetAssertions(), ElementsAre("Sensor Adaption 2 invalid!"));
}
