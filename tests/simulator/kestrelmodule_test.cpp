#include "simulator/kestrelmodule.h"

#include "tests/simulator/simulatorfixture.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

class KestrelModuleTest : public CSimulatorFixture {
protected:
    void SetUp() override { Start(MakePlainRotor()); }
};

TEST_F(KestrelModuleTest, AnswersTheSpeed) {
    RunUp(3000);
    EXPECT_THAT(Ask({0x1C, 0x01, 0x05}), ElementsAre(Bytes{0x1C, 0x05, 0x01, 0xB8, 0x0B}));
}

TEST_F(KestrelModuleTest, AnswersCoordinatesAsSignedSixteenBits) {
    RunUp(3000);
    EXPECT_THAT(Ask({0x1E, 0x01, 0x05}), ElementsAre(Bytes{0x1E, 0x05, 0x01, 0x20, 0x01, 0x80, 0xFF}));
}

TEST_F(KestrelModuleTest, AnswersTheActiveSet) {
    EXPECT_THAT(Ask({0x10, 0x01, 0x05, 0x00}),
                ElementsAre(Bytes{0x10, 0x05, 0x01, 0x00, 0x01, 0x01, 0x00, 0x00, 0x01}));
    Carry({{"set", {{"number", 2}, {"rpm_factor", 1}, {"sensor_adaption", 1}}}});
    EXPECT_THAT(Ask({0x10, 0x01, 0x05, 0x00}),
                ElementsAre(Bytes{0x10, 0x05, 0x01, 0x00, 0x02, 0x01, 0x00, 0x00, 0x01}));
    Carry({{"set", {{"rpm_factor", 3}, {"sensor_adaption", 31}}}});
    EXPECT_THAT(Ask({0x10, 0x01, 0x05, 0x00}),
                ElementsAre(Bytes{0x10, 0x05, 0x01, 0x00, 0x02, 0x03, 0x00, 0x00, 0x1F}));
}

TEST_F(KestrelModuleTest, AnswersTheModuleState) {
    RunUp(3000);
    EXPECT_THAT(Ask({0x08, 0x01, 0x05}), ElementsAre(Bytes{0x08, 0x05, 0x01, 0x07, 0x00, 0x00, 0x00, 0x00}));
}

TEST_F(KestrelModuleTest, TheStateTellsLockAndInvalidSpeed) {
    constexpr std::uint8_t OUT_OF_LOCK_BIT = 0x20;
    constexpr std::uint8_t INVALID_BIT = 0x08;
    EXPECT_EQ(Ask({0x08, 0x01, 0x05}).at(0).at(7), INVALID_BIT);  // stands
    Carry({{"speed", 3000}});
    EXPECT_EQ(Ask({0x08, 0x01, 0x05}).at(0).at(7), OUT_OF_LOCK_BIT | INVALID_BIT);
    m_Loop.Advance(2000);
    EXPECT_EQ(Ask({0x08, 0x01, 0x05}).at(0).at(7), OUT_OF_LOCK_BIT);
    m_Loop.Advance(500);
    EXPECT_EQ(Ask({0x08, 0x01, 0x05}).at(0).at(7), 0);
}

TEST_F(KestrelModuleTest, AnswersItsIdentificationIn49Bytes) {
    const std::vector<Bytes> Answers = Ask({0x11, 0x01, 0x05, 0x08});
    ASSERT_EQ(Answers.size(), 1U);
    const Bytes& rFrame = Answers[0];
    ASSERT_EQ(rFrame.size(), 49U);
    EXPECT_EQ(Bytes(rFrame.begin(), rFrame.begin() + 4), (Bytes{0x11, 0x05, 0x01, 0x08}));
    // Article number 486107, and serial number 14205, which fits in 16 bits: 0x377D.
    EXPECT_EQ(Bytes(rFrame.begin() + 9, rFrame.begin() + 16),
              (Bytes{0x48, 0x61, 0x07, 0x7D, 0x37, 0x00, 0x00}));
    // A year of this century and one of its weeks.
    EXPECT_GE(rFrame[5], 20);
    EXPECT_THAT(rFrame[6], testing::AllOf(testing::Ge(1), testing::Le(53)));
}

TEST_F(KestrelModuleTest, AnswersTheRequester) {
    EXPECT_THAT(Ask({0x1C, 0x17, 0x05}), ElementsAre(Bytes{0x1C, 0x05, 0x17, 0x00, 0x00}));
}

TEST_F(KestrelModuleTest, AnswersAFewMillisecondsLater) {
    m_Loop.Advance(100);
    const std::uint64_t AskedAt = m_Loop.Now();
    Ask({0x1C, 0x01, 0x05});
    ASSERT_EQ(m_Arrivals.size(), 1U);
    EXPECT_EQ(m_Arrivals[0].m_At, AskedAt + 3);
}

TEST_F(KestrelModuleTest, IgnoresFramesForOtherAddresses) {
    EXPECT_THAT(Ask({0x1C, 0x01, 0x06}), IsEmpty());
    EXPECT_THAT(Ask({0x1C, 0x05, 0x01}), IsEmpty());
    EXPECT_THAT(Ask({0x1C, 0x01, 0x00}), IsEmpty());
}

TEST_F(KestrelModuleTest, IgnoresWhatIsNoQuery) {
    EXPECT_THAT(Ask({0x1D, 0x01, 0x05}), IsEmpty());                          // unknown command
    EXPECT_THAT(Ask({0x10, 0x01, 0x05}), IsEmpty());                          // sub-code missing
    EXPECT_THAT(Ask({0x10, 0x01, 0x05, 0x02}), IsEmpty());                    // sub-code of another family
    EXPECT_THAT(Ask({0x11, 0x01, 0x05, 0x09}), IsEmpty());                    // another sub-code
    EXPECT_THAT(Ask({0x1C, 0x01, 0x05, 0x00}), IsEmpty());                    // too long
    EXPECT_THAT(Ask({0x1E, 0x05, 0x05, 0x20, 0x01, 0x80, 0xFF}), IsEmpty());  // looks like an answer
}

TEST_F(KestrelModuleTest, IndicatesALockedPanel) {
    RunUp(3000);
    Carry({{"module_state", {{"ui_locked", true}}}});
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x08), ElementsAre(Bytes{0x08, 0x05, 0x00, 0x07, 0x00, 0x80, 0x00, 0x00}));
}

TEST_F(KestrelModuleTest, IndicatesTheSpeed) {
    RunUp(2990);
    m_Loop.Advance(100);
    EXPECT_THAT(GetFramesOf(0x1C), ElementsAre(Bytes{0x1C, 0x05, 0x00, 0xAE, 0x0B}));
}

TEST_F(KestrelModuleTest, IndicatesStateAndSetOnChangeOnly) {
    Carry({{"module_state", {{"state", 5}, {"parameter", 2}}}});
    Carry({{"module_state", {{"state", 5}}}});
    Carry({{"set", {{"number", 4}}}});
    Carry({{"set", {{"number", 4}}}});
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x08), ElementsAre(Bytes{0x08, 0x05, 0x00, 0x05, 0x02, 0x00, 0x00, 0x08}));
    EXPECT_THAT(GetFramesOf(0x10), ElementsAre(Bytes{0x10, 0x05, 0x00, 0x00, 0x04, 0x01, 0x00, 0x00, 0x01}));
}

// Run up to 3000 rpm in 2 s, lock at 2.5 s, then down to 0 again: each change of a flag is told once, at
// once.
TEST_F(KestrelModuleTest, IndicatesTheFlagsThroughARun) {
    Carry({{"speed", 3000}});
    m_Loop.Advance(5000);
    Carry({{"speed", 0}});
    m_Loop.Advance(5000);
    EXPECT_THAT(GetInstants(0x08), ElementsAre(0, 2000, 2500, 5000, 7500));
    Bytes Flags;
    for (const Bytes& rFrame : GetFramesOf(0x08)) {
        Flags.push_back(rFrame[7]);
    }
    // Standing it was invalid already, so coming to rest changes no flag until the lock is back.
    EXPECT_THAT(Flags, ElementsAre(0x28, 0x20, 0x00, 0x28, 0x08));
}

TEST_F(KestrelModuleTest, ReportsTenSpeedsAndTwentyCoordinatesASecondWhileTurning) {
    RunUp(3000);
    m_Loop.Advance(1000);
    EXPECT_EQ(GetFramesOf(0x1C).size(), 10U);
    EXPECT_EQ(GetFramesOf(0x1E).size(), 20U);
    EXPECT_EQ(GetInstants(0x1E).at(1) - GetInstants(0x1E).at(0), 50U);
}

TEST_F(KestrelModuleTest, ReportsMayBeFarBetween) {
    CRotorFile File = MakePlainRotor();
    File.m_ReportPeriodMs = 2000;
    Start(File);
    RunUp(3000);
    m_Loop.Advance(6000);
    EXPECT_EQ(GetFramesOf(0x1C).size(), 3U);
    EXPECT_EQ(GetFramesOf(0x1E).size(), 3U);
    EXPECT_EQ(GetInstants(0x1E).at(1) - GetInstants(0x1E).at(0), 2000U);
    // The state is reported when it changes, and so is standstill.
    Carry({{"speed", 0}});
    m_Loop.Advance(1);
    EXPECT_THAT(GetFramesOf(0x08), testing::SizeIs(1));
    m_Loop.Advance(2000);
    EXPECT_EQ(GetFramesOf(0x1C).back(), (Bytes{0x1C, 0x05, 0x00, 0x00, 0x00}));
}

TEST_F(KestrelModuleTest, ReportsTheSpeedOfTheRamp) {
    Carry({{"speed", 3000}});
    m_Loop.Advance(1000);
    // 1500 rpm after a second
    EXPECT_EQ(GetFramesOf(0x1C).back(), (Bytes{0x1C, 0x05, 0x00, 0xDC, 0x05}));
}

TEST_F(KestrelModuleTest, ReportsStandstillAtOnceAndThenEverySecond) {
    RunUp(3000);
    Carry({{"speed", 0}});
    m_Loop.Advance(2000);
    const std::uint64_t StoppedAt = m_Loop.Now();
    m_Arrivals.erase(m_Arrivals.begin(),
                     std::find_if(m_Arrivals.begin(), m_Arrivals.end(),
                                  [&](const CArrival& rArrival) { return rArrival.m_At >= StoppedAt; }));
    m_Loop.Advance(3000);
    std::vector<std::uint64_t> Zeros;
    for (const CArrival& rArrival : m_Arrivals) {
        if (rArrival.m_Frame == Bytes{0x1C, 0x05, 0x00, 0x00, 0x00}) {
            Zeros.push_back(rArrival.m_At - StoppedAt);
        }
    }
    // The first comes with the end of the ramp; a tick of the same instant may add one.
    ASSERT_GE(Zeros.size(), 4U);
    EXPECT_EQ(Zeros.front(), 0U);
    EXPECT_THAT(std::vector(Zeros.end() - 3, Zeros.end()), ElementsAre(1000, 2000, 3000));
    EXPECT_LE(GetFramesOf(0x1E).size(), 1U);
}

TEST_F(KestrelModuleTest, AStandingModuleReportsZeroSpeedFromTheStart) {
    m_Loop.Advance(2500);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(1000, 2000));
    EXPECT_THAT(GetFramesOf(0x1E), IsEmpty());
}

TEST_F(KestrelModuleTest, NoiseRepeatsForASeedAndDiffersForAnother) {
    const auto Record = [this](std::uint64_t Seed) {
        m_Arrivals.clear();
        CRotorFile File;
        File.m_Seed = Seed;
        Start(File);
        Carry({{"speed", 3000}});
        m_Loop.Advance(5000);
        return GetFramesOf(0x1E);
    };
    const std::vector<Bytes> First = Record(1);
    EXPECT_EQ(First.size(), 100U);
    EXPECT_EQ(Record(1), First);
    EXPECT_NE(Record(2), First);
}

// The built-in rotor reads -15 and -119 counts; its noise of 1.5 counts stays near that.
TEST_F(KestrelModuleTest, NoiseLiesAroundTheReading) {
    Start(CRotorFile{});
    RunUp(3000);
    m_Loop.Advance(50000);
    double SumX = 0.0;
    double SumY = 0.0;
    const std::vector<Bytes> Frames = GetFramesOf(0x1E);
    for (const Bytes& rFrame : Frames) {
        SumX += static_cast<std::int16_t>(rFrame[3] + 256 * rFrame[4]);
        SumY += static_cast<std::int16_t>(rFrame[5] + 256 * rFrame[6]);
    }
    ASSERT_EQ(Frames.size(), 1000U);
    EXPECT_NEAR(SumX / 1000.0, -14.624, 0.2);
    EXPECT_NEAR(SumY / 1000.0, -119.106, 0.2);
}

class KestrelPairTest : public CSimulatorFixture {
protected:
    void SetUp() override {
        CRotorFile File = CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair);
        File.m_Rotation = CRotorFile::eCounterClockwise;
        File.m_NoiseCounts = 0.0;
        File.m_Planes[0].m_Unbalance = {1.0, 0.0};
        File.m_Planes[1].m_Unbalance = {2.0, 0.0};
        File.m_Influence = {{{100.0, 0.0}, {10.0, 0.0}}, {{20.0, 0.0}, {200.0, 0.0}}};
        Start(File);
    }
};

// 100 + 2 * 10 = 120 counts at the master, 20 + 2 * 200 = 420 at the slave.
TEST_F(KestrelPairTest, EachModuleReadsItsOwnSensor) {
    EXPECT_THAT(Ask({0x1E, 0x01, 0x05}), ElementsAre(Bytes{0x1E, 0x05, 0x01, 0x78, 0x00, 0x00, 0x00}));
    EXPECT_THAT(Ask({0x1E, 0x01, 0x06}), ElementsAre(Bytes{0x1E, 0x06, 0x01, 0xA4, 0x01, 0x00, 0x00}));
}

TEST_F(KestrelPairTest, TheModulesDifferInTheirSerialNumber) {
    EXPECT_EQ(Ask({0x11, 0x01, 0x05, 0x08}).at(0).at(12), 0x7D);
    EXPECT_EQ(Ask({0x11, 0x01, 0x06, 0x08}).at(0).at(12), 0x7E);
}

TEST_F(KestrelPairTest, BothIndicate) {
    Carry({{"speed", 3000}});
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x08), ElementsAre(Bytes{0x08, 0x05, 0x00, 0x07, 0x00, 0x00, 0x00, 0x28},
                                               Bytes{0x08, 0x06, 0x00, 0x07, 0x00, 0x00, 0x00, 0x28}));
}

TEST_F(KestrelPairTest, SetAndStateMayBeChangedInOneModuleAlone) {
    Carry({{"set", {{"number", 3}, {"module", 2}}}});
    Carry({{"module_state", {{"state", 0}, {"module", 1}}}});
    m_Loop.RunPosted();
    EXPECT_THAT(GetFramesOf(0x10), ElementsAre(Bytes{0x10, 0x06, 0x00, 0x00, 0x03, 0x01, 0x00, 0x00, 0x01}));
    EXPECT_THAT(GetFramesOf(0x08), ElementsAre(Bytes{0x08, 0x05, 0x00, 0x00, 0x00, 0x00, 0x00, 0x08}));
}

// The answer was made before the reports that come while it is being worked on.
TEST_F(KestrelPairTest, ALateAnswerMayBeOvertaken) {
    RunUp(3000);
    const json Delay = {{"answer_delay", {{"value", 700}, {"overtaken", true}, {"module", 1}}}};
    ASSERT_EQ(Carry(Delay), nlohmann::json({{"ok", true}}));
    Send({0x08, 0x01, 0x05});
    m_Loop.Advance(100);
    Carry({{"speed", 0}});
    m_Loop.Advance(1000);
    std::vector<std::string> States;
    for (const Bytes& rFrame : GetFramesOf(0x08)) {
        if (rFrame[1] == 5) {
            States.push_back(std::to_string(rFrame[2]) + (rFrame[7] == 0 ? " in lock" : " ramp"));
        }
    }
    EXPECT_THAT(States, ElementsAre("0 ramp", "1 in lock"));
}

// Two modules work side by side: the order of their answers is that of their delays, not of the questions.
TEST_F(KestrelPairTest, AnswersComeInTheOrderOfTheModulesDelays) {
    ASSERT_EQ(Carry({{"answer_delay", {{"value", 12}, {"module", 1}}}}), nlohmann::json({{"ok", true}}));
    Send({0x1C, 0x01, 0x05});
    Send({0x1C, 0x01, 0x06});
    m_Loop.Advance(20);
    EXPECT_THAT(GetFramesOf(0x1C),
                ElementsAre(Bytes{0x1C, 0x06, 0x01, 0x00, 0x00}, Bytes{0x1C, 0x05, 0x01, 0x00, 0x00}));
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(3, 12));
}

TEST_F(KestrelPairTest, OneModuleMayBeSilentAlone) {
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 500}, {"module", 2}}}});
    EXPECT_THAT(Ask({0x1C, 0x01, 0x05}), testing::SizeIs(1));
    EXPECT_THAT(Ask({0x1C, 0x01, 0x06}), IsEmpty());
    m_Loop.Advance(500);
    EXPECT_THAT(Ask({0x1C, 0x01, 0x06}), testing::SizeIs(1));
}

// What the one module sends isn't held up by a late frame of the other.
TEST_F(KestrelPairTest, ALateFrameHoldsUpItsOwnModuleOnly) {
    Carry({{"fault", {{"kind", "delay_ms"}, {"value", 100}, {"next", 1}, {"module", 1}}}});
    Send({0x1C, 0x01, 0x05});
    Send({0x1C, 0x01, 0x06});
    m_Loop.Advance(200);
    EXPECT_THAT(GetInstants(0x1C), ElementsAre(3, 103));
}

TEST_F(KestrelPairTest, FieldsOfTheOtherFamilyAreRefused) {
    EXPECT_EQ(Carry({{"set", {{"swap", true}}}})["error"],
              "unknown field \"set.swap\", known here: number, rpm_factor, sensor_adaption, module");
    EXPECT_EQ(Carry({{"module_state", {{"flags", {0, 0}}}}})["error"],
              "unknown field \"module_state.flags\", known here: state, parameter, ui_locked, module");
    EXPECT_EQ(Carry({{"report", {{"kind", "diagnosis_data"}}}})["error"],
              "report: modules of this family report nothing on demand; use modules lanner");
}

}  // namespace
