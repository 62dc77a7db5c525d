// The flex table as an operator sees it, on a display of the usual and of twice the resolution. To store the
// pictures anew:
//   ROTOR_TRIM_STORE_PICTURES=1 build/debug/tests/picture_tests --gtest_filter='*FlexTable*'
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <functional>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/windowview.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dialog.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/flextable/flextableheader.h"
#include "tests/pictures/tests/storedpicture.h"

namespace {

/// A page with a table of screws below its header.
class CTablePage {
public:
    CTablePage() {
        QApplication::setCursorFlashTime(0);
        m_Page.Create(nullptr, CRect(0, 0, 340, 190), 0);
        m_Header.Create(&m_Page, CRect(10, 10, 330, 30), 100);
        m_Table.SetColumns({{CFlexTable::eString, "Name", ""}, {CFlexTable::eDouble, "Weight", "g"}});
        m_Table.SetDefaultValues({"Screw", "0.000000"});
        m_Table.Create(&m_Page, CRect(10, 30, 330, 180), 101);
        m_pView = std::make_unique<CWindowView>(m_Page);
    }

    void AddRows(int nCount) {
        for (int i = 1; i <= nCount; ++i) {
            const unsigned Row = m_Table.AddRow();
            m_Table.SetItemData(Row, 0, "M" + std::to_string(i));
            m_Table.SetItemData(Row, 1, 0.35 * i);
        }
    }
    CEdit& GetBox() { return dynamic_cast<CEdit&>(*m_Table.GetDlgItem(CFlexTable::eBoxId)); }

    /// All pixels, as a picture of the usual resolution.
    CBitmap Take(double Scale) {
        m_Page.SetScale(Scale);
        m_Loop.RunPosted();
        CBitmap Picture = m_Page.Compose();
        QImage& rImage = Picture.GetImpl().m_Image;
        rImage.setDevicePixelRatio(1.0);
        Picture.GetImpl().m_Size = CSize(rImage.width(), rImage.height());
        return Picture;
    }

    CVirtualEventLoop m_Loop;
    CDialog m_Page;
    CFlexTable m_Table;
    CFlexTableHeader m_Header{m_Table};
    std::unique_ptr<CWindowView> m_pView;
};

struct CTableScene {
    const char* m_pName;
    const char* m_pCaption;
    bool m_bShown;  ///< on the screen, where it can have the focus
    std::function<void(CTablePage&)> m_Make;
};

const std::vector<CTableScene>& GetTableScenes() {
    static const std::vector<CTableScene> Scenes{
        {"empty", "a table without rows", false, [](CTablePage&) {}},
        {"empty-focus", "a table without rows that has the focus", true,
         [](CTablePage& rPage) { rPage.m_Table.SetFocus(); }},
        {"few", "three screws, the cursor off", false, [](CTablePage& rPage) { rPage.AddRows(3); }},
        {"full", "more rows than there is room for, texts too long for their cells", false,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.SetItemData(1, 0, std::string("Cylinder head screw, turned down"));
             rPage.m_Table.SetItemData(2, 1, 1234567.891);
             rPage.m_Table.SetItemData(3, 1, -0.5);
         }},
        {"scrolled", "scrolled by a row and a half, the cursor partly out of sight", false,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.MoveTo(1, 0);
             rPage.m_Table.SendMessage(WM_VSCROLL, MakeScrollParam(SB_THUMBPOSITION, 29));
         }},
        {"end", "scrolled to the end", false,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.SendMessage(WM_VSCROLL, MakeScrollParam(SB_BOTTOM, 0));
         }},
        {"selected", "the cursor has just come to a weight", true,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.SetFocus();
             rPage.m_Table.MoveTo(2, 1);
         }},
        {"edited", "a weight is being typed", true,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.SetFocus();
             rPage.m_Table.MoveTo(2, 1);
             QTest::keyClicks(rPage.m_pView->FindWidget(rPage.GetBox()), "12,5");
         }},
        {"left", "the focus is elsewhere", true,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.SetFocus();
             rPage.m_Table.MoveTo(2, 0);
             rPage.m_Page.SetFocus();
         }},
        {"disabled", "a table that can't be used now", false,
         [](CTablePage& rPage) {
             rPage.AddRows(20);
             rPage.m_Table.MoveTo(1, 1);
             rPage.m_Table.EnableWindow(false);
             rPage.m_Header.Invalidate();
         }},
    };
    return Scenes;
}

class FlexTablePicturesTest : public testing::TestWithParam<std::tuple<std::size_t, int>> {};

TEST_P(FlexTablePicturesTest, LooksAsStored) {
    const CTableScene& rScene = GetTableScenes()[std::get<0>(GetParam())];
    const int nScale = std::get<1>(GetParam());
    CTablePage Page;
    if (rScene.m_bShown) {
        Page.m_pView->show();
        Page.m_pView->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(Page.m_pView.get()));
    }
    rScene.m_Make(Page);
    const std::string Name = std::string("table-") + rScene.m_pName + (nScale == 1 ? "" : "-2x") + ".png";
    ExpectLooksAsStored(Page.Take(nScale), GetStoredFolder("controls") / Name, rScene.m_pCaption);
}

INSTANTIATE_TEST_SUITE_P(Table, FlexTablePicturesTest,
                         testing::Combine(testing::Range(std::size_t{0}, GetTableScenes().size()),
                                          testing::Values(1, 2)),
                         [](const testing::TestParamInfo<std::tuple<std::size_t, int>>& rInfo) {
                             std::string Name = GetTableScenes()[std::get<0>(rInfo.param)].m_pName;
                             std::erase(Name, '-');
                             return Name + (std::get<1>(rInfo.param) == 1 ? "" : "Twice");
                         });

}  // namespace
