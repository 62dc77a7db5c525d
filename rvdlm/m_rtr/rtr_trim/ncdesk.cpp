#include "rvdlm/m_rtr/rtr_trim/ncdesk.h"

#include <algorithm>
#include <array>

#include "contract/ncitems.h"
#include "contract/ncnotification.h"
#include "contract/ncrequests.h"
#include "platform/rvopc/opcconnection.h"
#include "platform/rvopc/opcdatabase.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/nc/linkeditem.h"

using RtrTrim::g_pLog;

namespace {

/// Items by which the module may be linked to an NC. The last one is deliberately not the direction's own
/// key.
constexpr std::array<const char*, 5> LINK_KEYS{
    NcItems::REQUEST,
    NcItems::NOTIFICATION,
    NcItems::TARGET_UNBALANCE,
    NcItems::WARNING,
    NcItems::ROTATION_DIRECTION_CONNECTS,
};
/// With a connection on hand these first ones aren't looked at.
constexpr std::size_t LOOKED_AT_WITHOUT_CONNECTION = 2;

/// A write may fail at once, or later when the server is elsewhere: the same assertion either way.
void CheckSent(int Sent, const char* pText) {
    RV_ASSERT(g_pLog, Sent != 0, pText);
}

template <typename T>
void WatchWrites(const std::unique_ptr<T>& rpItem, const char* pText) {
    if (rpItem != nullptr) {
        rpItem->SetFailureHandler([pText] { CheckSent(0, pText); });
    }
}

constexpr const char* REQUEST_FAILED = "SetValueFromNC failed!";
constexpr const char* NOTIFICATION_FAILED = "SetNCData failed!";
constexpr const char* WARNING_FAILED = "SetWarningMode failed!";

}  // namespace

const CNCDesk::CRequest CNCDesk::ms_Requests[] = {
    {NcRequests::ePreBalance, &CNCDesk::OnNCStartPreBalancing},
    {NcRequests::eReBalance, &CNCDesk::OnNCStartReBalancing},
    {NcRequests::eNext, &CNCDesk::OnNCNextStep},
    {NcRequests::eEnd, &CNCDesk::OnNCAbort},
};

void CNCDesk::Connect(CPreBalFromNCInterface& rTarget) {
    const COpcDatabaseRef pDatabase("CPreBalancingMainWnd");
    COPCConnection* const pConnection = COPCConnection::CreateInstance();
    const auto* const pFirst =
        LINK_KEYS.begin() + (pConnection->IsConnected() ? LOOKED_AT_WITHOUT_CONNECTION : 0);
    const bool bLinked = std::any_of(pFirst, LINK_KEYS.end(), [&pDatabase](const char* pKey) {
        return !pDatabase->GetOpcLinkItem(pKey).empty();
    });
    if (bLinked && !pConnection->Connect(pDatabase->GetSelectedOpcServer(), 0)) {
        RV_ERROR(g_pLog, "no connection to the OPC server %s", pDatabase->GetSelectedOpcServer().c_str());
    }
    if (!pConnection->IsConnected()) {
        return;
    }
    m_pInterfaceFromNC =
        MakeLinkedItem<CPreBalInterfaceFromNC>("CPreBalancingMainWnd::CPreBalInterfaceFromNC", &rTarget);
    m_pInterfaceToNC = MakeLinkedItem<CPreBalInterfaceToNC>("CPreBalancingMainWnd::CPreBalInterfaceToNC");
    m_pInterfaceToNCWarnings =
        MakeLinkedItem<CPreBalInterfaceToNCWarnings>("CPreBalancingMainWnd::CPreBalInterfaceToNCWarnings");
    WatchWrites(m_pInterfaceFromNC, REQUEST_FAILED);
    WatchWrites(m_pInterfaceToNC, NOTIFICATION_FAILED);
    WatchWrites(m_pInterfaceToNCWarnings, WARNING_FAILED);
}

void CNCDesk::PreBalNotification(const CPreBalNotification& rNotification) {
    if (m_pInterfaceToNC == nullptr) {
        return;
    }
    std::vector<std::int32_t> Data;
    const int Encoded = rNotification.Encode(Data);
    RV_ASSERT(g_pLog, Encoded != 0, "CPreBalNotification::Encode() failed!");
    if (Encoded != 0) {
        CheckSent(m_pInterfaceToNC->SetNCData(Data), NOTIFICATION_FAILED);
    }
}

void CNCDesk::SendStep(CPreBalNotification::Step Step) {
    if (m_pInterfaceToNC == nullptr) {
        return;
    }
    std::vector<std::int32_t> Data(CNcNotification::SIZE, 0);
    Data.front() = Step;
    CheckSent(m_pInterfaceToNC->SetNCData(Data), NOTIFICATION_FAILED);
}

void CNCDesk::WarningModeChanged(std::uint32_t Mode) {
    if (m_pInterfaceToNCWarnings == nullptr) {
        return;
    }
    PB_FLOW("WarningModeChanged: %d", static_cast<int>(Mode));
    CheckSent(m_pInterfaceToNCWarnings->SetWarningMode(Mode), WARNING_FAILED);
}

void CNCDesk::ResetNotificationFromNC(std::int32_t nErrorCode) {
    if (m_pInterfaceFromNC != nullptr) {
        CheckSent(m_pInterfaceFromNC->SetValueFromNC(nErrorCode), REQUEST_FAILED);
    }
}

void CNCDesk::OnValueFromNCChanged(std::int32_t Value) {
    if (Value == 0) {
        return;  // the item is idle
    }
    const auto* const pRequest = std::ranges::find(ms_Requests, Value, &CRequest::m_Value);
    if (pRequest == std::end(ms_Requests)) {
        RV_WARNING(g_pLog, "Unknown Request received: %d (0x%X)!", Value, static_cast<unsigned>(Value));
        ResetNotificationFromNC(NcRequests::eRefused);
        return;
    }
    std::int32_t Answer = NcRequests::eRefused;
    m_Callbacks.m_Guard("OnValueFromNCChanged", [&] { Answer = (this->*pRequest->m_pHandler)(); });
    ResetNotificationFromNC(Answer);
}

std::int32_t CNCDesk::OnNCStartPreBalancing() {
    if (m_Callbacks.m_GetProcedure() != nullptr || !m_Callbacks.m_HasConfiguration()) {
        return NcRequests::eRefused;
    }
    m_Callbacks.m_SaveConfiguration();
    RV_INFORMATION(g_pLog, "NC Notification: Calling StartPreBalancing()...");
    const int Started = m_Callbacks.m_Start(&CPreBalancing::StartPreBalancing);
    RV_ASSERT(g_pLog, Started != 0, "StartPreBalancingSequence failed!");
    return NcRequests::eDone;
}

std::int32_t CNCDesk::OnNCStartReBalancing() {
    if (m_Callbacks.m_GetProcedure() != nullptr || !m_Callbacks.m_HasConfiguration() ||
        !m_Callbacks.m_IsCalibrated()) {
        return NcRequests::eRefused;
    }
    m_Callbacks.m_SaveConfiguration();
    RV_INFORMATION(g_pLog, "NC Notification: Calling StartReBalancing()...");
    const int Started = m_Callbacks.m_Start(&CPreBalancing::StartReBalancing);
    RV_ASSERT(g_pLog, Started != 0, "StartReBalancingSequence failed!");
    return NcRequests::eDone;
}

std::int32_t CNCDesk::OnNCNextStep() {
    CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure();
    if (pProcedure == nullptr) {
        return NcRequests::eRefused;
    }
    RV_INFORMATION(g_pLog, "NC Notification: Switch to next step...");
    const int Taken = pProcedure->KeyPressed(CPreBalancing::eNext);
    RV_ASSERT(g_pLog, Taken != 0, "KeyPressed(CPreBalancing::eNext) failed!");
    return NcRequests::eDone;
}

std::int32_t CNCDesk::OnNCAbort() {
    const CPreBalancing* const pProcedure = m_Callbacks.m_GetProcedure();
    if (pProcedure == nullptr) {
        return NcRequests::eRefused;
    }
    RV_INFORMATION(g_pLog, "NC Notification: Calling AbortBalancing()...");
    // A failure without return stays on the panel until the operator has seen it and ends it. "Done" for a
    // result that isn't kept would tell the NC that it is.
    return pProcedure->IsFailureWithNoReturn() || m_Callbacks.m_End() ? NcRequests::eDone
                                                                      : NcRequests::eRefused;
}
