#include "simulator/lannermodule.h"

#include "tests/simulator/simulatorfixture.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

/// Two planes that don't influence each other: 288 and -128 counts at sensor 1, 200 and 0 at sensor 2.
class LannerModuleTest : public CSimulatorFixture {
protected:
    static CRotorFile MakeRotor(bool bSwap = false) {
        CRotorFile File = MakePlainRotor();
        File.m_Modules = CRotorFile::eLanner;
        File.m_bSwap = bSwap;
        File.m_Planes.push_back(File.m_Planes[0]);
        File.m_Planes[1].m_Unbalance = {2.0, 0.0};
        File.m_Influence = {{{128.0, 0.0}, {0.0, 0.0}}, {{0.0, 0.0}, {100.0, 0.0}}};
        return File;
    }
    void SetUp() override { Start(MakeRotor()); }
    void StartSwapped() { Start(MakeRotor(true)); }
    std::string Refused(const json& rRequest) { return Carry(rRequest).value("error", ""); }
};

/// Bits of a plane's failures.
constexpr std::uint8_t TOO_SLOW = 0x02;
constexpr std::uint8_t OUT_OF_LOCK = 0x08;

}  // namespace

TEST_F(LannerModuleTest, AnswersTheSpeedOfEachPlane) {
    RunUp(3000);
    EXPECT_THAT(Ask({0x1C, 0x01, 0x09}), ElementsAre(Bytes{0x1C, 0x09, 0x01, 0x00, 0xB8, 0x0B},
                                                     Bytes{0x1C, 0x09, 0x01, 0x01, 0xB8, 0x0B}));
}

TEST_F(LannerModuleTest, AnswersTheCoordinatesOfEachPlane) {
    EXPECT_THAT(Ask({0x1E, 0x01, 0x09}), ElementsAre(Bytes{0x1E, 0x09, 0x01, 0x00, 0x20, 0x01, 0x80, 0xFF},
                                                     Bytes{0x1E, 0x09, 0x01, 0x01, 0xC8, 0x00, 0x00, 0x00}));
}

// With swapped planes the first input measures the machine's plane 2.
TEST_F(LannerModuleTest, SwappedInputsReadTheOtherPlane) {
    StartSwapped();
    EXPECT_THAT(Ask({0x1E, 0x01, 0x09}), ElementsAre(Bytes{0x1E, 0x09, 0x01, 0x00, 0xC8, 0x00, 0x00, 0x00},
                                                     Bytes{0x1E, 0x09, 0x01, 0x01, 0x20, 0x01, 0x80, 0xFF}));
}

// Params (both planes for themselves, scaling 1, name "Spindle") and a block for each input.
TEST_F(LannerModuleTest, AnswersTheActiveSetInBlocks) {
    const Bytes Expected{0x10, 0x09, 0x01, 0x02, 0x01,                                            //
                         0x01, 0x0E, 0x00, 0x00, 0x03, 0x01, 0x07,                                //
                         'S',  'p',  'i',  'n',  'd',  'l',  'e',                                 //
                         0x02, 0x0C, 0x00, 0x00, 0x01, 0x90, 0x01, 0x20, 0x03, 0x10, 0x27, 0x05,  //
                         0x02, 0x0C, 0x01, 0x01, 0x02, 0x90, 0x01, 0x20, 0x03, 0x10, 0x27, 0x05};
    EXPECT_THAT(Ask({0x10, 0x01, 0x09, 0x02}), ElementsAre(Expected));
}

namespace {

struct CModeCase {
    const char* m_pName;
    const char* m_pMode;
    bool m_bSwap;
    std::uint8_t m_Byte;
    std::size_t m_nPlanes;
};

class LannerMode : public LannerModuleTest, public testing::WithParamInterface<CModeCase> {};

}  // namespace

TEST_P(LannerMode, StandsInTheModeByteAndInTheFramesOfAnAnswer) {
    const CModeCase& rCase = GetParam();
    ASSERT_EQ(Carry({{"set", {{"mode", rCase.m_pMode}, {"swap", rCase.m_bSwap}, {"name", ""}}}}),
              json({{"ok", true}}));
    const std::vector<Bytes> Sets = Ask({0x10, 0x01, 0x09, 0x02});
    ASSERT_THAT(Sets, SizeIs(1));
    EXPECT_EQ(Sets[0].at(9), rCase.m_Byte);
    EXPECT_EQ(Sets[0].size(), 12 + 12 * rCase.m_nPlanes);
    EXPECT_THAT(Ask({0x1E, 0x01, 0x09}), SizeIs(rCase.m_nPlanes));
}

INSTANTIATE_TEST_SUITE_P(All, LannerMode,
                         testing::Values(CModeCase{"Nothing", "nothing", false, 0, 0},
                                         CModeCase{"Plane1", "plane1", false, 1, 1},
                                         CModeCase{"Plane2", "plane2", false, 2, 1},
                                         CModeCase{"Both", "both", false, 3, 2},
                                         CModeCase{"TwoPlane", "two-plane", false, 4, 2},
                                         CModeCase{"BothSwapped", "both", true, 5, 2},
                                         CModeCase{"TwoPlaneSwapped", "two-plane", true, 6, 2}),
                         [](const auto& rInfo) { return rInfo.param.m_pName; });

TEST_F(LannerModuleTest, SetOfOnePlaneAnswersForThatPlaneAlone) {
    Carry({{"set", {{"mode", "plane2"}}}});
    EXPECT_THAT(Ask({0x1E, 0x01, 0x09}), ElementsAre(Bytes{0x1E, 0x09, 0x01, 0x01, 0xC8, 0x00, 0x00, 0x00}));
}

TEST_F(LannerModuleTest, IndicatesAChangedSet) {
    Carry({{"set", {{"number", 4}, {"name", "B"}, {"sensor_adaption", 7}, {"sensor_adaption_2", 31}}}});
    m_Loop.RunPosted();
    EXPECT_THAT(
        GetFramesOf(0x10),
        ElementsAre(Bytes{0x10, 0x09, 0x00, 0x02, 0x04, 0x01, 0x08, 0x00, 0x00, 0x03, 0x01, 0x01, 'B',
                          0x02, 0x0C, 0x00, 0x00, 0x07, 0x90, 0x01, 0x20, 0x03, 0x10, 0x27, 0x05, 0x02,
                          0x0C, 0x01, 0x01, 0x1F, 0x90, 0x01, 0x20, 0x03, 0x10, 0x27, 0x05}));
}

TEST_F(LannerModuleTest, TheStateTellsLockAndSlowRotationOfBothInputs) {
    const auto Expected = [](std::uint8_t Failures) {
        return ElementsAre(Bytes{0x08, 0x09, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00, Failures, Failures});
    };
    EXPECT_THAT(Ask({0x08, 0x01, 0x09}), Expected(TOO_SLOW));  // stands
    Carry({{"speed", 3000}});
    EXPECT_THAT(Ask({0x08, 0x01, 0x09}), Expected(TOO_SLOW | OUT_OF_LOCK));
    m_Loop.Advance(2000);
    EXPECT_THAT(Ask({0x08, 0x01, 0x09}), Expected(OUT_OF_LOCK));
    m_Loop.Advance(500);
    EXPECT_THAT(Ask({0x08, 0x01, 0x09}), Expected(0));
}

// Flags belong to a plane of the machine; the frame has them by input.
TEST_F(LannerModuleTest, FlagsOfAPlaneStandAtItsInput) {
    const json Request = {{"module_state", {{"flags", {1, 2}}, {"failures", {4, 8}}, {"ui_locked", true}}}};
    RunUp(3000);
    Carry(Request);
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x08),
                ElementsAre(Bytes{0x08, 0x09, 0x00, 0x01, 0x00, 0x80, 0x01, 0x02, 0x04, 0x08}));

    StartSwapped();
    RunUp(3000);
    Carry(Request);
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x08),
                ElementsAre(Bytes{0x08, 0x09, 0x00, 0x01, 0x00, 0x80, 0x02, 0x01, 0x08, 0x04}));
}

TEST_F(LannerModuleTest, AnswersItsIdentificationIn49Bytes) {
    const std::vector<Bytes> Answers = Ask({0x11, 0x01, 0x09, 0x08});
    ASSERT_THAT(Answers, SizeIs(1));
    const Bytes& rFrame = Answers[0];
    ASSERT_EQ(rFrame.size(), 49U);
    EXPECT_EQ(Bytes(rFrame.begin(), rFrame.begin() + 4), (Bytes{0x11, 0x09, 0x01, 0x08}));
    // Article number 51204A, and serial number 2100309: more than 16 bits, 0x00200C55.
    EXPECT_EQ(Bytes(rFrame.begin() + 9, rFrame.begin() + 16),
              (Bytes{0x51, 0x20, 0x4A, 0x55, 0x0C, 0x20, 0x00}));
}

TEST_F(LannerModuleTest, IgnoresWhatIsNoQuery) {
    EXPECT_THAT(Ask({0x10, 0x01, 0x09, 0x00}), IsEmpty());  // sub-code of another family
    EXPECT_THAT(Ask({0x10, 0x01, 0x09}), IsEmpty());
    EXPECT_THAT(Ask({0x11, 0x01, 0x09, 0x00}), IsEmpty());
    EXPECT_THAT(Ask({0x1D, 0x01, 0x09}), IsEmpty());
    EXPECT_THAT(Ask({0x1C, 0x01, 0x05}), IsEmpty());
}

// In the second from 3000 rpm on: each plane 20 times X/Y, 10 times the speed, 5 times the amplitude, and one
// diagnosis.
TEST_F(LannerModuleTest, ReportsByItselfWhileTheSpindleTurns) {
    RunUp(3000);
    m_Loop.Advance(1000);
    EXPECT_THAT(GetFramesOf(0x1E), SizeIs(40));
    EXPECT_THAT(GetFramesOf(0x1C), SizeIs(20));
    EXPECT_THAT(GetFramesOf(0x1D), SizeIs(10));
    EXPECT_THAT(GetFramesOf(0x1F), SizeIs(1));
    // 315 is the length of (288, -128).
    EXPECT_EQ(GetFramesOf(0x1D)[0], (Bytes{0x1D, 0x09, 0x00, 0x00, 0x3B, 0x01}));
    EXPECT_EQ(GetFramesOf(0x1D)[1], (Bytes{0x1D, 0x09, 0x00, 0x01, 0xC8, 0x00}));
}

TEST_F(LannerModuleTest, ReportsConfigurationsWhenTold) {
    Carry({{"report", {{"kind", "bal_configuration"}}}});
    Carry({{"report", {{"kind", "module_configuration"}}}});
    Carry({{"report", {{"kind", "diagnosis_data"}}}});
    m_Loop.RunPosted();
    const std::vector<Bytes> Frames = GetFramesOf(0x11);
    ASSERT_THAT(Frames, SizeIs(3));
    EXPECT_EQ(Frames[0].at(3), 0);
    EXPECT_EQ(Frames[1].at(3), 4);
    EXPECT_EQ(Frames[2].at(3), 9);
}

TEST_F(LannerModuleTest, RefusesWhatItCannotDoWithWhatWouldBeRight) {
    EXPECT_EQ(Refused({{"set", {{"mode", "plane1"}, {"swap", true}}}}),
              "set.swap goes with mode both or two-plane only");
    EXPECT_EQ(Refused({{"set", {{"mode", "three"}}}}),
              "set.mode must be one of nothing, plane1, plane2, both, two-plane, not \"three\"");
    EXPECT_EQ(Refused({{"set", {{"rpm_factor", 2}}}}),
              "unknown field \"set.rpm_factor\", known here: number, name, mode, swap, sensor_adaption, "
              "sensor_adaption_2, module");
    EXPECT_EQ(Refused({{"set", {{"name", 5}}}}), "set.name must be a text of up to 248 bytes, not 5");
    EXPECT_EQ(Refused({{"module_state", {{"failures", {0, 16}}}}}),
              "module_state.failures[1] must be a whole number from 0 to 15, not 16");
    EXPECT_EQ(Refused({{"report", {{"kind", "weather"}}}}),
              "report.kind must be one of bal_configuration, module_configuration, diagnosis_data, not "
              "\"weather\"");
    m_Loop.RunPosted();
    EXPECT_THAT(m_Arrivals, IsEmpty());
}

TEST_F(LannerModuleTest, StateOfTheControlLinkTellsModeAndSwap) {
    const json Module = Carry({{"state", json::object()}})["modules"][0];
    EXPECT_EQ(Module["address"], 9);
    EXPECT_EQ(Module["mode"], "both");
    EXPECT_EQ(Module["swap"], false);
    EXPECT_FALSE(Module.contains("rpm_factor"));
}

// A rotor of one plane on a module of two: the second input hangs in the air.
TEST_F(LannerModuleTest, InputWithoutAPlaneReadsNothing) {
    CRotorFile File = MakePlainRotor();
    File.m_Modules = CRotorFile::eLanner;
    Start(File);
    EXPECT_THAT(Ask({0x1E, 0x01, 0x09}), ElementsAre(Bytes{0x1E, 0x09, 0x01, 0x00, 0x20, 0x01, 0x80, 0xFF},
                                                     Bytes{0x1E, 0x09, 0x01, 0x01, 0x00, 0x00, 0x00, 0x00}));
}
