#pragma once
#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/statemachine/statebase.h"

namespace Comm {

/// The machine of the module state, for both families. FamilyBase: the family's CStateBase; Response: its
/// message. Any state but idle waits for the module state's answer.
template <class FamilyBase, class Response>
class CModuleStatesT : public FamilyBase {
public:
    using Message = Response;

    static constexpr std::uint8_t COMMAND = 0x08;

    enum States : std::uint32_t { eModuleStateIdle = 0, eQueryModuleState = 1 };

    /// 1 if the request went out.
    int QueryModuleState() { return this->Query(Requests::ModuleState(eQueryModuleState)); }

    /// Nonzero if the transaction was this machine's.
    int PutResponseFromProtocol(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) {
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        if (this->m_State == eModuleStateIdle) {
            RV_WARNING(Protocols::g_pLog, "invalid state");
            return 1;
        }
        Response Decoded(this->GetLogID());
        const int nDecoded = DecodeMessage(*this, Decoded, Behind(pData, nSize, this->HEADER_SIZE));
        if (nDecoded != 0) {
            RV_PROTOCOL("--> ModuleStateResponse (0x08)");
            Decoded.Log();
        } else {
            RV_WARNING(Protocols::g_pLog, "--> ModuleStateResponse failure(0x08)");
        }
        this->ChangeState(eModuleStateIdle);
        this->m_TransactionID = 0;
        if (nDecoded != 0) {
            RV_PROTOCOL_DETAIL("OnModuleState(eSuccess, ...)");
            OnModuleState(Comm::eSuccess, &Decoded);
        } else {
            OnModuleState(Comm::eError, nullptr);
        }
        return 1;
    }

    /// Nonzero if the transaction was this machine's.
    int PutRequestTimeoutProtocol(std::uint32_t TransactionID) {
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        RV_ASSERT_AS(Protocols::g_pLog, this->m_State != eModuleStateIdle, "m_State == eQueryModuleState",
                     "invalid state", false);
        RV_PROTOCOL("--> ModuleStateResponse NoChange(0x08))");
        this->m_TransactionID = 0;
        this->ChangeState(eModuleStateIdle);
        OnModuleState(Comm::eTimeout, nullptr);
        return 1;
    }

    /// Takes a frame that answers no request. A query under way stays open.
    void PostIndication(const std::uint8_t* pData, std::uint32_t nSize) {
        if (!this->IsOwnFrame(pData, nSize, 4, COMMAND)) {
            return;
        }
        Response Decoded(this->GetLogID());
        if (DecodeMessage(*this, Decoded, Behind(pData, nSize, this->HEADER_SIZE)) == 0) {
            return;
        }
        if (this->m_State != eModuleStateIdle) {
            RV_WARNING(Protocols::g_pLog, "Indication in invalid state received");
        }
        RV_PROTOCOL("--> ModuleStateResponseIndication received (0x08)");
        Decoded.Log();
        OnModuleState(Comm::eIndication, &Decoded);
    }

    /// Null in a failure.
    virtual void OnModuleState(Reason Why, const Response* pResponse) = 0;

protected:
    explicit CModuleStatesT(const CStateTexts& rTexts) : FamilyBase(rTexts) {}
};

}  // namespace Comm
