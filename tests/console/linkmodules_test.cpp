// Each symptom of a module on a line that is well, on the simulator and under virtual time.
#include <gmock/gmock.h>

#include "tests/console/linkcheckfixture.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using Names = std::vector<std::string>;

class LinkModulesTest : public CLinkCheckTestBase {};

}  // namespace

TEST_F(LinkModulesTest, AModuleThatDoesNotHearReportsOnly) {
    Connect();
    Carry({{"fault", {{"kind", "drop"}, {"next", 1000000}, {"only", "requests"}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_THAT(GetProblems(Report), Contains("link-one-way"));
    EXPECT_THAT(GetGood(Report), Contains("link-readings"));
}

TEST_F(LinkModulesTest, AModuleInAnotherStateSaysWhichOne) {
    Connect();
    Carry({{"module_state", {{"state", 2}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-wrong-state"});
    EXPECT_THAT(GetText(Report, "link-wrong-state"), HasSubstr("AutomaticModeStart"));
    EXPECT_THAT(GetAdvice(Report, "link-wrong-state"), HasSubstr("pre-balancing"));
}

TEST_F(LinkModulesTest, ALannerModuleInAnotherStateIsFoundToo) {
    Connect(CRotorFile::eLanner);
    Carry({{"module_state", {{"state", 0}}}});
    Turn();
    EXPECT_THAT(GetProblems(Check()), Contains("link-wrong-state"));
}

TEST_F(LinkModulesTest, ASpeedFactorThatARunRefusesIsAProblem) {
    Connect();
    Carry({{"set", {{"rpm_factor", 4}}}});
    Turn();
    EXPECT_EQ(GetProblems(Check()), Names{"link-speed-factor"});
}

TEST_F(LinkModulesTest, LockedOperationIsANote) {
    Connect();
    Carry({{"module_state", {{"ui_locked", true}}}});
    Turn();
    EXPECT_EQ(GetNotes(Check()), Names{"link-keys-locked"});
}

TEST_F(LinkModulesTest, AModuleThatIsNeverInLockIsAProblem) {
    Connect();
    Turn();
    Carry({{"fault", {{"kind", "unlock_ms"}, {"value", 60000}}}});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-never-in-lock"});
    EXPECT_THAT(GetAdvice(Report, "link-never-in-lock"), HasSubstr("speed sensor"));
}

TEST_F(LinkModulesTest, ALockThatIsLostIsCounted) {
    Connect();
    Turn();
    for (const std::uint32_t Time : {4000U, 7000U}) {
        CarryAfter(Time, {{"fault", {{"kind", "unlock_ms"}, {"value", 300}}}});
    }
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-lock-lost"});
    EXPECT_THAT(GetText(Report, "link-lock-lost"), HasSubstr("2 times"));
}

TEST_F(LinkModulesTest, ASpeedThatChangesIsTold) {
    Connect();
    Turn();
    CarryAfter(5000, {{"speed", 2000}});
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-speed-changes"});
    EXPECT_THAT(GetText(Report, "link-speed-changes"), HasSubstr("2000 to 3000 rpm"));
}

TEST_F(LinkModulesTest, ReadingsThatNeverChangeAreADeadSensor) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn();
    Rotor.m_NoiseCounts = 0.0;
    Connect(CRotorFile::eKestrel, {}, Rotor);
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetProblems(Report), Names{"link-readings-frozen"});
    EXPECT_THAT(GetAdvice(Report, "link-readings-frozen"), HasSubstr("sensor"));
}

TEST_F(LinkModulesTest, FewReadingsASecondAreCounted) {
    CRotorFile Rotor = CRotorFile::GetBuiltIn();
    Rotor.m_ReportPeriodMs = 500;
    Connect(CRotorFile::eKestrel, {}, Rotor);
    Turn();
    const CCheckReport Report = Check();
    EXPECT_EQ(GetNotes(Report), Names{"link-few-readings"});
    EXPECT_THAT(GetText(Report, "link-few-readings"), HasSubstr("only 2.0 readings"));
}

TEST_F(LinkModulesTest, WhatALannerModuleSaysOfItsSensorsIsPassedOn) {
    Connect(CRotorFile::eLanner);
    Carry({{"module_state", {{"failures", {1, 4}}}}});
    Turn();
    const CCheckReport Report = Check();
    EXPECT_THAT(GetProblems(Report), testing::ElementsAre("link-sensor-failure", "link-overamplified"));
    EXPECT_THAT(GetText(Report, "link-sensor-failure"), HasSubstr("plane 1"));
    EXPECT_THAT(GetText(Report, "link-overamplified"), HasSubstr("plane 2"));
}

TEST_F(LinkModulesTest, ASetWithoutPlanesIsAProblem) {
    Connect(CRotorFile::eLanner);
    Turn();
    Carry({{"set", {{"mode", "nothing"}}}});
    EXPECT_EQ(GetProblems(Check()), Names{"link-no-plane"});
}
