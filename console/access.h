#pragma once
#include <functional>
#include <string>

#include "console/codelock.h"
#include "console/codepage.h"
#include "console/pagelock.h"

class CPageQuestion;

/// Who may what: the code in the window. Without one everything is open; with one settings, deleting and
/// service are locked between runs until it is entered. Running a procedure is never affected, nor is an NC.
class CAccess {
public:
    CAccess(QWidget& rPage, CPageQuestion& rQuestion, const std::string& rFile);

    bool HasCode() const { return m_Lock.HasCode(); }
    bool IsLocked() const { return m_Lock.IsLocked(); }
    /// What the key does: opens what is locked, sets a first code, or offers what can be done with it.
    void OnKey();
    void Close() { m_CodePage.Close(); }
    CCodePage& GetCodePage() { return m_CodePage; }

    /// A run is on the page, which is nobody's settings.
    std::function<bool()> IsRunning;
    /// It has been locked or opened.
    std::function<void()> OnChanged;
    std::function<void(const std::string&)> OnSay;

private:
    void AskToOpen();
    void AskForNewCode();
    void AskAgain(const std::string& rCode);
    void TryToOpen(const std::string& rCode);
    void Remove();
    void Tell(const char* pTextKey) const;
    void Changed() const;

    CPageQuestion& m_rQuestion;
    CCodeLock m_Lock;
    CCodePage& m_CodePage;  ///< the window's
    CPageLock m_PageLock;
};
