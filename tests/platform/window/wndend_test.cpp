#include "platform/window/wndend.h"

#include <gmock/gmock.h>

#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/wnd.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A listener is for good, so there is one for all tests.
std::vector<const CWnd*>& GetEnded() {
    static std::vector<const CWnd*> Ended;
    static const bool bListening = [] {
        AddWindowEndListener([](const CWnd& rWnd) { Ended.push_back(&rWnd); });
        return true;
    }();
    (void)bListening;
    return Ended;
}

class CWindowEndTest : public testing::Test {
protected:
    CWindowEndTest() { GetEnded().clear(); }

    CVirtualEventLoop m_Loop;
};

/// Still there when its last message comes, gone when the listener is told.
class CLastMessageWnd : public CWnd {
public:
    bool m_bToldBefore = false;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_DESTROY) {
            m_bToldBefore = !GetEnded().empty();
        }
        return CWnd::WindowProc(Message, wParam, lParam);
    }
};

TEST_F(CWindowEndTest, IsToldOnceBehindTheLastMessage) {
    CLastMessageWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, CRect(0, 0, 10, 10), 1));
    EXPECT_THAT(GetEnded(), IsEmpty());
    Wnd.DestroyWindow();
    EXPECT_FALSE(Wnd.m_bToldBefore);
    EXPECT_THAT(GetEnded(), ElementsAre(&Wnd));
    Wnd.DestroyWindow();
    EXPECT_THAT(GetEnded(), ElementsAre(&Wnd));
}

TEST_F(CWindowEndTest, IsToldOfChildrenBeforeTheirParentAndOfObjectsThatGo) {
    CWnd Child;
    const CWnd* pParent = nullptr;
    {
        CWnd Parent;
        pParent = &Parent;
        ASSERT_TRUE(Parent.Create(nullptr, CRect(0, 0, 10, 10), 1));
        ASSERT_TRUE(Child.Create(&Parent, CRect(0, 0, 5, 5), 2));
    }
    EXPECT_THAT(GetEnded(), ElementsAre(&Child, pParent));
}

TEST_F(CWindowEndTest, IsToldOfMessageOnlyWindows) {
    CWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.DestroyWindow();
    EXPECT_THAT(GetEnded(), ElementsAre(&Wnd));
}

}  // namespace
