#include "console/softkeycontrol.h"

#include <QString>
#include <utility>

#include "console/deletion.h"
#include "console/helpview.h"
#include "console/operatorrules.h"
#include "console/session.h"
#include "console/softkeybar.h"
#include "contract/helptopics.h"
#include "contract/pages.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvmdb/storetexts.h"
#include "platform/window/messagebox.h"

CSoftkeyControl::CSoftkeyControl(CConsoleSession& rSession, CSoftkeyBar& rBar, CPageQuestion& rQuestion,
                                 CHelpView& rHelp)
    : m_rSession(rSession), m_rBar(rBar), m_rQuestion(rQuestion), m_rHelp(rHelp) {
    rBar.OnPressed = [this](const CSoftkey& rKey) { OnPressed(rKey); };
    rBar.OnReleased = [this](const CSoftkey& rKey) { OnReleased(rKey); };
    rQuestion.OnChanged = [this] { Refresh(); };
}

CSoftkeyControl::~CSoftkeyControl() {
    // The window's parts live on for a moment, perhaps with a key held down.
    m_rBar.OnPressed = nullptr;
    m_rBar.OnReleased = nullptr;
    m_rQuestion.OnChanged = nullptr;
}

CSoftkeys::CState CSoftkeyControl::GetState() const {
    const CHostWindow& rHost = m_rSession.GetHost();
    const bool bTable = rHost.GetPage() == Pages::eScrewTable;
    const CShownConfiguration Shown = m_rSession.GetShownConfiguration().value_or(CShownConfiguration());
    const std::string& rName = bTable ? Shown.m_ScrewTable : Shown.m_Name;
    CSoftkeys::CState State;
    State.m_bReady = rHost.IsConfigured();
    State.m_Menu = rHost.GetMenu();
    State.m_Page = rHost.GetPage();
    State.m_Bits = rHost.GetSoftkeyBits();
    State.m_bDeletable = !rName.empty() && rName != "Default";
    State.m_Answers = m_rQuestion.GetChoices();
    State.m_bLocked = IsLocked && IsLocked();
    return State;
}

void CSoftkeyControl::NoticeNc() {
    const std::uint32_t nRequests = m_rSession.GetNcPanel().GetRequestCount();
    if (std::exchange(m_nNcSeen, nRequests) == nRequests) {
        return;
    }
    // Told when it comes as a surprise: an NC that drives its own run says enough by what it does.
    if (std::exchange(m_bByPanel, false)) {
        m_rSession.Say(GetText("CONSOLE_NC_TOOK_OVER"));
    }
}

void CSoftkeyControl::Refresh() {
    NoticeNc();
    if (m_rQuestion.GetChoices().empty()) {
        m_About = About::eNothing;
    } else if (IsOutOfDate()) {
        m_About = About::eNothing;
        m_rQuestion.Close();  // which comes back here
        return;
    }
    const CSituation Situation = m_rSession.Look();
    m_Softkeys.SetState(GetState());
    m_rBar.Show(m_Softkeys.GetShown(), Situation.m_bRunning ? Situation.m_Progress.m_State : std::string());
}

bool CSoftkeyControl::IsOutOfDate() const {
    const bool bRunning = m_rSession.Look().m_bRunning;
    const bool bNcActs = m_rSession.GetNcPanel().GetRequestCount() != m_nNcRequests;
    switch (m_About) {
        case About::eNothing:
            return false;
        case About::eDelete:
            return bRunning;
        default:
            return !bRunning || bNcActs || m_rSession.GetHost().GetActivity() != m_Activity;
    }
}

void CSoftkeyControl::OnPressed(const CSoftkey& rKey) {
    switch (rKey.m_Kind) {
        case CSoftkey::eNone:
            break;
        case CSoftkey::eModule:
            if (rKey.IsAction(Actions::eTerminate) && WouldLose(m_rSession.Look())) {
                AskToEnd(About::eEnd, "CONSOLE_END_TITLE",
                         [this] { m_rSession.SendAction(Actions::eTerminate, Actions::eCommit); });
                break;
            }
            if (rKey.IsAction(Actions::eTerminate) && IsDoubted(m_rSession.Look())) {
                AskToKeep(About::eEnd, {});
                break;
            }
            m_bByPanel = true;
            m_rSession.SendAction(rKey.m_Key.m_Action, rKey.m_Key.m_Flag);
            Refresh();  // the run may be a step further, before the new menu has arrived
            break;
        case CSoftkey::eMore:
            m_Softkeys.More();
            Refresh();
            break;
        case CSoftkey::eHelp:
            ShowHelp();
            break;
        case CSoftkey::eDelete:
            AskToDelete();
            break;
        case CSoftkey::eCode:
            if (OnCode) {
                OnCode();
            }
            break;
        case CSoftkey::eService:
            if (OnService) {
                OnService();
            }
            break;
        case CSoftkey::eAnswer:
            m_rQuestion.Answer(rKey.m_Answer);
            break;
    }
}

void CSoftkeyControl::OnReleased(const CSoftkey& rKey) {
    if (rKey.m_Kind == CSoftkey::eModule && rKey.m_Key.m_bRepeats) {
        m_rSession.SendAction(rKey.m_Key.m_Action, Actions::eNone);
    }
}

void CSoftkeyControl::ShowHelp() {
    // Between runs the page has a pane for the help; the key then shows it large.
    const CSituation Situation = m_rSession.Look();
    const bool bTable = m_rSession.GetHost().GetPage() == Pages::eScrewTable;
    const char* pTopic = bTable ? HelpTopics::SCREW_TABLE_PAGE : HelpTopics::SETTINGS_PAGE;
    if (Situation.m_bRunning) {
        pTopic = HelpTopics::Find(Situation.m_Progress);
    }
    m_rHelp.ToggleTopic(pTopic);
}

bool CSoftkeyControl::WouldLose(const CSituation& rSituation) const {
    return rSituation.m_bRunning && rSituation.m_Progress.m_Step > 1 && !IsMeasuredVerdict(rSituation);
}

bool CSoftkeyControl::IsDoubted(const CSituation& rSituation) const {
    return IsMeasuredVerdict(rSituation) && GetDoubt && !GetDoubt().empty();
}

bool CSoftkeyControl::MayClose() {
    const CSituation Situation = m_rSession.Look();
    if (!WouldLose(Situation) && !IsDoubted(Situation)) {
        return true;
    }
    if (m_About == About::eClose) {
        return false;
    }
    if (IsDoubted(Situation)) {
        AskToKeep(About::eClose, OnClose);
        return false;
    }
    AskToEnd(About::eClose, "CONSOLE_CLOSE_TITLE", [this] {
        m_rSession.SendAction(Actions::eTerminate, Actions::eCommit);
        if (OnClose) {
            OnClose();
        }
    });
    return false;
}

void CSoftkeyControl::AskToKeep(About What, std::function<void()> Then) {
    const auto End = [this, Then = std::move(Then)](Actions::Flag Flag) {
        m_rSession.SendAction(Actions::eTerminate, Flag);
        if (Then) {
            Then();
        }
    };
    Ask(What, {"ADVICE_KEEP_TITLE",
               [this] { return PreBalDB::StoreTexts::Fill("ADVICE_KEEP_TEXT", {GetDoubt()}); },
               {{"CONSOLE_GO_ON", {}},
                {"ADVICE_DISCARD", [End] { End(Actions::eNone); }},
                {"ADVICE_KEEP", [End] { End(Actions::eCommit); }}}});
}

void CSoftkeyControl::Ask(About What, CPageQuestion::CQuestion Question) {
    m_About = What;
    m_Activity = m_rSession.GetHost().GetActivity();
    m_nNcRequests = m_rSession.GetNcPanel().GetRequestCount();
    m_rQuestion.Ask(std::move(Question));
}

void CSoftkeyControl::AskToEnd(About What, const char* pTitleKey, std::function<void()> Do) {
    const CSituation Situation = m_rSession.Look();
    const std::uint32_t Step = Situation.m_Progress.m_Step;
    const std::uint32_t nSteps = Situation.m_Progress.m_NumberOfSteps;
    const bool bVerdict = IsVerdict(Situation.m_Notification.GetStep());
    Ask(What,
        {pTitleKey,
         [Step, nSteps, bVerdict] {
             return QString::fromStdString(GetText(bVerdict ? "CONSOLE_END_UNMEASURED" : "CONSOLE_END_TEXT"))
                 .arg(Step)
                 .arg(nSteps)
                 .toStdString();
         },
         {{"CONSOLE_GO_ON", {}}, {"CONSOLE_END_RUN", std::move(Do)}}});
}

void CSoftkeyControl::AskToDelete() {
    const std::optional<CShownConfiguration> Shown = m_rSession.GetShownConfiguration();
    if (!Shown) {
        return;
    }
    const bool bTable = m_rSession.GetHost().GetPage() == Pages::eScrewTable;
    Ask(About::eDelete,
        {"CONSOLE_DELETE",
         [Shown, bTable] {
             return QString::fromStdString(
                        GetText(bTable ? "CONSOLE_ASK_DELETE_TABLE" : "CONSOLE_ASK_DELETE_CONFIGURATION"))
                 .arg(QString::fromStdString(bTable ? Shown->m_ScrewTable : Shown->m_Name))
                 .toStdString();
         },
         {{"CONSOLE_KEEP", {}}, {"CONSOLE_DELETE", [this, Shown, bTable] {
                                     const std::string Why = DeleteShown(m_rSession, *Shown, bTable);
                                     if (!Why.empty()) {
                                         ShowMessageBox(Why, GetText("CONSOLE_DELETE"));
                                     }
                                     Refresh();
                                 }}}});
}
