#include "console/panelobserver.h"

#include <mutex>
#include <utility>

#include "console/session.h"
#include "platform/rvcom/rvcom.h"
#include "platform/rvldb/gettext.h"
#include "platform/rvlog/logcomponent.h"
#include "platform/rvmdb/offline.h"
#include "platform/rvmdb/prebaldatabase.h"
#include "platform/system/eventloop.h"
#include "platform/system/localtime.h"

namespace {

/// Between two looks at the store's file, ms.
constexpr std::uint64_t STORE_PERIOD = 2000;
/// A failure of the store is told so long, ms, unless a result has been saved since.
constexpr std::uint64_t TROUBLE_PERIOD = 60000;

std::vector<std::size_t> GetPlanes(PreBalDB::CPreBalDatabase::BalancingMode Mode) {
    switch (Mode) {
        case PreBalDB::CPreBalDatabase::eModePlane1:
            return {0};
        case PreBalDB::CPreBalDatabase::eModePlane2:
            return {1};
        default:
            return {0, 1};
    }
}

}  // namespace

/// Logged by whatever thread the store works in.
struct CPanelObserver::CStoreTrouble {
    std::mutex m_Mutex;
    std::string m_Text;
    bool m_bNew = false;
    std::uint64_t m_Since = 0;
};

CPanelObserver::CPanelObserver(CConsoleSession& rSession)
    : m_rSession(rSession),
      m_Line(rSession.IsLanner(), GetPlanes(rSession.GetMode())),
      m_pStoreTrouble(std::make_shared<CStoreTrouble>()) {
    rSession.GetHost().OnFrame = [this](std::span<const std::uint8_t> Frame) {
        m_Line.OnFrame(Frame, IFEventLoop::Current().Now());
    };
    for (const std::uint8_t Address : rSession.GetOptions().m_Addresses) {
        rvCOM::Notify(&rSession.GetHost(), RV_NOTIFY_RAWDATA, Address);
    }
    m_pLogGuard = CLogComponent::AddListener([pTrouble = m_pStoreTrouble](const CLogRecord& rRecord) {
        if (rRecord.m_Publisher == "rvMDB" && rRecord.m_Mask == CLogComponent::ERROR) {
            const std::scoped_lock Lock(pTrouble->m_Mutex);
            pTrouble->m_Text = rRecord.m_Text;
            pTrouble->m_bNew = true;
        }
    });
}

CPanelObserver::~CPanelObserver() {
    m_pLogGuard.reset();
    rvCOM::Forget(&m_rSession.GetHost());
    m_rSession.GetHost().OnFrame = nullptr;
}

CHeadState CPanelObserver::Look() {
    CHeadState State;
    const CShownConfiguration Shown = m_rSession.GetShownConfiguration().value_or(CShownConfiguration());
    State.m_Machine = Shown.m_Machine.empty() ? GetText("HEAD_NO_MACHINE") : Shown.m_Machine;
    State.m_Configuration = Shown.m_Name.empty() ? "–" : Shown.m_Name;
    const bool bOpen = rvCOM::IsLinkOpen();
    if (!bOpen) {
        m_OpenSince.reset();
    } else if (!m_OpenSince) {
        m_OpenSince = IFEventLoop::Current().Now();
    }
    const COptions& rOptions = m_rSession.GetOptions();
    State.m_Lights = {
        Lights::GetLink({rOptions.m_Link, rOptions.IsSimulated(), bOpen, rvCOM::GetOutageReason()}),
        Lights::GetModule(GetModuleFacts()),
        Lights::GetNc(m_rSession.GetNcPanel().GetState(),
                      rOptions.m_Opc ? rOptions.m_Opc->m_Configuration.m_Server : std::string(),
                      m_rSession.GetNcPanel().GetTrouble()),
        Lights::GetDatabase(GetDatabaseFacts())};
    State.m_Message = m_Message;
    State.m_Clock = FormatLocalTime(IFEventLoop::Current().WallClock(), "%H:%M");
    return State;
}

Lights::CModuleFacts CPanelObserver::GetModuleFacts() {
    Lights::CModuleFacts Facts;
    Facts.m_bLinkOpen = rvCOM::IsLinkOpen();
    Facts.m_bConfigured = m_rSession.GetHost().IsConfigured();
    Facts.m_bLanner = m_rSession.IsLanner();
    Facts.m_Addresses = m_rSession.GetOptions().m_Addresses;
    Facts.m_pLine = &m_Line;
    Facts.m_Now = IFEventLoop::Current().Now();
    Facts.m_AskedSince = m_OpenSince.value_or(Facts.m_Now);
    return Facts;
}

Lights::CDatabaseFacts CPanelObserver::GetDatabaseFacts() {
    const std::uint64_t Now = IFEventLoop::Current().Now();
    if (!m_DatabaseSeen || Now - *m_DatabaseSeen >= STORE_PERIOD) {
        m_DatabaseSeen = Now;
        m_Database = Lights::LookAtDatabase(PreBalDB::GetDatabaseConnection());
    }
    const std::scoped_lock Lock(m_pStoreTrouble->m_Mutex);
    if (std::exchange(m_pStoreTrouble->m_bNew, false)) {
        m_pStoreTrouble->m_Since = Now;
    } else if (m_rSession.GetHost().IsResultSaved() || Now - m_pStoreTrouble->m_Since > TROUBLE_PERIOD) {
        m_pStoreTrouble->m_Text.clear();
    }
    m_Database.m_Trouble = m_pStoreTrouble->m_Text;
    const PreBalDB::Offline::CState Offline = PreBalDB::Offline::GetState();
    m_Database.m_bAway = Offline.m_bAway;
    m_Database.m_WhyAway = Offline.m_Why;
    m_Database.m_nWaiting = Offline.m_nConfigurations + Offline.m_nRuns;
    return m_Database;
}
