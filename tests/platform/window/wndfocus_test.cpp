// Focus, capture and enabled state of windows that no view shows.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>

#include "platform/system/virtualeventloop.h"
#include "platform/window/dialog.h"
#include "platform/window/edit.h"
#include "tests/support/listeningwnd.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

WPARAM Of(const CWnd& rWnd) {
    return reinterpret_cast<WPARAM>(&rWnd);
}

class WndFocusTest : public testing::Test {
protected:
    WndFocusTest() {
        m_Top.Create(nullptr, CRect(0, 0, 100, 100), 0);
        m_Group.Create(&m_Top, CRect(0, 0, 100, 50), 1);
        m_First.Create(&m_Group, CRect(0, 0, 50, 50), 2);
        m_Second.Create(&m_Group, CRect(50, 0, 100, 50), 3);
        m_Loop.RunPosted();
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Top;
    CListeningWnd m_Group;
    CListeningWnd m_First;
    CListeningWnd m_Second;
};

TEST_F(WndFocusTest, TheLoserIsToldBeforeTheOneThatGetsIt) {
    EXPECT_TRUE(m_First.SetFocus());
    ASSERT_EQ(m_First.Of(WM_SETFOCUS).size(), 1u);
    EXPECT_EQ(m_First.Of(WM_SETFOCUS)[0].m_wParam, 0u) << "nobody had it";
    bool bGotIt = false;
    m_First.OnMessage = [&](UINT Message, WPARAM, LPARAM) -> LRESULT {
        bGotIt = Message == WM_KILLFOCUS && !m_Second.Of(WM_SETFOCUS).empty();
        return 0;
    };
    EXPECT_TRUE(m_Second.SetFocus());
    EXPECT_FALSE(bGotIt);
    ASSERT_EQ(m_First.Of(WM_KILLFOCUS).size(), 1u);
    EXPECT_EQ(m_First.Of(WM_KILLFOCUS)[0].m_wParam, Of(m_Second));
    ASSERT_EQ(m_Second.Of(WM_SETFOCUS).size(), 1u);
    EXPECT_EQ(m_Second.Of(WM_SETFOCUS)[0].m_wParam, Of(m_First));
}

TEST_F(WndFocusTest, FocusOnTheWindowThatHasItTellsNothing) {
    m_First.SetFocus();
    m_First.m_Heard.clear();
    EXPECT_TRUE(m_First.SetFocus());
    EXPECT_THAT(m_First.m_Heard, IsEmpty());
}

TEST_F(WndFocusTest, AHiddenOrDisabledWindowDoesNotTakeIt) {
    m_First.SetFocus();
    m_Second.ShowWindow(false);
    EXPECT_FALSE(m_Second.SetFocus());
    m_Second.ShowWindow(true);
    m_Second.EnableWindow(false);
    EXPECT_FALSE(m_Second.SetFocus());
    m_Second.EnableWindow(true);
    EXPECT_EQ(CWnd::GetFocus(), &m_First);
    m_Top.EnableWindow(false);
    EXPECT_FALSE(m_Second.SetFocus()) << "a parent counts as well";
}

TEST_F(WndFocusTest, HidingOrDisablingGivesTheFocusToTheParent) {
    m_First.SetFocus();
    m_First.ShowWindow(false);
    EXPECT_EQ(CWnd::GetFocus(), &m_Group);
    EXPECT_EQ(m_First.Of(WM_KILLFOCUS).size(), 1u);
    m_Second.SetFocus();
    m_Group.EnableWindow(false);
    EXPECT_EQ(CWnd::GetFocus(), &m_Top) << "the group holds the focus, and is disabled";
    EXPECT_EQ(m_Second.Of(WM_KILLFOCUS).size(), 1u);
    m_Top.ShowWindow(false);
    EXPECT_EQ(CWnd::GetFocus(), nullptr) << "there is no parent";
}

TEST_F(WndFocusTest, AHandlerMaySendTheFocusElsewhere) {
    m_First.SetFocus();
    m_First.OnMessage = [&](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_KILLFOCUS) {
            m_Top.SetFocus();
        }
        return 0;
    };
    EXPECT_FALSE(m_Second.SetFocus());
    EXPECT_EQ(CWnd::GetFocus(), &m_Top);
    EXPECT_THAT(m_Second.m_Heard, IsEmpty()) << "it never had the focus";
    EXPECT_EQ(m_Top.Of(WM_SETFOCUS).size(), 1u);
}

TEST_F(WndFocusTest, AHandlerMayDestroyTheWindowThatGetsIt) {
    auto pDoomed = std::make_unique<CListeningWnd>();
    pDoomed->Create(&m_Top, CRect(0, 0, 5, 5), 9);
    m_First.SetFocus();
    m_First.OnMessage = [&](UINT Message, WPARAM, LPARAM) -> LRESULT {
        if (Message == WM_KILLFOCUS) {
            pDoomed.reset();
        }
        return 0;
    };
    EXPECT_FALSE(pDoomed->SetFocus());
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
}

TEST_F(WndFocusTest, TabStopsFollowTheTreeWithoutHiddenAndDisabledOnes) {
    for (CWnd* pWnd : {&m_First, &m_Second}) {
        pWnd->ModifyStyle(0, WS_TABSTOP);
    }
    CListeningWnd Last;
    Last.Create(&m_Top, CRect(0, 60, 10, 70), 4);
    Last.ModifyStyle(0, WS_TABSTOP);
    EXPECT_EQ(m_Top.GetNextTabStop(nullptr, false), &m_First);
    EXPECT_EQ(m_Top.GetNextTabStop(&m_First, false), &m_Second);
    EXPECT_EQ(m_Top.GetNextTabStop(&m_Second, false), &Last);
    EXPECT_EQ(m_Top.GetNextTabStop(&Last, false), nullptr);
    EXPECT_EQ(m_Top.GetNextTabStop(&m_Group, false), &m_First) << "from a window that is no tab stop itself";
    EXPECT_EQ(m_Top.GetNextTabStop(nullptr, true), &Last);
    EXPECT_EQ(m_Top.GetNextTabStop(&m_First, true), nullptr);
    m_Second.EnableWindow(false);
    EXPECT_EQ(m_Top.GetNextTabStop(&m_First, false), &Last);
    m_Group.ShowWindow(false);
    EXPECT_EQ(m_Top.GetNextTabStop(nullptr, false), &Last);
}

TEST_F(WndFocusTest, TheLoserOfTheCaptureIsTold) {
    m_First.SetCapture();
    EXPECT_EQ(CWnd::GetCapture(), &m_First);
    m_Second.SetCapture();
    ASSERT_EQ(m_First.Of(WM_CAPTURECHANGED).size(), 1u);
    EXPECT_EQ(m_First.Of(WM_CAPTURECHANGED)[0].m_lParam, reinterpret_cast<LPARAM>(&m_Second));
    m_Group.ShowWindow(false);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_EQ(m_Second.Of(WM_CAPTURECHANGED).size(), 1u);
    m_Second.SetCapture();
    EXPECT_EQ(CWnd::GetCapture(), nullptr) << "hidden";
    m_Group.ShowWindow(true);
    m_Second.SetCapture();
    m_Second.DestroyWindow();
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(WndFocusTest, ShowAndEnableAreToldOnceTheyAreDone) {
    std::vector<bool> States;
    m_First.OnMessage = [&](UINT Message, WPARAM wParam, LPARAM) -> LRESULT {
        if (Message == WM_SHOWWINDOW) {
            States.push_back(m_First.IsWindowVisible() == (wParam != 0));
        } else if (Message == WM_ENABLE) {
            States.push_back(m_First.IsWindowEnabled() == (wParam != 0));
        }
        return 0;
    };
    m_First.ShowWindow(false);
    m_First.ShowWindow(true);
    m_First.EnableWindow(false);
    m_First.EnableWindow(false);
    m_First.EnableWindow(true);
    EXPECT_THAT(States, ElementsAre(true, true, true, true));
}

TEST_F(WndFocusTest, ANotificationThatAWindowDoesNotKnowGoesOnToItsParent) {
    CWnd Plain;
    Plain.Create(&m_Top, CRect(0, 0, 5, 5), 7);
    CEdit Edit;
    Edit.Create(&Plain, CRect(0, 0, 5, 5), 8);
    m_Top.OnNotification = [&](CWndNotification& rNotification) -> LRESULT {
        EXPECT_EQ(rNotification.m_pFrom, &Edit);
        EXPECT_EQ(rNotification.m_Id, 8u);
        return 1;
    };
    EXPECT_FALSE(Edit.ChangeByOperator("x", 1, 1)) << "the answer came back";
    EXPECT_THAT(m_Top.m_Codes, ElementsAre(EN_CHANGE));
}

class CPage : public CDialog {
public:
    CEdit m_Name;
    CEdit m_Value;
    bool m_bInitialised = false;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_CREATE) {
            m_Name.Create(this, CRect(0, 0, 50, 20), 1);
            m_Value.Create(this, CRect(0, 20, 50, 40), 2);
        } else if (Message == WM_INITDIALOG) {
            m_bInitialised = m_Name.IsWindow() && m_Value.IsWindow();
        }
        return CDialog::WindowProc(Message, wParam, lParam);
    }
};

TEST_F(WndFocusTest, ADialogStepsThroughItsControlsAndSelectsTheirTexts) {
    CPage Page;
    Page.Create(&m_Top, CRect(0, 0, 100, 100), 5);
    EXPECT_TRUE(Page.m_bInitialised);
    Page.m_Value.SetWindowText("12");
    EXPECT_TRUE(Page.GotoDlgCtrl(Page.m_Name));
    EXPECT_TRUE(Page.NextDlgCtrl());
    EXPECT_EQ(CWnd::GetFocus(), &Page.m_Value);
    int nStart = 0;
    int nEnd = 0;
    Page.m_Value.GetSel(nStart, nEnd);
    EXPECT_EQ(nStart, 0);
    EXPECT_EQ(nEnd, 2);
    EXPECT_TRUE(Page.NextDlgCtrl());
    EXPECT_EQ(CWnd::GetFocus(), &Page.m_Name) << "round the end";
    EXPECT_TRUE(Page.PrevDlgCtrl());
    EXPECT_EQ(CWnd::GetFocus(), &Page.m_Value);
    Page.EnableWindow(false);
    EXPECT_FALSE(Page.NextDlgCtrl());
}

}  // namespace
