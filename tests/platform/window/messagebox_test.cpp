#include "platform/window/messagebox.h"

#include <gtest/gtest.h>

#include <thread>

#include "platform/system/virtualeventloop.h"

namespace {

class MessageBoxTest : public testing::Test {
protected:
    MessageBoxTest() { TakeShownMessages(); }
    ~MessageBoxTest() override {
        SetMessageBoxPresenter(nullptr);
        TakeShownMessages();
    }
    CVirtualEventLoop m_Loop;
};

TEST_F(MessageBoxTest, ShownMessagesAreTakenOnceOldestFirst) {
    ShowMessageBox("first", "Error");
    ShowMessageBox("second", "Note");
    const std::vector<CShownMessage> Shown = TakeShownMessages();
    ASSERT_EQ(Shown.size(), 2u);
    EXPECT_EQ(Shown[0].m_Text, "first");
    EXPECT_EQ(Shown[0].m_Title, "Error");
    EXPECT_EQ(Shown[1].m_Text, "second");
    EXPECT_TRUE(TakeShownMessages().empty());
}

TEST_F(MessageBoxTest, TheLastHundredAreKept) {
    for (int i = 0; i < 103; ++i) {
        ShowMessageBox(std::to_string(i), "Error");
    }
    const std::vector<CShownMessage> Shown = TakeShownMessages();
    ASSERT_EQ(Shown.size(), 100u);
    EXPECT_EQ(Shown.front().m_Text, "3");
    EXPECT_EQ(Shown.back().m_Text, "102");
}

TEST_F(MessageBoxTest, ThePresenterIsCalledThroughTheLoop) {
    std::vector<std::string> Presented;
    SetMessageBoxPresenter([&](const CShownMessage& rMessage) { Presented.push_back(rMessage.m_Text); });
    std::thread([] { ShowMessageBox("from a thread", "Error"); }).join();
    EXPECT_TRUE(Presented.empty()) << "never blocks, never in the caller's midst";
    m_Loop.RunPosted();
    EXPECT_EQ(Presented, std::vector<std::string>{"from a thread"});
}

TEST_F(MessageBoxTest, APresenterThatHasGoneIsNotCalled) {
    bool bCalled = false;
    SetMessageBoxPresenter([&](const CShownMessage&) { bCalled = true; });
    ShowMessageBox("text", "Error");
    SetMessageBoxPresenter(nullptr);
    m_Loop.RunPosted();
    EXPECT_FALSE(bCalled);
}

TEST_F(MessageBoxTest, APresenterMayShowAnotherMessage) {
    int nPresented = 0;
    SetMessageBoxPresenter([&](const CShownMessage&) {
        if (++nPresented == 1) {
            ShowMessageBox("again", "Error");
        }
    });
    ShowMessageBox("text", "Error");
    m_Loop.RunPosted();
    EXPECT_EQ(nPresented, 2);
}

}  // namespace
