#include "rvlib/rvbas/base/messagewnd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <thread>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "tests/support/logcapture.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class CTestMessageWnd : public Base::CMessageWnd {
public:
    std::vector<std::pair<WPARAM, LPARAM>> m_Messages;
    std::thread::id m_Thread;

private:
    void OnMessageWndMessage(WPARAM wParam, LPARAM lParam) override {
        m_Messages.emplace_back(wParam, lParam);
        m_Thread = std::this_thread::get_id();
    }
};

}  // namespace

TEST(CMessageWnd, PostedMessageComesThroughTheLoopWithItsParameters) {
    CVirtualEventLoop Loop;
    CTestMessageWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageWindow());
    EXPECT_TRUE(Wnd.PostMessage(1066, 7, 0));
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
    Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(Pair(7U, 0)));
}

TEST(CMessageWnd, AnswersItsMessageWithOneAndOthersWithZero) {
    CVirtualEventLoop Loop;
    CTestMessageWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageWindow());
    EXPECT_EQ(Wnd.SendMessage(1066, 1, 2), 1);
    EXPECT_EQ(Wnd.SendMessage(1067, 1, 2), 0);
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(Pair(1U, 2)));
}

TEST(CMessageWnd, ForeignThreadReachesTheWindowThread) {
    CVirtualEventLoop Loop;
    CTestMessageWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageWindow());
    std::thread Foreign([&Wnd] { Wnd.PostMessage(WM_RV_MESSAGEWND, 9); });
    Foreign.join();
    Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(Pair(9U, 0)));
    EXPECT_EQ(Wnd.m_Thread, std::this_thread::get_id());
}

TEST(CMessageWnd, SecondCreationFailsAndIsLogged) {
    CVirtualEventLoop Loop;
    CTestMessageWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageWindow());
    const CLogCapture Log;
    EXPECT_FALSE(Wnd.CreateMessageWindow());
    EXPECT_THAT(Log.GetTexts("Error"), ElementsAre("CreateEx(...) failed (0)!"));
}

TEST(CMessageWnd, IsNeverShown) {
    CVirtualEventLoop Loop;
    CTestMessageWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageWindow());
    EXPECT_FALSE(Wnd.IsWindowVisible());
    EXPECT_TRUE(Wnd.GetClientRect() == CRect(0, 0, 0, 0));
}
