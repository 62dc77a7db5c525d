#include "console/isojson.h"

#include <gtest/gtest.h>

#include "archive/isofields.h"

namespace {

constexpr std::array<bool, 2> BOTH = {true, true};
constexpr std::array<bool, 2> SECOND = {false, true};

std::string GetError(const char* pText, const std::array<bool, 2>& rBalanced = BOTH) {
    std::string Error;
    EXPECT_FALSE(IsoJson::Read(nlohmann::json::parse(pText), rBalanced, Error)) << pText;
    return Error;
}

}  // namespace

TEST(IsoJson, WhatWasWrittenIsRead) {
    CIsoData Data;
    Data.m_RotorMass = 12.0;
    Data.m_ServiceSpeed = 6000.0;
    Data.m_Grade = 6.3;
    Data.m_Unit = {45.0, 60.0};
    Data.m_Distance = {80.0, 0.0};
    std::string Error = "former";
    EXPECT_EQ(IsoJson::Read(IsoJson::Write(Data, BOTH), BOTH, Error), Data);
    EXPECT_EQ(Error, "");
}

TEST(IsoJson, ListsHaveThePlanesThatAreBalancedAndWhatIsNotKnownIsLeftOut) {
    CIsoData Data;
    Data.m_RotorMass = 12.0;
    Data.m_Unit = {0.0, 60.0};
    const auto Json = IsoJson::Write(Data, SECOND);
    EXPECT_EQ(Json.dump(), R"({"rotor_mass_kg":12.0,"unit_gmm":[60.0]})");
    std::string Error;
    EXPECT_EQ(IsoJson::Read(Json, SECOND, Error), Data);
}

TEST(IsoJson, ErrorsNameFieldAndRange) {
    EXPECT_EQ(GetError(R"({"rotor_mass_kg": -1})"),
              "\"rotor_mass_kg\": -1 is not a number from 0.001 to 1e+05, or 0 if it isn't known");
    EXPECT_EQ(GetError(R"({"service_rpm": "fast"})"),
              "\"service_rpm\": \"fast\" is not a number from 1 to 1e+06, or 0 if it isn't known");
    EXPECT_EQ(GetError(R"({"unit_gmm": [45, 1e9]})"),
              "\"unit_gmm\": 1000000000.0 is not a number from 0.001 to 1e+07, or 0 if it isn't known");
    EXPECT_EQ(GetError(R"({"unit_gmm": [45]})"),
              "\"unit_gmm\" is not a list with a value for each of 2 planes");
    EXPECT_EQ(GetError(R"({"unit_gmm": 45})", SECOND),
              "\"unit_gmm\" is not a list with a value for each of 1 planes");
    EXPECT_EQ(GetError(R"({"mass": 1})"),
              "\"mass\" is no field of \"iso\"; fields are rotor_mass_kg, service_rpm, grade, unit_gmm, "
              "distance_mm");
    EXPECT_EQ(GetError("[]"), "\"iso\" is not an object");
}

TEST(IsoJson, ZeroIsNotKnownInEveryField) {
    for (const CIsoField& rField : ISO_FIELDS) {
        EXPECT_TRUE(rField.Allows(0.0)) << rField.m_pName;
        EXPECT_TRUE(rField.Allows(rField.m_Min) && rField.Allows(rField.m_Max)) << rField.m_pName;
        EXPECT_FALSE(rField.Allows(-rField.m_Min)) << rField.m_pName;
    }
}
