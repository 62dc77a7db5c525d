#include "platform/window/edit.h"

#include <algorithm>

namespace {

/// Characters of a text in UTF-8: all bytes but those that go on with one.
int CountCharacters(const std::string& rText) {
    return static_cast<int>(std::count_if(
        rText.begin(), rText.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}

}  // namespace

CEdit::CEdit() {
    ModifyStyle(0, WS_TABSTOP | WS_BORDER);
}

void CEdit::SetSel(int Start, int End) {
    const int nLength = CountCharacters(GetWindowText());
    m_SelEnd = End < 0 ? nLength : std::min(End, nLength);
    m_SelStart = Start < 0 ? m_SelEnd : std::min(Start, nLength);
    NotifyPeer();
}

void CEdit::GetSel(int& rStart, int& rEnd) const {
    rStart = std::min(m_SelStart, m_SelEnd);
    rEnd = std::max(m_SelStart, m_SelEnd);
}

void CEdit::SetReadOnly(bool bReadOnly) {
    m_bReadOnly = bReadOnly;
    NotifyPeer();
}

void CEdit::SetUpperCase(bool bUpperCase) {
    m_bUpperCase = bUpperCase;
    NotifyPeer();
}

void CEdit::LimitText(int nCharacters) {
    m_nLimit = std::max(nCharacters, 0);
    NotifyPeer();
}

void CEdit::OnTextSet() {
    m_SelStart = 0;
    m_SelEnd = 0;
}

void CEdit::CorrectText(const std::string& rText) {
    if (rText != GetWindowText()) {
        const int nAnchor = m_SelStart;
        const int nCaret = m_SelEnd;
        SetWindowText(rText);
        SetSel(nAnchor, nCaret);
    }
}

bool CEdit::ChangeByOperator(const std::string& rText, int SelStart, int SelEnd) {
    const std::string FormerText = GetWindowText();
    const int FormerStart = m_SelStart;
    const int FormerEnd = m_SelEnd;
    m_SelStart = SelStart;
    m_SelEnd = SelEnd;
    if (rText == FormerText) {
        return true;
    }
    StoreText(rText);
    const CGuard Guard(*this);
    const bool bRefused = NotifyParent(EN_CHANGE) != 0;
    if (!Guard.IsAlive()) {
        return false;
    }
    if (bRefused && GetWindowText() == rText) {
        StoreText(FormerText);
        m_SelStart = FormerStart;
        m_SelEnd = FormerEnd;
    }
    NotifyPeer();
    return !bRefused;
}

LRESULT CEdit::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    switch (Message) {
        case WM_SETFOCUS:
            NotifyParent(EN_SETFOCUS);
            return 0;
        case WM_KILLFOCUS:
            NotifyParent(EN_KILLFOCUS);
            return 0;
        default:
            return CControl::WindowProc(Message, wParam, lParam);
    }
}
