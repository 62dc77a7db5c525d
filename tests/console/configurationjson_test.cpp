#include "console/configurationjson.h"

#include <gtest/gtest.h>

#include "platform/rvmdb/configurationfields.h"
#include "platform/rvmdb/prebalbasetableentry.h"

namespace {

using Json = nlohmann::ordered_json;

Json ToJson(const PreBalDB::CPreBalBaseTableEntry& rEntry, const std::string& rMode) {
    return ConfigurationToJson("5-Kestrel-1", rMode, rEntry.GetProcessName(),
                               PreBalDB::ConfigurationFields::Read(rEntry));
}

}  // namespace

TEST(ConfigurationJson, HasNamesUnitsAndWordsOfTheDescriptors) {
    PreBalDB::CPreBalBaseTableEntry Entry("5-Kestrel-1", "Wheel");
    Entry.SetNumberOfSamples(50);
    Entry.CreateSinglePlane().SetRotationDirection(PreBalDB::CTypeBase::eCounterClockwise);
    Entry.CreateSinglePlane().CreateWeightCompensationTableEntry();
    const Json Result = ToJson(Entry, "plane1");
    EXPECT_EQ(Result["machine"], "5-Kestrel-1");
    EXPECT_EQ(Result["mode"], "plane1");
    EXPECT_EQ(Result["name"], "Wheel");
    EXPECT_EQ(Result["calibrated"], false);
    EXPECT_EQ(Result["rpm_tolerance"], 50);
    EXPECT_EQ(Result["measurement_time_s"], 2.5);
    EXPECT_EQ(Result["rotation"], "ccw");
    EXPECT_EQ(Result["inv_a"], Json::parse("[[0.0,0.0],[0.0,0.0]]"));
    ASSERT_EQ(Result["planes"].size(), 1U);
    EXPECT_EQ(Result["planes"][0]["method"], "weights");
    EXPECT_EQ(Result["planes"][0]["scale"], "cw");
    EXPECT_EQ(Result["planes"][0]["plane"], 255) << "unknown has no word";
}

TEST(ConfigurationJson, PlanesStandInTheirOrderWithTheirOwnMeans) {
    PreBalDB::CPreBalBaseTableEntry Entry("9-Lanner-1", "Wheel");
    PreBalDB::CTwoPlaneBalancingTableEntry& rPlanes = Entry.CreateTwoPlane();
    rPlanes.CreatePlane1ScrewCompensationTableEntry().SetNumberOfHoles(18);
    rPlanes.CreatePlane2WeightCompensationTableEntry();
    const Json Result = ToJson(Entry, "two-plane");
    ASSERT_EQ(Result["planes"].size(), 2U);
    EXPECT_EQ(Result["planes"][0]["method"], "screws");
    EXPECT_EQ(Result["planes"][0]["holes"], 18);
    EXPECT_EQ(Result["planes"][0]["table"], "Default");
    EXPECT_EQ(Result["planes"][1]["method"], "weights");
    EXPECT_FALSE(Result["planes"][1].contains("holes"));
}

TEST(ConfigurationJson, WhatIsNoUtf8HasMarksInItsPlace) {
    EXPECT_EQ(ToText(Json{{"name", "a\xFF"}}), "{\"name\":\"a\xEF\xBF\xBD\"}");
}

// Its copies and comparisons go level by level, and the stack has an end.
TEST(ConfigurationJson, ATextThatIsNestedWithoutEndIsNone) {
    constexpr std::size_t LEVELS = 200000;
    for (const auto& [pOpen, pClose] : {std::pair{"[", "]"}, std::pair{"{\"a\":", "}"}}) {
        std::string Text;
        for (std::size_t i = 0; i < LEVELS; ++i) {
            Text += pOpen;
        }
        Text += "1";
        for (std::size_t i = 0; i < LEVELS; ++i) {
            Text += pClose;
        }
        EXPECT_TRUE(ParseShallow(Text).is_discarded());
    }
    EXPECT_TRUE(ParseShallow("[").is_discarded());
    EXPECT_EQ(ParseShallow("[[[7]]]")[0][0][0], 7);
}
