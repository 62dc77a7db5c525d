#pragma once
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/listeningwnd.h"
#include "tests/support/shownpage.h"

/// A page with a painted child.
class ListeningPageTest : public testing::Test {
protected:
    ListeningPageTest() {
        m_Page.Create(nullptr, CRect(0, 0, 300, 200), 0);
        m_List.Create(&m_Page, CRect(10, 20, 200, 120), 1);
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    CListeningWnd m_List{RGB(0, 0, 255)};
};

/// The same on the screen.
class ControlEventsTest : public ListeningPageTest, protected CShownPage {
protected:
    ControlEventsTest() : CShownPage(m_Loop, m_Page) {}

    void Show() { ASSERT_TRUE(TryShow()); }
    void Type(const CWnd& rWnd, const QString& rText) {
        QTest::sendKeyEvent(QTest::Click, Find(rWnd), Qt::Key_unknown, rText, Qt::NoModifier);
    }
};
