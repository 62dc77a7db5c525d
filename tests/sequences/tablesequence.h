#pragma once
#include <string>

#include "tests/sequences/choices.h"
#include "tests/support/flextablepage.h"
#include "tests/support/shownpage.h"

/// Whatever an operator does to a flex table that grows, by real events of the toolkit, and whatever the
/// program does meanwhile: the table stays in order.
class CTableSequence : private CFlexTablePage, private CShownPage {
public:
    /// rChoices must outlive the sequence.
    explicit CTableSequence(IFChoices& rChoices);
    ~CTableSequence();

    /// One event, of the operator or the program.
    void Step();
    /// What isn't in order; empty if all is.
    std::string Check();
    /// Rows that the table has now, the untouched one included.
    unsigned GetRowCount() const { return m_Table.GetRowCount(); }

private:
    int Pick(int nCount) { return static_cast<int>(m_rChoices.Pick(static_cast<std::size_t>(nCount))); }
    unsigned PickRow() { return static_cast<unsigned>(Pick(static_cast<int>(m_Table.GetRowCount()) + 2)); }
    QWidget* GetTableWidget() const { return Find(m_Table); }
    void PressSomeKey();
    void WriteSomething();
    void Paste();
    void Fill();
    void Restart();
    /// The page, which is told that the cursor has moved.
    void Interfere();
    void CheckFocus(bool bCursorOn);
    /// Notes the first thing that isn't in order.
    void Expect(bool bHolds, const char* pRule);

    IFChoices& m_rChoices;
    int m_nDepth = 0;
    std::string m_Breach;
};
