#pragma once
#include <string>

#include "platform/window/control.h"

/// A box for one line of text. Undo, the clipboard and word-wise editing are the toolkit's, by its usual
/// keys. Tells its parent EN_CHANGE, EN_SETFOCUS and EN_KILLFOCUS (notification.h). A tab stop with a frame
/// from the start.
///
/// Positions count characters, from 0 before the first one. The selection stays when the focus goes.
class CEdit : public CControl {
public:
    CEdit();

    /// Where the selection began and where the caret stands, in this order; equal without a selection.
    int GetAnchor() const { return m_SelStart; }
    int GetCaret() const { return m_SelEnd; }
    /// Selects from Start to End, where the caret goes, and scrolls it into view. End -1: to the end of the
    /// text; Start -1: nothing is selected. Positions behind the text's end count as its end.
    void SetSel(int Start, int End);
    void SelectAll() { SetSel(0, -1); }
    /// Start is never behind End; both the caret's place when nothing is selected.
    void GetSel(int& rStart, int& rEnd) const;

    /// A read-only box can be selected and copied from. It has no caret.
    void SetReadOnly(bool bReadOnly);
    bool IsReadOnly() const { return m_bReadOnly; }
    /// Whatever the operator enters becomes upper case; what the program writes stays as it is.
    void SetUpperCase(bool bUpperCase);
    bool IsUpperCase() const { return m_bUpperCase; }
    /// The most characters that the operator can make it; 0, as at the start: no limit.
    void LimitText(int nCharacters);
    int GetLimitText() const { return m_nLimit; }

    /// Another text of the program, in which selection and caret stay at their places.
    void CorrectText(const std::string& rText);

    /// The operator has made the text and the selection (anchor and caret) what is given; asks the parent if
    /// the text is another. False if it was refused, and the former text has come back. The box may be gone
    /// then.
    bool ChangeByOperator(const std::string& rText, int SelStart, int SelEnd);

protected:
    /// Tells the parent of the focus.
    LRESULT WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) override;
    /// A text of the program: the caret goes to its beginning.
    void OnTextSet() override;

private:
    int m_SelStart = 0;  ///< where the selection began; may be behind its end
    int m_SelEnd = 0;    ///< the caret
    bool m_bReadOnly = false;
    bool m_bUpperCase = false;
    int m_nLimit = 0;
};
