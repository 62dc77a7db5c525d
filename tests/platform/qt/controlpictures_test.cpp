// Controls as part of what a view shows and what Compose() returns.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>
#include <memory>

#include "platform/qt/bitmapimpl.h"
#include "platform/qt/stylepart.h"
#include "platform/qt/windowview.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/combobox.h"
#include "platform/window/edit.h"
#include "platform/window/syscolor.h"
#include "tests/support/listeningwnd.h"
#include "tests/support/pixels.h"

namespace {

constexpr COLORREF PAGE = RGB(0x20, 0x80, 0x40);
constexpr COLORREF LIST = RGB(0x20, 0x20, 0xC0);

class ControlPicturesTest : public testing::Test {
protected:
    ControlPicturesTest() {
        QApplication::setCursorFlashTime(0);
        m_Page.Create(nullptr, CRect(0, 0, 200, 100), 0);
        m_List.Create(&m_Page, CRect(20, 20, 120, 80), 1);
        m_Edit.SetWindowText("HHHH");
        m_Edit.Create(&m_List, CRect(10, 10, 70, 35), 2);
        m_pView = std::make_unique<CWindowView>(m_Page);
        m_Loop.RunPosted();
    }

    CBitmap Grab(double Scale = 1.0) {
        CBitmap Picture;
        Picture.Create(CSize(m_pView->width(), m_pView->height()), Scale);
        m_pView->render(&Picture.GetImpl().GetImage());
        return Picture;
    }
    static bool IsBox(const CBitmap& rPicture, CPoint Point) {
        return rPicture.GetPixel(Point.x, Point.y) == GetSysColor(SysColor::eWindow);
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page{PAGE};
    CListeningWnd m_List{LIST};
    CEdit m_Edit;
    std::unique_ptr<CWindowView> m_pView;
};

TEST_F(ControlPicturesTest, AControlMovesHidesAndIsCutOffWithTheCellThatItLiesOver) {
    CPoint Inside(84, 48);  // near the box's lower right corner
    EXPECT_TRUE(IsBox(Grab(), Inside));
    EXPECT_EQ(Grab().GetPixel(25, 25), LIST);
    m_List.MoveWindow(CRect(40, 20, 140, 80));
    EXPECT_FALSE(IsBox(Grab(), CPoint(32, 40)));
    EXPECT_TRUE(IsBox(Grab(), CPoint(104, 48))) << "went along";
    m_Edit.MoveWindow(CRect(10, 50, 70, 75));
    EXPECT_TRUE(IsBox(Grab(), CPoint(104, 76)));
    EXPECT_EQ(Grab().GetPixel(104, 82), PAGE) << "cut off at the list's edge";
    m_List.ShowWindow(false);
    EXPECT_EQ(CountPixels(Grab(), PAGE), 200 * 100) << "hidden with it";
    m_List.ShowWindow(true);
    EXPECT_TRUE(IsBox(Grab(), CPoint(104, 76)));
    m_Page.ShowWindow(false);
    EXPECT_FALSE(IsBox(Grab(), CPoint(104, 76)));
    m_Page.ShowWindow(true);
    m_Edit.DestroyWindow();
    EXPECT_EQ(Grab().GetPixel(104, 76), LIST);
}

TEST_F(ControlPicturesTest, TheComposedPictureIsTheOneOnTheScreen) {
    m_pView->show();
    m_pView->activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(m_pView.get()));
    m_Loop.RunPosted();
    EXPECT_FALSE(FindDifference(Grab(), m_Page.Compose()));
    const CBitmap Without = Grab();
    m_Edit.SetFocus();
    m_Edit.SelectAll();
    EXPECT_FALSE(FindDifference(Grab(), m_Page.Compose()));
    EXPECT_TRUE(FindDifference(Without, m_Page.Compose())) << "the focus shows";
    EXPECT_TRUE(FindColor(m_Page.Compose(), CRect(30, 30, 90, 55), GetSysColor(SysColor::eSelection)));
}

TEST_F(ControlPicturesTest, WithoutAViewTheComposedPictureIsTheSame) {
    const CBitmap Shown = Grab();
    m_pView.reset();
    EXPECT_FALSE(FindDifference(Shown, m_Page.Compose()));
}

TEST_F(ControlPicturesTest, AWindowThatIsMadeLaterOrAnewIsShown) {
    CComboBox Combo;
    Combo.Create(&m_Page, CRect(130, 20, 190, 45), 3);
    EXPECT_NE(Grab().GetPixel(160, 30), PAGE);
    Combo.DestroyWindow();
    EXPECT_EQ(Grab().GetPixel(160, 30), PAGE);
    Combo.Create(&m_Page, CRect(130, 50, 190, 75), 3, false);
    EXPECT_EQ(Grab().GetPixel(160, 60), PAGE);
    Combo.ShowWindow(true);
    EXPECT_NE(Grab().GetPixel(160, 60), PAGE);
    m_pView.reset();
    m_pView = std::make_unique<CWindowView>(m_Page);
    EXPECT_NE(Grab().GetPixel(160, 60), PAGE) << "a view of a tree that stands already";
}

TEST_F(ControlPicturesTest, ADisabledControlLooksDisabled) {
    const CBitmap Enabled = Grab();
    m_Edit.EnableWindow(false);
    EXPECT_TRUE(FindDifference(Enabled, Grab()));
    m_Edit.EnableWindow(true);
    EXPECT_FALSE(FindDifference(Enabled, Grab()));
    m_List.EnableWindow(false);
    EXPECT_TRUE(FindDifference(Enabled, Grab())) << "with its parent";
}

/// Draws a hair line and a text.
class CFinePage : public CWnd {
protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override {
        if (Message == WM_PAINT) {
            CDC DC(GetSurface());
            DC.FillSolidRect(GetClientRect(), RGB(255, 255, 255));
            DC.MoveTo({10, 5});
            DC.LineTo({10, 15});
            CRect Rect(20, 0, 60, 30);
            DC.SelectFont(CFont("Arial", 28));
            DC.DrawText("O", Rect, DT_SINGLELINE);
            return 0;
        }
        return CWnd::WindowProc(Message, wParam, lParam);
    }
};

TEST_F(ControlPicturesTest, AtTwiceTheResolutionSurfacesAndControlsAreSharp) {
    CFinePage Fine;
    Fine.Create(&m_Page, CRect(130, 0, 190, 40), 4);
    m_Page.SetScale(2.0);
    m_Loop.RunPosted();
    EXPECT_EQ(Fine.GetScale(), 2.0);
    EXPECT_EQ(Fine.GetSurface().GetSize(), CSize(60, 40));
    const QImage& rSurface = Fine.GetSurface().GetImpl().GetImage();
    ASSERT_EQ(rSurface.size(), QSize(120, 80));
    EXPECT_EQ(rSurface.pixelColor(19, 20), Qt::white);
    EXPECT_EQ(rSurface.pixelColor(20, 20), Qt::black) << "pixel 10 is 20 and 21";
    EXPECT_EQ(rSurface.pixelColor(21, 20), Qt::black);
    EXPECT_EQ(rSurface.pixelColor(22, 20), Qt::white);
    const CBitmap Composed = m_Page.Compose();
    const QImage& rPicture = Composed.GetImpl().GetImage();
    ASSERT_EQ(rPicture.size(), QSize(400, 200));
    // A stretched picture consists of blocks of two by two pixels; text and box of this one don't.
    const auto IsSharp = [&rPicture](const QRect& rArea) {
        for (int y = rArea.top() / 2 * 2; y < rArea.bottom(); y += 2) {
            for (int x = rArea.left() / 2 * 2; x < rArea.right(); x += 2) {
                if (rPicture.pixel(x, y) != rPicture.pixel(x + 1, y) ||
                    rPicture.pixel(x, y) != rPicture.pixel(x, y + 1)) {
                    return true;
                }
            }
        }
        return false;
    };
    EXPECT_TRUE(IsSharp(QRect(300, 0, 80, 60))) << "painted text";
    EXPECT_TRUE(IsSharp(QRect(60, 60, 120, 50))) << "the box's text";
    EXPECT_FALSE(FindDifference(Grab(2.0), Composed)) << "and the same on the screen";
    CEdit Later;
    Later.Create(&m_Page, CRect(130, 50, 190, 75), 5);
    EXPECT_EQ(Later.GetScale(), 2.0) << "windows to come as well";
}

TEST_F(ControlPicturesTest, TheViewTakesTheScaleOfItsScreen) {
    m_Page.SetScale(3.0);
    m_pView->show();
    EXPECT_EQ(m_Page.GetScale(), m_pView->devicePixelRatioF());
}

}  // namespace

// By the key that a style keeps its pictures under: another one each time would fill its cache.
TEST(SystemPalette, IsTheSameOneAsLongAsTheColoursAre) {
    EXPECT_EQ(GetSystemPalette().cacheKey(), GetSystemPalette().cacheKey());
}
