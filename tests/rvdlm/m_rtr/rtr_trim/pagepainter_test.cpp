// What a repaint leaves on the screen.
#include "rvdlm/m_rtr/rtr_trim/pagepainter.h"

#include <gmock/gmock.h>

#include "platform/system/virtualeventloop.h"
#include "platform/window/wnd.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"
#include "tests/rvdlm/m_rtr/rtr_trim/lonesequence.h"
#include "tests/support/lookingpeer.h"
#include "tests/support/testinstallation.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr COLORREF PANEL = RGB(0xEC, 0xE9, 0xD8);
constexpr COLORREF SCREEN = RGB(7, 7, 7);

class PagePainter : public testing::Test {
protected:
    PagePainter() {
        m_Wnd.Create(nullptr, CRect(0, 0, 60, 40), 1);
        CDC(m_Wnd.GetSurface()).FillSolidRect(m_Wnd.GetClientRect(), SCREEN);
        m_Procedure.Begin();
        m_Peer.m_nChanges = 0;
    }
    std::vector<std::string> Repaint(unsigned Mask) {
        RepaintPage(m_Wnd, m_Procedure.Get(), Mask);
        return m_Procedure.TakeCalls();
    }
    COLORREF GetPixel(int x, int y) const { return m_Wnd.GetSurface().GetPixel(x, y); }

    CTestInstallation m_Installation;
    CVirtualEventLoop m_Loop;
    CWnd m_Wnd;
    CLookingPeer m_Peer{m_Wnd};
    CLoneSequence m_Procedure;
};

TEST_F(PagePainter, ARepaintOfAllBeginsWithAClearPane) {
    EXPECT_THAT(Repaint(CPreBalancing::ePaintAll), ElementsAre("Paint 15"));
    EXPECT_EQ(GetPixel(5, 5), m_Procedure.m_Record.m_Color);
    EXPECT_EQ(GetPixel(50, 30), PANEL);
    EXPECT_EQ(m_Peer.m_nChanges, 1) << "whoever shows the window is told";
}

TEST_F(PagePainter, ARepaintOfAPartKeepsTheRestOfTheScreen) {
    EXPECT_THAT(Repaint(CPreBalancing::ePaintMeasurement), ElementsAre("Paint 8"));
    EXPECT_EQ(GetPixel(5, 5), SCREEN);
    EXPECT_EQ(m_Peer.m_nChanges, 1);
}

TEST_F(PagePainter, WithoutProcedureThePaneIsClear) {
    m_Procedure.End();
    Repaint(CPreBalancing::ePaintAll);
    EXPECT_EQ(GetPixel(5, 5), PANEL);
    EXPECT_EQ(GetPixel(59, 39), PANEL);
}

TEST_F(PagePainter, WithoutProcedureAPartIsNotPainted) {
    m_Procedure.End();
    Repaint(CPreBalancing::ePaintStatus);
    EXPECT_EQ(GetPixel(5, 5), SCREEN);
    EXPECT_EQ(m_Peer.m_nChanges, 0);
}

TEST_F(PagePainter, AWindowThatNobodySeesIsNotPainted) {
    m_Wnd.ShowWindow(false);
    EXPECT_THAT(Repaint(CPreBalancing::ePaintAll), IsEmpty());
    EXPECT_EQ(GetPixel(5, 5), SCREEN);
}

TEST_F(PagePainter, AWindowOfNoSizeIsNotPainted) {
    m_Wnd.MoveWindow(CRect(0, 0, 60, 0));
    EXPECT_THAT(Repaint(CPreBalancing::ePaintAll), IsEmpty());
}

// A text keeps every pixel that it has on a display of twice the resolution.
TEST_F(PagePainter, WhatIsOnTheScreenStaysInItsScale) {
    m_Wnd.SetScale(2.0);
    {
        CDC Screen(m_Wnd.GetSurface());
        PageStyle::PaintLine(Screen, m_Wnd.GetClientRect(), "Wq8", 20, DT_LEFT);
    }
    const CBitmap Before = m_Wnd.GetSurface();
    Repaint(CPreBalancing::ePaintMeasurement);
    EXPECT_TRUE(m_Wnd.GetSurface() == Before);
}

}  // namespace
