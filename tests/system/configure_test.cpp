// Machines set up by scripts: "configure" as they call it.
#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "platform/rvmdb/prebaldatabase.h"
#include "tests/support/textfiles.h"
#include "tests/system/commandsfixture.h"

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

using NewInstallationTest = CCommandsTestBase;

class ConfigureTest : public CCommandsTestBase {
protected:
    ConfigureTest() { EXPECT_EQ(Configure({"list", "--link", "sim"}).m_Status, 0); }

    CDone Configure(const QStringList& rArguments) const {
        return Run(QStringList{"configure"} + rArguments);
    }
    json Show(const QStringList& rArguments = {}) const {
        return json::parse(Configure(QStringList{"show", "--json"} + rArguments).m_Output);
    }
    std::string GetMachine() const {
        return json::parse(Configure({"list", "--json"}).m_Output).at(0).at("machine");
    }
    /// Of a value that can't be: what is said, after making sure that nothing was set.
    std::string GetRefusal(const QStringList& rArguments) const {
        const json Before = Show();
        const CDone Done = Configure(rArguments);
        EXPECT_EQ(Done.m_Status, 3) << Done.m_Errors;
        EXPECT_EQ(Show(), Before);
        return Done.m_Errors;
    }
    CDone Import(const json& rFile, const QStringList& rArguments = {}) const {
        WriteTestFile(m_Directory.At("file.json"), rFile.dump());
        return Configure(QStringList{"import", At("file.json")} + rArguments);
    }
    /// As if a pre-balancing had been made.
    void Calibrate() const {
        PreBalDB::SetDatabaseConnection("sqlite:" + m_Directory.At("root") + "/cnf/prebal.db");
        PreBalDB::CPreBalDatabase Database(GetMachine());
        Database.ReadConfiguration("Default").SetIsCalibrated(1);
        EXPECT_NE(Database.WriteConfiguration(), 0);
    }
    ~ConfigureTest() override { PreBalDB::SetDatabaseConnection({}); }
};

}  // namespace

TEST_F(NewInstallationTest, ConfigureFindsNothingInANewInstallation) {
    const CDone List = Run({"configure", "list"});
    EXPECT_EQ(List.m_Status, 1);
    EXPECT_THAT(List.m_Output, HasSubstr("--link"));
    EXPECT_EQ(Run({"configure", "list", "--json"}).m_Output, "[]\n");
    EXPECT_EQ(Run({"configure", "show"}).m_Status, 1);
}

TEST_F(ConfigureTest, AModuleOnTheLineGetsItsConfiguration) {
    const CDone Lanner =
        Configure({"show", "--json", "--link", "sim", "--modules", "lanner", "--mode", "two-plane"});
    ASSERT_EQ(Lanner.m_Status, 0) << Lanner.m_Errors;
    const json Shown = json::parse(Lanner.m_Output);
    EXPECT_EQ(Shown.at("mode"), "two-plane");
    EXPECT_EQ(Shown.at("planes").size(), 2U);
    EXPECT_EQ(json::parse(Configure({"list", "--json"}).m_Output).size(), 2U) << "beside the one from before";
    EXPECT_THAT(Configure({"show"}).m_Errors, HasSubstr("--machine")) << "which of the two isn't said";
}

TEST_F(ConfigureTest, SetsWhatAPageSets) {
    const CDone Done = Configure({"set", "rpm_tolerance=10", "target_unbalance=7", "measurement_time_s=3.5",
                                  "rotation=ccw", "method=screws", "holes=18", "screws=3", "scale=ccw",
                                  "iso.rotor_mass_kg=12", "iso.grade=2.5", "iso.unit_gmm=[45]"});
    ASSERT_EQ(Done.m_Status, 0) << Done.m_Errors;
    EXPECT_THAT(Done.m_Output, AllOf(HasSubstr("rpm_tolerance is 10, was 50"), HasSubstr("holes is 18")));
    const json Shown = Show();
    EXPECT_EQ(Shown.at("rpm_tolerance"), 10);
    EXPECT_EQ(Shown.at("target_unbalance"), 7);
    EXPECT_EQ(Shown.at("measurement_time_s"), 3.5);
    EXPECT_EQ(Shown.at("rotation"), "ccw");
    const json& rPlane = Shown.at("planes").at(0);
    EXPECT_EQ(rPlane.at("method"), "screws");
    EXPECT_EQ(rPlane.at("holes"), 18);
    EXPECT_EQ(rPlane.at("screws"), 3);
    EXPECT_EQ(rPlane.at("scale"), "ccw");
    EXPECT_EQ(Shown.at("iso"), (json{{"rotor_mass_kg", 12.0}, {"grade", 2.5}, {"unit_gmm", {45.0}}}));
    EXPECT_THAT(Configure({"set", "rpm_tolerance=10"}).m_Output, HasSubstr("set so already"));
}

TEST_F(ConfigureTest, NamesFieldAndRangeAndSetsNothing) {
    EXPECT_THAT(GetRefusal({"set", "target_unbalance=9", "rpm_tolerance=101"}),
                AllOf(HasSubstr("rpm_tolerance"), HasSubstr("101"), HasSubstr("1 to 100")));
    EXPECT_THAT(GetRefusal({"set", "rpm_tolerance=10.5"}), HasSubstr("whole number"));
    EXPECT_THAT(GetRefusal({"set", "measurement_time_s=1.4"}), HasSubstr("1.5 to 15"));
    EXPECT_THAT(GetRefusal({"set", "rpm_tolerance=ten"}), HasSubstr("\"ten\""));
    EXPECT_THAT(GetRefusal({"set", "rotation=left"}), HasSubstr("cw, ccw"));
    EXPECT_THAT(GetRefusal({"set", "tolerance=5"}),
                AllOf(HasSubstr("tolerance"), HasSubstr("rpm_tolerance")));
    EXPECT_THAT(GetRefusal({"set", "holes=12"}), HasSubstr("holes")) << "weights have no holes";
    EXPECT_THAT(GetRefusal({"set", "method=screws", "table=None"}), HasSubstr("Default"));
    EXPECT_THAT(GetRefusal({"set", "calibrated=true"}), HasSubstr("balancing run"));
    EXPECT_THAT(GetRefusal({"set", "sensor_adaption=1"}), HasSubstr("module"));
    EXPECT_THAT(GetRefusal({"set", "name=Other"}), HasSubstr("name"));
    EXPECT_THAT(GetRefusal({"set", "iso.grade=-1"}), AllOf(HasSubstr("grade"), HasSubstr("0.01 to 4000")));
    EXPECT_THAT(GetRefusal({"set", "rpm_tolerance"}), HasSubstr("NAME=VALUE"));
    EXPECT_THAT(GetRefusal({"set", "plane3.scale=cw"}), HasSubstr("plane3.scale"));
}

TEST_F(ConfigureTest, OfTwoPlanesEachIsSetByItself) {
    const QStringList Line = {"--link", "sim", "--modules", "kestrel-pair", "--mode", "two-plane"};
    ASSERT_EQ(
        Configure(QStringList{"set", "plane2.method=screws", "plane2.holes=24", "plane1.scale=ccw"} + Line)
            .m_Status,
        0);
    const json Planes = Show(Line).at("planes");
    EXPECT_EQ(Planes.at(0).at("method"), "weights");
    EXPECT_EQ(Planes.at(0).at("scale"), "ccw");
    EXPECT_EQ(Planes.at(1).at("method"), "screws");
    EXPECT_EQ(Planes.at(1).at("holes"), 24);
    EXPECT_THAT(Configure(QStringList{"set", "scale=cw"} + Line).m_Errors, HasSubstr("plane1.scale"));
}

TEST_F(ConfigureTest, ACalibrationGoesWithWhatItRestsOnAndOnlyThen) {
    Calibrate();
    ASSERT_EQ(Configure({"set", "rpm_tolerance=9"}).m_Status, 0);
    EXPECT_EQ(Show().at("calibrated"), true);
    EXPECT_THAT(Configure({"set", "rotation=ccw"}).m_Output, HasSubstr("calibration is cleared"));
    EXPECT_EQ(Show().at("calibrated"), false);
}

TEST_F(ConfigureTest, AnotherMethodClearsTheCalibration) {
    Calibrate();
    ASSERT_EQ(Configure({"set", "method=screws"}).m_Status, 0);
    EXPECT_EQ(Show().at("calibrated"), false);
}

TEST_F(ConfigureTest, ScrewsOfATableAreSetAddedAndTakenOut) {
    ASSERT_EQ(Configure({"set", "--table", "Default", "M6=2.25", "1 g=0", "2 g=2.1"}).m_Status, 0);
    const json Screws = Show({"--table", "Default"}).at("screws");
    EXPECT_EQ(Screws.back(), (json{{"name", "M6"}, {"grams", 2.25}}));
    EXPECT_TRUE(std::ranges::find(Screws, json{{"name", "2 g"}, {"grams", 2.1}}) != Screws.end());
    EXPECT_THAT(Configure({"show", "--table", "Default"}).m_Output, Not(HasSubstr("1 g ")));
    EXPECT_THAT(GetRefusal({"set", "--table", "Default", "M6=-1"}), HasSubstr("above 0"));
    EXPECT_THAT(GetRefusal({"set", "--table", "Default", "A=5", "B=5"}), HasSubstr("third time"));
    EXPECT_THAT(GetRefusal({"set", "--table", "Default", "None=0"}), HasSubstr("None"));
}

TEST_F(ConfigureTest, WhatIsExportedSetsUpAnotherMachine) {
    ASSERT_EQ(Import({{{"table", "Rotor"}, {"screws", {{{"name", "M6x12"}, {"grams", 2.5}}}}},
                      {{"name", "Spindle"},
                       {"rpm_tolerance", 20},
                       {"planes", {{{"method", "screws"}, {"holes", 16}, {"table", "Rotor"}}}},
                       {"iso", {{"grade", 6.3}}}}})
                  .m_Status,
              0);
    ASSERT_EQ(Configure({"export", At("out.json"), "--name", "Spindle"}).m_Status, 0);
    // A module of the other family in the same mode.
    const QStringList Other = {"--link", "sim", "--modules", "lanner"};
    ASSERT_EQ(Configure(QStringList{"import", At("out.json")} + Other).m_Status, 0);
    json Copy = Show(QStringList{"--name", "Spindle"} + Other);
    EXPECT_EQ(Copy.at("rpm_tolerance"), 20);
    EXPECT_EQ(Copy.at("planes").at(0).at("holes"), 16);
    EXPECT_EQ(Copy.at("planes").at(0).at("table"), "Rotor");
    EXPECT_EQ(Copy.at("iso").at("grade"), 6.3);
    EXPECT_EQ(Show(QStringList{"--table", "Rotor"} + Other).at("screws").at(0).at("grams"), 2.5);
    // It is one of the machine: the module finds it among its own.
    EXPECT_EQ(json::parse(Configure(QStringList{"list", "--json"} + Other).m_Output)
                  .at(0)
                  .at("configurations")
                  .size(),
              2U);
}

TEST_F(ConfigureTest, OneConfigurationWithWeightsIsExportedAsOneObject) {
    const json File = json::parse(Configure({"export"}).m_Output);
    ASSERT_TRUE(File.is_object());
    EXPECT_EQ(File.at("name"), "Default");
    EXPECT_FALSE(File.contains("inv_a"));
    EXPECT_EQ(File.at("planes"), json::parse(R"([{"method": "weights", "scale": "cw"}])"));
}

TEST_F(ConfigureTest, AFileIsSetWholeOrNotAtAll) {
    const json Good = {{"name", "Default"}, {"rpm_tolerance", 20}};
    const json Bad = {{"name", "Second"}, {"rpm_tolerance", 0}};
    const CDone Done = Import({Good, Bad});
    EXPECT_EQ(Done.m_Status, 3);
    EXPECT_THAT(Done.m_Errors,
                AllOf(HasSubstr("object 2"), HasSubstr("rpm_tolerance"), HasSubstr("1 to 100")));
    EXPECT_EQ(Show().at("rpm_tolerance"), 50);
    EXPECT_THAT(Import(json::array()).m_Errors, HasSubstr("file.json"));
    EXPECT_EQ(Import({{"name", "A"}, {"mode", "two-plane"}}).m_Status, 3);
    EXPECT_EQ(Import({{"name", std::string(61, 'x')}}).m_Status, 3);
    EXPECT_EQ(Import({{"table", "T"}, {"screws", json::array()}}).m_Status, 3);
    EXPECT_THAT(Import({{"name", "Default"}, {"machine", "elsewhere"}}).m_Errors, HasSubstr("elsewhere"));
}

TEST_F(ConfigureTest, WhatWasChangedSinceTheExportIsNotOverwritten) {
    json File = json::parse(Configure({"export"}).m_Output);
    ASSERT_EQ(Configure({"set", "target_unbalance=8"}).m_Status, 0);
    File["rpm_tolerance"] = 20;
    const CDone Done = Import(File);
    EXPECT_EQ(Done.m_Status, 3);
    EXPECT_THAT(Done.m_Errors, HasSubstr("changed since"));
    EXPECT_EQ(Show().at("target_unbalance"), 8);
    File.erase("revision");
    EXPECT_EQ(Import(File).m_Status, 0);
    EXPECT_EQ(Show().at("target_unbalance"), 5);
}

TEST_F(ConfigureTest, ACalibrationOfAFileIsNotTakenOver) {
    ASSERT_EQ(
        Import({{"name", "Default"}, {"calibrated", true}, {"inv_a", {{1.0, 0.0}, {0.0, 1.0}}}}).m_Status, 0);
    EXPECT_EQ(Show().at("calibrated"), false);
}

TEST_F(ConfigureTest, SpeaksGermanToo) {
    m_Language = "de";
    const CDone Done = Configure({"set", "rpm_tolerance=0"});
    EXPECT_THAT(Done.m_Errors, HasSubstr("eine ganze Zahl von 1 bis 100"));
}
