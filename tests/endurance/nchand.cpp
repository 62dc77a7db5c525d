#include "tests/endurance/nchand.h"

#include "contract/ncitems.h"
#include "platform/rvopc/opcdatabase.h"

CInProcessOpcServer& CNcHand::GetServer() {
    return *CInProcessOpcServer::Find("console");
}

void CNcHand::LinkItems() {
    COpcDatabase::GetInstance()->SetOpcLinkItem(NcItems::REQUEST, REQUEST);
}

CNcHand::CNcHand(CConsoleSession& rSession)
    : m_rSession(rSession), m_Operator(*this, rSession.GetMachine(), rSession.GetWorkingSpeed()) {}

void CNcHand::Start(NcRequests::Request Procedure) {
    m_Procedure = Procedure;
    m_Operator.SetHoleRings(m_rSession.GetHoleRings());
    m_Timer.StartPeriodic(CRunDriver::LOOK_PERIOD, [this] { GoOn(); });
}

bool CNcHand::Ask(NcRequests::Request Wanted) {
    const std::optional<COpcValue> Present = GetServer().Read(REQUEST);
    const auto* const pNumber = Present ? std::get_if<std::int32_t>(&*Present) : nullptr;
    if (pNumber != nullptr && *pNumber > 0 && *pNumber <= NcRequests::eEnd) {
        return false;
    }
    return GetServer().Write(REQUEST, std::int32_t{Wanted});
}

void CNcHand::PressKey(const MenuKeys::CKey& rKey) {
    if (rKey.m_Action == Actions::eNext) {
        Ask(NcRequests::eNext);
    }
}

void CNcHand::GoOn() {
    const bool bRunning = Look().m_bRunning;
    if (!m_bBegun) {
        if (bRunning) {
            m_bBegun = true;
            m_Operator.Start();
        } else {
            Ask(m_Procedure);
        }
        return;
    }
    if (bRunning && m_Operator.GetOutcome() != CRunDriver::Outcome::eRunning) {
        Ask(NcRequests::eEnd);
    }
}
