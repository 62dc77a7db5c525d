#include "platform/window/tabctrl.h"

#include <gtest/gtest.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "tests/support/pixels.h"

namespace {

class TabCtrlTest : public testing::Test {
protected:
    CVirtualEventLoop m_Loop;
    CTabCtrl m_Tabs;
};

TEST_F(TabCtrlTest, TheFirstTabIsSelectedAndStaysSoWhenOthersComeBeforeIt) {
    EXPECT_EQ(m_Tabs.GetCurSel(), -1);
    EXPECT_EQ(m_Tabs.InsertItem(0, "Settings"), 0);
    EXPECT_EQ(m_Tabs.GetCurSel(), 0);
    EXPECT_EQ(m_Tabs.InsertItem(1, "Masses"), 1);
    EXPECT_EQ(m_Tabs.GetCurSel(), 0);
    EXPECT_EQ(m_Tabs.InsertItem(0, "New"), 0);
    EXPECT_EQ(m_Tabs.GetCurSel(), 1);
    EXPECT_EQ(m_Tabs.GetItemText(1), "Settings");
}

TEST_F(TabCtrlTest, IndicesOutOfRangeChangeNothing) {
    EXPECT_EQ(m_Tabs.InsertItem(1, "a"), -1);
    EXPECT_EQ(m_Tabs.InsertItem(-1, "a"), -1);
    EXPECT_FALSE(m_Tabs.DeleteItem(0));
    m_Tabs.InsertItem(0, "a");
    EXPECT_EQ(m_Tabs.SetCurSel(1), -1);
    EXPECT_EQ(m_Tabs.SetCurSel(-1), -1);
    EXPECT_EQ(m_Tabs.GetCurSel(), 0);
}

TEST_F(TabCtrlTest, SelectingAnswersTheFormerSelection) {
    m_Tabs.InsertItem(0, "a");
    m_Tabs.InsertItem(1, "b");
    EXPECT_EQ(m_Tabs.SetCurSel(1), 0);
    EXPECT_EQ(m_Tabs.SetCurSel(1), 1);
}

TEST_F(TabCtrlTest, DeletingKeepsTheSelectionOnATab) {
    for (const char* pText : {"c", "b", "a"}) {
        m_Tabs.InsertItem(0, pText);
    }
    m_Tabs.SetCurSel(2);
    EXPECT_TRUE(m_Tabs.DeleteItem(0));
    EXPECT_EQ(m_Tabs.GetCurSel(), 1) << "still c";
    EXPECT_TRUE(m_Tabs.DeleteItem(1));
    EXPECT_EQ(m_Tabs.GetCurSel(), 0) << "the last one is left";
    EXPECT_TRUE(m_Tabs.DeleteItem(0));
    EXPECT_EQ(m_Tabs.GetCurSel(), -1);
}

TEST_F(TabCtrlTest, APictureShowsWhichTabIsSelected) {
    ASSERT_TRUE(m_Tabs.Create(nullptr, CRect(0, 0, 300, 100), 1));
    m_Tabs.InsertItem(0, "A");
    m_Tabs.InsertItem(1, "B");
    m_Loop.RunPosted();
    const CBitmap First = m_Tabs.Compose();
    m_Tabs.SetCurSel(1);
    m_Loop.RunPosted();
    const auto Changed = FindDifference(First, m_Tabs.Compose());
    ASSERT_TRUE(Changed);
    EXPECT_LE(Changed->bottom, CTabCtrl::TAB_HEIGHT);
}

TEST_F(TabCtrlTest, TabsShowTheirPictures) {
    ASSERT_TRUE(m_Tabs.Create(nullptr, CRect(0, 0, 300, 100), 1));
    CBitmap Strip(CSize(16, 16));
    CDC(Strip).FillSolidRect(CRect(0, 0, 16, 16), RGB(255, 0, 0));
    CImageList Images;
    ASSERT_TRUE(Images.Create(Strip, 16, RGB(255, 0, 255)));
    m_Tabs.SetImageList(Images);
    m_Tabs.InsertItem(0, "A");
    EXPECT_FALSE(FindColor(m_Tabs.Compose(), CRect(0, 0, 300, 24), RGB(255, 0, 0)));
    m_Tabs.InsertItem(1, "B", 0);
    EXPECT_EQ(m_Tabs.GetItemImage(1), 0);
    EXPECT_TRUE(FindColor(m_Tabs.Compose(), CRect(0, 0, 300, 24), RGB(255, 0, 0)));
}

TEST_F(TabCtrlTest, ThePageLiesUnderTheTabs) {
    ASSERT_TRUE(m_Tabs.Create(nullptr, CRect(0, 0, 300, 100), 1));
    EXPECT_EQ(m_Tabs.GetDisplayArea(), CRect(0, CTabCtrl::TAB_HEIGHT, 300, 100));
    m_Tabs.MoveWindow(CRect(0, 0, 300, 10));
    EXPECT_TRUE(m_Tabs.GetDisplayArea().IsRectEmpty());
}

}  // namespace
