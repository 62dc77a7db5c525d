#include "console/messagelog.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>

#include "platform/rvlog/log.h"
#include "platform/system/virtualeventloop.h"

using Level = CMessageLog::Level;

namespace {

CLogComponent* g_pLog = CLogComponent::Register("MessageLogTest", {});

class MessageLogTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CMessageLog m_Log;
};

}  // namespace

TEST_F(MessageLogTest, HasWhatIsLoggedAndWhatIsSaidInTheirOrder) {
    RV_WARNING(g_pLog, "the %s is wet", "floor");
    m_Log.Say("Mop it.");
    RV_ERROR(g_pLog, "no mop");
    m_Log.Collect();
    ASSERT_EQ(m_Log.GetLines().size(), 3U);
    EXPECT_EQ(m_Log.GetLines()[0].m_Text, "MessageLogTest: the floor is wet");
    EXPECT_EQ(m_Log.GetLines()[0].m_Level, Level::eWarning);
    EXPECT_EQ(m_Log.GetLines()[1].m_Text, "Mop it.");
    EXPECT_EQ(m_Log.GetLines()[1].m_Level, Level::eMessage);
    EXPECT_EQ(m_Log.GetLines()[2].m_Level, Level::eError);
    EXPECT_EQ(m_Log.GetLines()[2].m_Moment, m_Loop.WallClock());
}

TEST_F(MessageLogTest, LeavesTracesToTheFile) {
    constexpr std::uint32_t TOPIC = 0x100;
    g_pLog->SetLevel(CLogComponent::INFORMATION | TOPIC);
    RV_LOG(g_pLog, TOPIC, "Protocol", "a frame");
    RV_INFORMATION(g_pLog, "a step");
    g_pLog->SetLevel(CLogComponent::ERROR | CLogComponent::WARNING);
    m_Log.Collect();
    ASSERT_EQ(m_Log.GetLines().size(), 1U);
    EXPECT_EQ(m_Log.GetLines()[0].m_Text, "MessageLogTest: a step");
}

TEST_F(MessageLogTest, KeepsTheNewestTwoThousandLines) {
    for (int nLine = 0; nLine < 2500; ++nLine) {
        m_Log.Say(std::to_string(nLine));
    }
    ASSERT_EQ(m_Log.GetLines().size(), 2000U);
    EXPECT_EQ(m_Log.GetLines().front().m_Text, "500");
    EXPECT_EQ(m_Log.GetLines().back().m_Number, 2500U);
    for (int nLine = 0; nLine < 2500; ++nLine) {
        RV_WARNING(g_pLog, "%d", nLine);
    }
    m_Log.Collect();
    EXPECT_EQ(m_Log.GetLines().size(), 2000U);
    EXPECT_EQ(m_Log.GetLines().back().m_Text, "MessageLogTest: 2499");
}

TEST_F(MessageLogTest, ThreadsMayLogWhileItCollects) {
    std::vector<std::thread> Threads;
    for (int nThread = 0; nThread < 3; ++nThread) {
        Threads.emplace_back([] {
            for (int nLine = 0; nLine < 200; ++nLine) {
                RV_WARNING(g_pLog, "line");
            }
        });
    }
    for (int nTime = 0; nTime < 100; ++nTime) {
        m_Log.Collect();
    }
    for (std::thread& rThread : Threads) {
        rThread.join();
    }
    m_Log.Collect();
    EXPECT_EQ(m_Log.GetLines().size(), 600U);
}

TEST_F(MessageLogTest, IsFilteredByLevelAndByAllWordsInAnyCase) {
    const CMessageLog::CLine Line{1, {}, Level::eWarning, "rvCOM: Link LOST at ttyX"};
    EXPECT_TRUE(CMessageLog::Matches(Line, Level::eMessage, ""));
    EXPECT_TRUE(CMessageLog::Matches(Line, Level::eWarning, "lost  link"));
    EXPECT_FALSE(CMessageLog::Matches(Line, Level::eWarning, "lost found"));
    EXPECT_FALSE(CMessageLog::Matches(Line, Level::eError, "lost"));
    const CMessageLog::CLine Said{1, {}, Level::eMessage, "Größer"};
    EXPECT_TRUE(CMessageLog::Matches(Said, Level::eWarning, "größer")) << "what people were told counts";
    EXPECT_FALSE(CMessageLog::Matches(Said, Level::eError, "GRÖSSER"));
}
