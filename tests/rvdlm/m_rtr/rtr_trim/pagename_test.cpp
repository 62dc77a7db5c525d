#include "rvdlm/m_rtr/rtr_trim/pagename.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/display.h"
#include "platform/window/keys.h"
#include "platform/window/syscolor.h"
#include "tests/support/listeningwnd.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A page of 300 pixels with nothing but the head and one more control.
class CPageNameTest : public testing::Test {
protected:
    CPageNameTest() {
        m_Page.Create(nullptr, CRect(0, 0, 300, 200), 0);
        m_Name.CreateOn(m_Page, "Title");
        m_Other.Create(&m_Page, CRect(0, 100, 300, 120), 5);
        m_Name.SetName("Wheel");
    }
    ~CPageNameTest() override { SetDisplayBitsPerPixel(24); }

    void Type(const std::string& rText) {
        m_Name.FocusField();
        const auto nLength = static_cast<int>(rText.size());
        m_Name.GetField().ChangeByOperator(rText, nLength, nLength);
    }
    bool Press(UINT Key) { return m_Name.GetField().SendMessage(WM_KEYDOWN, Key, 1) != 0; }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    CEdit m_Other;
    std::vector<std::string> m_Taken;
    std::vector<int> m_Steps;
    int m_nFocus = 0;
    CPageName m_Name{CPageName::SETTINGS_STYLE,
                     {[this] { m_Taken.push_back(m_Name.GetName()); },
                      [this](int nDelta) { m_Steps.push_back(nDelta); }, [this] { ++m_nFocus; }}};
};

TEST_F(CPageNameTest, FieldAndUpDownControlAreChildrenOfTheTitle) {
    EXPECT_EQ(m_Page.GetDlgItem(8001), &m_Name);
    EXPECT_EQ(m_Name.GetDlgItem(8002), &m_Name.GetField());
    EXPECT_EQ(m_Name.GetDlgItem(8003), &m_Name.GetSpin());
    EXPECT_EQ(m_Name.GetText(), "Title");
    EXPECT_EQ(m_Name.GetFont(), CFont("Arial", 14, CFont::BOLD));
}

TEST_F(CPageNameTest, TheWindowsLieOverTheWidthOfThePage) {
    EXPECT_EQ(m_Name.GetRect(), CRect(10, 8, 296, 32));
    EXPECT_EQ(m_Name.GetField().GetRect(), CRect(144, 2, 268, 22));
    EXPECT_EQ(m_Name.GetSpin().GetRect(), CRect(269, 2, 284, 22));
    m_Page.MoveWindow(CRect(0, 0, 481, 200));
    m_Name.Place();
    EXPECT_EQ(m_Name.GetRect(), CRect(10, 8, 477, 32));
    EXPECT_EQ(m_Name.GetField().GetRect(), CRect(234, 2, 449, 22));
    EXPECT_EQ(m_Name.GetSpin().GetRect(), CRect(450, 2, 465, 22));
}

TEST_F(CPageNameTest, APageWithoutWidthIsNoTrouble) {
    m_Page.MoveWindow(CRect(0, 0, 0, 0));
    m_Name.Place();
    EXPECT_EQ(m_Name.GetRect().Width(), 0);
    EXPECT_EQ(m_Name.GetField().GetRect().Width(), 0);
}

TEST_F(CPageNameTest, ATitleInColourIsAGradientUnlessColoursAreFew) {
    m_Name.SendMessage(WM_PAINT);
    EXPECT_EQ(m_Name.GetSurface().GetPixel(1, 1), RGB(255, 204, 133));
    EXPECT_NE(m_Name.GetSurface().GetPixel(1, 23), RGB(255, 204, 133));
    SetDisplayBitsPerPixel(8);
    m_Name.SetHighlighted(true);
    m_Name.SendMessage(WM_PAINT);
    EXPECT_EQ(m_Name.GetSurface().GetPixel(1, 1), RGB(255, 128, 0));
    EXPECT_EQ(m_Name.GetSurface().GetPixel(1, 23), RGB(255, 128, 0));
    m_Name.SetHighlighted(false);
    m_Name.SendMessage(WM_PAINT);
    EXPECT_EQ(m_Name.GetSurface().GetPixel(1, 1), GetSysColor(SysColor::eFace));
}

TEST_F(CPageNameTest, ALetterIsNotYetAName) {
    Type("W");
    Type("Wh");
    EXPECT_TRUE(m_Name.IsEdited());
    EXPECT_EQ(m_Name.GetName(), "Wheel");
    EXPECT_THAT(m_Taken, IsEmpty());
}

TEST_F(CPageNameTest, EnterTakesTheName) {
    Type("Wheel 400");
    EXPECT_TRUE(Press(VK_RETURN));
    EXPECT_THAT(m_Taken, ElementsAre("Wheel 400"));
    EXPECT_FALSE(m_Name.IsEdited());
}

TEST_F(CPageNameTest, EnterOnTheSameNameIsThePages) {
    Type("Wheel 400");
    Type("Wheel");
    EXPECT_FALSE(Press(VK_RETURN));
    EXPECT_THAT(m_Taken, IsEmpty());
}

TEST_F(CPageNameTest, ALostFocusTakesTheNameOnce) {
    Type("Wheel 400");
    m_Other.SetFocus();
    EXPECT_THAT(m_Taken, ElementsAre("Wheel 400"));
    m_Name.FocusField();
    m_Other.SetFocus();
    EXPECT_EQ(m_Taken.size(), 1U);
}

TEST_F(CPageNameTest, TheEndOfEditingTakesTheNameWithTheFocusInTheField) {
    Type("Wheel 400");
    m_Name.EndEditing();
    m_Name.EndEditing();
    EXPECT_THAT(m_Taken, ElementsAre("Wheel 400"));
    EXPECT_TRUE(m_Name.HasFocus());
}

TEST_F(CPageNameTest, EscapeGivesTheFormerNameBack) {
    Type("Wheel 400");
    EXPECT_TRUE(Press(VK_ESCAPE));
    EXPECT_EQ(m_Name.GetField().GetWindowText(), "Wheel");
    m_Other.SetFocus();
    EXPECT_THAT(m_Taken, IsEmpty());
    m_Name.FocusField();
    EXPECT_FALSE(Press(VK_ESCAPE)) << "nothing to give back: the key is the page's";
}

TEST_F(CPageNameTest, ANameThatIsShownTellsNobodyAndEndsTheEdit) {
    Type("Wheel 400");
    m_Name.SetName("Default");
    m_Other.SetFocus();
    EXPECT_EQ(m_Name.GetField().GetWindowText(), "Default");
    EXPECT_THAT(m_Taken, IsEmpty());
}

TEST_F(CPageNameTest, ARefusedNameIsReplacedByTheOneThatHolds) {
    CPageName Refusing(CPageName::SETTINGS_STYLE, {[&Refusing] { Refusing.SetName("Wheel"); }, {}, [] {}});
    Refusing.CreateOn(m_Page, "Title");
    Refusing.SetName("Wheel");
    Refusing.FocusField();
    Refusing.GetField().ChangeByOperator("Other", 5, 5);
    Refusing.EndEditing();
    EXPECT_EQ(Refusing.GetName(), "Wheel");
    EXPECT_EQ(Refusing.GetField().GetWindowText(), "Wheel");
}

TEST_F(CPageNameTest, AStepIsThePagesAndTakesTheNameFirst) {
    m_Name.GetSpin().SetRange(0, 3);
    Type("Wheel 400");
    m_Name.GetSpin().Click(CSpinButtonCtrl::eUp);
    EXPECT_THAT(m_Taken, ElementsAre("Wheel 400"));
    m_Name.GetSpin().Click(CSpinButtonCtrl::eDown);
    EXPECT_THAT(m_Steps, ElementsAre(1, -1));
    EXPECT_EQ(m_Name.GetSpin().GetPos(), 0) << "the page sets it";
}

TEST_F(CPageNameTest, StepsStayAtTheEndsOrWrapAsThePageWants) {
    m_Name.GetSpin().SetRange(0, 2);
    EXPECT_EQ(m_Name.GetStepTarget(-1), 0);
    EXPECT_EQ(m_Name.GetStepTarget(5), 2);
    CPageName Wrapping(CPageName::SCREW_TABLE_STYLE, {});
    Wrapping.GetSpin().SetRange(0, 2);
    EXPECT_EQ(Wrapping.GetStepTarget(-1), 2);
    EXPECT_EQ(Wrapping.GetStepTarget(1), 1);
    EXPECT_EQ(Wrapping.GetStepTarget(3), 0);
}

TEST_F(CPageNameTest, TheFocusSelectsAllAndIsTold) {
    m_Other.SetFocus();
    m_Name.GetField().SetSel(2, 2);
    EXPECT_TRUE(m_Name.FocusField());
    EXPECT_EQ(m_nFocus, 1);
    int nStart = -1;
    int nEnd = -1;
    m_Name.GetField().GetSel(nStart, nEnd);
    EXPECT_EQ(nStart, 0);
    EXPECT_EQ(nEnd, 5);
    m_Page.ShowWindow(false);
    EXPECT_FALSE(m_Name.FocusField());
}

TEST_F(CPageNameTest, AFieldWithoutFocusShowsNoSelectionAndTheBeginningOfTheName) {
    m_Name.FocusField();
    m_Other.SetFocus();
    EXPECT_EQ(m_Name.GetField().GetAnchor(), 0);
    EXPECT_EQ(m_Name.GetField().GetCaret(), 0);
}

TEST_F(CPageNameTest, PlacesOfNamesAreFound) {
    EXPECT_EQ(CPageName::Find({"a", "b"}, "b"), 1);
    EXPECT_EQ(CPageName::Find({"a", "b"}, "c"), -1);
}

}  // namespace
