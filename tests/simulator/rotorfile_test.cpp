#include "simulator/rotorfile.h"
#include "tests/support/casenames.h"
#include "tests/support/testpaths.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>

namespace {

using testing::HasSubstr;
using testing::StartsWith;

CRotorFile ParseGood(const std::string& rText) {
    std::string Error;
    const auto File = CRotorFile::Parse(rText, Error);
    EXPECT_TRUE(File) << Error;
    return File.value_or(CRotorFile{});
}

std::string ParseBad(const std::string& rText) {
    std::string Error;
    EXPECT_FALSE(CRotorFile::Parse(rText, Error)) << rText;
    return Error;
}

void ExpectBuiltIn(const CRotorFile& rFile) {
    EXPECT_EQ(rFile.m_Modules, CRotorFile::eKestrel);
    EXPECT_EQ(rFile.m_Rotation, CRotorFile::eClockwise);
    EXPECT_EQ(rFile.m_SpeedRpm, 3000.0);
    EXPECT_EQ(rFile.m_RampRpmPerS, 1500.0);
    ASSERT_EQ(rFile.m_Planes.size(), 1U);
    EXPECT_EQ(rFile.m_Planes[0].m_Unbalance.m_Amount, 0.8);
    EXPECT_EQ(rFile.m_Planes[0].m_Unbalance.m_AngleDeg, 123.0);
    EXPECT_EQ(rFile.m_Planes[0].m_Scale, CRotorFile::eClockwise);
    EXPECT_EQ(rFile.m_Planes[0].m_Holes, 12);
    ASSERT_EQ(rFile.m_Influence.size(), 1U);
    ASSERT_EQ(rFile.m_Influence[0].size(), 1U);
    EXPECT_EQ(rFile.m_Influence[0][0].m_Amplitude, 150.0);
    EXPECT_EQ(rFile.m_Influence[0][0].m_PhaseDeg, 40.0);
    EXPECT_EQ(rFile.m_NoiseCounts, 1.5);
    EXPECT_EQ(rFile.m_Seed, 1U);
    EXPECT_EQ(rFile.m_ReportPeriodMs, 50U);
}

TEST(RotorFileTest, TheBuiltInRotorHasTheDocumentedValues) {
    ExpectBuiltIn(CRotorFile::GetBuiltIn());
}

TEST(RotorFileTest, MissingFieldsTakeTheBuiltInValues) {
    ExpectBuiltIn(ParseGood("{}"));
}

TEST(RotorFileTest, EmptyPartsTakeTheBuiltInValuesToo) {
    ExpectBuiltIn(ParseGood(R"({"planes": [{}], "influence": [[{}]]})"));
    ExpectBuiltIn(ParseGood(R"({"planes": [{"unbalance": {}}]})"));
}

TEST(RotorFileTest, EveryFieldIsRead) {
    const CRotorFile File = ParseGood(R"({
        // a comment, and one behind a value
        "modules": "kestrel-pair",  // two of them
        "rotation": "ccw", "speed_rpm": 1200.5, "ramp_rpm_per_s": 700,
        "planes": [ { "unbalance": { "amount": 1, "angle_deg": -10 } },
                    { "unbalance": { "amount": 2.5, "angle_deg": 300 } } ],
        "influence": [ [ { "amplitude": 1, "phase_deg": 2 }, { "amplitude": 3, "phase_deg": 4 } ],
                       [ { "amplitude": 5, "phase_deg": 6 }, { "amplitude": 7, "phase_deg": 8 } ] ],
        "noise_counts": 0, "scale": [ "ccw", "cw" ], "holes": [ 24, 3 ], "seed": 18446744073709551615,
        "report_period_ms": 5000 })");
    EXPECT_EQ(File.m_ReportPeriodMs, 5000U);
    EXPECT_EQ(File.m_Modules, CRotorFile::eKestrelPair);
    EXPECT_EQ(File.m_Rotation, CRotorFile::eCounterClockwise);
    EXPECT_EQ(File.m_SpeedRpm, 1200.5);
    EXPECT_EQ(File.m_RampRpmPerS, 700.0);
    EXPECT_EQ(File.m_Planes[0].m_Unbalance.m_Amount, 1.0);
    EXPECT_EQ(File.m_Planes[0].m_Unbalance.m_AngleDeg, -10.0);
    EXPECT_EQ(File.m_Planes[1].m_Unbalance.m_Amount, 2.5);
    EXPECT_EQ(File.m_Planes[1].m_Unbalance.m_AngleDeg, 300.0);
    EXPECT_EQ(File.m_Influence[0][0].m_Amplitude, 1.0);
    EXPECT_EQ(File.m_Influence[0][1].m_PhaseDeg, 4.0);
    EXPECT_EQ(File.m_Influence[1][0].m_Amplitude, 5.0);
    EXPECT_EQ(File.m_Influence[1][1].m_PhaseDeg, 8.0);
    EXPECT_EQ(File.m_NoiseCounts, 0.0);
    EXPECT_EQ(File.m_Planes[0].m_Scale, CRotorFile::eCounterClockwise);
    EXPECT_EQ(File.m_Planes[1].m_Scale, CRotorFile::eClockwise);
    EXPECT_EQ(File.m_Planes[0].m_Holes, 24);
    EXPECT_EQ(File.m_Planes[1].m_Holes, 3);
    EXPECT_EQ(File.m_Seed, 18446744073709551615ULL);
}

TEST(RotorFileTest, TwoPlaneModulesHaveTwoPlanesWithoutCouplingByDefault) {
    for (const char* pModules : {"kestrel-pair", "lanner"}) {
        const CRotorFile File = ParseGood(std::string(R"({"modules": ")") + pModules + "\"}");
        ASSERT_EQ(File.m_Planes.size(), 2U);
        EXPECT_EQ(File.m_Planes[1].m_Unbalance.m_Amount, 0.8);
        EXPECT_EQ(File.m_Influence[0][0].m_Amplitude, 150.0);
        EXPECT_EQ(File.m_Influence[0][1].m_Amplitude, 0.0);
        EXPECT_EQ(File.m_Influence[1][0].m_Amplitude, 0.0);
        EXPECT_EQ(File.m_Influence[1][1].m_Amplitude, 150.0);
    }
}

TEST(RotorFileTest, AnyListTellsTheNumberOfPlanes) {
    EXPECT_EQ(ParseGood(R"({"planes": [{}, {}]})").m_Influence.size(), 2U);
    EXPECT_EQ(ParseGood(R"({"scale": ["cw", "ccw"]})").m_Planes.size(), 2U);
    EXPECT_EQ(ParseGood(R"({"holes": [12, 8]})").m_Planes.size(), 2U);
    EXPECT_EQ(ParseGood(R"({"influence": [[{}, {}], [{}, {}]]})").m_Planes.size(), 2U);
    EXPECT_EQ(ParseGood(R"({"modules": "lanner", "planes": [{}]})").m_Planes.size(), 1U);
}

TEST(RotorFileTest, AFamilyFromOutsideTakesThePlaceOfTheFiles) {
    std::string Error;
    const auto File = CRotorFile::Parse(R"({"modules": "lanner"})", Error, CRotorFile::eKestrelPair);
    ASSERT_TRUE(File) << Error;
    EXPECT_EQ(File->m_Modules, CRotorFile::eKestrelPair);
    EXPECT_EQ(File->m_Planes.size(), 2U);
    EXPECT_EQ(CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair).m_Planes.size(), 2U);
    EXPECT_FALSE(CRotorFile::Parse(R"({"planes": [{}]})", Error, CRotorFile::eKestrelPair));
    EXPECT_EQ(Error, "planes must be an array of 2: the modules kestrel-pair measure two planes");
}

TEST(RotorFileTest, FamiliesHaveTheNamesOfTheFile) {
    EXPECT_EQ(CRotorFile::ModulesFromString("kestrel"), CRotorFile::eKestrel);
    EXPECT_EQ(CRotorFile::ModulesFromString("kestrel-pair"), CRotorFile::eKestrelPair);
    EXPECT_EQ(CRotorFile::ModulesFromString("lanner"), CRotorFile::eLanner);
    EXPECT_FALSE(CRotorFile::ModulesFromString("Kestrel"));
}

struct CBadCase {
    const char* m_pText;
    const char* m_pError;
};
void PrintTo(const CBadCase& rCase, std::ostream* pStream) {
    *pStream << rCase.m_pText;
}

class RotorFileErrorTest : public testing::TestWithParam<CBadCase> {};

TEST_P(RotorFileErrorTest, NamesTheFieldAndWhatWouldBeRight) {
    EXPECT_EQ(ParseBad(GetParam().m_pText), GetParam().m_pError);
}

INSTANTIATE_TEST_SUITE_P(
    Fields, RotorFileErrorTest,
    testing::Values(
        CBadCase{R"({"modules": "falcon"})",
                 R"(modules must be one of kestrel, kestrel-pair, lanner, not "falcon")"},
        CBadCase{R"({"modules": 1})", "modules must be one of kestrel, kestrel-pair, lanner, not 1"},
        CBadCase{R"({"rotation": "left"})", R"(rotation must be one of cw, ccw, not "left")"},
        CBadCase{R"({"rotation": null})", "rotation must be one of cw, ccw, not null"},
        CBadCase{R"({"speed_rpm": "3000"})", R"(speed_rpm must be a number from 60 to 65535, not "3000")"},
        CBadCase{R"({"speed_rpm": 59})", "speed_rpm must be a number from 60 to 65535, not 59"},
        CBadCase{R"({"speed_rpm": 65536})", "speed_rpm must be a number from 60 to 65535, not 65536"},
        CBadCase{R"({"ramp_rpm_per_s": 0})", "ramp_rpm_per_s must be a number from 1 to 1000000, not 0"},
        CBadCase{R"({"planes": {}})", "planes must be an array of 1 to 2, not an object"},
        CBadCase{R"({"planes": []})", "planes must be an array of 1 to 2, not an array of 0"},
        CBadCase{R"({"planes": [{}, {}, {}]})", "planes must be an array of 1 to 2, not an array of 3"},
        CBadCase{R"({"planes": [7]})", "planes[0] must be an object with the fields unbalance, not 7"},
        CBadCase{R"({"planes": [{"unbalance": 1}]})",
                 "planes[0].unbalance must be an object with the fields amount, angle_deg, not 1"},
        CBadCase{R"({"planes": [{"unbalance": {"amount": -0.5}}]})",
                 "planes[0].unbalance.amount must be a number from 0 to 1000000, not -0.5"},
        CBadCase{R"({"planes": [{}, {"unbalance": {"angle_deg": true}}]})",
                 "planes[1].unbalance.angle_deg must be a number from -3600 to 3600, not true"},
        CBadCase{R"({"influence": [{}]})", "influence[0] must be an array of 1, not an object"},
        CBadCase{R"({"influence": [[{}, {}]]})", "influence[0] must be an array of 1, not an array of 2"},
        CBadCase{R"({"planes": [{}, {}], "influence": [[{}, {}]]})",
                 "influence must be an array of 2, not an array of 1"},
        CBadCase{R"({"influence": [[{"amplitude": -1}]]})",
                 "influence[0][0].amplitude must be a number from 0 to 1000000, not -1"},
        CBadCase{R"({"influence": [[{}, {}], [{}, {"phase_deg": []}]]})",
                 "influence[1][1].phase_deg must be a number from -3600 to 3600, not an array of 0"},
        CBadCase{R"({"noise_counts": -1})", "noise_counts must be a number from 0 to 32767, not -1"},
        CBadCase{R"({"scale": "cw"})", R"(scale must be an array of 1 to 2, not "cw")"},
        CBadCase{R"({"scale": ["up"]})", R"(scale[0] must be one of cw, ccw, not "up")"},
        CBadCase{R"({"planes": [{}, {}], "scale": ["cw"]})",
                 "scale must be an array of 2, not an array of 1"},
        CBadCase{R"({"holes": [0]})", "holes[0] must be a whole number from 1 to 360, not 0"},
        CBadCase{R"({"holes": [12.5]})", "holes[0] must be a whole number from 1 to 360, not 12.5"},
        CBadCase{R"({"holes": [12, 8], "scale": ["cw"]})", "holes must be an array of 1, not an array of 2"},
        CBadCase{R"({"seed": -1})", "seed must be a whole number of 0 or more, not -1"},
        CBadCase{R"({"modules": "lanner", "swap": 1})", "swap must be true or false, not 1"},
        CBadCase{R"({"swap": true})", "swap goes with modules lanner only"},
        CBadCase{R"({"seed": 1.5})", "seed must be a whole number of 0 or more, not 1.5"},
        CBadCase{
            R"([])",
            "the whole must be an object with the fields modules, rotation, speed_rpm, ramp_rpm_per_s, "
            "planes, influence, noise_counts, scale, holes, seed, swap, report_period_ms, not an array of 0"},
        CBadCase{R"({"planes": [{"unbalanse": {}}]})",
                 "unknown field \"planes[0].unbalanse\", known here: unbalance"},
        CBadCase{R"({"planes": [{"unbalance": {"angle": 1}}]})",
                 "unknown field \"planes[0].unbalance.angle\", known here: amount, angle_deg"},
        CBadCase{R"({"influence": [[{"phase": 1}]]})",
                 "unknown field \"influence[0][0].phase\", known here: amplitude, phase_deg"},
        CBadCase{R"({"modules": "kestrel-pair", "planes": [{}]})",
                 "planes must be an array of 2: the modules kestrel-pair measure two planes"}),
    CaseNames::BY_TEXT);

TEST(RotorFileTest, TheSensorsOfALannerModuleMayBeSwapped) {
    std::string Error;
    EXPECT_TRUE(CRotorFile::Parse(R"({"modules": "lanner", "swap": true})", Error)->m_bSwap);
    EXPECT_FALSE(CRotorFile::Parse(R"({"modules": "lanner"})", Error)->m_bSwap);
}

TEST(RotorFileTest, AnUnknownFieldIsNamed) {
    EXPECT_THAT(ParseBad(R"({"speed": 3000})"), StartsWith("unknown field \"speed\", known here: modules, "));
}

TEST(RotorFileTest, BrokenJsonTellsWhere) {
    EXPECT_THAT(ParseBad(R"({"speed_rpm": })"),
                testing::AllOf(StartsWith("not valid JSON"), HasSubstr("line 1")));
    EXPECT_THAT(ParseBad(""), StartsWith("not valid JSON"));
    EXPECT_THAT(ParseBad(R"({"speed_rpm": 1e999})"), StartsWith("not valid JSON: number overflow"));
    EXPECT_THAT(ParseBad(R"({"speed_rpm": NaN})"), StartsWith("not valid JSON"));
    EXPECT_LT(ParseBad("{\"modules\": \"" + std::string(100000, 'x')).size(), 300U) << "not all is quoted";
}

TEST(RotorFileTest, AFieldThatStandsTwiceInOneObjectIsAnError) {
    EXPECT_EQ(ParseBad(R"({"speed_rpm": 1000, "speed_rpm": 2000})"),
              "field \"speed_rpm\" stands twice in one object");
    EXPECT_EQ(ParseBad(R"({"planes": [{"unbalance": {"amount": 1, "angle_deg": 2, "amount": 1}}]})"),
              "field \"amount\" stands twice in one object");
    // In two objects it may.
    EXPECT_EQ(ParseGood(R"({"modules": "lanner", "planes": [{"unbalance": {}}, {"unbalance": {}}]})")
                  .m_Planes.size(),
              2U);
}

TEST(RotorFileTest, NestingWithoutEndIsAnErrorAndDoesNoHarm) {
    constexpr std::size_t DEPTH = 200000;
    EXPECT_THAT(ParseBad(std::string(DEPTH, '[')), StartsWith("not valid JSON"));
    EXPECT_EQ(ParseBad("{\"planes\": " + std::string(DEPTH, '[') + std::string(DEPTH, ']') + "}"),
              "planes[0] must be an object with the fields unbalance, not an array of 1");
}

TEST(RotorFileTest, NestingWithoutEndIsRefusedInFewWords) {
    const std::string Deep = "{\"seed\": " + std::string(50000, '[') + std::string(50000, ']') + "}";
    EXPECT_EQ(ParseBad(Deep), "seed must be a whole number of 0 or more, not an array of 1");
}

TEST(RotorFileTest, AFileThatIsNotThereIsNamed) {
    std::string Error;
    EXPECT_FALSE(CRotorFile::Read("/nowhere/rotor.json", Error));
    EXPECT_EQ(Error, "/nowhere/rotor.json: can't be read; give the path of a rotor file");
    EXPECT_FALSE(CRotorFile::Read("/", Error));
    EXPECT_EQ(Error, "/: can't be read; give the path of a rotor file");
}

// The samples that come with the simulator are good, and the one called default is the built-in one.
TEST(RotorFileTest, TheSamplesCanBeRead) {
    const std::filesystem::path Folder = TestData("../simulator/rotors");
    int nFiles = 0;
    for (const auto& rEntry : std::filesystem::directory_iterator(Folder)) {
        std::string Error;
        const auto File = CRotorFile::Read(rEntry.path().string(), Error);
        ASSERT_TRUE(File) << Error;
        ++nFiles;
        if (rEntry.path().filename() == "default.json") {
            ExpectBuiltIn(*File);
        }
    }
    EXPECT_GE(nFiles, 7);
}

}  // namespace
