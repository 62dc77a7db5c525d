#pragma once
#include "rvlib/rvgui/flextable/flextable.h"

/// The titles of a flex table's columns: a window beside the table, so that a row's place in that is its
/// place in the list. Its parent lays it above the table, as wide as that. It can't be clicked: the order of
/// the rows is the operator's.
class CFlexTableHeader : public CWnd {
public:
    /// rTable must outlive the header.
    explicit CFlexTableHeader(const CFlexTable& rTable) : m_rTable(rTable) {}

    static constexpr int GetPreferredHeight() { return 20; }

protected:
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;

private:
    void Paint();

    const CFlexTable& m_rTable;
};
