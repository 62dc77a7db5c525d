#include "platform/rvlog/logcomponent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>
#include <thread>

#include "platform/rvlog/log.h"
#include "platform/window/messagebox.h"
#include "tests/support/logcapture.h"
#include "tests/support/tempdirectory.h"
#include "tests/support/textfiles.h"

namespace {

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint32_t FLOW_TOPIC = 0x100;

/// A publisher as a library has one: registered before main runs.
CLogComponent* const g_pEarly = CLogComponent::Register("LogTestEarly", {{"Flow", FLOW_TOPIC}});

/// A publisher as a library has it before its static initialisers have run.
CLogComponent* g_pNone = nullptr;

CLogComponent* MakePublisher(const char* pName) {
    return CLogComponent::Register(pName, {{"Flow", FLOW_TOPIC}});
}

std::vector<std::string> Lines(const std::string& rText) {
    std::vector<std::string> Result;
    std::istringstream In(rText);
    for (std::string Line; std::getline(In, Line);) {
        Result.push_back(Line);
    }
    return Result;
}

TEST(CLogComponentTest, RegistersFromStaticInitialisers) {
    ASSERT_NE(g_pEarly, nullptr);
    EXPECT_EQ(CLogComponent::Find("LogTestEarly"), g_pEarly);
    EXPECT_EQ(g_pEarly->GetName(), "LogTestEarly");
    ASSERT_THAT(g_pEarly->GetTopics(), SizeIs(1));
    EXPECT_STREQ(g_pEarly->GetTopics()[0].m_pName, "Flow");
    EXPECT_EQ(g_pEarly->GetTopics()[0].m_Mask, FLOW_TOPIC);
}

TEST(CLogComponentTest, RegisteringANameAgainGivesTheSamePublisher) {
    const std::size_t nBefore = CLogComponent::GetPublishers().size();
    EXPECT_EQ(CLogComponent::Register("LogTestEarly", {}), g_pEarly);
    EXPECT_EQ(CLogComponent::GetPublishers().size(), nBefore);
    EXPECT_THAT(g_pEarly->GetTopics(), SizeIs(1));
}

TEST(CLogComponentTest, FindsNothingUnderAnUnknownName) {
    EXPECT_EQ(CLogComponent::Find("LogTestNobody"), nullptr);
}

TEST(CLogComponentTest, ErrorsAndWarningsAreOnFromTheStartAndTopicsOff) {
    CLogComponent* const pLog = MakePublisher("LogTestLevels");
    const CLogCapture Capture;
    RV_ERROR(pLog, "error");
    RV_WARNING(pLog, "warning");
    RV_INFORMATION(pLog, "information");
    RV_DEBUG(pLog, "debug");
    RV_LOG(pLog, FLOW_TOPIC, "Flow", "flow");
    EXPECT_THAT(Capture.GetTexts("Error"), ElementsAre("error"));
    EXPECT_THAT(Capture.GetTexts("Warning"), ElementsAre("warning"));
    EXPECT_THAT(Capture.GetRecords(), SizeIs(2));
}

TEST(CLogComponentTest, ATopicIsLoggedOnceItsBitIsSet) {
    CLogComponent* const pLog = MakePublisher("LogTestTopic");
    pLog->SetLevel(FLOW_TOPIC);
    const CLogCapture Capture;
    RV_LOG(pLog, FLOW_TOPIC, "Flow", "step %d of %s", 3, "eleven");
    RV_ERROR(pLog, "not now");
    ASSERT_THAT(Capture.GetRecords(), SizeIs(1));
    const CLogRecord& rRecord = Capture.GetRecords()[0];
    EXPECT_EQ(rRecord.m_Publisher, "LogTestTopic");
    EXPECT_THAT(rRecord.m_File, EndsWith("logcomponent_test.cpp"));
    EXPECT_GT(rRecord.m_Line, 0);
    EXPECT_EQ(rRecord.m_Function, "TestBody");
    EXPECT_EQ(rRecord.m_Mask, FLOW_TOPIC);
    EXPECT_EQ(rRecord.m_LevelName, "Flow");
    EXPECT_EQ(rRecord.m_Text, "step 3 of eleven");
    EXPECT_FALSE(rRecord.m_bAssertion);
}

TEST(CLogComponentTest, ArgumentsAreNotEvaluatedWhenTheLevelIsOff) {
    CLogComponent* const pLog = MakePublisher("LogTestLazy");
    int nCalls = 0;
    const auto Count = [&nCalls] { return ++nCalls; };
    RV_DEBUG(pLog, "%d", Count());
    EXPECT_EQ(nCalls, 0);
    pLog->SetLevel(CLogComponent::DEBUG);
    RV_DEBUG(pLog, "%d", Count());
    EXPECT_EQ(nCalls, 1);
}

TEST(CLogComponentTest, MacrosDoNothingWithoutAPublisher) {
    const CLogCapture Capture;
    RV_ERROR(g_pNone, "lost");
    RV_ASSERT(g_pNone, false, "lost");
    EXPECT_THAT(Capture.GetRecords(), IsEmpty());
}

TEST(CLogComponentTest, ALongTextIsNotCut) {
    CLogComponent* const pLog = MakePublisher("LogTestLong");
    const CLogCapture Capture;
    const std::string Text(10000, 'x');
    RV_ERROR(pLog, "%s", Text.c_str());
    EXPECT_THAT(Capture.GetTexts("Error"), ElementsAre(Text));
}

TEST(CLogComponentTest, AnAssertionIsSeenWhateverTheLevelAndDoesNotChangeTheFlow) {
    CLogComponent* const pLog = MakePublisher("LogTestAssert");
    pLog->SetLevel(0);
    const CLogCapture Capture;
    TakeShownMessages();
    bool bWentOn = false;
    RV_ASSERT(pLog, 1 + 1 == 3, "sums");
    bWentOn = true;
    RV_ASSERT(pLog, 1 + 1 == 2, "true ones are silent");
    RV_ASSERT_FAIL(pLog, "impossible");
    EXPECT_TRUE(bWentOn);
    ASSERT_THAT(Capture.GetAssertions(), ElementsAre("sums", "impossible"));
    EXPECT_EQ(Capture.GetRecords()[0].m_Expression, "1 + 1 == 3");
    EXPECT_EQ(Capture.GetRecords()[1].m_Expression, "FALSE");
    EXPECT_THAT(TakeShownMessages(), IsEmpty());
}

TEST(CLogComponentTest, AShownAssertionAlsoComesAsAMessageBoxTitledError) {
    CLogComponent* const pLog = MakePublisher("LogTestShown");
    TakeShownMessages();
    RV_ASSERT_SHOW(pLog, false, "Machine name is still empty!");
    const auto Shown = TakeShownMessages();
    ASSERT_THAT(Shown, SizeIs(1));
    EXPECT_EQ(Shown[0].m_Text, "Machine name is still empty!");
    EXPECT_EQ(Shown[0].m_Title, "Error");
}

// Without a debugger a stop would end the program; this test's own life is what it proves.
TEST(CLogComponentTest, StopOnAssertGoesOnWithoutADebugger) {
    CLogComponent* const pLog = MakePublisher("LogTestStop");
    const CLogCapture Capture;
    CLogComponent::SetStopOnAssert(true);
    RV_ASSERT_FAIL(pLog, "stop");
    CLogComponent::SetStopOnAssert(false);
    EXPECT_THAT(Capture.GetAssertions(), ElementsAre("stop"));
}

TEST(CLogComponentTest, AListenerHearsNothingAfterItsGuardIsGone) {
    CLogComponent* const pLog = MakePublisher("LogTestGuard");
    int nHeard = 0;
    auto pGuard = CLogComponent::AddListener([&nHeard](const CLogRecord&) { ++nHeard; });
    RV_ERROR(pLog, "one");
    pGuard.reset();
    RV_ERROR(pLog, "two");
    EXPECT_EQ(nHeard, 1);
}

TEST(CLogComponentTest, AListenerMayLogAndDropItself) {
    CLogComponent* const pLog = MakePublisher("LogTestReentry");
    CLogComponent* const pOther = MakePublisher("LogTestReentryInner");
    std::shared_ptr<void> pGuard;
    std::vector<std::string> Heard;
    pGuard = CLogComponent::AddListener([&](const CLogRecord& rRecord) {
        Heard.push_back(rRecord.m_Text);
        if (rRecord.m_Text == "outer") {
            RV_ERROR(pOther, "inner");
            pGuard.reset();
            RV_ERROR(pOther, "unheard");
        }
    });
    RV_ERROR(pLog, "outer");
    EXPECT_THAT(Heard, ElementsAre("outer", "inner"));
}

TEST(CLogComponentTest, ThreadsLogAtTheSameTime) {
    CLogComponent* const pLog = MakePublisher("LogTestThreads");
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("")));
    constexpr int THREADS = 4;
    constexpr int LINES = 200;
    const CLogCapture Capture;
    {
        std::vector<std::jthread> Threads;
        for (int nThread = 0; nThread < THREADS; ++nThread) {
            Threads.emplace_back([pLog, nThread] {
                for (int i = 0; i < LINES; ++i) {
                    RV_ERROR(pLog, "thread %d line %d", nThread, i);
                }
            });
        }
    }
    EXPECT_THAT(Capture.GetRecords(), SizeIs(THREADS * LINES));
    EXPECT_THAT(Lines(ReadTestFile(Directory.At("rotor_trim.log"))), SizeIs(THREADS * LINES));
}

TEST(CLogComponentTest, WritesLinesToTheFile) {
    CLogComponent* const pLog = MakePublisher("LogTestFile");
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("logs")));
    RV_WARNING(pLog, "no valid pointer");
    RV_INFORMATION(pLog, "not logged");
    RV_ASSERT(pLog, false, "impossible");
    const auto Written = Lines(ReadTestFile(Directory.At("logs/rotor_trim.log")));
    ASSERT_THAT(Written, SizeIs(2));
    EXPECT_THAT(Written[0], HasSubstr("LogTestFile Warning logcomponent_test.cpp("));
    EXPECT_THAT(Written[0], EndsWith("TestBody: no valid pointer"));
    EXPECT_THAT(Written[1], EndsWith("TestBody: Assertion failed: false: impossible"));
}

TEST(CLogComponentTest, BlocksIndentTheLinesWithinThem) {
    CLogComponent* const pLog = MakePublisher("LogTestBlocks");
    pLog->SetLevel(CLogComponent::ERROR | FLOW_TOPIC);
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("")));
    const auto StartBlock = [pLog](std::uint32_t Mask, const char* pHeading) {
        pLog->LogStartBlock(__FILE__, __LINE__, "Run", Mask, "Flow", pHeading);
    };
    StartBlock(FLOW_TOPIC, "outer");
    RV_ERROR(pLog, "in outer");
    StartBlock(FLOW_TOPIC, "inner");
    RV_ERROR(pLog, "in inner");
    // A heading that the level keeps out doesn't indent, and its end doesn't end another block.
    StartBlock(CLogComponent::DEBUG, "hidden");
    RV_ERROR(pLog, "in hidden");
    pLog->LogEndBlock(CLogComponent::DEBUG);
    RV_ERROR(pLog, "still inner");
    pLog->LogEndBlock(FLOW_TOPIC);
    pLog->LogEndBlock(FLOW_TOPIC);
    RV_ERROR(pLog, "behind");
    // An end too many is ignored.
    pLog->LogEndBlock(FLOW_TOPIC);
    RV_ERROR(pLog, "last");
    std::vector<std::string> Texts;
    for (const std::string& rLine : Lines(ReadTestFile(Directory.At("rotor_trim.log")))) {
        Texts.push_back(rLine.substr(rLine.find(": ") + 2));
    }
    EXPECT_THAT(Texts, ElementsAre("outer", "  in outer", "  inner", "    in inner", "    in hidden",
                                   "    still inner", "behind", "last"));
}

TEST(CLogComponentTest, TheFileRotatesAtTwoMegabytesAndFiveFilesStay) {
    CLogComponent* const pLog = MakePublisher("LogTestRotation");
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("")));
    const std::string Text(15 * 1024, 'x');
    // 14 MB; seven files' worth.
    for (int i = 0; i < 14 * 70; ++i) {
        RV_ERROR(pLog, "%s", Text.c_str());
    }
    std::vector<std::string> Names;
    for (const auto& rEntry : std::filesystem::directory_iterator(Directory.GetPath())) {
        Names.push_back(rEntry.path().filename().string());
        EXPECT_LE(rEntry.file_size(), 2U * 1024 * 1024);
    }
    EXPECT_THAT(Names, testing::UnorderedElementsAre("rotor_trim.log", "rotor_trim.1.log", "rotor_trim.2.log",
                                                     "rotor_trim.3.log", "rotor_trim.4.log"));
}

TEST(CLogComponentTest, ARecordIsALineOfLimitedLengthInTheFile) {
    CLogComponent* const pLog = MakePublisher("LogTestLines");
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("")));
    RV_ERROR(pLog, "a name\r\n2026-01-31 forged\x1b[2J");
    RV_ERROR(pLog, "%s", std::string(10 * CLogComponent::LONGEST_LINE, 'x').c_str());
    const auto Written = Lines(ReadTestFile(Directory.At("rotor_trim.log")));
    ASSERT_THAT(Written, SizeIs(2));
    EXPECT_THAT(Written[0], EndsWith(": a name  2026-01-31 forged [2J"));
    EXPECT_THAT(Written[1], EndsWith("xxx ..."));
    EXPECT_LT(Written[1].size(), CLogComponent::LONGEST_LINE + 100);
}

TEST(CLogComponentTest, WhatIsChosenGoesForAllPublishersAndThoseThatComeLater) {
    CLogComponent* const pThere = MakePublisher("LogTestThere");
    CLogComponent::Choose({CLogComponent::ERROR | CLogComponent::INFORMATION, {"Flow", "Nobody's"}});
    const CLogComponent* const pLater = MakePublisher("LogTestLater");
    const CLogComponent* const pWithout = CLogComponent::Register("LogTestWithout", {{"Other", FLOW_TOPIC}});
    constexpr std::uint32_t LEVELS = CLogComponent::ERROR | CLogComponent::INFORMATION;
    EXPECT_EQ(pThere->GetLevel(), LEVELS | FLOW_TOPIC);
    EXPECT_EQ(pLater->GetLevel(), LEVELS | FLOW_TOPIC);
    EXPECT_EQ(pWithout->GetLevel(), LEVELS);
    EXPECT_THAT(CLogComponent::GetChoice().m_Topics, ElementsAre("Flow", "Nobody's"));
    CLogComponent::Choose({});
    EXPECT_EQ(pThere->GetLevel(), CLogComponent::ERROR | CLogComponent::WARNING);
}

/// A program that is killed hasn't closed its files.
TEST(CLogComponentTest, WhatHasHappenedIsInTheFileAtOnce) {
    CLogComponent* const pLog = MakePublisher("LogTestFlush");
    pLog->SetLevel(CLogComponent::INFORMATION);
    const CTempDirectory Directory;
    ASSERT_TRUE(CLogComponent::OpenFile(Directory.At("")));
    RV_INFORMATION(pLog, "step 1");
    EXPECT_THAT(Lines(ReadTestFile(Directory.At("rotor_trim.log"))), SizeIs(1));
}

TEST(CLogComponentTest, OpeningTheFileFailsWhereNoDirectoryCanBe) {
    const CTempDirectory Directory;
    WriteTestFile(Directory.At("file"), "in the way");
    EXPECT_FALSE(CLogComponent::OpenFile(Directory.At("file")));
}

TEST(CLogComponentTest, TheConsoleShowsLinesOfItsMask) {
    CLogComponent* const pLog = MakePublisher("LogTestConsole");
    CLogComponent::SetConsoleMask(CLogComponent::ERROR);
    testing::internal::CaptureStderr();
    RV_ERROR(pLog, "shown");
    RV_WARNING(pLog, "not shown");
    CLogComponent::SetConsoleMask(0);
    RV_ERROR(pLog, "not shown either");
    const auto Shown = Lines(testing::internal::GetCapturedStderr());
    ASSERT_THAT(Shown, SizeIs(1));
    EXPECT_THAT(Shown[0], EndsWith(": shown"));
}

}  // namespace
