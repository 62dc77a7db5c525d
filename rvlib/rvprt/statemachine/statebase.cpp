#include "rvlib/rvprt/statemachine/statebase.h"

#include <array>

#include "rvlib/rvprt/logblock.h"

namespace Comm {

namespace {

/// In the place of the transmit address until the protocol fills it in.
constexpr std::uint8_t PLACEHOLDER = 0xCD;

}  // namespace

int CStateBase::Query(const CRequestRow& rRow) {
    RV_PROTOCOL_DETAIL("%s", rRow.m_pCalled);
    if (!IsCommandPossible()) {
        return 0;
    }
    std::array<std::uint8_t, 4> Frame{rRow.m_Command, PLACEHOLDER, GetModuleAddress(),
                                      rRow.m_SubCode.value_or(0)};
    m_TransactionID = SendRequestToProtocol(rRow.m_Type, Frame.data(), rRow.m_SubCode ? 4 : 3, m_Timeout,
                                            m_Retries, nullptr);
    if (m_TransactionID == 0) {
        RV_ERROR(Protocols::g_pLog, "SendRequestToProtocol failed");
        return 0;
    }
    RV_PROTOCOL("%s", rRow.m_pSending);
    ChangeState(rRow.m_State);
    return 1;
}

bool CStateBase::IsCommandPossible() const {
    if (m_State == IDLE_STATE) {
        return true;
    }
    RV_WARNING(Protocols::g_pLog, "Command only possible, if no other is in progress: %s",
               StateToString(m_State));
    return false;
}

void CStateBase::ChangeState(std::uint32_t NewState) {
    if (NewState == m_State) {
        return;
    }
    RV_PROTOCOL_DETAIL(m_rTexts.m_pNewState, StateToString(NewState), StateToString(m_State));
    m_State = NewState;
}

const char* CStateBase::StateToString(std::uint32_t State) const {
    if (State < m_rTexts.m_Names.size()) {
        return m_rTexts.m_Names[State];
    }
    RV_ASSERT_FAIL(Protocols::g_pLog, "impossible");
    return m_rTexts.m_pInvalid;
}

bool CStateBase::IsOwnFrame(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t nSmallest,
                            std::uint8_t Command) const {
    return nSize >= nSmallest && pData[0] == Command && pData[1] == GetModuleAddress();
}

}  // namespace Comm
