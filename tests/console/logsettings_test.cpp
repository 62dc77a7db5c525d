#include "console/logsettings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <set>

#include "console/modulelibrary.h"
#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"
#include "tests/support/testinstallation.h"
#include "tests/support/testpaths.h"
#include "tests/support/textfiles.h"

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string DECLARATION = R"(<?xml version="1.0" encoding="UTF-8"?>)";
constexpr std::uint32_t WARNINGS = CLogComponent::ERROR | CLogComponent::WARNING;
constexpr std::uint32_t STORY = WARNINGS | CLogComponent::INFORMATION;

class LogSettingsTest : public testing::Test {
protected:
    ~LogSettingsTest() override { CLogComponent::Choose({}); }
    /// Each time as if it were some seconds later.
    void WriteSettings(const std::string& rAttributes) {
        const auto File = m_Installation.GetRoot() / "cnf" / "mcon.xdb";
        WriteTestFile(
            File, DECLARATION + "<Corvane><system_falconet " + rAttributes + "></system_falconet></Corvane>");
        std::filesystem::last_write_time(
            File, std::filesystem::last_write_time(File) + std::chrono::seconds(10 * ++m_nWritten));
    }
    static CLogComponent::CChoice Get() { return CLogComponent::GetChoice(); }

    CVirtualEventLoop m_Loop;
    const CTestInstallation m_Installation;
    int m_nWritten = 0;
};

}  // namespace

TEST_F(LogSettingsTest, TheStoryOfARunIsLoggedUnlessToldOtherwise) {
    CLogSettings({}, {}).Read();
    EXPECT_EQ(Get(), (CLogComponent::CChoice{STORY, {}}));
}

TEST_F(LogSettingsTest, TheDocumentSaysOtherwise) {
    WriteSettings(R"(LogLevel="warning" LogTopics=" PbFlow,,PbMath ")");
    CLogSettings({}, {}).Read();
    EXPECT_EQ(Get(), (CLogComponent::CChoice{WARNINGS, {"PbFlow", "PbMath"}}));
}

TEST_F(LogSettingsTest, TheCommandLineComesFirst) {
    WriteSettings(R"(LogLevel="debug" LogTopics="PbFlow")");
    CLogSettings("error", {"Protocol"}).Read();
    EXPECT_EQ(Get(), (CLogComponent::CChoice{CLogComponent::ERROR, {"Protocol"}}));
}

TEST_F(LogSettingsTest, WhatIsNotKnownIsToldWithWhatThereIs) {
    WriteSettings(R"(LogLevel="loud" LogTopics="PbFlow,Everything")");
    const CLogCapture Capture;
    CLogSettings({}, {}).Read();
    EXPECT_EQ(Get().m_Levels, STORY);
    EXPECT_THAT(Capture.GetTexts("Warning"),
                ElementsAre(HasSubstr("\"loud\" isn't known; there are error, warning, information, debug"),
                            HasSubstr("\"Everything\" isn't known; there are PbFlow,")));
}

TEST_F(LogSettingsTest, ADocumentThatCannotBeReadIsAsNone) {
    WriteTestFile(m_Installation.GetRoot() / "cnf" / "mcon.xdb",
                  DECLARATION + "<Corvane><system_falconet LogLevel=");
    CLogSettings({}, {}).Read();
    EXPECT_EQ(Get().m_Levels, STORY);
}

TEST_F(LogSettingsTest, AChangeTakesEffectWhileTheProgramRuns) {
    CLogSettings Settings({}, {});
    Settings.Read();
    Settings.Watch();
    WriteSettings(R"(LogTopics="Protocol")");
    m_Loop.Advance(3000);
    EXPECT_THAT(Get().m_Topics, ElementsAre("Protocol"));
    WriteSettings("");
    m_Loop.Advance(3000);
    EXPECT_THAT(Get().m_Topics, IsEmpty());
    std::filesystem::remove(m_Installation.GetRoot() / "cnf" / "mcon.xdb");
    m_Loop.Advance(3000);
    EXPECT_EQ(Get(), (CLogComponent::CChoice{STORY, {}}));
}

TEST_F(LogSettingsTest, TheTracesOfTheLineComeAndGo) {
    CLogSettings Settings({}, {"PbFlow"});
    Settings.Read();
    Settings.TraceLine(true);
    EXPECT_THAT(Get().m_Topics, ElementsAre("PbFlow", "Protocol", "ProtocolDetail", "ProtocolData"));
    Settings.TraceLine(false);
    EXPECT_THAT(Get().m_Topics, ElementsAre("PbFlow"));
}

/// The names on the command line are those of libraries that are loaded later.
TEST_F(LogSettingsTest, EveryTopicOfAPublisherCanBeChosenAndNoOther) {
    const CModuleLibrary Module(TestProgram("librtr_trim.so"));
    std::set<std::string> Topics;
    for (const CLogComponent* const pPublisher : CLogComponent::GetPublishers()) {
        for (const CLogTopic& rTopic : pPublisher->GetTopics()) {
            Topics.insert(rTopic.m_pName);
        }
    }
    const std::vector<std::string> Names = LogNames::GetTopics();
    EXPECT_EQ(Topics, std::set<std::string>(Names.begin(), Names.end()));
}
