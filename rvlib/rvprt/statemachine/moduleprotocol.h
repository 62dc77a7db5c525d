#pragma once
#include <string>

#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/protocol.h"
#include "rvlib/rvprt/reason.h"

namespace Comm {

/// Joins a family's three machines with the transaction protocol: offers answers, time-outs and indications
/// to each in turn.
template <class ModuleStates, class SetStates, class CommonStates>
class CModuleProtocol : public ModuleStates, public SetStates, public CommonStates, private CProtocol {
public:
    /// pLogID identifies this protocol in the log.
    CModuleProtocol(std::uint8_t ModuleAddress, const char* pLogID)
        : m_ModuleAddress(ModuleAddress), m_LogID(pLogID) {}

    std::uint8_t GetModuleAddress() const override { return m_ModuleAddress; }
    const char* GetLogID() const override { return m_LogID.c_str(); }

    /// For every received frame, header included. Nonzero if it answered a request or was a known indication.
    int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) {
        const int nTaken = CProtocol::PutReceivedModuleData(pData, nSize);
        return nTaken != 0 ? nTaken : PostIndicationHandler(pData, nSize);
    }

    /// A frame that answers no request. Frames of other modules fall through. Nonzero if taken.
    int PostIndicationHandler(const std::uint8_t* pData, std::uint32_t nSize) {
        ModuleStates::PostIndication(pData, nSize);
        const int nTaken = SetStates::PostIndication(pData, nSize);
        return nTaken != 0 ? nTaken : CommonStates::PostIndication(pData, nSize);
    }

    // Empty here, so that a family's protocol can be used for what it is wanted for only.
    void OnModuleState(Reason /*Why*/, const typename ModuleStates::Message* /*pResponse*/) override {}
    void OnSetRequest(Reason /*Why*/, const typename SetStates::Message* /*pSet*/) override {}

private:
    std::uint32_t SendRequestToProtocol(std::uint32_t Type, std::uint8_t* pFrame, std::uint32_t nSize,
                                        std::uint32_t msTimeout, std::int32_t nRetries, CWnd* hWnd) override {
        return CProtocol::SendRequest(Type, pFrame, nSize, msTimeout, nRetries, hWnd);
    }

    void OnResponse(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) override {
        if (ModuleStates::PutResponseFromProtocol(TransactionID, pData, nSize) == 0 &&
            SetStates::PutResponseFromProtocol(TransactionID, pData, nSize) == 0 &&
            CommonStates::PutResponseFromProtocol(TransactionID, pData, nSize) == 0) {
            RV_ASSERT_FAIL(Protocols::g_pLog, "unhandled response!");
        }
    }

    void OnRequestTimeout(std::uint32_t TransactionID) override {
        if (ModuleStates::PutRequestTimeoutProtocol(TransactionID) == 0 &&
            SetStates::PutRequestTimeoutProtocol(TransactionID) == 0 &&
            CommonStates::PutRequestTimeoutProtocol(TransactionID) == 0) {
            RV_ASSERT_FAIL(Protocols::g_pLog, "unhandled timeout!");
        }
    }

    std::uint8_t m_ModuleAddress;
    std::string m_LogID;
};

}  // namespace Comm
