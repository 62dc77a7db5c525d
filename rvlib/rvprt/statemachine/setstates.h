#pragma once
#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/statemachine/statebase.h"

namespace Comm {

/// Where the families' set machines differ in figures.
struct CSetRules {
    CRequestRow m_Query;  ///< of the active set
    std::uint32_t m_SmallestIndication;
    std::uint8_t m_IndicationSubCode;
    std::uint32_t m_FailureSize;    ///< of the failure answer whose code is logged
    std::uint32_t m_FailureOffset;  ///< of the code in it
};

/// How the answer is treated that a state waits for.
template <class Machine, class Set>
struct CSetRow {
    const char* m_pFailure;  ///< format with set and reason
    const char* m_pResponse;
    const char* m_pCalling;  ///< format with the reason, before the callback in a failure
    void (Machine::*m_pCallback)(Reason Why, const Set* pSet);
    bool m_bActiveSet;  ///< the answer tells the set in force, not limits or defaults
};

/// The machine of the set, for both families. FamilyBase: the family's CStateBase; Set: its message. Machine,
/// the derived class, supplies GetRules() and GetRows(), the latter by state from eSet on. It may hide
/// AdoptSet.
template <class Machine, class FamilyBase, class Set>
class CSetStatesT : public FamilyBase {
public:
    using Message = Set;

    static constexpr std::uint8_t COMMAND = 0x10;

    enum States : std::uint32_t { eSetIdle = 0, eSet = 1 };

    /// 1 if the request went out.
    int QueryActiveSet() { return this->Query(Machine::GetRules().m_Query); }

    /// Nonzero if the transaction was this machine's.
    int PutResponseFromProtocol(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) {
        RV_PROTOCOL_DETAIL("CSetStates::PutResponseFromProtocol(TransactionID=%d) called",
                           static_cast<int>(TransactionID));
        RV_ASSERT(Protocols::g_pLog, nSize > 3, "Commands should be longer than 3 Bytes (Header)");
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        const std::uint32_t OldState = this->m_State;
        this->ChangeState(eSetIdle);
        if (nSize > 5) {
            RV_ASSERT_AS(Protocols::g_pLog, OldState != eSetIdle, "FALSE", "impossible", false);
            const Row* pRow = FindRow(OldState);
            if (pRow != nullptr && SetResponse(*pRow, pData[3], Behind(pData, nSize, 4)) != 0) {
                return 1;
            }
        }
        const CSetRules& rRules = Machine::GetRules();
        if (nSize == rRules.m_FailureSize && pData[0] == COMMAND) {
            RV_WARNING(Protocols::g_pLog, "Set Failure Code: 0x%02X",
                       unsigned{pData[rRules.m_FailureOffset]});
        } else {
            RV_WARNING(Protocols::g_pLog, "Invalid response received");
        }
        FailureHandler(Comm::eError, OldState);
        return 1;
    }

    /// Nonzero if the transaction was this machine's.
    int PutRequestTimeoutProtocol(std::uint32_t TransactionID) {
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        const std::uint32_t OldState = this->m_State;
        this->ChangeState(eSetIdle);
        FailureHandler(Comm::eTimeout, OldState);
        return 1;
    }

    /// Takes a frame that answers no request. Nonzero if it was a set.
    int PostIndication(const std::uint8_t* pData, std::uint32_t nSize) {
        const CSetRules& rRules = Machine::GetRules();
        if (!this->IsOwnFrame(pData, nSize, rRules.m_SmallestIndication, COMMAND) ||
            pData[3] != rRules.m_IndicationSubCode) {
            return 0;
        }
        Set Decoded(this->GetLogID());
        if (DecodeMessage(*this, Decoded, Behind(pData, nSize, 4)) == 0) {
            return 0;
        }
        GetMachine().AdoptSet(Decoded, pData[3]);
        RV_PROTOCOL("--> SetIndication (0x10)");
        GetMachine().OnSetRequest(Comm::eIndication, &Decoded);
        return 1;
    }

    /// Null in a failure.
    virtual void OnSetRequest(Reason Why, const Set* pSet) = 0;

protected:
    using Row = CSetRow<Machine, Set>;

    explicit CSetStatesT(const CStateTexts& rTexts) : FamilyBase(rTexts) {}

    /// Comes with each active set before it is reported.
    void AdoptSet(const Set& /*rSet*/, std::uint8_t /*SubCode*/) {}

private:
    Machine& GetMachine() { return static_cast<Machine&>(*this); }

    static const Row* FindRow(std::uint32_t State) {
        const auto Rows = Machine::GetRows();
        return State != eSetIdle && State - eSet < Rows.size() ? &Rows[State - eSet] : nullptr;
    }

    int SetResponse(const Row& rRow, std::uint8_t SubCode, std::span<const std::uint8_t> Payload) {
        if (Payload.size() < 2) {
            RV_WARNING(Protocols::g_pLog, "not enough data to decode");
            return 0;
        }
        if (Payload.size() == 2) {
            RV_PROTOCOL(rRow.m_pFailure, Payload[0], Payload[1]);
            return 0;
        }
        Set Decoded(this->GetLogID());
        if (DecodeMessage(*this, Decoded, Payload) == 0) {
            return 0;
        }
        if (rRow.m_bActiveSet) {
            GetMachine().AdoptSet(Decoded, SubCode);
        }
        RV_PROTOCOL("%s", rRow.m_pResponse);
        Decoded.Log();
        (GetMachine().*rRow.m_pCallback)(Comm::eSuccess, &Decoded);
        return 1;
    }

    void FailureHandler(Reason Why, std::uint32_t State) {
        RV_ASSERT_AS(Protocols::g_pLog, this->m_State == eSetIdle, "m_State == eSetIdle",
                     "must be in Idle state", false);
        if (State == eSetIdle) {
            RV_ASSERT_FAIL(Protocols::g_pLog, "Failure in Idle state ?!?");
            return;
        }
        const Row* pRow = FindRow(State);
        if (pRow == nullptr) {
            RV_ASSERT_FAIL(Protocols::g_pLog, "invalid state");
            return;
        }
        RV_PROTOCOL_DETAIL(pRow->m_pCalling, ReasonToString(Why));
        (GetMachine().*pRow->m_pCallback)(Why, nullptr);
    }
};

}  // namespace Comm
