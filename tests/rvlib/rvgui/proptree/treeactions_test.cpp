// A tree in keyboard-only mode, operated by softkeys.
#include <gmock/gmock.h>

#include "platform/window/display.h"
#include "platform/window/syscolor.h"
#include "tests/rvlib/rvgui/proptree/treefixture.h"

namespace PropTree {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class TreeActionsTest : public CTreeFixture {
protected:
    TreeActionsTest() : CTreeFixture(CPropTree::eKeyboardOnly) {}
    void StepBriefly(bool bUp) {
        m_pTree->StartStepping(bUp);
        m_Loop.Advance(100);
        m_pTree->StopStepping();
    }
};

TEST_F(TreeActionsTest, AWholeEditByActionsAlone) {
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pSpeed);
    m_pTree->Accept();
    EXPECT_TRUE(m_pSpeed->IsActive());
    EXPECT_EQ(CWnd::GetFocus(), &List()) << "softkeys alone: the focus goes back to the tree";
    EXPECT_THAT(CodesOf(m_pSpeed), ElementsAre(-1105)) << "told as it begins";
    EXPECT_FALSE(m_pSpeed->IsWindowVisible());
    StepBriefly(true);
    StepBriefly(true);
    StepBriefly(false);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 101u);
    m_pTree->Accept();
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    m_pTree->Accept();
    StepBriefly(true);
    EXPECT_TRUE(m_pTree->SelectNeighbour(true)) << "leaves the editing";
    EXPECT_EQ(m_pDirection->GetItemValue(), 1);
    EXPECT_FALSE(m_pDirection->IsActive());
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
}

TEST_F(TreeActionsTest, BothEndsOfTheListAreTold) {
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    EXPECT_FALSE(m_pTree->SelectNeighbour(false));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pGroup);
    m_pTree->SetFocusedItem(nullptr);
    EXPECT_TRUE(m_pTree->SelectNeighbour(false));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
    EXPECT_FALSE(m_pTree->SelectNeighbour(true));
}

TEST_F(TreeActionsTest, ExpandAsksAndToggles) {
    m_pTree->ToggleExpanded();
    EXPECT_THAT(m_Told, IsEmpty()) << "nothing selected";
    m_pTree->SelectNeighbour(true);
    m_pTree->ToggleExpanded();
    EXPECT_FALSE(m_pGroup->IsExpanded());
    EXPECT_THAT(m_Told, ElementsAre(CTold{-1108, m_pGroup}));
    EXPECT_TRUE(m_pTree->SelectNeighbour(true));
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pResult);
}

TEST_F(TreeActionsTest, AValueKeyStepsWithoutEditingAndRepeatsWhileItIsHeld) {
    m_pTree->SetFocusedItem(m_pTime);
    m_pTree->StartStepping(true);
    EXPECT_FALSE(m_pTime->IsActive());
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.1);
    m_Loop.Advance(850);
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.3);
    m_pTree->StopStepping();
    m_Loop.Advance(5000);
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.3);
    EXPECT_THAT(CodesOf(m_pTime), ElementsAre(-1105, -1105, -1105));
}

TEST_F(TreeActionsTest, MovingOnEndsTheSeries) {
    m_pTree->SetFocusedItem(m_pTime);
    m_pTree->StartStepping(true);
    m_pTree->SelectNeighbour(true);
    m_Loop.Advance(5000);
    EXPECT_DOUBLE_EQ(m_pTime->GetItemValue(), 5.1);
    EXPECT_EQ(m_pDirection->GetItemValue(), 0);
}

TEST_F(TreeActionsTest, TheMouseChangesNothing) {
    Click(LabelOf(*m_pSpeed));
    Click(ValueOf(*m_pSpeed));
    Click(BoxOf(*m_pGroup));
    Press({m_pTree->GetOrigin(), MiddleOf(*m_pSpeed)});
    Move({50, MiddleOf(*m_pSpeed)});
    LetGo({50, MiddleOf(*m_pSpeed)});
    EXPECT_EQ(List().SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, -120)), 0);
    EXPECT_EQ(m_pTree->GetFocusedItem(), nullptr);
    EXPECT_TRUE(m_pGroup->IsExpanded());
    EXPECT_EQ(CWnd::GetFocus(), nullptr);
    EXPECT_EQ(CWnd::GetCapture(), nullptr);
    EXPECT_EQ(List().GetCursor(), Cursor::eArrow);
    EXPECT_THAT(m_Told, IsEmpty());
}

TEST_F(TreeActionsTest, KeysEditToo) {
    m_pTree->SetFocusedItem(m_pSpeed);
    List().SetFocus();
    Key(VK_RETURN);
    ASSERT_TRUE(m_pSpeed->IsActive());
    Key(VK_RIGHT);
    Key(VK_RIGHT);
    Key(VK_LEFT);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 101u);
    Key(VK_ESCAPE);
    EXPECT_EQ(m_pSpeed->GetItemValue(), 100u);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(CodesOf(m_pSpeed).size(), 1u + 3u + 1u);
    Key(VK_RETURN);
    Key(VK_DOWN);
    EXPECT_FALSE(m_pSpeed->IsActive());
    EXPECT_EQ(m_pTree->GetFocusedItem(), m_pTime);
}

TEST_F(TreeActionsTest, ThereIsAFrameInsteadOfTheGutter) {
    m_Loop.RunPosted();
    constexpr COLORREF GREY = RGB(134, 134, 134);
    const CBitmap& rPicture = List().GetSurface();
    for (const int i : {0, 2}) {
        EXPECT_EQ(rPicture.GetPixel(150, i), GREY);
        EXPECT_EQ(rPicture.GetPixel(i, 150), GREY);
        EXPECT_EQ(rPicture.GetPixel(299 - i, 150), GREY);
        EXPECT_EQ(rPicture.GetPixel(150, 199 - i), GREY);
    }
    EXPECT_EQ(rPicture.GetPixel(1, 1), GetSysColor(SysColor::eFace));
}

TEST_F(CTreeFixture, TheGuttersColourFollowsTheDisplay) {
    m_Loop.RunPosted();
    EXPECT_EQ(List().GetSurface().GetPixel(15, 100), RGB(244, 242, 232));
    SetDisplayBitsPerPixel(8);
    List().Redraw();
    m_Loop.RunPosted();
    EXPECT_EQ(List().GetSurface().GetPixel(15, 100), GetSysColor(SysColor::eFace));
    SetDisplayBitsPerPixel(24);
}

TEST_F(CTreeFixture, TopLevelRowsFadeAsTheGradientDoes) {
    m_Loop.RunPosted();
    const CBitmap& rPicture = List().GetSurface();
    const COLORREF Top = rPicture.GetPixel(290, 0);
    EXPECT_EQ(rPicture.GetPixel(290, 10), Top) << "t = 28 / 3 + 1";
    EXPECT_EQ(GetRValue(rPicture.GetPixel(290, 11)), GetRValue(Top) - 3);
    EXPECT_EQ(GetBValue(rPicture.GetPixel(290, 27)), GetBValue(Top) - 3 * 17);
}

}  // namespace
}  // namespace PropTree
