#include "console/access.h"

#include <QString>

#include "console/pagequestion.h"
#include "platform/rvldb/gettext.h"

CAccess::CAccess(QWidget& rPage, CPageQuestion& rQuestion, const std::string& rFile)
    : m_rQuestion(rQuestion), m_Lock(rFile), m_CodePage(*new CCodePage(rPage)), m_PageLock(rPage) {
    m_PageLock.IsLocked = [this] { return IsLocked() && !(IsRunning && IsRunning()); };
    m_PageLock.OnWithheld = [this] { Tell("CODE_WITHHELD"); };
}

void CAccess::Tell(const char* pTextKey) const {
    if (OnSay) {
        OnSay(GetText(pTextKey));
    }
}

void CAccess::Changed() const {
    if (OnChanged) {
        OnChanged();
    }
}

void CAccess::OnKey() {
    if (IsLocked()) {
        AskToOpen();
    } else if (!HasCode()) {
        AskForNewCode();
    } else {
        m_rQuestion.Ask({"CODE_TITLE",
                         [] { return GetText("CODE_OPEN_NOW"); },
                         {{"CODE_CANCEL", {}},
                          {"CODE_LOCK",
                           [this] {
                               m_Lock.Lock();
                               Changed();
                           }},
                          {"CODE_CHANGE", [this] { AskForNewCode(); }},
                          {"CODE_REMOVE", [this] { Remove(); }}}});
    }
}

void CAccess::AskToOpen() {
    m_CodePage.Ask("CODE_ENTER", [this](const std::string& rCode) { TryToOpen(rCode); });
    if (m_Lock.IsDamaged()) {
        m_CodePage.Tell(QString::fromStdString(GetText("CODE_DAMAGED"))
                            .arg(QString::fromStdString(m_Lock.GetFile()))
                            .toStdString());
    }
}

void CAccess::TryToOpen(const std::string& rCode) {
    const CCodeLock::Outcome Outcome = m_Lock.Open(rCode);
    if (Outcome == CCodeLock::Outcome::eOpen) {
        m_CodePage.Close();
        Tell("CODE_OPENED");
        Changed();
        return;
    }
    constexpr std::uint64_t SECOND = 1000;
    m_CodePage.Tell(QString::fromStdString(
                        GetText(Outcome == CCodeLock::Outcome::eWrong ? "CODE_WRONG" : "CODE_TOO_SOON"))
                        .arg((m_Lock.GetPause() + SECOND - 1) / SECOND)
                        .toStdString());
}

void CAccess::AskForNewCode() {
    m_CodePage.Ask("CODE_NEW", [this](const std::string& rCode) {
        if (QString::fromStdString(rCode).size() < static_cast<qsizetype>(CCodeLock::FEWEST_CHARACTERS)) {
            m_CodePage.Tell(GetText("CODE_TOO_SHORT"));
        } else {
            AskAgain(rCode);
        }
    });
}

void CAccess::AskAgain(const std::string& rCode) {
    m_CodePage.Ask("CODE_AGAIN", [this, rCode](const std::string& rAgain) {
        if (rAgain != rCode) {
            AskForNewCode();
            m_CodePage.Tell(GetText("CODE_DIFFERS"));
            return;
        }
        m_CodePage.Close();
        Tell(m_Lock.SetCode(rCode) ? "CODE_SET" : "CODE_NOT_WRITTEN");
        Changed();
    });
}

void CAccess::Remove() {
    Tell(m_Lock.RemoveCode() ? "CODE_REMOVED" : "CODE_NOT_WRITTEN");
    Changed();
}
