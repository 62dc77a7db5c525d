// The controls' own state and what they tell, without any view.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

#include "platform/system/virtualeventloop.h"
#include "platform/window/combobox.h"
#include "platform/window/edit.h"
#include "platform/window/imagelist.h"
#include "platform/window/messageparams.h"
#include "platform/window/scrollbar.h"
#include "platform/window/spinbuttonctrl.h"
#include "platform/window/static.h"
#include "platform/window/syscolor.h"
#include "tests/support/listeningwnd.h"
#include "tests/support/pixels.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ControlsTest : public testing::Test {
protected:
    ControlsTest() { m_Parent.Create(nullptr, CRect(0, 0, 200, 100), 0); }

    static std::pair<int, int> GetSel(const CEdit& rEdit) {
        std::pair<int, int> Result;
        rEdit.GetSel(Result.first, Result.second);
        return Result;
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Parent;
};

TEST_F(ControlsTest, ParametersCarryNegativePointsAndLargePositions) {
    EXPECT_EQ(GetPointParam(MakePointParam({-3, 40})), CPoint(-3, 40));
    EXPECT_EQ(GetWheelParam(MakeWheelParam(MK_SHIFT, -WHEEL_DELTA)), -120);
    EXPECT_EQ(MakeWheelParam(MK_SHIFT, -WHEEL_DELTA) & 0xFFFFU, MK_SHIFT);
    EXPECT_EQ(GetScrollPosition(MakeScrollParam(SB_THUMBTRACK, 200000)), 200000)
        << "10,000 rows of 20 pixels";
    EXPECT_EQ(GetScrollPosition(MakeScrollParam(SB_TOP, -1)), -1);
    EXPECT_EQ(GetScrollCode(MakeScrollParam(SB_THUMBTRACK, 200000)), SB_THUMBTRACK);
}

TEST_F(ControlsTest, AnEditSelectsCharactersNotBytes) {
    CEdit Edit;
    Edit.SetWindowText("µm/s");
    EXPECT_EQ(GetSel(Edit), std::pair(0, 0));
    Edit.SelectAll();
    EXPECT_EQ(GetSel(Edit), std::pair(0, 4));
    Edit.SetSel(3, 99);
    EXPECT_EQ(GetSel(Edit), std::pair(3, 4));
    Edit.SetSel(-1, 2);
    EXPECT_EQ(GetSel(Edit), std::pair(2, 2));
    Edit.SetSel(3, 1);
    EXPECT_EQ(GetSel(Edit), std::pair(1, 3)) << "backwards";
    EXPECT_EQ(Edit.GetCaret(), 1);
    Edit.SetWindowText("g");
    EXPECT_EQ(GetSel(Edit), std::pair(0, 0)) << "a new text";
}

TEST_F(ControlsTest, OnlyTheOperatorsChangeIsTold) {
    CEdit Edit;
    Edit.Create(&m_Parent, CRect(0, 0, 50, 20), 5);
    Edit.SetWindowText("1");
    EXPECT_THAT(m_Parent.m_Codes, IsEmpty());
    EXPECT_TRUE(Edit.ChangeByOperator("12", 2, 2));
    EXPECT_THAT(m_Parent.m_Codes, ElementsAre(EN_CHANGE));
    EXPECT_TRUE(Edit.ChangeByOperator("12", 0, 2));
    EXPECT_THAT(m_Parent.m_Codes, ElementsAre(EN_CHANGE)) << "no other text, only a selection";
    EXPECT_EQ(GetSel(Edit), std::pair(0, 2));
}

TEST_F(ControlsTest, ARefusedChangeGivesTextAndSelectionBack) {
    CEdit Edit;
    Edit.Create(&m_Parent, CRect(0, 0, 50, 20), 5);
    Edit.SetWindowText("12");
    Edit.SelectAll();
    m_Parent.OnNotification = [&](CWndNotification&) -> LRESULT {
        EXPECT_EQ(Edit.GetWindowText(), "x") << "the handler reads the new text";
        return 1;
    };
    EXPECT_FALSE(Edit.ChangeByOperator("x", 1, 1));
    EXPECT_EQ(Edit.GetWindowText(), "12");
    EXPECT_EQ(GetSel(Edit), std::pair(0, 2));
}

TEST_F(ControlsTest, AHandlerMayWriteAnotherTextInstead) {
    CEdit Edit;
    Edit.Create(&m_Parent, CRect(0, 0, 50, 20), 5);
    for (const LRESULT Answer : {0, 1}) {
        m_Parent.OnNotification = [&](CWndNotification&) -> LRESULT {
            Edit.SetWindowText("7.0");
            Edit.SelectAll();
            return Answer;
        };
        Edit.ChangeByOperator("7.x", 3, 3);
        EXPECT_EQ(Edit.GetWindowText(), "7.0");
        EXPECT_EQ(GetSel(Edit), std::pair(0, 3));
    }
}

TEST_F(ControlsTest, ACorrectedTextKeepsTheSelectionAndIsToldToNobody) {
    CEdit Edit;
    Edit.Create(&m_Parent, CRect(0, 0, 50, 20), 1);
    Edit.SetWindowText("1,55");
    Edit.SetSel(3, 1);
    Edit.CorrectText("1.55");
    EXPECT_EQ(Edit.GetWindowText(), "1.55");
    EXPECT_EQ(Edit.GetAnchor(), 3);
    EXPECT_EQ(Edit.GetCaret(), 1);
    Edit.CorrectText("7");
    EXPECT_EQ(Edit.GetAnchor(), 1) << "the end of a shorter text";
    EXPECT_TRUE(m_Parent.m_Codes.empty());
}

TEST_F(ControlsTest, AControlMayBeDestroyedByWhatItTells) {
    auto* const pEdit = new CEdit;
    pEdit->Create(&m_Parent, CRect(0, 0, 50, 20), 5);
    auto* const pCombo = new CComboBox;
    pCombo->Create(&m_Parent, CRect(0, 20, 50, 40), 6);
    pCombo->AddString("a");
    auto* const pSpin = new CSpinButtonCtrl;
    pSpin->Create(&m_Parent, CRect(0, 40, 50, 60), 7);
    m_Parent.OnNotification = [](CWndNotification& rNotification) -> LRESULT {
        delete rNotification.m_pFrom;
        return 1;
    };
    EXPECT_FALSE(pEdit->ChangeByOperator("x", 1, 1));
    EXPECT_FALSE(pCombo->SelectByOperator(0));
    pSpin->Click(CSpinButtonCtrl::eUp);
    EXPECT_THAT(m_Parent.GetChildren(), IsEmpty());
}

TEST_F(ControlsTest, ControlsTellOfTheirFocus) {
    CEdit Edit;
    CComboBox Combo;
    Edit.Create(&m_Parent, CRect(0, 0, 50, 20), 5);
    Combo.Create(&m_Parent, CRect(0, 20, 50, 40), 6);
    Edit.SetFocus();
    Combo.SetFocus();
    m_Parent.SetFocus();
    EXPECT_THAT(m_Parent.m_Codes, ElementsAre(EN_SETFOCUS, EN_KILLFOCUS, CBN_SETFOCUS, CBN_KILLFOCUS));
}

TEST_F(ControlsTest, AComboKeepsANumberWithEachItem) {
    CComboBox Combo;
    EXPECT_EQ(Combo.AddString("clockwise"), 0) << "also before it is created";
    EXPECT_EQ(Combo.AddString("counter"), 1);
    EXPECT_TRUE(Combo.SetItemData(1, 42));
    EXPECT_FALSE(Combo.SetItemData(2, 42));
    EXPECT_EQ(Combo.GetItemData(1), 42u);
    EXPECT_EQ(Combo.GetItemData(0), 0u);
    EXPECT_EQ(Combo.GetItemData(-1), 0u);
    EXPECT_EQ(Combo.FindStringExact("counter"), 1);
    EXPECT_EQ(Combo.FindStringExact("count"), -1);
    EXPECT_EQ(Combo.GetLBText(7), "");
    EXPECT_EQ(Combo.GetCurSel(), -1);
    EXPECT_TRUE(Combo.SetCurSel(1));
    EXPECT_FALSE(Combo.SetCurSel(2));
    EXPECT_TRUE(Combo.DeleteString(0));
    EXPECT_EQ(Combo.GetCurSel(), 0) << "still the same item";
    EXPECT_TRUE(Combo.DeleteString(0));
    EXPECT_EQ(Combo.GetCurSel(), -1);
    EXPECT_FALSE(Combo.DeleteString(0));
}

TEST_F(ControlsTest, AFullComboRefusesAnItem) {
    CComboBox Combo;
    for (int i = 0; i < CComboBox::MAX_ITEMS; ++i) {
        ASSERT_EQ(Combo.AddString("x"), i);
    }
    EXPECT_EQ(Combo.AddString("x"), -1);
    EXPECT_EQ(Combo.GetCount(), CComboBox::MAX_ITEMS);
    Combo.ResetContent();
    EXPECT_EQ(Combo.AddString("x"), 0);
}

TEST_F(ControlsTest, AChoiceMayBeRefused) {
    CComboBox Combo;
    Combo.Create(&m_Parent, CRect(0, 0, 50, 20), 6);
    Combo.AddString("a");
    Combo.AddString("b");
    Combo.SetCurSel(0);
    EXPECT_TRUE(Combo.SelectByOperator(0)) << "the same one: nothing to tell";
    EXPECT_THAT(m_Parent.m_Codes, IsEmpty());
    EXPECT_TRUE(Combo.SelectByOperator(1));
    EXPECT_THAT(m_Parent.m_Codes, ElementsAre(CBN_SELCHANGE));
    m_Parent.OnNotification = [](CWndNotification&) -> LRESULT { return 1; };
    EXPECT_FALSE(Combo.SelectByOperator(0));
    EXPECT_EQ(Combo.GetCurSel(), 1);
    EXPECT_FALSE(Combo.SelectByOperator(2));
}

class SpinTest : public ControlsTest {
protected:
    SpinTest() {
        m_Spin.Create(&m_Parent, CRect(0, 0, 15, 20), 7);
        m_Spin.SetRange(0, 10);
        m_Parent.OnNotification = [this](CWndNotification& rNotification) -> LRESULT {
            const auto& rDelta = static_cast<const CDeltaPosNotification&>(rNotification);
            m_Steps.emplace_back(rDelta.m_Pos, rDelta.m_Delta);
            return m_Answer;
        };
    }
    void Press(CPoint Point) { m_Spin.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(Point)); }
    void LetGo() { m_Spin.SendMessage(WM_LBUTTONUP); }

    CSpinButtonCtrl m_Spin;
    std::vector<std::pair<int, int>> m_Steps;
    LRESULT m_Answer = 0;
};

TEST_F(SpinTest, TheTopCountsUpAndTheBottomDown) {
    m_Spin.SetPos(5);
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 6);
    Press({7, 19});
    LetGo();
    EXPECT_EQ(m_Spin.GetPos(), 5);
    EXPECT_THAT(m_Steps, ElementsAre(std::pair(5, 1), std::pair(6, -1)));
    m_Spin.SetRange(10, 0);
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 4) << "a range upside down";
}

TEST_F(SpinTest, AtTheEndItStaysOrWraps) {
    m_Spin.SetPos(99);
    EXPECT_EQ(m_Spin.GetPos(), 10);
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 10);
    m_Spin.SetWrap(true);
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 0);
    m_Spin.Click(CSpinButtonCtrl::eDown);
    EXPECT_EQ(m_Spin.GetPos(), 10);
    EXPECT_EQ(m_Steps.size(), 3u) << "the parent is asked at the end, too";
}

TEST_F(SpinTest, AParentThatDealsWithTheStepKeepsThePosition) {
    m_Answer = 1;
    m_Spin.SetPos(5);
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 5);
}

TEST_F(SpinTest, AHeldButtonRepeatsAndItsStepsGrow) {
    m_Spin.SetRange(0, 1000);
    EXPECT_FALSE(m_Spin.SetAccel({}));
    EXPECT_TRUE(m_Spin.SetAccel(std::array{CSpinButtonCtrl::CAccel{0, 2}, CSpinButtonCtrl::CAccel{1, 10}}));
    Press({7, 2});
    EXPECT_EQ(m_Spin.GetPressed(), CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 2) << "at once";
    m_Loop.Advance(399);
    EXPECT_EQ(m_Spin.GetPos(), 2);
    m_Loop.Advance(1);
    EXPECT_EQ(m_Spin.GetPos(), 4);
    m_Loop.Advance(500);
    EXPECT_EQ(m_Spin.GetPos(), 14) << "every 100 ms";
    m_Loop.Advance(100);
    EXPECT_EQ(m_Spin.GetPos(), 24) << "1 s after the press";
    LetGo();
    m_Loop.Advance(1000);
    EXPECT_EQ(m_Spin.GetPos(), 24);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
}

TEST_F(SpinTest, RepetitionEndsWhenTheButtonIsHiddenDisabledOrLosesTheCapture) {
    const auto ExpectEnd = [this](const char* pWhy, auto End) {
        Press({7, 2});
        End();
        const int nBefore = m_Spin.GetPos();
        m_Loop.Advance(2000);
        EXPECT_EQ(m_Spin.GetPos(), nBefore) << pWhy;
        EXPECT_EQ(m_Spin.GetPressed(), CSpinButtonCtrl::eNone) << pWhy;
        m_Spin.SetPos(0);
    };
    ExpectEnd("disabled", [this] { m_Spin.EnableWindow(false); });
    Press({7, 2});
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 0) << "disabled: no press counts";
    m_Spin.EnableWindow(true);
    ExpectEnd("hidden", [this] { m_Spin.ShowWindow(false); });
    m_Spin.Click(CSpinButtonCtrl::eUp);
    EXPECT_EQ(m_Spin.GetPos(), 1) << "a program may click a hidden one";
    m_Spin.ShowWindow(true);
    ExpectEnd("capture", [this] { m_Parent.SetCapture(); });
    CWnd::ReleaseCapture();
}

TEST_F(SpinTest, BothButtonsAreDrawn) {
    m_Loop.RunPosted();
    const CBitmap Free = m_Spin.GetSurface();
    EXPECT_TRUE(FindDifference(Free, CBitmap(Free.GetSize())));
    Press({7, 2});
    m_Loop.RunPosted();
    const auto Changed = FindDifference(Free, m_Spin.GetSurface());
    ASSERT_TRUE(Changed);
    EXPECT_LE(Changed->bottom, 10) << "only the upper one is pressed";
    LetGo();
}

TEST_F(ControlsTest, AScrollBarsPositionEndsWhereTheLastPageBegins) {
    CScrollBar Bar;
    Bar.Create(&m_Parent, CRect(180, 0, 200, 100), 8);
    Bar.SetScrollRange(0, 1000, 100);
    EXPECT_EQ(Bar.GetLimit(), 900);
    Bar.SetScrollPos(5000);
    EXPECT_EQ(Bar.GetScrollPos(), 900);
    Bar.SetScrollRange(0, 300, 100);
    EXPECT_EQ(Bar.GetScrollPos(), 200);
    Bar.SetScrollRange(0, 50, 100);
    EXPECT_EQ(Bar.GetScrollPos(), 0) << "all is in sight";
}

TEST_F(ControlsTest, AScrollBarKnowsWhereEachOfItsPartsLeads) {
    CScrollBar Bar;
    Bar.SetScrollRange(0, 1000, 100);
    Bar.SetScrollPos(50);
    EXPECT_EQ(Bar.GetTarget(SB_LINEUP, 7, 20), 30);
    EXPECT_EQ(Bar.GetTarget(SB_LINEDOWN, 7, 20), 70);
    EXPECT_EQ(Bar.GetTarget(SB_PAGEUP, 7, 20), -50) << "it is the parent's to keep within the range";
    EXPECT_EQ(Bar.GetTarget(SB_PAGEDOWN, 7, 20), 150);
    EXPECT_EQ(Bar.GetTarget(SB_THUMBPOSITION, 7, 20), 7);
    EXPECT_EQ(Bar.GetTarget(SB_THUMBTRACK, 8, 20), 8);
    EXPECT_EQ(Bar.GetTarget(SB_TOP, 7, 20), 0);
    EXPECT_EQ(Bar.GetTarget(SB_BOTTOM, 7, 20), 1000);
    EXPECT_EQ(Bar.GetScrollPos(), 50);
}

TEST_F(ControlsTest, AScrollBarLeavesThePositionToItsParent) {
    CScrollBar Bar;
    Bar.Create(&m_Parent, CRect(180, 0, 200, 100), 8);
    Bar.SetScrollRange(0, 1000, 100);
    Bar.ScrollByOperator(SB_THUMBTRACK, 300);
    ASSERT_EQ(m_Parent.Of(WM_VSCROLL).size(), 1u);
    EXPECT_EQ(GetScrollCode(m_Parent.Of(WM_VSCROLL)[0].m_wParam), SB_THUMBTRACK);
    EXPECT_EQ(GetScrollPosition(m_Parent.Of(WM_VSCROLL)[0].m_wParam), 300);
    EXPECT_EQ(m_Parent.Of(WM_VSCROLL)[0].m_lParam, reinterpret_cast<LPARAM>(static_cast<CWnd*>(&Bar)));
    EXPECT_EQ(Bar.GetScrollPos(), 0);
    CScrollBar Lying(CScrollBar::eHorizontal);
    Lying.Create(&m_Parent, CRect(0, 80, 180, 100), 9);
    Lying.ScrollByOperator(SB_LINEDOWN, 1);
    EXPECT_EQ(m_Parent.Of(WM_HSCROLL).size(), 1u);
}

TEST_F(ControlsTest, AStaticTextIsGreyWhenDisabled) {
    CStatic Text;
    Text.Create(&m_Parent, CRect(0, 0, 100, 30), 9);
    Text.SetWindowText("HHH");
    m_Loop.RunPosted();
    EXPECT_GT(CountPixels(Text.GetSurface(), GetSysColor(SysColor::eWindowText)), 0);
    EXPECT_GT(CountPixels(Text.GetSurface(), GetSysColor(SysColor::eFace)), 0);
    Text.EnableWindow(false);
    m_Loop.RunPosted();
    EXPECT_EQ(CountPixels(Text.GetSurface(), GetSysColor(SysColor::eWindowText)), 0);
    EXPECT_GT(CountPixels(Text.GetSurface(), GetSysColor(SysColor::eGrayText)), 0);
}

// Pictures of a page that nobody looks at: reports, headless runs.
TEST_F(ControlsTest, ControlsAppearInAPictureWithoutAView) {
    CEdit Edit;
    Edit.SetWindowText("HHHH");
    Edit.Create(&m_Parent, CRect(20, 20, 120, 45), 5);
    m_Loop.RunPosted();
    const CBitmap Picture = m_Parent.Compose();
    EXPECT_EQ(Picture.GetPixel(115, 40), GetSysColor(SysColor::eWindow)) << "the box";
    EXPECT_TRUE(FindColor(Picture, CRect(20, 20, 120, 45), GetSysColor(SysColor::eWindowText))) << "its text";
    EXPECT_EQ(Picture.GetPixel(121, 30), GetSysColor(SysColor::eFace));
    Edit.ShowWindow(false);
    EXPECT_EQ(CountPixels(m_Parent.Compose(), GetSysColor(SysColor::eFace)), 200 * 100);
}

TEST_F(ControlsTest, AnImageListDrawsAllButTheMaskedPixels) {
    CBitmap Strip(CSize(6, 2));
    {
        CDC DC(Strip);
        DC.FillSolidRect(CRect(0, 0, 6, 2), RGB(255, 0, 255));
        DC.FillSolidRect(CRect(2, 0, 3, 1), RGB(0, 0, 255));
    }
    CImageList Images;
    EXPECT_FALSE(Images.Create(Strip, 7, RGB(255, 0, 255)));
    ASSERT_TRUE(Images.Create(Strip, 2, RGB(255, 0, 255)));
    EXPECT_EQ(Images.GetImageCount(), 3);
    EXPECT_EQ(Images.GetImageSize(), CSize(2, 2));
    const CBitmap Image = Images.GetImage(1, RGB(1, 2, 3));
    EXPECT_EQ(Image.GetPixel(0, 0), RGB(0, 0, 255));
    EXPECT_EQ(Image.GetPixel(1, 0), RGB(1, 2, 3));
    EXPECT_EQ(Image.GetPixel(0, 1), RGB(1, 2, 3));
    EXPECT_EQ(Images.GetImage(3, 0).GetSize(), CSize());
}

}  // namespace
