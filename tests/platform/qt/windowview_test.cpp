#include "platform/qt/windowview.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QMessageBox>
#include <QMouseEvent>
#include <memory>

#include "platform/qt/messageboxpresenter.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dc.h"
#include "platform/window/input.h"
#include "platform/window/messagebox.h"

namespace {

constexpr COLORREF RED = RGB(255, 0, 0);

class CPage : public CWnd {
public:
    int m_nSizes = 0;
    COLORREF m_Color = RED;

protected:
    LRESULT WindowProc(UINT Message, WPARAM, LPARAM) override {
        if (Message == WM_SIZE) {
            ++m_nSizes;
        } else if (Message == WM_PAINT) {
            CDC(GetSurface()).FillSolidRect(GetClientRect(), m_Color);
            SurfaceChanged();
        }
        return 0;
    }
};

/// What the widget shows.
QColor Grab(QWidget& rWidget, int x, int y) {
    return rWidget.grab().toImage().pixelColor(x, y);
}

void SendMouse(QWidget& rWidget, QEvent::Type Type, Qt::MouseButton Button, Qt::MouseButtons Buttons) {
    QMouseEvent Event(Type, QPointF(5, 5), QPointF(5, 5), Button, Buttons, Qt::NoModifier);
    QApplication::sendEvent(&rWidget, &Event);
}

class WindowViewTest : public testing::Test {
protected:
    WindowViewTest() {
        m_Page.SetWindowText("Page");
        m_Page.Create(nullptr, CRect(0, 0, 200, 100), 0);
        m_Loop.RunPosted();
    }
    ~WindowViewTest() override { SetMouseButtons(false, false); }

    CVirtualEventLoop m_Loop;
    CPage m_Page;
};

TEST_F(WindowViewTest, ShowsTheComposedWindowInItsSize) {
    CWindowView View(m_Page);
    EXPECT_EQ(View.size(), QSize(200, 100));
    EXPECT_EQ(View.windowTitle(), "Page");
    EXPECT_EQ(Grab(View, 150, 50), QColor(255, 0, 0));
}

TEST_F(WindowViewTest, ShowsWhatIsDrawnLater) {
    CWindowView View(m_Page);
    EXPECT_EQ(Grab(View, 10, 10), QColor(255, 0, 0));
    m_Page.m_Color = RGB(0, 0, 255);
    m_Page.Invalidate();
    m_Loop.RunPosted();
    EXPECT_EQ(Grab(View, 10, 10), QColor(0, 0, 255));
}

TEST_F(WindowViewTest, ResizingTheWidgetSizesTheWindow) {
    CWindowView View(m_Page);
    View.show();
    const int nBefore = m_Page.m_nSizes;
    View.resize(320, 240);
    EXPECT_EQ(m_Page.GetClientRect(), CRect(0, 0, 320, 240));
    EXPECT_EQ(m_Page.m_nSizes, nBefore + 1);
    m_Loop.RunPosted();
    EXPECT_EQ(Grab(View, 310, 230), QColor(255, 0, 0));
}

TEST_F(WindowViewTest, AHiddenWindowIsNotShown) {
    CWindowView View(m_Page);
    m_Page.ShowWindow(false);
    EXPECT_NE(Grab(View, 10, 10), QColor(255, 0, 0));
}

TEST_F(WindowViewTest, TheWindowMayEndFirst) {
    auto pPage = std::make_unique<CPage>();
    pPage->Create(nullptr, CRect(0, 0, 50, 50), 0);
    CWindowView View(*pPage);
    EXPECT_EQ(View.GetWindow(), pPage.get());
    pPage.reset();
    EXPECT_EQ(View.GetWindow(), nullptr);
    View.show();
    View.resize(60, 60);
    EXPECT_NE(Grab(View, 10, 10), QColor(255, 0, 0));
}

TEST_F(WindowViewTest, TheViewMayEndFirst) {
    { CWindowView View(m_Page); }
    m_Page.Invalidate();
    m_Loop.RunPosted();  // under the sanitizer this proves that the view isn't told any more
    m_Page.DestroyWindow();
}

// The keys of the console, too, are held down with the mouse: every widget counts.
TEST_F(WindowViewTest, MouseButtonsOfAnyWidgetReachTheWindowLayer) {
    CWindowView View(m_Page);
    QWidget Other;
    SendMouse(Other, QEvent::MouseButtonPress, Qt::LeftButton, Qt::LeftButton);
    EXPECT_TRUE(IsPrimaryButtonDown());
    SendMouse(Other, QEvent::MouseButtonPress, Qt::RightButton, Qt::LeftButton | Qt::RightButton);
    EXPECT_TRUE(IsPrimaryButtonDown());
    SendMouse(Other, QEvent::MouseButtonRelease, Qt::LeftButton, Qt::RightButton);
    EXPECT_FALSE(IsPrimaryButtonDown());
}

TEST_F(WindowViewTest, ActivationDecidesWhichWindowIsInFront) {
    CWindowView View(m_Page);
    QWidget Other;
    View.show();
    View.activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(CWnd::GetForegroundWindow(), &m_Page);
    Other.show();
    Other.activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(CWnd::GetForegroundWindow(), nullptr);
    View.activateWindow();
    QApplication::processEvents();
    EXPECT_EQ(CWnd::GetForegroundWindow(), &m_Page);
}

QMessageBox* FindBox() {
    for (QWidget* pWidget : QApplication::topLevelWidgets()) {
        if (auto* pBox = qobject_cast<QMessageBox*>(pWidget)) {
            return pBox;
        }
    }
    return nullptr;
}

TEST(MessageBoxPresenterTest, BoxesAreModelessAndEndWhenClosed) {
    CVirtualEventLoop Loop;
    TakeShownMessages();
    {
        CMessageBoxPresenter Presenter(nullptr);
        ShowMessageBox("still running", "Error");
        EXPECT_EQ(FindBox(), nullptr);
        Loop.RunPosted();
        QMessageBox* pBox = FindBox();
        ASSERT_NE(pBox, nullptr);
        EXPECT_TRUE(pBox->isVisible());
        EXPECT_FALSE(pBox->isModal());
        EXPECT_EQ(pBox->text(), "still running");
        pBox->close();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(FindBox(), nullptr);
    }
    ShowMessageBox("nobody shows this", "Error");
    Loop.RunPosted();
    EXPECT_EQ(FindBox(), nullptr);
    EXPECT_EQ(TakeShownMessages().size(), 2u);
}

}  // namespace
