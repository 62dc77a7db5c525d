#include "platform/window/wnd.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <thread>
#include <utility>
#include <vector>

#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"

namespace {
#include "tests/support/lookingpeer.h"

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down its messages; a test may hang a handler on each.
class CTestWnd : public CWnd {
public:
    explicit CTestWnd(std::vector<UINT>* pLog = nullptr) : m_pLog(pLog) {}

    std::function<LRESULT(UINT, WPARAM, LPARAM)> m_Handler;
    std::vector<UINT> m_Messages;
    std::vector<std::pair<WPARAM, LPARAM>> m_Parameters;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        m_Messages.push_back(Message);
        m_Parameters.emplace_back(wParam, lParam);
        if (m_pLog != nullptr) {
            m_pLog->push_back(GetDlgCtrlID());
        }
        // A copy: the handler may delete this.
        const auto Handler = m_Handler;
        return Handler ? Handler(Message, wParam, lParam) : CWnd::WindowProc(Message, wParam, lParam);
    }

private:
    std::vector<UINT>* m_pLog;
};

class WndTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
};

constexpr CRect c_Rect(10, 20, 110, 70);

TEST_F(WndTest, CreationSendsCreateThenSizeAndPaintsLater) {
    CTestWnd Wnd;
    const CLookingPeer Screen(Wnd);
    EXPECT_FALSE(Wnd.IsWindow());
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 7));
    EXPECT_TRUE(Wnd.IsWindow());
    EXPECT_TRUE(Wnd.IsWindowVisible());
    EXPECT_EQ(Wnd.GetDlgCtrlID(), 7u);
    EXPECT_EQ(Wnd.GetRect(), c_Rect);
    EXPECT_EQ(Wnd.GetClientRect(), CRect(0, 0, 100, 50));
    EXPECT_EQ(Wnd.GetSurface().GetSize(), CSize(100, 50));
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_CREATE, WM_SIZE));
    EXPECT_EQ(Wnd.m_Parameters.back(), std::pair(WPARAM{0}, LPARAM{50 << 16 | 100}));
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_CREATE, WM_SIZE, WM_PAINT));
}

TEST_F(WndTest, AWindowThatExistsIsNotCreatedAgain) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 7));
    EXPECT_FALSE(Wnd.Create(nullptr, c_Rect, 8));
    EXPECT_FALSE(Wnd.CreateMessageOnly());
    EXPECT_EQ(Wnd.GetDlgCtrlID(), 7u);
}

TEST_F(WndTest, AChildNeedsAParentThatExists) {
    CTestWnd Parent;
    CTestWnd Child;
    EXPECT_FALSE(Child.Create(&Parent, c_Rect, 1));
    ASSERT_TRUE(Parent.Create(nullptr, c_Rect, 0));
    EXPECT_TRUE(Child.Create(&Parent, c_Rect, 1));
    EXPECT_EQ(Child.GetParent(), &Parent);
    EXPECT_EQ(Parent.GetDlgItem(1), &Child);
    EXPECT_EQ(Parent.GetDlgItem(2), nullptr);
}

TEST_F(WndTest, AnAnswerOfMinusOneToCreateLeavesNoWindow) {
    CTestWnd Wnd;
    CTestWnd Child;
    Wnd.m_Handler = [&](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_CREATE) {
            Child.Create(&Wnd, c_Rect, 1);
            return -1;
        }
        return 0;
    };
    EXPECT_FALSE(Wnd.Create(nullptr, c_Rect, 7));
    EXPECT_FALSE(Wnd.IsWindow());
    EXPECT_FALSE(Child.IsWindow());
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_CREATE));
}

TEST_F(WndTest, DestructionGoesFromTheParentToTheChildren) {
    std::vector<UINT> Log;
    CTestWnd Parent(&Log);
    CTestWnd First(&Log);
    CTestWnd Second(&Log);
    ASSERT_TRUE(Parent.Create(nullptr, c_Rect, 100));
    ASSERT_TRUE(First.Create(&Parent, c_Rect, 1));
    ASSERT_TRUE(Second.Create(&Parent, c_Rect, 2));
    Log.clear();
    Parent.DestroyWindow();
    EXPECT_THAT(Log, ElementsAre(100, 1, 2));
    for (const CTestWnd* pWnd : {&Parent, &First, &Second}) {
        EXPECT_FALSE(pWnd->IsWindow());
        EXPECT_EQ(pWnd->m_Messages.back(), WM_DESTROY);
    }
    EXPECT_THAT(Parent.GetChildren(), IsEmpty());
    EXPECT_EQ(First.GetParent(), nullptr);
    Parent.DestroyWindow();  // once more does nothing
    EXPECT_THAT(Log, ElementsAre(100, 1, 2));
}

TEST_F(WndTest, TheDestructorSendsNothingToTheWindowItself) {
    std::vector<UINT> Log;
    CTestWnd Child(&Log);
    {
        CTestWnd Parent(&Log);
        ASSERT_TRUE(Parent.Create(nullptr, c_Rect, 100));
        ASSERT_TRUE(Child.Create(&Parent, c_Rect, 1));
        Log.clear();
    }
    EXPECT_THAT(Log, ElementsAre(1)) << "the child alone hears of its end";
    EXPECT_FALSE(Child.IsWindow());
}

TEST_F(WndTest, AWindowMayBeCreatedAnewAfterItsEnd) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.DestroyWindow();
    ASSERT_TRUE(Wnd.Create(nullptr, CRect(0, 0, 10, 10), 2));
    EXPECT_EQ(Wnd.GetSurface().GetSize(), CSize(10, 10));
}

TEST_F(WndTest, SendMessageAnswersAtOnceAndZeroWithoutAWindow) {
    CTestWnd Wnd;
    Wnd.m_Handler = [](UINT Message, WPARAM wParam, LPARAM lParam) -> LRESULT {
        return Message == 1058 ? static_cast<LRESULT>(wParam) + lParam : 0;
    };
    EXPECT_EQ(Wnd.SendMessage(1058, 4500, 2), 0);
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    EXPECT_EQ(Wnd.SendMessage(1058, 4500, 2), 4502);
}

TEST_F(WndTest, PostedMessagesComeThroughTheLoopInOrder) {
    CTestWnd Wnd;
    EXPECT_FALSE(Wnd.PostMessage(1075, 1));
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    m_Loop.RunPosted();
    Wnd.m_Messages.clear();
    EXPECT_TRUE(Wnd.PostMessage(1075, 30));
    EXPECT_TRUE(Wnd.PostMessage(1124, 1));
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(1075, 1124));
}

TEST_F(WndTest, OtherThreadsMayPost) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    std::thread Other([&Wnd] {
        for (int i = 0; i < 100; ++i) {
            Wnd.PostMessage(1066);
        }
    });
    Other.join();
    m_Loop.RunPosted();
    EXPECT_EQ(Wnd.m_Messages, std::vector<UINT>(100, 1066));
}

TEST_F(WndTest, MessagesPostedToADestroyedWindowAreDropped) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.PostMessage(1075);
    Wnd.DestroyWindow();
    Wnd.m_Messages.clear();
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
}

// A window that was created anew doesn't get what was meant for its former life.
TEST_F(WndTest, MessagesPostedInAFormerLifeAreDropped) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.PostMessage(1075);
    Wnd.DestroyWindow();
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.PostMessage(1124);
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(1124));
}

TEST_F(WndTest, MessagesAndTimersOfADeletedObjectAreDropped) {
    auto pWnd = std::make_unique<CTestWnd>();
    ASSERT_TRUE(pWnd->Create(nullptr, c_Rect, 1));
    pWnd->PostMessage(1075);
    pWnd->SetTimer(1, 10);
    pWnd.reset();
    m_Loop.Advance(100);  // under the sanitizer this proves that nothing of it is touched
    EXPECT_EQ(m_Loop.GetTimerCount(), 0u);
}

TEST_F(WndTest, AWindowMayBeDestroyedInItsOwnHandler) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.m_Handler = [&Wnd](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == 1088) {
            Wnd.DestroyWindow();
            return 1;
        }
        return 0;
    };
    Wnd.PostMessage(1088);
    Wnd.PostMessage(1075);
    m_Loop.RunPosted();
    EXPECT_FALSE(Wnd.IsWindow());
    EXPECT_EQ(Wnd.m_Messages.back(), WM_DESTROY) << "what was posted behind it is dropped";
}

TEST_F(WndTest, TheObjectMayBeDeletedInItsOwnHandlers) {
    CWnd Top;
    const CLookingPeer Screen(Top);
    ASSERT_TRUE(Top.Create(nullptr, c_Rect, 0));
    for (const UINT Deadly : {WM_CREATE, WM_SIZE, WM_PAINT, WM_TIMER, WM_DESTROY, UINT{1088}}) {
        auto* pWnd = new CTestWnd;
        bool bDeleted = false;
        pWnd->m_Handler = [&, pWnd](UINT Message, WPARAM, LPARAM) -> LRESULT {
            if (Message == Deadly) {
                bDeleted = true;
                delete pWnd;
            }
            return 0;
        };
        const bool bCreated = pWnd->Create(&Top, c_Rect, 1);
        EXPECT_EQ(bCreated, Deadly != WM_CREATE && Deadly != WM_SIZE);
        if (bCreated) {
            pWnd->SetTimer(1, 10);
            m_Loop.Advance(10);
        }
        if (!bDeleted) {
            pWnd->PostMessage(1088);
            m_Loop.RunPosted();
        }
        if (!bDeleted) {
            pWnd->DestroyWindow();
        }
        EXPECT_TRUE(bDeleted) << "message " << Deadly;
    }
}

TEST_F(WndTest, DestroyWindowInItsOwnDestroyHandlerDoesNothing) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.m_Handler = [&Wnd](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_DESTROY) {
            EXPECT_TRUE(Wnd.IsWindow()) << "it still stands while it is told";
            Wnd.DestroyWindow();
        }
        return 0;
    };
    Wnd.m_Messages.clear();
    Wnd.DestroyWindow();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_DESTROY));
    EXPECT_FALSE(Wnd.IsWindow());
}

TEST_F(WndTest, AChildMayDestroyItsParentWhileItIsDestroyed) {
    CTestWnd Parent;
    CTestWnd Child;
    CTestWnd Sibling;
    ASSERT_TRUE(Parent.Create(nullptr, c_Rect, 0));
    ASSERT_TRUE(Child.Create(&Parent, c_Rect, 1));
    ASSERT_TRUE(Sibling.Create(&Parent, c_Rect, 2));
    Child.m_Handler = [&Parent](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_DESTROY) {
            Parent.DestroyWindow();
        }
        return 0;
    };
    Child.DestroyWindow();
    EXPECT_FALSE(Parent.IsWindow());
    EXPECT_FALSE(Child.IsWindow());
    EXPECT_FALSE(Sibling.IsWindow());
    EXPECT_EQ(Child.GetParent(), nullptr);
}

TEST_F(WndTest, WindowTimersSendMessage275WithTheirId) {
    CTestWnd Wnd;
    EXPECT_FALSE(Wnd.SetTimer(4, 50));
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    ASSERT_TRUE(Wnd.SetTimer(4, 50));
    m_Loop.Advance(100);
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(275, 275));
    EXPECT_EQ(Wnd.m_Parameters.front().first, 4u);
    EXPECT_TRUE(Wnd.KillTimer(4));
    EXPECT_FALSE(Wnd.KillTimer(4));
    m_Loop.Advance(100);
    EXPECT_EQ(Wnd.m_Messages.size(), 2u);
}

TEST_F(WndTest, ATimerOfTheSameIdIsRenewed) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    ASSERT_TRUE(Wnd.SetTimer(1, 50));
    m_Loop.Advance(40);
    ASSERT_TRUE(Wnd.SetTimer(1, 50));
    m_Loop.Advance(40);
    EXPECT_THAT(Wnd.m_Messages, IsEmpty()) << "the first period was begun anew";
    m_Loop.Advance(10);
    EXPECT_EQ(Wnd.m_Messages.size(), 1u);
    EXPECT_EQ(m_Loop.GetTimerCount(), 1u);
}

TEST_F(WndTest, ARefusedTimerIsReported) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    m_Loop.FailTimers(1);
    EXPECT_FALSE(Wnd.SetTimer(1, 50));
    EXPECT_FALSE(Wnd.KillTimer(1));
}

TEST_F(WndTest, DestructionKillsTheTimers) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.SetTimer(1, 50);
    Wnd.SetTimer(2, 60);
    EXPECT_EQ(m_Loop.GetTimerCount(), 2u);
    Wnd.DestroyWindow();
    EXPECT_EQ(m_Loop.GetTimerCount(), 0u);
}

TEST_F(WndTest, AWindowMayBeDestroyedInItsTimer) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.m_Handler = [&Wnd](UINT, WPARAM, LPARAM) -> LRESULT {
        Wnd.DestroyWindow();
        return 0;
    };
    Wnd.SetTimer(1, 10);
    Wnd.SetTimer(2, 10);
    m_Loop.Advance(50);
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_TIMER)) << "the second timer of that instant is gone, too";
}

TEST_F(WndTest, AWindowMayOutliveTheLoopOfItsTimers) {
    CTestWnd Wnd;
    {
        CVirtualEventLoop Inner;
        ASSERT_TRUE(Wnd.CreateMessageOnly());
        ASSERT_TRUE(Wnd.SetTimer(1, 10));
    }
    std::uint32_t Foreign = m_Loop.SetTimer(10, [](std::uint32_t) {});
    Wnd.DestroyWindow();
    EXPECT_TRUE(m_Loop.KillTimer(Foreign)) << "a timer of another loop with the same id stays";
}

TEST_F(WndTest, AMessageOnlyWindowGetsNeitherCreateNorPaint) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.CreateMessageOnly());
    Wnd.Invalidate();
    Wnd.ShowWindow(true);
    Wnd.MoveWindow(c_Rect);
    m_Loop.RunPosted();
    EXPECT_FALSE(Wnd.IsWindowVisible());
    EXPECT_EQ(CWnd::GetForegroundWindow(), nullptr);
    Wnd.SetWindowText("hidden");
    EXPECT_EQ(CWnd::FindWindow("hidden"), nullptr);
    Wnd.DestroyWindow();
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
}

TEST_F(WndTest, PaintComesOnceHoweverOftenItIsAskedFor) {
    CTestWnd Wnd;
    const CLookingPeer Screen(Wnd);
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    m_Loop.RunPosted();
    Wnd.m_Messages.clear();
    for (int i = 0; i < 5; ++i) {
        Wnd.Invalidate();
    }
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_PAINT));
}

TEST_F(WndTest, APaintHandlerMayAskForTheNextPaint) {
    CTestWnd Wnd;
    int nPaints = 0;
    Wnd.m_Handler = [&](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_PAINT && ++nPaints < 3) {
            Wnd.Invalidate();
        }
        return 0;
    };
    const CLookingPeer Screen(Wnd);
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    m_Loop.RunPosted();
    EXPECT_EQ(nPaints, 3);
}

TEST_F(WndTest, NothingIsPaintedWhileNobodyLooks) {
    CTestWnd Wnd;
    CLookingPeer Screen(Wnd);
    Screen.m_bLooking = false;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.Invalidate();
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_CREATE, WM_SIZE));
    Screen.m_bLooking = true;
    Wnd.Invalidate();
    m_Loop.RunPosted();
    EXPECT_EQ(Wnd.m_Messages.back(), WM_PAINT);
}

TEST_F(WndTest, WhatFellDueIsPaintedWhenSomebodyBeginsToLook) {
    CTestWnd Top;
    CTestWnd Child;
    ASSERT_TRUE(Top.Create(nullptr, c_Rect, 0));
    ASSERT_TRUE(Child.Create(&Top, c_Rect, 1));
    m_Loop.RunPosted();
    EXPECT_EQ(Child.m_Messages.back(), WM_SIZE);
    const CLookingPeer Screen(Top);
    m_Loop.RunPosted();
    EXPECT_EQ(Top.m_Messages.back(), WM_PAINT);
    EXPECT_EQ(Child.m_Messages.back(), WM_PAINT);
}

TEST_F(WndTest, APictureThatIsAskedForIsPaintedOnce) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.m_Messages.clear();
    Wnd.GetSurface();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_PAINT));
    Wnd.Compose();
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_PAINT));
}

TEST_F(WndTest, AMessage15FromOutsideIsThePaintThatWasDue) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    Wnd.SendMessage(WM_PAINT);
    Wnd.m_Messages.clear();
    Wnd.PaintIfDue();
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
}

TEST_F(WndTest, OnlyAChangeOfSizeSendsMessage5) {
    CTestWnd Wnd;
    const CLookingPeer Screen(Wnd);
    ASSERT_TRUE(Wnd.Create(nullptr, c_Rect, 1));
    m_Loop.RunPosted();
    Wnd.m_Messages.clear();
    CRect Moved = c_Rect;
    Moved.OffsetRect(5, 5);
    Wnd.MoveWindow(Moved);
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, IsEmpty());
    EXPECT_EQ(Wnd.GetRect(), Moved);
    Wnd.MoveWindow(CRect(0, 0, 30, 40));
    m_Loop.RunPosted();
    EXPECT_THAT(Wnd.m_Messages, ElementsAre(WM_SIZE, WM_PAINT));
    EXPECT_EQ(Wnd.GetSurface().GetSize(), CSize(30, 40));
}

TEST_F(WndTest, ANegativeSizeIsAnEmptyClientArea) {
    CTestWnd Wnd;
    ASSERT_TRUE(Wnd.Create(nullptr, CRect(10, 10, 5, 5), 1));
    EXPECT_TRUE(Wnd.GetClientRect().IsRectEmpty());
    EXPECT_EQ(Wnd.GetSurface().GetSize(), CSize());
    EXPECT_EQ(Wnd.Compose().GetSize(), CSize());
}

/// A window that fills itself with one colour.
class CColored : public CWnd {
public:
    explicit CColored(COLORREF Color) : m_Color(Color) {}

protected:
    LRESULT WindowProc(UINT Message, WPARAM, LPARAM) override {
        if (Message == WM_PAINT) {
            CDC(GetSurface()).FillSolidRect(GetClientRect(), m_Color);
            SurfaceChanged();
        }
        return 0;
    }

private:
    COLORREF m_Color;
};

TEST_F(WndTest, ComposeLaysVisibleChildrenOverTheirParentAndCutsThemToIt) {
    constexpr COLORREF RED = RGB(255, 0, 0);
    constexpr COLORREF GREEN = RGB(0, 255, 0);
    constexpr COLORREF BLUE = RGB(0, 0, 255);
    CColored Top(RED);
    CColored Child(GREEN);
    CColored Grandchild(BLUE);
    CColored Hidden(BLUE);
    ASSERT_TRUE(Top.Create(nullptr, CRect(100, 100, 140, 140), 0));
    ASSERT_TRUE(Child.Create(&Top, CRect(10, 10, 30, 30), 1));
    ASSERT_TRUE(Grandchild.Create(&Child, CRect(15, 15, 60, 60), 2));
    ASSERT_TRUE(Hidden.Create(&Top, CRect(0, 0, 5, 5), 3, false));
    m_Loop.RunPosted();
    const CBitmap Picture = Top.Compose();
    EXPECT_EQ(Picture.GetSize(), CSize(40, 40));
    EXPECT_EQ(Picture.GetPixel(2, 2), RED) << "hidden";
    EXPECT_EQ(Picture.GetPixel(9, 9), RED);
    EXPECT_EQ(Picture.GetPixel(10, 10), GREEN);
    EXPECT_EQ(Picture.GetPixel(24, 24), GREEN);
    EXPECT_EQ(Picture.GetPixel(25, 25), BLUE);
    EXPECT_EQ(Picture.GetPixel(29, 29), BLUE);
    EXPECT_EQ(Picture.GetPixel(30, 30), RED) << "cut off at the child's edge";
    Child.ShowWindow(false);
    EXPECT_EQ(Top.Compose().GetPixel(10, 10), RED);
    EXPECT_EQ(Top.GetSurface().GetPixel(10, 10), RED) << "the surface itself is never drawn over";
}

class CPeer : public IFWindowPeer {
public:
    void OnWindowChanged(CWnd& rWnd) override { m_Changed.push_back(&rWnd); }
    void OnWindowDestroyed(CWnd& rWnd) override { m_Destroyed.push_back(&rWnd); }
    std::vector<CWnd*> m_Changed;
    std::vector<CWnd*> m_Destroyed;
};

TEST_F(WndTest, ThePeerOfTheTopLevelWindowHearsOfTheWholeTree) {
    CPeer Peer;
    CTestWnd Top;
    CTestWnd Child;
    ASSERT_TRUE(Top.Create(nullptr, c_Rect, 0));
    Top.SetPeer(&Peer);
    ASSERT_TRUE(Child.Create(&Top, c_Rect, 1));
    EXPECT_THAT(Peer.m_Changed, ElementsAre(&Child));
    Peer.m_Changed.clear();
    Child.SurfaceChanged();
    Child.ShowWindow(false);
    Child.ShowWindow(false);  // no change
    Top.SetWindowText("title");
    EXPECT_THAT(Peer.m_Changed, ElementsAre(&Child, &Child, &Top));
    Peer.m_Changed.clear();
    Child.DestroyWindow();
    EXPECT_THAT(Peer.m_Changed, ElementsAre(&Top));
    EXPECT_THAT(Peer.m_Destroyed, IsEmpty());
    Top.DestroyWindow();
    EXPECT_THAT(Peer.m_Destroyed, ElementsAre(&Top));
}

TEST_F(WndTest, FocusAndForegroundNeverPointAtAWindowThatIsGone) {
    CTestWnd First;
    CTestWnd Second;
    CTestWnd Child;
    First.SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), nullptr) << "no window yet";
    ASSERT_TRUE(First.Create(nullptr, c_Rect, 1));
    ASSERT_TRUE(Second.Create(nullptr, c_Rect, 2));
    ASSERT_TRUE(Child.Create(&Second, c_Rect, 3));
    EXPECT_EQ(CWnd::GetForegroundWindow(), &First);
    Child.SetFocus();
    EXPECT_EQ(CWnd::GetFocus(), &Child);
    CWnd::SetForegroundWindow(&Child);
    EXPECT_EQ(CWnd::GetForegroundWindow(), &Second) << "a child brings its top-level window forward";
    Second.DestroyWindow();
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_EQ(CWnd::GetForegroundWindow(), &First);
    First.DestroyWindow();
    EXPECT_EQ(CWnd::GetForegroundWindow(), nullptr);
}

TEST_F(WndTest, FindWindowKnowsTopLevelWindowsByTheirTitle) {
    CTestWnd Top;
    CTestWnd Child;
    ASSERT_TRUE(Top.Create(nullptr, c_Rect, 1));
    ASSERT_TRUE(Child.Create(&Top, c_Rect, 2));
    Top.SetWindowText("Console");
    Child.SetWindowText("Page");
    EXPECT_EQ(CWnd::FindWindow("Console"), &Top);
    EXPECT_EQ(CWnd::FindWindow("Page"), nullptr);
    Top.DestroyWindow();
    EXPECT_EQ(CWnd::FindWindow("Console"), nullptr);
}

}  // namespace
