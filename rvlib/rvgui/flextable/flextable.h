#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/window/scrollbar.h"
#include "platform/window/wnd.h"
#include "rvlib/rvbas/array.h"
#include "rvlib/rvgui/flextable/flextableitem.h"
#include "rvlib/rvgui/flextable/flextabletypes.h"

/// A small spreadsheet of typed cells: the order of the rows is the operator's, nothing sorts them. A cursor
/// marks one cell, over which an edit box lies, so that typing begins at once. The scroll bar at the right
/// edge isn't part of the area that the columns share; titles are a window of their own (CFlexTableHeader).
///
/// Keys: the arrows move the cursor and stop at the edges, in the box, too; Page Up and Down by what is in
/// sight; Home and End to the first and last row (with Shift or Control they move in the box); Enter finishes
/// the edit and goes on to the next cell, Escape gives back the value that the cell had. The wheel scrolls.
///
/// Rows are painted at a pitch of the row height - 1, as neighbours share a grid line.
class CFlexTable : public CWnd, public CFlexTableTypes {
public:
    /// Row and column of a cursor that is off.
    static constexpr unsigned NONE = 0xFFFFFFFF;
    /// To the parent: the cursor has moved, was put on a cell or taken off. The answer isn't looked at.
    static constexpr int CURSOR_MOVED = -1101;
    /// A window timer that the owner starts together with automatic growth (SetTimer). Growth is looked after
    /// by it: at each tick what has been typed so far counts as finished, without an end to the edit. So the
    /// row behind a value is there while that is still being typed, and whoever reads the table past the last
    /// row misses no value that the operator sees. It also finds what the program wrote into the last row.
    static constexpr UINT GROWTH_TIMER = 1;
    static constexpr UINT GROWTH_PERIOD = 250;  ///< ms
    // Its children.
    static constexpr UINT SCROLL_BAR_ID = 1;
    static constexpr UINT BOX_ID = 2;  ///< made when the cursor is put on a cell for the first time

    struct CColumn {
        Type m_Type = eString;
        std::string m_Title;
        std::string m_Unit;  ///< of numbers
    };

    CFlexTable();

    /// At least 2 pixels; 20 from the start.
    void SetRowHeight(int nHeight);
    int GetRowHeight() const { return m_nRowHeight; }
    /// All rows have these cells. Empties the table.
    void SetColumns(std::vector<CColumn> Columns);
    /// Nothing happens to the rows. Ignored for a column that isn't there.
    void SetColumnTitle(unsigned Column, const std::string& rTitle);
    const std::vector<CColumn>& GetColumns() const { return m_Columns; }
    /// What the cells of a new row begin with, numbers as text; empty and 0 for those that have no entry.
    void SetDefaultValues(const Base::CStringArray& rValues) { m_DefaultValues = rValues; }
    /// Automatic growth: when an edit is finished and the second cell of the last row is a number other than
    /// its default value (of which there must be more than one), a row is added. So the table always ends in
    /// an untouched row.
    void SetAutoGrowth(bool bOn) { m_bAutoGrowth = bOn; }
    bool IsAutoGrowth() const { return m_bAutoGrowth; }

    /// Adds a row at the end and returns its number; NONE, and no row, without columns.
    unsigned AddRow();
    /// Empties the table. A cursor that is on waits, and stands in the first row as soon as there is one.
    void RemoveAllRows();
    unsigned GetRowCount() const { return static_cast<unsigned>(m_Rows.size()); }
    unsigned GetColumnCount() const { return static_cast<unsigned>(m_Columns.size()); }
    // Values. False if there is no such cell, or one of another type. What is being typed isn't yet the
    // value.
    bool GetItemData(unsigned Row, unsigned Column, std::string& rText) const;
    bool GetItemData(unsigned Row, unsigned Column, double& rNumber) const;
    bool SetItemData(unsigned Row, unsigned Column, const std::string& rText);
    bool SetItemData(unsigned Row, unsigned Column, double Number);

    /// The cursor's cell; NONE for both if it is off or its cell doesn't exist.
    unsigned GetCursorRow() const { return GetItem(m_Row, m_Column) == nullptr ? NONE : m_Row; }
    unsigned GetCursorColumn() const { return GetItem(m_Row, m_Column) == nullptr ? NONE : m_Column; }
    /// Finishes an edit and moves the cursor, which comes into sight. False, and the cursor stays where it
    /// was, if there is no such cell or the table has no window yet. The focus stays where it is.
    bool MoveTo(unsigned Row, unsigned Column);
    /// Finishes an edit and takes the cursor off.
    void MoveOff();

    void SetFont(const CFont& rFont) override;

    /// Pixels above the upper edge that are scrolled away.
    int GetScrollPos() const { return m_ScrollBar.GetScrollPos(); }
    /// Width that each column has: an equal share of the area beside the scroll bar.
    int GetColumnWidth() const;
    /// Where a cell is in the client area; also outside it.
    CRect GetCellRect(unsigned Row, unsigned Column) const;

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    /// The edit box: the table looks at its keys first.
    class CBox : public CEdit {
    public:
        explicit CBox(CFlexTable& rTable);

    protected:
        LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

    private:
        CFlexTable& m_rTable;
    };

    int GetPitch() const { return m_nRowHeight - 1; }
    CRect GetRowsRect() const;
    /// Null if there is none.
    CFlexTableItem* GetItem(unsigned Row, unsigned Column) const;
    template <typename Item>
    Item* GetItemOf(Type Kind, unsigned Row, unsigned Column) const;

    void Commit(CFlexTableItem::Action How);
    void Grow();
    /// Lays the box over the cursor's cell and begins to edit that; no box without a cursor.
    void Activate();
    void PlaceBox();
    void UpdateScrollRange();
    void ScrollTo(int nPosition);
    void EnsureVisible(unsigned Row);

    void OnSize();
    void OnDestroy();
    void OnFocus();
    void OnClick(CPoint Point);
    void OnScroll(int Code, int nPosition);
    bool OnWheel(int nDelta);
    /// True if the key was used.
    bool OnKeyDown(UINT Key);
    void Step(int nRows, int nColumns);
    bool GoOn();
    bool Abandon();
    void OnBox(int Code);

    void Paint();
    void PaintCell(CDC& rDC, unsigned Row, unsigned Column) const;
    /// The grid line that a cell shares with the one below.
    static CRect GetLineBelow(const CRect& rCell);
    COLORREF GetCursorColor() const;

    int m_nRowHeight = 20;
    std::vector<CColumn> m_Columns;
    std::vector<std::vector<std::unique_ptr<CFlexTableItem>>> m_Rows;
    unsigned m_Row = NONE;
    unsigned m_Column = NONE;
    Base::CStringArray m_DefaultValues;
    bool m_bAutoGrowth = false;
    CFlexTableItem* m_pActive = nullptr;  ///< the cell beneath the box
    int m_nWheelRest = 0;                 ///< of fine wheels, less than a notch
    CScrollBar m_ScrollBar;
    CBox m_Box{*this};
};
