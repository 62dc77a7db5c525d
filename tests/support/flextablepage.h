#pragma once
#include <string>
#include <utility>

#include "platform/system/virtualeventloop.h"
#include "platform/window/edit.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "platform/window/messageparams.h"
#include "rvlib/rvgui/flextable/flextable.h"
#include "tests/support/listeningwnd.h"

/// A table of screws on a page: names and weights in two columns of 100 pixels, 100 pixels high.
class CFlexTablePage {
public:
    CFlexTablePage(const CFlexTablePage&) = delete;
    CFlexTablePage& operator=(const CFlexTablePage&) = delete;

protected:
    static constexpr unsigned NONE = CFlexTable::NONE;
    static constexpr int PITCH = 19;

    CFlexTablePage() {
        m_Page.Create(nullptr, CRect(0, 0, 300, 200), 0);
        m_Table.SetColumns({{CFlexTable::eString, "Name", ""}, {CFlexTable::eDouble, "Weight", "g"}});
        m_Table.SetDefaultValues({"Screw", "0.000000"});
        m_Table.Create(&m_Page, CRect(10, 20, 230, 120), 101);
    }
    ~CFlexTablePage() { SetModifierKeys(false, false); }

    /// Rows of the weights 1, 2, 3 and so on.
    void AddRows(unsigned nCount) {
        for (unsigned i = 0; i < nCount; ++i) {
            const unsigned Row = m_Table.AddRow();
            m_Table.SetItemData(Row, 1, Row + 1.0);
        }
    }
    /// Automatic growth with its timer, as a page does it.
    void StartGrowth() {
        m_Table.SetAutoGrowth(true);
        m_Table.SetTimer(CFlexTable::GROWTH_TIMER, CFlexTable::GROWTH_PERIOD);
    }
    std::pair<unsigned, unsigned> GetCursor() const {
        return {m_Table.GetCursorRow(), m_Table.GetCursorColumn()};
    }
    /// The box over the cursor's cell; null before the first use.
    CEdit* GetBox() const { return dynamic_cast<CEdit*>(m_Table.GetDlgItem(CFlexTable::BOX_ID)); }
    const CScrollBar& GetBar() const {
        return dynamic_cast<CScrollBar&>(*m_Table.GetDlgItem(CFlexTable::SCROLL_BAR_ID));
    }
    /// The operator has made the box's text this, with the caret behind it.
    void Type(const std::string& rText) {
        const auto nLength = static_cast<int>(rText.size());
        GetBox()->ChangeByOperator(rText, nLength, nLength);
    }
    bool Press(UINT Key) { return m_Table.SendMessage(WM_KEYDOWN, Key, 1) != 0; }
    void Click(int X, int Y) {
        m_Table.SendMessage(WM_LBUTTONDOWN, MK_LBUTTON, MakePointParam(CPoint(X, Y)));
        m_Table.SendMessage(WM_LBUTTONUP, 0, MakePointParam(CPoint(X, Y)));
    }
    bool Turn(int nDelta) { return m_Table.SendMessage(WM_MOUSEWHEEL, MakeWheelParam(0, nDelta)) != 0; }
    void Scroll(int Code, int nPosition = 0) {
        m_Table.SendMessage(WM_VSCROLL, MakeScrollParam(Code, nPosition));
    }

    CVirtualEventLoop m_Loop;
    CListeningWnd m_Page;
    CFlexTable m_Table;
};
