#include "simulator/simulator.h"

#include <array>

#include "tests/simulator/simulatorfixture.h"
#include "tests/support/casenames.h"

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::StartsWith;

class SimulatorTest : public CSimulatorFixture {
protected:
    void SetUp() override {
        CRotorFile File;
        File.m_Planes[0].m_Scale = CRotorFile::eCounterClockwise;
        File.m_Planes[0].m_Unbalance = {0.5, 90.0};
        Start(File);
    }
    std::string Refuse(const json& rRequest) {
        const json Before = Carry({{"state", json::object()}});
        const json Answer = Carry(rRequest);
        EXPECT_FALSE(Answer.contains("ok"));
        EXPECT_EQ(Carry({{"state", json::object()}}), Before) << "a refused request has changed something";
        return Answer.value("error", "");
    }
    json GetState() { return Carry({{"state", json::object()}}); }
};

TEST_F(SimulatorTest, TellsItsState) {
    const json State = GetState();
    EXPECT_EQ(State["ok"], true);
    EXPECT_EQ(State["speed"], 0.0);
    EXPECT_EQ(State["commanded"], 0.0);
    EXPECT_EQ(State["nominal_rpm"], 3000.0);
    EXPECT_EQ(State["lock"], true);
    EXPECT_EQ(State["invalid"], true);
    EXPECT_EQ(State["unbalance"], json::parse(R"([{"amount": 0.5, "angle_deg": 90.0}])"));
    ASSERT_EQ(State["residual"].size(), 1U);
    EXPECT_NEAR(State["residual"][0]["amount"].get<double>(), 0.5, 1e-12);
    EXPECT_NEAR(State["residual"][0]["angle_deg"].get<double>(), 90.0, 1e-9);
    EXPECT_EQ(State["fitted"], json::parse(R"([{"weights": [], "screws": []}])"));
    EXPECT_EQ(State["modules"], json::parse(R"([{"address": 5, "set": 1, "rpm_factor": 1, "state": 7}])"));
}

TEST_F(SimulatorTest, TellsSpeedAndLockOnTheWay) {
    Carry({{"speed", 3000}});
    m_Loop.Advance(1000);
    json State = GetState();
    EXPECT_EQ(State["speed"], 1500.0);
    EXPECT_EQ(State["commanded"], 3000.0);
    EXPECT_EQ(State["lock"], false);
    EXPECT_EQ(State["invalid"], true);
    m_Loop.Advance(1500);
    State = GetState();
    EXPECT_EQ(State["speed"], 3000.0);
    EXPECT_EQ(State["lock"], true);
    EXPECT_EQ(State["invalid"], false);
}

// 0.5 at 90 and a weight at 270 of the counter-clockwise scale leave 0.5 at 270.
TEST_F(SimulatorTest, FitsWeights) {
    EXPECT_EQ(Carry(json::parse(R"({"weights": {"plane": 1, "angles": [270]}})")), json({{"ok", true}}));
    const json State = GetState();
    EXPECT_EQ(State["fitted"][0]["weights"], json({270}));
    EXPECT_NEAR(State["residual"][0]["amount"].get<double>(), 0.5, 1e-12);
    EXPECT_NEAR(State["residual"][0]["angle_deg"].get<double>(), 270.0, 1e-9);
}

TEST_F(SimulatorTest, FitsScrews) {
    EXPECT_EQ(Carry(json::parse(R"({"screws": {"plane": 1, "fitted": [{"hole": 10, "grams": 0.5}]}})")),
              json({{"ok", true}}));
    const json State = GetState();
    EXPECT_EQ(State["fitted"][0]["screws"], json::parse(R"([{"hole": 10, "grams": 0.5}])"));
    EXPECT_NEAR(State["residual"][0]["amount"].get<double>(), 0.0, 1e-12);
}

TEST_F(SimulatorTest, TakesAnotherUnbalance) {
    Carry(json::parse(R"({"unbalance": {"plane": 1, "amount": 0.9, "angle_deg": 120}})"));
    const json State = GetState();
    EXPECT_NEAR(State["residual"][0]["amount"].get<double>(), 0.9, 1e-12);
    EXPECT_NEAR(State["residual"][0]["angle_deg"].get<double>(), 120.0, 1e-9);
}

TEST_F(SimulatorTest, TellsSetAndStateOfItsModules) {
    Carry(json::parse(R"({"set": {"number": 2, "rpm_factor": 4}})"));
    Carry(json::parse(R"({"module_state": {"state": 1}})"));
    EXPECT_EQ(GetState()["modules"],
              json::parse(R"([{"address": 5, "set": 2, "rpm_factor": 4, "state": 1}])"));
}

TEST_F(SimulatorTest, RefusesBadRequestsAndChangesNothing) {
    EXPECT_THAT(Refuse(json::parse(R"([])")),
                StartsWith("the whole must be an object with the fields speed, "));
    EXPECT_THAT(Refuse(json::parse(R"({"dance": 1})")),
                StartsWith("unknown field \"dance\", known here: speed, "));
    EXPECT_EQ(Refuse(json::object()), "give one request at a time, for example {\"speed\": 3000}");
    EXPECT_EQ(Refuse(json::parse(R"({"speed": 100, "state": {}})")),
              "give one request at a time, for example {\"speed\": 3000}");
    EXPECT_EQ(Refuse(json::parse(R"({"speed": -1})")), "speed must be a number from 0 to 65535, not -1");
    EXPECT_EQ(Refuse(json::parse(R"({"speed": 65536})")),
              "speed must be a number from 0 to 65535, not 65536");
    EXPECT_EQ(Refuse(json::parse(R"({"speed": "fast"})")),
              "speed must be a number from 0 to 65535, not \"fast\"");
    EXPECT_EQ(Refuse(json::parse(R"({"state": 1})")), "state must be an empty object, {}, not 1");
}

TEST_F(SimulatorTest, RefusesBadWeights) {
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"angles": [1]}})")), "weights.plane is missing");
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"plane": 1}})")), "weights.angles is missing");
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"plane": 2, "angles": []}})")),
              "weights.plane must be a whole number from 1 to 1, not 2");
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"plane": 1, "angles": [10, 360]}})")),
              "weights.angles[1] must be a whole number from 0 to 359, not 360");
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"plane": 1, "angles": [10.5]}})")),
              "weights.angles[0] must be a whole number from 0 to 359, not 10.5");
    EXPECT_EQ(Refuse(json::parse(R"({"weights": {"plane": 1, "angles": [18446744073709551615]}})")),
              "weights.angles[0] must be a whole number from 0 to 359, not 18446744073709551615");
}

TEST_F(SimulatorTest, RefusesBadScrews) {
    EXPECT_EQ(Refuse(json::parse(R"({"screws": {"plane": 1, "fitted": [{"hole": 13, "grams": 1}]}})")),
              "screws.fitted[0].hole must be a whole number from 1 to 12, not 13");
    EXPECT_EQ(Refuse(json::parse(R"({"screws": {"plane": 1, "fitted": [{"hole": 0, "grams": 1}]}})")),
              "screws.fitted[0].hole must be a whole number from 1 to 12, not 0");
    EXPECT_EQ(Refuse(json::parse(R"({"screws": {"plane": 1, "fitted": [{"hole": 1}]}})")),
              "screws.fitted[0].grams is missing");
    EXPECT_EQ(Refuse(json::parse(R"({"screws": {"plane": 1, "fitted": [{"hole": 1, "grams": -2}]}})")),
              "screws.fitted[0].grams must be a number from 0 to 1000000, not -2");
    EXPECT_EQ(
        Refuse(json::parse(
            R"({"screws": {"plane": 1, "fitted": [{"hole": 2, "grams": 1}, {"hole": 2, "grams": 3}]}})")),
        "screws.fitted[1].hole: hole 2 has a screw already");
}

TEST_F(SimulatorTest, RefusesBadSetsAndStates) {
    EXPECT_EQ(Refuse(json::parse(R"({"set": {"number": 256}})")),
              "set.number must be a whole number from 0 to 255, not 256");
    EXPECT_EQ(Refuse(json::parse(R"({"set": {"module": 2}})")),
              "set.module must be a whole number from 1 to 1, not 2");
    EXPECT_EQ(Refuse(json::parse(R"({"module_state": {"ui_locked": 1}})")),
              "module_state.ui_locked must be true or false, not 1");
    EXPECT_EQ(Refuse(json::parse(R"({"unbalance": {"plane": 1, "amount": 1}})")),
              "unbalance.angle_deg is missing");
}

// The answer may destroy what asked, so it mustn't come from inside the request.
TEST_F(SimulatorTest, AnswersThroughTheLoop) {
    std::vector<std::string> Answers;
    m_pSimulator->Request({{"speed", 3000}}, [&](const json& rAnswer) { Answers.push_back(rAnswer.dump()); });
    m_pSimulator->Request({{"speed", -1}}, [&](const json& rAnswer) { Answers.push_back(rAnswer.dump()); });
    EXPECT_TRUE(Answers.empty());
    EXPECT_EQ(m_pSimulator->GetSpindle().GetCommanded(), 3000.0);
    m_Loop.RunPosted();
    EXPECT_THAT(Answers, ElementsAre(R"({"ok":true})",
                                     R"({"error":"speed must be a number from 0 to 65535, not -1"})"));
}

// The two halves would make a good query; with the line lost between them they are none.
TEST_F(SimulatorTest, ALostLineForgetsHalfAFrame) {
    const Bytes Query = LineDiscipline::Encode(Bytes{0x1C, 0x01, 0x05});
    const auto SendPart = [&](std::size_t nFrom, std::size_t nTo) {
        m_pLink->Write(std::span(Query).subspan(nFrom, nTo - nFrom));
        m_Loop.Advance(20);
    };
    SendPart(0, 3);
    SendPart(3, Query.size());
    EXPECT_EQ(m_Arrivals.size(), 1U);
    m_Arrivals.clear();
    SendPart(0, 3);
    m_pSimulator->GetLink().OnClosed("unplugged");
    SendPart(3, Query.size());
    EXPECT_TRUE(m_Arrivals.empty());
}

TEST_F(SimulatorTest, EndsWithoutLeavingTimers) {
    Carry({{"speed", 3000}});
    Carry(json::parse(R"({"fault": {"kind": "delay_ms", "value": 1000}})"));
    Ask({0x1C, 0x01, 0x05});
    m_pSimulator.reset();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0U);
    m_Loop.Advance(5000);
}

TEST_F(SimulatorTest, TakesOtherAddresses) {
    Start(CRotorFile{}, {17});
    EXPECT_EQ(Ask({0x1C, 0x01, 0x11}).size(), 1U);
    EXPECT_EQ(Ask({0x1C, 0x01, 0x05}).size(), 0U);
}

struct CAddressCase {
    CRotorFile::Modules m_Modules;
    std::vector<std::uint8_t> m_Addresses;
    const char* m_pError;
};
class SimulatorAddressTest : public testing::TestWithParam<CAddressCase> {};

TEST_P(SimulatorAddressTest, IsRefused) {
    CVirtualEventLoop Loop;
    std::string Error;
    EXPECT_EQ(CSimulator::Create(CRotorFile::GetBuiltIn(GetParam().m_Modules), MakeLinkPair().m_pFirst,
                                 GetParam().m_Addresses, Error),
              nullptr);
    EXPECT_EQ(Error, GetParam().m_pError);
}

std::string GetAddressCaseName(const testing::TestParamInfo<CAddressCase>& rInfo) {
    constexpr std::array NAMES{"Kestrel", "KestrelPair", "Lanner"};
    return CaseNames::FromText(
        NAMES.at(rInfo.param.m_Modules) + testing::PrintToString(rInfo.param.m_Addresses), rInfo.index);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, SimulatorAddressTest,
    testing::Values(
        CAddressCase{CRotorFile::eKestrel, {0}, "addresses: give one module address from 1 to 254"},
        CAddressCase{CRotorFile::eKestrel, {255}, "addresses: give one module address from 1 to 254"},
        CAddressCase{CRotorFile::eKestrel, {5, 6}, "addresses: give one module address from 1 to 254"},
        CAddressCase{
            CRotorFile::eKestrelPair, {5}, "addresses: give two different module addresses from 1 to 254"},
        CAddressCase{
            CRotorFile::eKestrelPair, {5, 5}, "addresses: give two different module addresses from 1 to 254"},
        CAddressCase{CRotorFile::eLanner, {9, 10}, "addresses: give one module address from 1 to 254"}),
    GetAddressCaseName);

}  // namespace
