#pragma once
#include "tests/rvlib/rvgui/flextable/flextablefixture.h"
#include "tests/support/shownpage.h"

/// The table on the screen: what happens to it are real events of the toolkit.
class ShownFlexTableTest : public FlexTableTest, protected CShownPage {
protected:
    ShownFlexTableTest() : CShownPage(m_Loop, m_Page) {}

    void Show() { ASSERT_TRUE(TryShow()); }
    QWidget* GetTableWidget() const { return Find(m_Table); }
    QLineEdit* GetBoxWidget() const { return Find<QLineEdit>(*GetBox()); }
    /// A click on whatever is at that place of the table.
    void ClickAt(int X, int Y) { CShownPage::ClickAt(GetTableWidget(), QPoint(X, Y)); }
    void TurnWheelAt(int X, int Y, int nDelta) { TurnWheel(GetTableWidget(), QPoint(X, Y), nDelta); }
};
