// What is known of each property, held against what the pages, the exchange files and the store ask for.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/configurationfields.h"

using namespace PreBalDB;
using ConfigurationFields::Check;
using ConfigurationFields::FindProperty;
using ConfigurationFields::GetDefaults;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

/// Calls Do(field, property) for every field of a configuration.
template <typename T>
void ForEachField(T Do) {
    for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
        for (const CProperty* const pProperty : rLayout.m_Properties) {
            Do(rLayout.GetFieldName(pProperty->GetFieldName()), *pProperty);
        }
    }
}

/// A number on a page, in its unit.
struct CNumber {
    const char* m_pField;
    const char* m_pLabel;
    const char* m_pHelp;
    const char* m_pUnit;
    double m_Min;
    double m_Max;
    double m_Step;
    double m_Default;
};

class CLanguageTest : public testing::Test {
protected:
    ~CLanguageTest() override { SetLanguage(m_Former); }
    std::string m_Former = GetLanguage();
};

}  // namespace

TEST(Properties, NumbersHaveTheRangesStepsUnitsAndHelpOfThePages) {
    for (const CNumber& rCase : {
             CNumber{"configuration.rpm_tolerance", "PB_RPM_TOLERANCE_TEXT", "PB_004", "RPM", 1, 100, 1, 50},
             CNumber{"configuration.target_unbalance", "PB_UNBAL_TOLERANCE_TEXT", "PB_005", "µm/s", 1, 100, 1,
                     5},
             CNumber{"configuration.number_of_samples", "MEASUREMENT_TIME", "PB_012", "s", 1.5, 15.0, 0.1,
                     2.0},
             CNumber{"screw_compensation.single.number_of_holes", "NUMBER_OF_FIXED_POSITIONS", "PB_009", "",
                     3, 24, 1, 12},
             CNumber{"screw_compensation.plane1.number_of_holes", "NUMBER_OF_FIXED_POSITIONS", "PB_009", "",
                     3, 24, 1, 12},
             CNumber{"screw_compensation.single.number_of_screws", "NUMBER_OF_CORRECTION_MASSES", "PB_010",
                     "", 2, 3, 1, 2},
             CNumber{"screw_compensation.plane2.number_of_screws", "NUMBER_OF_CORRECTION_MASSES", "PB_010",
                     "", 2, 3, 1, 2},
         }) {
        SCOPED_TRACE(rCase.m_pField);
        const CProperty* const pProperty = FindProperty(rCase.m_pField);
        ASSERT_NE(pProperty, nullptr);
        EXPECT_STREQ(pProperty->m_Item.m_pTextKey, rCase.m_pLabel);
        EXPECT_STREQ(pProperty->m_Item.m_pHelpKey, rCase.m_pHelp);
        EXPECT_STREQ(pProperty->m_pUnit, rCase.m_pUnit);
        ASSERT_TRUE(pProperty->m_Range);
        EXPECT_EQ(pProperty->m_Range->m_Min, rCase.m_Min);
        EXPECT_EQ(pProperty->m_Range->m_Max, rCase.m_Max);
        EXPECT_EQ(pProperty->m_Range->m_Step, rCase.m_Step);
        const auto Default = static_cast<double>(std::get<std::int64_t>(pProperty->m_Default));
        EXPECT_EQ(pProperty->ToUnit(Default), rCase.m_Default);
        EXPECT_EQ(pProperty->m_Writers & CProperty::eOperator, CProperty::eOperator);
        EXPECT_EQ(pProperty->m_Role, CProperty::Role::eSetting) << "a calibration stays";
    }
}

TEST(Properties, NoOtherNumberIsEdited) {
    std::set<std::string> Edited;
    ForEachField([&Edited](const std::string& /*rField*/, const CProperty& rProperty) {
        if (rProperty.m_Range) {
            Edited.insert(rProperty.m_pName);
        }
    });
    EXPECT_THAT(Edited,
                ElementsAre("holes", "measurement_time_s", "rpm_tolerance", "screws", "target_unbalance"));
}

TEST(Properties, TheEightBitsOfTheScrewsAreTold) {
    EXPECT_EQ(FindProperty("screw_compensation.single.number_of_screws")->m_Type, PropertyType::eByte);
    EXPECT_EQ(FindProperty("screw_compensation.single.number_of_holes")->m_Type, PropertyType::eWhole);
}

TEST(Properties, ChoicesClearTheCalibrationAndNameWhatCanBeChosen) {
    struct CCase {
        const char* m_pField;
        const char* m_pLabel;
        const char* m_pHelp;
        std::vector<std::string> m_Words;
        std::vector<std::string> m_Texts;
    };
    const std::vector<std::string> Senses = {"cw", "ccw"};
    const std::vector<std::string> SenseTexts = {"CW_TEXT", "CCW_TEXT"};
    const std::vector<std::string> Methods = {"weights", "screws"};
    const std::vector<std::string> MethodTexts = {"ANGULAR_METHOD", "FIXED_POSITION"};
    for (const CCase& rCase : {
             CCase{"single_plane.rotation_direction", "PB_ROTATION_DIRECTION_TEXT", "PB_006", Senses,
                   SenseTexts},
             CCase{"two_plane.rotation_direction", "PB_ROTATION_DIRECTION_TEXT", "PB_006", Senses,
                   SenseTexts},
             CCase{"weight_compensation.single.scaling_direction", "PB_SCALINGDIRECTION_TEXT", "PB_007",
                   Senses, SenseTexts},
             CCase{"screw_compensation.plane2.scaling_direction", "PB_SCALINGDIRECTION_TEXT", "PB_007",
                   Senses, SenseTexts},
             CCase{"weight_compensation.single.method", "BALANCING_METHOD", "PB_011", Methods, MethodTexts},
             CCase{"screw_compensation.plane1.method", "BALANCING_METHOD", "PB_011", Methods, MethodTexts},
         }) {
        SCOPED_TRACE(rCase.m_pField);
        const CProperty* const pProperty = FindProperty(rCase.m_pField);
        ASSERT_NE(pProperty, nullptr);
        EXPECT_EQ(pProperty->m_Type, PropertyType::eChoice);
        EXPECT_STREQ(pProperty->m_Item.m_pTextKey, rCase.m_pLabel);
        EXPECT_STREQ(pProperty->m_Item.m_pHelpKey, rCase.m_pHelp);
        std::vector<std::string> Words;
        std::vector<std::string> Texts;
        for (const CProperty::CChoice& rChoice : pProperty->m_Choices) {
            Words.emplace_back(rChoice.m_pWord);
            Texts.emplace_back(rChoice.m_pTextKey);
        }
        EXPECT_EQ(Words, rCase.m_Words);
        EXPECT_EQ(Texts, rCase.m_Texts);
        EXPECT_EQ(pProperty->m_Default, CDirectSQL::CValue(std::int64_t{0}));
        EXPECT_EQ(pProperty->m_Role, CProperty::Role::eBasis);
        EXPECT_EQ(pProperty->m_Writers & CProperty::eOperator, CProperty::eOperator);
    }
}

TEST(Properties, WhatIsOnlyShownHasItsLabelsAndHelp) {
    struct CCase {
        const char* m_pField;
        const char* m_pLabel;
        const char* m_pHelp;
        const char* m_pUnit;
        PropertyType m_Type;
        std::uint8_t m_Writers;
    };
    for (const CCase& rCase : {
             CCase{"configuration.calibrated_unix_time", "PB_SET_CALIB_DATE", "PB_001", "",
                   PropertyType::eTime, CProperty::eRun},
             CCase{"configuration.calibrated_rpm", "PB_CALIBRATED_RPM_TEXT", "PB_003", "RPM",
                   PropertyType::eWhole, CProperty::eRun},
             CCase{"single_plane.sensor_adaption", "PB_SENSOR_ADAPTATION_TEXT", "", "", PropertyType::eByte,
                   CProperty::eModule},
             CCase{"two_plane.plane2_sensor_adaption", "PB_SENSOR_ADAPTATION_TEXT", "", "",
                   PropertyType::eByte, CProperty::eModule},
             CCase{"single_plane.proximity_switch_input", "RPM_INPUT", "", "", PropertyType::eChoice,
                   CProperty::eModule},
             CCase{"single_plane.inv_a", "INV", "", "", PropertyType::eMatrix, CProperty::eRun},
             CCase{"two_plane.ua_plane2", "UA", "", "", PropertyType::eMatrix, CProperty::eRun},
             CCase{"screw_compensation.single.reference_weight", "REFERENCE_WEIGHT", "", "g",
                   PropertyType::eReal, CProperty::eRun},
             CCase{"screw_compensation.single.radius", "", "", "mm", PropertyType::eReal, CProperty::eNobody},
         }) {
        SCOPED_TRACE(rCase.m_pField);
        const CProperty* const pProperty = FindProperty(rCase.m_pField);
        ASSERT_NE(pProperty, nullptr);
        EXPECT_STREQ(pProperty->m_Item.m_pTextKey, rCase.m_pLabel);
        EXPECT_STREQ(pProperty->m_Item.m_pHelpKey, rCase.m_pHelp);
        EXPECT_STREQ(pProperty->m_pUnit, rCase.m_pUnit);
        EXPECT_EQ(pProperty->m_Type, rCase.m_Type);
        EXPECT_EQ(pProperty->m_Writers, rCase.m_Writers);
        EXPECT_TRUE(pProperty->m_Choices.empty());
    }
    const CProperty& rTime = *FindProperty("configuration.calibrated_unix_time");
    EXPECT_STREQ(rTime.m_TimeItem.m_pTextKey, "PB_SET_CALIB_TIME");
    EXPECT_STREQ(rTime.m_TimeItem.m_pHelpKey, "PB_002");
}

TEST(Properties, TheScrewTableIsATextWithItsHelpAndLeavesTheCalibrationAlone) {
    const CProperty* const pProperty = FindProperty("screw_compensation.single.screw_table");
    ASSERT_NE(pProperty, nullptr);
    EXPECT_EQ(pProperty->m_Type, PropertyType::eText);
    EXPECT_STREQ(pProperty->m_Item.m_pTextKey, "MASS_TABLE");
    EXPECT_STREQ(pProperty->m_Item.m_pHelpKey, "PB_008");
    EXPECT_EQ(pProperty->m_Role, CProperty::Role::eSetting);
    EXPECT_EQ(pProperty->m_Writers, CProperty::eOperator);
}

TEST(Properties, TheNcMayGiveTheTargetAndTheRotation) {
    std::set<std::string> Names;
    ForEachField([&Names](const std::string& rField, const CProperty& rProperty) {
        if ((rProperty.m_Writers & CProperty::eNc) != 0) {
            Names.insert(rField);
        }
    });
    EXPECT_THAT(Names, ElementsAre("configuration.target_unbalance", "single_plane.rotation_direction",
                                   "two_plane.rotation_direction"));
}

// The whole calibration is what a run finds out, and nobody else sets it.
TEST(Properties, ARunWritesTheCalibrationAndNothingElse) {
    ForEachField([](const std::string& rField, const CProperty& rProperty) {
        EXPECT_EQ(rProperty.m_Role == CProperty::Role::eCalibration, rProperty.m_Writers == CProperty::eRun)
            << rField;
    });
}

TEST(Properties, HaveTheNamesOfTheExchangeFiles) {
    const auto GetNames = [](const std::string& rTable, const std::string& rPart) {
        std::vector<std::string> Names;
        for (const CRecordLayout& rLayout : ConfigurationFields::GetLayouts()) {
            if (rLayout.m_Table == rTable && rLayout.m_Part == rPart) {
                for (const CProperty* const pProperty : rLayout.m_Properties) {
                    Names.emplace_back(pProperty->m_pName);
                }
            }
        }
        return Names;
    };
    EXPECT_THAT(GetNames("configuration", ""),
                ElementsAre("calibrated", "calibrated_unix_time", "calibrated_rpm", "rpm_tolerance",
                            "target_unbalance", "measurement_time_s"));
    EXPECT_THAT(GetNames("single_plane", ""),
                ElementsAre("rotation", "proximity_switch_input", "sensor_adaption", "inv_a", "ua"));
    EXPECT_THAT(GetNames("two_plane", ""),
                ElementsAre("rotation", "proximity_switch_input", "plane1_sensor_adaption",
                            "plane2_sensor_adaption", "inv_a", "ua_plane1", "ua_plane2"));
    for (const char* const pPart : {"single", "plane1", "plane2"}) {
        EXPECT_THAT(GetNames("weight_compensation", pPart), ElementsAre("method", "plane", "scale"));
        EXPECT_THAT(GetNames("screw_compensation", pPart),
                    ElementsAre("method", "plane", "scale", "table", "holes", "screws", "reference_weight",
                                "radius"));
    }
}

TEST_F(CLanguageTest, EveryLabelChoiceAndUnitHasItsTexts) {
    // Written the same everywhere.
    const std::set<std::string> NoKeys = {"", "µm/s", "s", "g", "mm", "INV", "UA"};
    for (const char* const pLanguage : {"en", "de"}) {
        ASSERT_TRUE(SetLanguage(pLanguage));
        const auto ExpectText = [&](const std::string& rField, const char* pKey) {
            EXPECT_TRUE(NoKeys.contains(pKey) || GetText(pKey) != pKey)
                << pLanguage << ", " << rField << ": " << pKey;
        };
        ForEachField([&](const std::string& rField, const CProperty& rProperty) {
            ExpectText(rField, rProperty.m_Item.m_pTextKey);
            ExpectText(rField, rProperty.m_TimeItem.m_pTextKey);
            ExpectText(rField, rProperty.m_pUnit);
            for (const CProperty::CChoice& rChoice : rProperty.m_Choices) {
                ExpectText(rField, rChoice.m_pTextKey);
            }
        });
    }
}

TEST_F(CLanguageTest, AFieldIsCalledByItsLabelAndItsPlane) {
    using ConfigurationFields::GetLabel;
    ASSERT_TRUE(SetLanguage("en"));
    EXPECT_EQ(GetLabel("configuration.target_unbalance"), "Unbalance target");
    EXPECT_EQ(GetLabel("single_plane.rotation_direction"), "Direction of rotation");
    EXPECT_EQ(GetLabel("two_plane.rotation_direction"), "Direction of rotation Plane 1");
    EXPECT_EQ(GetLabel("two_plane.plane2_sensor_adaption"), "Sensor Plane 2");
    EXPECT_EQ(GetLabel("weight_compensation.single.scaling_direction"), "Direction of the scale");
    EXPECT_EQ(GetLabel("weight_compensation.plane1.scaling_direction"), "Direction of the scale Plane 1");
    EXPECT_EQ(GetLabel("screw_compensation.plane2.method"), "Balancing method Plane 2");
    EXPECT_EQ(GetLabel("calibration"), "Calibration");
    ASSERT_TRUE(SetLanguage("de"));
    EXPECT_EQ(GetLabel("calibration"), "Kalibrierung");
}

TEST_F(CLanguageTest, AFieldWithoutALabelKeepsItsName) {
    EXPECT_EQ(ConfigurationFields::GetLabel("screw_compensation.single.radius"),
              "screw_compensation.single.radius");
    EXPECT_EQ(ConfigurationFields::GetLabel("screw_table.M6"), "screw_table.M6");
}

TEST(Properties, AMeasuringTimeIsATwentiethOfASecondASample) {
    const CProperty& rTime = *FindProperty("configuration.number_of_samples");
    EXPECT_EQ(rTime.ToUnit(100), 5.0);
    EXPECT_EQ(rTime.FromUnit(5.0), 100.0);
    EXPECT_EQ(rTime.FromUnit(1.5), 30.0);
    EXPECT_EQ(rTime.FromUnit(1.59), 31.0) << "downwards";
    const CProperty& rTarget = *FindProperty("configuration.target_unbalance");
    EXPECT_EQ(rTarget.ToUnit(7), 7.0);
    EXPECT_EQ(rTarget.FromUnit(7.0), 7.0);
}

// A page would change a default outside of its range by merely showing it; the store would refuse a value
// that a page lets pass.
TEST(Properties, ADefaultLiesWithinTheRangeAndTheRangeWithinWhatTheStoreTakes) {
    ForEachField([](const std::string& rField, const CProperty& rProperty) {
        if (!rProperty.m_Range) {
            return;
        }
        const double Default =
            rProperty.ToUnit(static_cast<double>(std::get<std::int64_t>(rProperty.m_Default)));
        EXPECT_GE(Default, rProperty.m_Range->m_Min) << rField;
        EXPECT_LE(Default, rProperty.m_Range->m_Max) << rField;
        for (const double End : {rProperty.m_Range->m_Min, rProperty.m_Range->m_Max}) {
            EXPECT_EQ(Check(rField, static_cast<std::int64_t>(rProperty.FromUnit(End))), "");
        }
    });
}

TEST(Properties, ADefaultCanBeStored) {
    for (const auto& [rField, rValue] : GetDefaults()) {
        EXPECT_EQ(Check(rField, rValue), "");
    }
}

TEST(Validation, RefusesWhatLiesBesideTheLimitsByTheNameOfTheField) {
    struct CCase {
        const char* m_pField;
        std::int64_t m_Min;
        std::int64_t m_Max;
    };
    for (const CCase& rCase : {
             CCase{"configuration.is_calibrated", 0, 1},
             CCase{"configuration.calibrated_unix_time", 0, 253402300799},
             CCase{"configuration.calibrated_rpm", 0, 65535},
             CCase{"configuration.rpm_tolerance", 0, 65535},
             CCase{"configuration.target_unbalance", 0, 65535},
             CCase{"configuration.number_of_samples", 1, 12000},
             CCase{"single_plane.rotation_direction", 0, 1},
             CCase{"single_plane.proximity_switch_input", 0, 1},
             CCase{"single_plane.sensor_adaption", 0, 255},
             CCase{"two_plane.rotation_direction", 0, 1},
             CCase{"two_plane.proximity_switch_input", 0, 1},
             CCase{"two_plane.plane1_sensor_adaption", 0, 255},
             CCase{"two_plane.plane2_sensor_adaption", 0, 255},
             CCase{"weight_compensation.plane1.plane", 0, 1},
             CCase{"weight_compensation.plane2.scaling_direction", 0, 1},
             CCase{"screw_compensation.single.plane", 0, 1},
             CCase{"screw_compensation.single.scaling_direction", 0, 1},
             CCase{"screw_compensation.single.number_of_holes", 0, 360},
             CCase{"screw_compensation.plane2.number_of_screws", 0, 255},
         }) {
        SCOPED_TRACE(rCase.m_pField);
        EXPECT_EQ(Check(rCase.m_pField, rCase.m_Min), "");
        EXPECT_EQ(Check(rCase.m_pField, rCase.m_Max), "");
        for (const std::int64_t Beside : {rCase.m_Min - 1, rCase.m_Max + 1}) {
            EXPECT_EQ(Check(rCase.m_pField, Beside),
                      std::string(rCase.m_pField) + ": " + std::to_string(Beside) + " isn't within " +
                          std::to_string(rCase.m_Min) + " to " + std::to_string(rCase.m_Max));
        }
    }
}

TEST(Validation, TakesAnUnknownInputAndAnUnknownPlane) {
    const CDirectSQL::CValue Unknown = std::int64_t{255};
    EXPECT_EQ(Check("single_plane.proximity_switch_input", Unknown), "");
    EXPECT_EQ(Check("weight_compensation.single.plane", Unknown), "");
    EXPECT_THAT(Check("single_plane.rotation_direction", Unknown), HasSubstr("255 isn't within 0 to 1"));
}

TEST(Validation, RefusesAWeightOrARadiusThatIsNotAboveZero) {
    for (const char* const pField :
         {"screw_compensation.single.reference_weight", "screw_compensation.plane1.radius"}) {
        EXPECT_EQ(Check(pField, 0.5), "");
        EXPECT_EQ(Check(pField, 0.0), std::string(pField) + ": 0.000000 isn't above 0");
        EXPECT_THAT(Check(pField, -1.0), StartsWith(std::string(pField) + ": -1"));
    }
}

TEST(Validation, RefusesAMatrixOfAnotherSizeByTheNameOfTheField) {
    struct CCase {
        const char* m_pField;
        int m_nRows;
        int m_nColumns;
    };
    for (const CCase& rCase :
         {CCase{"single_plane.inv_a", 2, 2}, CCase{"single_plane.ua", 2, 1}, CCase{"two_plane.inv_a", 4, 4},
          CCase{"two_plane.ua_plane1", 2, 1}, CCase{"two_plane.ua_plane2", 2, 1}}) {
        EXPECT_EQ(Check(rCase.m_pField, std::string("1x1: 7")),
                  std::string(rCase.m_pField) + ": \"1x1: 7\" isn't " + std::to_string(rCase.m_nRows) +
                      " by " + std::to_string(rCase.m_nColumns));
    }
}

TEST(Validation, RefusesAValueOfAnotherKindForEveryField) {
    std::size_t nFields = 0;
    for (const auto& [rField, rDefault] : GetDefaults()) {
        const bool bText = std::holds_alternative<std::string>(rDefault);
        const CDirectSQL::CValue Other =
            bText ? CDirectSQL::CValue(std::int64_t{1}) : CDirectSQL::CValue("wide");
        EXPECT_THAT(Check(rField, Other), StartsWith(rField + ": ")) << rField;
        ++nFields;
    }
    EXPECT_EQ(nFields, 45U);
}

TEST(Validation, KnowsNothingAgainstAFieldThatIsNone) {
    EXPECT_EQ(FindProperty("configuration.colour"), nullptr);
    EXPECT_EQ(Check("configuration.colour", "red"), "");
    EXPECT_EQ(ConfigurationFields::GetRole("configuration.colour"), CProperty::Role::eSetting);
}
