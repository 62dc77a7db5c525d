// A table of 1,000 rows on a page of 600 by 440, in a view of the toolkit's: a picture while it is scrolled
// (60 of them a second leave 16.7 ms), and the time from a key to the picture with its effect (16 ms).
#include <QKeyEvent>

#include "bench/qtmain.h"
#include "platform/qt/bitmapimpl.h"
#include "platform/qt/windowview.h"
#include "platform/system/virtualeventloop.h"
#include "platform/window/dialog.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/flextable/flextable.h"

namespace {

constexpr unsigned ROWS = 1000;
constexpr UINT TABLE_ID = 101;

class CShownTable {
public:
    CShownTable() {
        m_Page.Create(nullptr, CRect(0, 0, 600, 440), 0);
        m_Table.SetColumns({{CFlexTable::eString, "Name", ""}, {CFlexTable::eDouble, "Weight", "g"}});
        m_Table.SetDefaultValues({"Screw", "0.000000"});
        m_Table.Create(&m_Page, CRect(0, 40, 600, 440), TABLE_ID);
        for (unsigned i = 0; i < ROWS; ++i) {
            m_Table.AddRow();
            m_Table.SetItemData(i, 1, 0.35 * i);
        }
        m_Table.SetAutoGrowth(true);
        m_View.show();
        m_View.activateWindow();
        QApplication::processEvents();
        m_Table.MoveTo(0, 1);
        m_Table.SetFocus();
        Paint();
    }

    /// The surfaces that have changed, and the whole view with its controls.
    void Paint() {
        m_Loop.RunPosted();
        m_View.render(&m_Screen.GetImpl().GetImage());
    }
    void Press(int Key, const char* pText) {
        QWidget* const pBox = m_View.FindWidget(*m_Table.GetDlgItem(CFlexTable::BOX_ID));
        QKeyEvent Down(QEvent::KeyPress, Key, Qt::NoModifier, pText);
        QKeyEvent Up(QEvent::KeyRelease, Key, Qt::NoModifier, pText);
        QApplication::sendEvent(pBox, &Down);
        QApplication::sendEvent(pBox, &Up);
    }

    CVirtualEventLoop m_Loop;
    CDialog m_Page;
    CFlexTable m_Table;
    CWindowView m_View{m_Page};
    CBitmap m_Screen = MakeScreen();

private:
    static CBitmap MakeScreen() {
        CBitmap Result;
        Result.Create(CSize(600, 440));
        return Result;
    }
};

void BM_ScrollByAPicture(benchmark::State& rState) {
    CShownTable Shown;
    int nWay = -WHEEL_DELTA;
    for (auto _ : rState) {
        const int nFormer = Shown.m_Table.GetScrollPos();
        Shown.m_Table.SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, nWay));
        if (Shown.m_Table.GetScrollPos() == nFormer) {
            nWay = -nWay;
        }
        Shown.Paint();
    }
    rState.counters["pictures_per_s"] =
        benchmark::Counter(static_cast<double>(rState.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(BM_ScrollByAPicture)->Unit(benchmark::kMillisecond);

void BM_TypedCharacterToPicture(benchmark::State& rState) {
    CShownTable Shown;
    bool bBack = false;
    for (auto _ : rState) {
        bBack ? Shown.Press(Qt::Key_Backspace, "\b") : Shown.Press(Qt::Key_5, "5");
        bBack = !bBack;
        Shown.Paint();
    }
}
BENCHMARK(BM_TypedCharacterToPicture)->Unit(benchmark::kMillisecond);

/// Finishes an edit, moves the cursor, and scrolls.
void BM_EnterToPicture(benchmark::State& rState) {
    CShownTable Shown;
    for (auto _ : rState) {
        Shown.Press(Qt::Key_5, "5");
        Shown.Press(Qt::Key_Return, "\r");
        Shown.Paint();
        if (Shown.m_Table.GetCursorRow() == ROWS - 1) {
            Shown.m_Table.MoveTo(0, 1);
        }
    }
}
BENCHMARK(BM_EnterToPicture)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_QT_MAIN()
