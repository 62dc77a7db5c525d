#include "rvlib/rvgui/flextable/flextable.h"

#include <algorithm>

#include "platform/window/syscolor.h"

CFlexTable::CFlexTable() {
    ModifyStyle(0, WS_TABSTOP);
}

CFlexTable::CBox::CBox(CFlexTable& rTable) : m_rTable(rTable) {
    ModifyStyle(WS_BORDER, 0);  // the cell has lines of its own
}

void CFlexTable::SetRowHeight(int nHeight) {
    m_nRowHeight = std::max(nHeight, 2);
    UpdateScrollRange();
}

void CFlexTable::SetColumns(std::vector<CColumn> Columns) {
    RemoveAllRows();
    m_Columns = std::move(Columns);
}

void CFlexTable::SetColumnTitle(unsigned Column, const std::string& rTitle) {
    if (Column < m_Columns.size()) {
        m_Columns[Column].m_Title = rTitle;
        Invalidate();
    }
}

unsigned CFlexTable::AddRow() {
    if (m_Columns.empty()) {
        return NONE;
    }
    const unsigned Row = GetRowCount();
    std::vector<std::unique_ptr<CFlexTableItem>>& rCells = m_Rows.emplace_back();
    for (unsigned Column = 0; Column < GetColumnCount(); ++Column) {
        const unsigned Index = Row * GetColumnCount() + Column;
        const std::string Default = Column < m_DefaultValues.GetSize() ? m_DefaultValues[Column] : "";
        const CColumn& rColumn = m_Columns[Column];
        if (rColumn.m_Type == eDouble) {
            rCells.push_back(std::make_unique<CFlexTableItemDouble>(
                *this, Index, CFlexTableItemDouble::Read(Default), rColumn.m_Unit));
        } else {
            rCells.push_back(std::make_unique<CFlexTableItemString>(*this, Index, Default));
        }
    }
    UpdateScrollRange();
    if (m_pActive == nullptr) {
        Activate();
    }
    return Row;
}

void CFlexTable::RemoveAllRows() {
    m_pActive = nullptr;
    m_Rows.clear();
    if (m_Row != NONE) {
        m_Row = 0;
    }
    UpdateScrollRange();
    Activate();
}

CFlexTableItem* CFlexTable::GetItem(unsigned Row, unsigned Column) const {
    return Row < GetRowCount() && Column < GetColumnCount() ? m_Rows[Row][Column].get() : nullptr;
}

template <typename Item>
Item* CFlexTable::GetItemOf(Type Kind, unsigned Row, unsigned Column) const {
    CFlexTableItem* const pItem = GetItem(Row, Column);
    return pItem != nullptr && pItem->GetType() == Kind ? static_cast<Item*>(pItem) : nullptr;
}

bool CFlexTable::GetItemData(unsigned Row, unsigned Column, std::string& rText) const {
    const auto* const pItem = GetItemOf<CFlexTableItemString>(eString, Row, Column);
    if (pItem != nullptr) {
        rText = pItem->GetValue();
    }
    return pItem != nullptr;
}

bool CFlexTable::GetItemData(unsigned Row, unsigned Column, double& rNumber) const {
    const auto* const pItem = GetItemOf<CFlexTableItemDouble>(eDouble, Row, Column);
    if (pItem != nullptr) {
        rNumber = pItem->GetValue();
    }
    return pItem != nullptr;
}

bool CFlexTable::SetItemData(unsigned Row, unsigned Column, const std::string& rText) {
    auto* const pItem = GetItemOf<CFlexTableItemString>(eString, Row, Column);
    if (pItem != nullptr) {
        pItem->SetValue(rText);
        Invalidate();
    }
    return pItem != nullptr;
}

bool CFlexTable::SetItemData(unsigned Row, unsigned Column, double Number) {
    auto* const pItem = GetItemOf<CFlexTableItemDouble>(eDouble, Row, Column);
    if (pItem != nullptr) {
        pItem->SetValue(Number);
        Invalidate();
    }
    return pItem != nullptr;
}

void CFlexTable::Commit(CFlexTableItem::Action How) {
    if (m_pActive != nullptr) {
        m_pActive->Commit(How);
    }
    if (How == CFlexTableItem::eFinished) {
        Grow();
    }
}

void CFlexTable::Grow() {
    if (!m_bAutoGrowth || m_DefaultValues.GetSize() <= 1 || m_Rows.empty()) {
        return;
    }
    double Number = 0.0;
    if (GetItemData(GetRowCount() - 1, 1, Number) &&
        Number != CFlexTableItemDouble::Read(m_DefaultValues[1])) {
        AddRow();
    }
}

bool CFlexTable::MoveTo(unsigned Row, unsigned Column) {
    if (!IsWindow()) {
        return false;
    }
    Commit(CFlexTableItem::eFinished);
    const bool bExists = GetItem(Row, Column) != nullptr;
    const bool bMoved = bExists && (Row != m_Row || Column != m_Column);
    if (bExists) {
        m_Row = Row;
        m_Column = Column;
        EnsureVisible(Row);
    }
    Activate();  // also the cell that the cursor has gone back to
    if (bMoved) {
        NotifyParent(CURSOR_MOVED);
    }
    return bExists;
}

void CFlexTable::MoveOff() {
    Commit(CFlexTableItem::eFinished);
    const bool bMoved = m_pActive != nullptr;
    m_Row = NONE;
    m_Column = NONE;
    Activate();
    if (bMoved) {
        NotifyParent(CURSOR_MOVED);
    }
}

void CFlexTable::Activate() {
    if (m_pActive != nullptr) {
        m_pActive->Deactivate();
    }
    m_pActive = IsWindow() ? GetItem(m_Row, m_Column) : nullptr;
    Invalidate();
    if (m_pActive == nullptr) {
        // The focus, if the box has it, comes to the table, which is what the Tab key finds now.
        m_Box.ShowWindow(false);
        ModifyStyle(0, WS_TABSTOP);
        return;
    }
    if (!m_Box.IsWindow()) {
        m_Box.Create(this, CRect(), BOX_ID, false);
    }
    m_Box.SetFont(GetFont());
    m_Box.SetAccessibleName(m_Columns[m_Column].m_Title + " " + std::to_string(m_Row + 1));
    m_pActive->Activate(m_Box);
    PlaceBox();
    m_Box.ShowWindow(true);
    ModifyStyle(WS_TABSTOP, 0);
    if (GetFocus() == this) {
        m_Box.SetFocus();
    }
    if (GetFocus() != &m_Box) {
        m_Box.SetSel(-1, 0);  // a selection would look as if the focus were here
    }
}

void CFlexTable::PlaceBox() {
    if (m_pActive != nullptr) {
        CRect Rect = GetCellRect(m_Row, m_Column);
        Rect.DeflateRect(1, 1);
        Rect.OffsetRect(-1, 1);
        m_Box.MoveWindow(Rect);
    }
}

CRect CFlexTable::GetRowsRect() const {
    CRect Rect = GetClientRect();
    Rect.right = std::max(Rect.right - CScrollBar::GetPreferredWidth(), 0);
    return Rect;
}

int CFlexTable::GetColumnWidth() const {
    return m_Columns.empty() ? 0 : GetRowsRect().Width() / static_cast<int>(m_Columns.size());
}

CRect CFlexTable::GetCellRect(unsigned Row, unsigned Column) const {
    const CSize Size(GetColumnWidth(), GetPitch());
    const CPoint TopLeft(static_cast<int>(Column) * Size.cx,
                         static_cast<int>(Row) * Size.cy - GetScrollPos());
    return {TopLeft, Size};
}

void CFlexTable::UpdateScrollRange() {
    // By the row height and not by the pitch, and meant so: below many rows some space stays empty.
    m_ScrollBar.SetScrollRange(0, static_cast<int>(GetRowCount()) * m_nRowHeight, GetClientRect().Height());
    PlaceBox();
    Invalidate();
}

void CFlexTable::ScrollTo(int nPosition) {
    const int nFormer = GetScrollPos();
    m_ScrollBar.SetScrollPos(std::clamp(nPosition, 0, m_ScrollBar.GetMax()));
    if (GetScrollPos() != nFormer) {
        PlaceBox();
        Invalidate();
    }
}

void CFlexTable::EnsureVisible(unsigned Row) {
    const CRect Cell = GetCellRect(Row, 0);
    const int nBelow = Cell.bottom - GetClientRect().Height();
    if (Cell.top < 0 || Cell.Height() > GetClientRect().Height()) {
        ScrollTo(GetScrollPos() + Cell.top);
    } else if (nBelow > 0) {
        ScrollTo(GetScrollPos() + nBelow);
    }
}

void CFlexTable::SetFont(const CFont& rFont) {
    CWnd::SetFont(rFont);
    m_Box.SetFont(rFont);
}

void CFlexTable::Paint() {
    {
        CDC DC(GetSurface());
        const CRect Client = GetClientRect();
        DC.FillSolidRect(Client, GetSysColor(SysColor::eWindow));
        for (auto Row = static_cast<unsigned>(GetScrollPos() / GetPitch());
             Row < GetRowCount() && GetCellRect(Row, 0).top < Client.bottom; ++Row) {
            for (unsigned Column = 0; Column < GetColumnCount(); ++Column) {
                PaintCell(DC, Row, Column);
            }
        }
        for (unsigned Column = 0; Column < GetColumnCount() && !m_Rows.empty(); ++Column) {
            const CRect Last = GetCellRect(GetRowCount() - 1, Column);
            DC.FillSolidRect(GetLineBelow(Last), GetSysColor(SysColor::eShadow));
        }
        if (m_pActive != nullptr) {
            DC.FillSolidRect(GetLineBelow(GetCellRect(m_Row, m_Column)), GetCursorColor());
        }
        if (GetFocus() == this) {
            DC.DrawFocusRect(GetRowsRect());
        }
    }
    SurfaceChanged();
}

CRect CFlexTable::GetLineBelow(const CRect& rCell) {
    return {rCell.left, rCell.bottom, rCell.right, rCell.bottom + 1};
}

COLORREF CFlexTable::GetCursorColor() const {
    return GetSysColor(GetFocus() == &m_Box ? SysColor::eSelection : SysColor::eDarkShadow);
}

void CFlexTable::PaintCell(CDC& rDC, unsigned Row, unsigned Column) const {
    const CRect Cell = GetCellRect(Row, Column);
    const CFlexTableItem& rItem = *GetItem(Row, Column);
    if (rItem.IsActive()) {
        // The box leaves the upper and the right edge of this free, and with the line below it is a frame.
        rDC.FillSolidRect(Cell, GetCursorColor());
        return;
    }
    const COLORREF Line = GetSysColor(SysColor::eShadow);
    rDC.FillSolidRect(CRect(Cell.left, Cell.top, Cell.right, Cell.top + 1), Line);
    rDC.FillSolidRect(CRect(Cell.right - 1, Cell.top, Cell.right, Cell.bottom), Line);
    rItem.Draw(rDC, CRect(Cell.left, Cell.top + 1, Cell.right - 1, Cell.bottom));
}
