// The window's life, and the way of messages to their handlers.
#include "rvdlm/m_rtr/rtr_trim/prebalancingmainwnd.h"

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "contract/actions.h"
#include "contract/arrivedreadings.h"
#include "contract/hostmessages.h"
#include "contract/ncrequests.h"
#include "contract/prebalprogress.h"
#include "contract/shownconfiguration.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/modulemessages.h"
#include "rvdlm/m_rtr/rtr_trim/pagepainter.h"
#include "rvlib/settings/installation.h"

using RtrTrim::g_pLog;

namespace {

constexpr CRect FIRST_RECT{0, 0, 200, 200};

/// Puts a text in the place of the last "%s". From the back, so that a "%" in the help directory does no
/// harm.
void FillLast(std::string& rFormat, const std::string& rText) {
    const std::size_t Position = rFormat.rfind("%s");
    if (Position != std::string::npos) {
        rFormat.replace(Position, 2, rText);
    }
}

/// Gives a frame's buffer back however its handling ends.
class CBufferGuard {
public:
    explicit CBufferGuard(std::uint16_t Handle) : m_Handle(Handle) {}
    ~CBufferGuard() { rvCOM::FreeBuffer(m_Handle); }
    CBufferGuard(const CBufferGuard&) = delete;
    CBufferGuard& operator=(const CBufferGuard&) = delete;

private:
    std::uint16_t m_Handle;
};

}  // namespace

const CPreBalancingMainWnd::CMessageMapEntry CPreBalancingMainWnd::ms_MessageMap[] = {
    {WM_CREATE, WM_CREATE, "OnCreate", &CPreBalancingMainWnd::OnCreate},
    {WM_DESTROY, WM_DESTROY, "OnDestroy", &CPreBalancingMainWnd::OnDestroy},
    {WM_SIZE, WM_SIZE, "OnSize", &CPreBalancingMainWnd::OnSize},
    {WM_PAINT, WM_PAINT, "OnPaint", &CPreBalancingMainWnd::OnPaint},
    {WM_TIMER, WM_TIMER, "OnTimer", &CPreBalancingMainWnd::OnTimer},
    {WM_RV_INITWINDOW, WM_RV_INITWINDOW, "OnInitWindow", &CPreBalancingMainWnd::OnInitWindow},
    {WM_RV_RAWDATA_FIRST, WM_RV_RAWDATA_LAST, "OnRawData", &CPreBalancingMainWnd::OnRawData},
    {WM_RV_MODULEACTION, WM_RV_MODULEACTION, "OnModuleAction", &CPreBalancingMainWnd::OnModuleAction},
    {WM_RV_PREBALANCINGSTATE, WM_RV_PREBALANCINGSTATE, "SetPrebalancingState",
     &CPreBalancingMainWnd::SetPrebalancingState},
    {WM_RV_DESTROYPENDING, WM_RV_DESTROYPENDING, "OnDestroyPending", &CPreBalancingMainWnd::OnDestroyPending},
    {WM_RV_DBINITDONE, WM_RV_DBINITDONE, "OnDBInitDone", &CPreBalancingMainWnd::OnDBInitDone},
    {WM_RV_QUERYPROGRESS, WM_RV_QUERYPROGRESS, "OnQueryProgress", &CPreBalancingMainWnd::OnQueryProgress},
    {WM_RV_QUERYREADINGS, WM_RV_QUERYREADINGS, "OnQueryReadings", &CPreBalancingMainWnd::OnQueryReadings},
    {WM_RV_STORECHANGED, WM_RV_STORECHANGED, "OnStoreChanged", &CPreBalancingMainWnd::OnStoreChanged},
    {WM_RV_QUERYCONFIGURATION, WM_RV_QUERYCONFIGURATION, "OnQueryConfiguration",
     &CPreBalancingMainWnd::OnQueryConfiguration},
    {WM_RV_LANGUAGECHANGED, WM_RV_LANGUAGECHANGED, "OnLanguageChanged",
     &CPreBalancingMainWnd::OnLanguageChanged},
};

CPreBalancingMainWnd::CPreBalancingMainWnd(CMainWndMakers Makers)
    : m_Makers(std::move(Makers)),
      m_Conversation(MakeConversationCallbacks()),
      m_tabCtrl(*this),
      m_HelpFormat("mk:@MSITStore:" + GetHelpDirectory().GetText() + "\\%s_Falconet.chm::/%s.htm"),
      m_NCDesk(MakeNCDeskCallbacks()),
      m_StatusRate(m_Makers.m_Now) {}

CPreBalancingMainWnd::~CPreBalancingMainWnd() {
    rvCOM::Forget(this);
    if (m_pPrebalancingSequence != nullptr && IsWindow()) {
        m_SpeedControl.Guarded("~CPreBalancingMainWnd", [this] { TerminatePrebalancingSequence(); });
    }
    // The procedure refers to the entry that the tabs' database owns.
    m_pPrebalancingSequence.reset();
    LeaveNC();
}

CConversationCallbacks CPreBalancingMainWnd::MakeConversationCallbacks() {
    CConversationCallbacks Callbacks;
    Callbacks.m_Send = [this](std::span<const std::uint8_t> Frame) {
        SendRawData(Frame.data(), static_cast<std::uint32_t>(Frame.size()));
    };
    Callbacks.m_GetProcedure = [this] { return m_pPrebalancingSequence.get(); };
    Callbacks.m_GetProcedureToAbort = [this] { return GetProcedureToAbort(); };
    Callbacks.m_OnMachineKnown = [this](const CSources& rSources) { OpenDatabase(rSources); };
    // Starting a procedure aborts it at once, so that the operator sees why such a set can't be used.
    Callbacks.m_OnUnusableSet = [this] { PostMessage(WM_RV_MODULEACTION, Actions::eStart); };
    Callbacks.m_OnSpeed = [this] { RepaintStatus(); };
    Callbacks.m_Guard = std::bind_front(&CSpeedControl::Guarded, &m_SpeedControl);
    return Callbacks;
}

CNCDeskCallbacks CPreBalancingMainWnd::MakeNCDeskCallbacks() {
    CNCDeskCallbacks Callbacks;
    Callbacks.m_GetProcedure = [this] { return m_pPrebalancingSequence.get(); };
    Callbacks.m_HasConfiguration = [this] { return m_tabCtrl.HasDatabase(); };
    Callbacks.m_IsCalibrated = [this] { return IsCalibrated(); };
    Callbacks.m_SaveConfiguration = [this] { m_tabCtrl.SaveCurrentConfiguration(); };
    Callbacks.m_Start = [this](StartOperation pStart) { return StartRun(pStart); };
    Callbacks.m_End = [this] { return EndForNC(); };
    Callbacks.m_Guard = std::bind_front(&CSpeedControl::Guarded, &m_SpeedControl);
    return Callbacks;
}

LRESULT CPreBalancingMainWnd::WindowProc(UINT Message, WPARAM wParam, LPARAM lParam) {
    for (const CMessageMapEntry& rEntry : ms_MessageMap) {
        if (Message >= rEntry.m_First && Message <= rEntry.m_Last) {
            LRESULT Result = 0;
            m_SpeedControl.Guarded(rEntry.m_pName,
                                   [&] { Result = (this->*rEntry.m_pHandler)(wParam, lParam); });
            return Result;
        }
    }
    return CWnd::WindowProc(Message, wParam, lParam);
}

LRESULT CPreBalancingMainWnd::OnCreate(WPARAM wParam, LPARAM lParam) {
    const LRESULT Result = CWnd::WindowProc(WM_CREATE, wParam, lParam);
    if (Result == -1) {
        return Result;
    }
    m_NCDesk.Connect(*this);
    m_tabCtrl.Create(this, FIRST_RECT, TAB_CTRL_ID, true);
    m_Browser.Create(this, FIRST_RECT, BROWSER_ID);
    return Result;
}

LRESULT CPreBalancingMainWnd::OnSize(WPARAM, LPARAM) {
    const CRect Client = GetClientRect();
    RV_ASSERT(g_pLog, m_tabCtrl.IsWindow(), "TabCtrl not created");
    m_tabCtrl.MoveWindow(CRect(0, 0, Client.Width() / 2, Client.Height()));
    m_Browser.MoveWindow(GetBrowserRect());
    return 0;
}

CRect CPreBalancingMainWnd::GetBrowserRect() const {
    const CRect Client = GetClientRect();
    const int nHalf = Client.Width() / 2;
    return {CPoint(nHalf, 0), CSize(nHalf, Client.Height())};
}

LRESULT CPreBalancingMainWnd::OnTimer(WPARAM wParam, LPARAM) {
    if (wParam == STATUS_TIMER) {
        KillTimer(STATUS_TIMER);
        m_bStatusDelayed = false;
        Repaint(CPreBalancing::ePaintStatus);
    }
    if (wParam != HELP_TIMER) {
        return 0;
    }
    KillTimer(HELP_TIMER);
    if (m_Browser.IsWindow()) {
        std::string Url = m_HelpFormat;
        FillLast(Url, m_HelpTopic);
        FillLast(Url, GetText("ONLINE_HELP_PREFIX"));
        m_Browser.Navigate(Url);
    }
    return 0;
}

void CPreBalancingMainWnd::SetHelpTopic(const std::string& rTopic) {
    m_HelpTopic = rTopic;
    SetTimer(HELP_TIMER, HELP_DELAY);
}

LRESULT CPreBalancingMainWnd::OnInitWindow(WPARAM wParam, LPARAM lParam) {
    if (!GetMachineName().empty()) {
        m_SpeedControl.Read();
        return 1;
    }
    m_ModuleAddress = static_cast<std::uint32_t>(wParam);
    const CInitFlags Flags(lParam);
    m_SpeedControl.Load();
    CreateMapper(m_ModuleAddress, Flags);
    m_tabCtrl.SetBalancingMode(
        static_cast<PreBalDB::CPreBalDatabase::BalancingMode>(Flags.GetBalancingMode()));
    m_tabCtrl.SetPlane(Flags.GetPlane());
    m_tabCtrl.ShowWindow(true);
    m_tabCtrl.SetCurSel(0);
    m_tabCtrl.UpdateTabSelection();
    if (!m_Browser.IsWindow()) {
        m_Browser.Create(this, GetBrowserRect(), BROWSER_ID);  // a run that the host ended took it along
    }

    std::vector<std::uint8_t> Modules = {static_cast<std::uint8_t>(m_ModuleAddress)};
    if (Flags.IsKestrel() && Flags.HasSlave()) {
        Modules.push_back(Flags.GetSlaveAddress());
    }
    m_Conversation.Begin(Modules, m_tabCtrl.GetBalancingMode());
    m_SpeedControl.Read();
    return 1;
}

void CPreBalancingMainWnd::CreateMapper(std::uint32_t Address, const CInitFlags& rFlags) {
    if (GetCommunicationIF() != nullptr) {
        RV_INFORMATION(g_pLog, "using existing mapper.");
        return;
    }
    rvCOM::Notify(this, RV_NOTIFY_RAWDATA, static_cast<std::uint8_t>(Address));
    m_Conversation.SetMapper(m_Makers.m_MakeMapper(*this, Address, rFlags));
    if (rFlags.IsKestrel() && rFlags.HasSlave()) {
        rvCOM::Notify(this, RV_NOTIFY_RAWDATA, rFlags.GetSlaveAddress());
    }
}

void CPreBalancingMainWnd::ShowTitle() {
    m_tabCtrl.SetTitle(GetText("PREBAL_CONFIG") + " (" + GetText("SET") + " " +
                       std::to_string(GetSet().Number) + ")");
}

void CPreBalancingMainWnd::OpenDatabase(const CSources& rSources) {
    ShowTitle();
    m_tabCtrl.InitDatabase(GetMachineName(), rSources.m_Sensor1, rSources.m_Sensor2,
                           static_cast<PreBalDB::CTypeBase::AffectedPlane>(rSources.m_Input));
    PostMessage(WM_RV_DBINITDONE);
}

LRESULT CPreBalancingMainWnd::OnDBInitDone(WPARAM, LPARAM) {
    PostToParent(WM_RV_BALANCINGACTIVITY, 0, IsCalibrated() ? 1 : 0);
    NotifyConfigurationShown(IsCalibrated());
    m_NCDesk.ResetNotificationFromNC(NcRequests::eDone);
    return 1;
}

LRESULT CPreBalancingMainWnd::OnStoreChanged(WPARAM, LPARAM) {
    if (m_pPrebalancingSequence != nullptr || !m_tabCtrl.HasDatabase()) {
        return 0;
    }
    m_tabCtrl.ReadStoreAnew();
    return 1;
}

LRESULT CPreBalancingMainWnd::OnLanguageChanged(WPARAM, LPARAM) {
    if (m_tabCtrl.HasDatabase()) {
        ShowTitle();
    }
    m_tabCtrl.ShowTexts();
    if (!m_HelpTopic.empty()) {
        SetHelpTopic(m_HelpTopic);
    }
    RepaintAll();
    return 1;
}

LRESULT CPreBalancingMainWnd::OnRawData(WPARAM wParam, LPARAM lParam) {
    // The buffer's handle (low byte first), one unused byte, then the frame.
    constexpr std::size_t HEADER = 3;
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    const auto* const pBuffer = reinterpret_cast<const std::uint8_t*>(wParam);
    if (pBuffer == nullptr || lParam < static_cast<LPARAM>(HEADER)) {
        return 0;
    }
    const std::span<const std::uint8_t> Buffer(pBuffer, static_cast<std::size_t>(lParam));
    const CBufferGuard Guard(static_cast<std::uint16_t>(Buffer[0] | (Buffer[1] << 8U)));
    m_Conversation.OnFrame(Buffer.subspan(HEADER));
    return 0;
}

void CPreBalancingMainWnd::SendRawData(const std::uint8_t* pData, std::uint32_t nSize) {
    rvCOM::SendRawData(pData, nSize);
}

LRESULT CPreBalancingMainWnd::OnQueryProgress(WPARAM, LPARAM lParam) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    auto* const pProgress = reinterpret_cast<CPreBalProgress*>(lParam);
    if (m_pPrebalancingSequence == nullptr || pProgress == nullptr) {
        return 0;
    }
    m_pPrebalancingSequence->GetProgress(*pProgress);
    pProgress->m_Menu = m_Menu;
    return 1;
}

LRESULT CPreBalancingMainWnd::OnQueryReadings(WPARAM, LPARAM lParam) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    auto* const pReadings = reinterpret_cast<CArrivedReadings*>(lParam);
    if (m_pPrebalancingSequence == nullptr || pReadings == nullptr) {
        return 0;
    }
    m_pPrebalancingSequence->GetReadings(*pReadings);
    return 1;
}

LRESULT CPreBalancingMainWnd::OnQueryConfiguration(WPARAM, LPARAM lParam) {
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a message's parameters are whole numbers
    auto* const pShown = reinterpret_cast<CShownConfiguration*>(lParam);
    const PreBalDB::CPreBalBaseTableEntry* const pEntry = m_tabCtrl.GetCurrentBaseEntry();
    if (pEntry == nullptr || pShown == nullptr) {
        return 0;
    }
    pShown->m_Machine = pEntry->GetMachineName();
    pShown->m_Name = pEntry->GetProcessName();
    pShown->m_ScrewTable = m_tabCtrl.GetScrewTableDlg().GetScrewTableName();
    pShown->m_bCalibrated = IsCalibrated();
    return 1;
}

void CPreBalancingMainWnd::PostToParent(UINT Message, WPARAM wParam, LPARAM lParam) {
    if (CWnd* const pParent = GetParent()) {
        pParent->PostMessage(Message, wParam, lParam);
    }
}

void CPreBalancingMainWnd::NotifyConfigurationShown(bool bCalibrated) {
    m_NCDesk.SendStep(bCalibrated ? CPreBalNotification::eParameterWithReBal
                                  : CPreBalNotification::eParameter);
}

void CPreBalancingMainWnd::LeaveNC() {
    // The host ought to have announced the end. Nothing is saved any more, but the NC mustn't wait for a
    // window that is gone.
    if (!GetMachineName().empty()) {
        m_Conversation.End();
        m_NCDesk.SendStep(CPreBalNotification::eInactive);
    }
}

int CPreBalancingMainWnd::GetSpeedIncrement() {
    return m_pPrebalancingSequence == nullptr
               ? CSpeedControl::INCREMENT_WITHOUT_SPEED
               : m_SpeedControl.GetIncrement(m_ModuleAddress, m_pPrebalancingSequence->GetSetText());
}

LRESULT CPreBalancingMainWnd::OnPaint(WPARAM, LPARAM) {
    RepaintPage(*this, m_pPrebalancingSequence.get(), CPreBalancing::ePaintAll);
    return 0;
}

void CPreBalancingMainWnd::Repaint(unsigned Mask) {
    if (IsLookedAt()) {
        RepaintPage(*this, m_pPrebalancingSequence.get(), Mask);
    } else {
        Invalidate();
    }
}

void CPreBalancingMainWnd::RepaintStatus() {
    if (!IsLookedAt() || m_StatusRate.Take()) {
        Repaint(CPreBalancing::ePaintStatus);
    } else if (!m_bStatusDelayed) {
        m_bStatusDelayed = SetTimer(STATUS_TIMER, static_cast<UINT>(CDisplayRate::PERIOD.count()));
    }
}

void CPreBalancingMainWnd::SetMenu(std::int32_t Menu) {
    m_Menu = Menu;
    RepaintAll();
    PostToParent(WM_RV_SETMENU, static_cast<WPARAM>(Menu));
}

void CPreBalancingMainWnd::SetBalancingActivity(std::int32_t Activity) {
    // 0 posts nothing: that the configuration is back is told when it is shown.
    if (Activity == 1 || Activity == 2) {
        PostToParent(WM_RV_BALANCINGACTIVITY, static_cast<WPARAM>(Activity));
    }
}
