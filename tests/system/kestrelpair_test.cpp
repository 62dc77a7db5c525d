// Two Kestrel modules on one line, master and slave: the window finds them as one machine of two planes.
#include <gtest/gtest.h>

#include "tests/system/wholerun.h"

namespace {

using nlohmann::json;

/// A session up to the configuration.
class KestrelPair : public testing::Test {
protected:
    KestrelPair() : m_Run(CRotorFile::GetBuiltIn(CRotorFile::eKestrelPair)) {
        m_Run.m_Options.m_Modules = "kestrel-pair";
        m_pSession = std::make_unique<CConsoleSession>(m_Run.m_Options, &m_Run.m_Rotor,
                                                       m_Run.m_Installation.GetDatabaseFile().string());
    }
    json Carry(const json& rRequest) { return m_pSession->GetSimulator()->Carry(rRequest); }
    void Delay(int nModule, int nMilliseconds) {
        ASSERT_EQ(Carry({{"answer_delay", {{"module", nModule}, {"value", nMilliseconds}}}}),
                  json({{"ok", true}}));
    }

    /// Input and adaptions, mode 2 (two planes), both articles; serial 14205 in the upper half and 14206 in
    /// the lower one: 14205 * 65536 + 14206.
    static constexpr const char* KEY = "0#1#1-2-486107-486107-930953086-1";

    CVirtualEventLoop m_Loop;
    CWholeRun m_Run;
    std::unique_ptr<CConsoleSession> m_pSession;
};

struct CDelays {
    const char* m_pName;
    int m_Master;
    int m_Slave;
};

class KestrelPairDelays : public KestrelPair, public testing::WithParamInterface<CDelays> {};

}  // namespace

TEST_P(KestrelPairDelays, AreFoundAsOneMachineInEitherOrderOfTheirAnswers) {
    Delay(1, GetParam().m_Master);
    Delay(2, GetParam().m_Slave);
    EXPECT_TRUE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), KEY);
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
}

// Up to 400 ms lies within the first wait for an answer; 600 and 1700 ms within the repetitions.
INSTANTIATE_TEST_SUITE_P(
    WholeRun, KestrelPairDelays,
    testing::Values(CDelays{"Together", 3, 3}, CDelays{"MasterFirst", 3, 40}, CDelays{"SlaveFirst", 40, 3},
                    CDelays{"MasterMuchEarlier", 3, 400}, CDelays{"SlaveMuchEarlier", 400, 3},
                    CDelays{"MasterAfterARepetition", 600, 3}, CDelays{"SlaveAfterARepetition", 3, 600},
                    CDelays{"SlaveAtTheLastRepetition", 3, 1700}, CDelays{"BothLate", 600, 1700}),
    [](const auto& rInfo) { return rInfo.param.m_pName; });

// One module alone is half a machine: no key, no configuration, and nothing starts.
TEST_F(KestrelPair, SilentSlaveKeepsTheWindowWaiting) {
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 3600000}, {"module", 2}}}});
    EXPECT_FALSE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), "");
    EXPECT_FALSE(m_pSession->Look().m_bRunning);
}

TEST_F(KestrelPair, SilentMasterKeepsTheWindowWaiting) {
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 3600000}, {"module", 1}}}});
    EXPECT_FALSE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), "");
}

TEST_F(KestrelPair, SlaveThatIsSwitchedOnLaterIsFound) {
    Carry({{"fault", {{"kind", "silence_ms"}, {"value", 12000}, {"module", 2}}}});
    EXPECT_TRUE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), KEY);
}

// The slave's set number doesn't count, its adaption does.
TEST_F(KestrelPair, SetIsTheMastersWithTheSlavesAdaption) {
    Carry({{"set", {{"module", 1}, {"number", 3}, {"sensor_adaption", 7}}}});
    Carry({{"set", {{"module", 2}, {"number", 8}, {"sensor_adaption", 9}}}});
    EXPECT_TRUE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), "0#7#9-2-486107-486107-930953086-3");
}

// Turning spindle, so that indications of both modules come between questions and answers.
TEST_F(KestrelPair, IndicationsOfBothBetweenTheAnswersDoNoHarm) {
    Carry({{"speed", 3000}});
    m_Loop.Advance(3000);
    Delay(1, 170);
    Delay(2, 90);
    EXPECT_TRUE(m_pSession->Initialise());
    EXPECT_EQ(m_pSession->GetMachineName(), KEY);
}

// The rotor's sense of rotation and both scales reach the configuration of two planes.
TEST_F(KestrelPair, CommissioningConfiguresBothPlanes) {
    m_Run.m_Rotor.m_Rotation = CRotorFile::eCounterClockwise;
    m_Run.m_Rotor.m_Planes[1].m_Scale = CRotorFile::eCounterClockwise;
    ASSERT_TRUE(m_pSession->Initialise());
    m_pSession->Commission();
    PreBalDB::CPreBalDatabase Database(m_pSession->GetMachineName());
    PreBalDB::CTwoPlaneBalancingTableEntry& rPlanes = Database.ReadConfiguration("Default").CreateTwoPlane();
    using PreBalDB::CTypeBase;
    EXPECT_EQ(rPlanes.GetRotationDirection(), CTypeBase::eCounterClockwise);
    EXPECT_EQ(rPlanes.CreatePlane1WeightCompensationTableEntry().GetScalingDirection(),
              CTypeBase::eClockwise);
    EXPECT_EQ(rPlanes.CreatePlane2WeightCompensationTableEntry().GetScalingDirection(),
              CTypeBase::eCounterClockwise);
}

namespace {

struct CRefusal {
    const char* m_pName;
    const char* m_pModules;
    const char* m_pMode;
    std::vector<std::uint8_t> m_Addresses;
    const char* m_pWhy;
};

class SessionRefusal : public testing::TestWithParam<CRefusal> {};

}  // namespace

TEST_P(SessionRefusal, SaysWhatWouldBeRight) {
    const CRefusal& rCase = GetParam();
    CVirtualEventLoop Loop;
    CWholeRun Run(CRotorFile::GetBuiltIn(*CRotorFile::ModulesFromString(rCase.m_pModules)));
    Run.m_Options.m_Modules = rCase.m_pModules;
    Run.m_Options.m_Mode = rCase.m_pMode;
    Run.m_Options.m_Addresses = rCase.m_Addresses;
    try {
        const CConsoleSession Session(Run.m_Options, &Run.m_Rotor,
                                      Run.m_Installation.GetDatabaseFile().string());
        FAIL() << "not refused";
    } catch (const CSessionError& rError) {
        EXPECT_STREQ(rError.what(), rCase.m_pWhy);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Console, SessionRefusal,
    testing::Values(
        CRefusal{
            "KestrelHasNoPlane2", "kestrel", "plane2", {}, "--mode plane2: modules kestrel balance plane1"},
        CRefusal{"PairBalancesBothPlanes",
                 "kestrel-pair",
                 "plane1",
                 {},
                 "--mode plane1: modules kestrel-pair balance two-plane"},
        CRefusal{"PairHasTwoAddresses",
                 "kestrel-pair",
                 "",
                 {5},
                 "--addresses: modules kestrel-pair take two addresses, master and slave"},
        CRefusal{
            "LannerHasOneAddress", "lanner", "", {9, 10}, "--addresses: modules lanner take one address"}),
    [](const auto& rInfo) { return rInfo.param.m_pName; });

TEST(SessionRefusal, Plane2NeedsARotorWithTwoPlanes) {
    CVirtualEventLoop Loop;
    std::string Error;
    CWholeRun Run(*CRotorFile::Parse(R"({"modules": "lanner", "holes": [12]})", Error));
    Run.m_Options.m_Mode = "plane2";
    EXPECT_THROW(CConsoleSession(Run.m_Options, &Run.m_Rotor, Run.m_Installation.GetDatabaseFile().string()),
                 CSessionError);
}
