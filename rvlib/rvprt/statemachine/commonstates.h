#pragma once
#include "rvlib/rvprt/littleendian.h"
#include "rvlib/rvprt/logblock.h"
#include "rvlib/rvprt/statemachine/statebase.h"

namespace Comm {

/// How the answer is treated that a state waits for.
template <class Machine>
struct CCommonRow {
    std::uint8_t m_Command;  ///< of the answer
    bool m_bIndication;      ///< the module sends such frames by itself, too
    /// Gets what lies behind the header. Nonzero if it reported a value.
    int (Machine::*m_pHandler)(std::span<const std::uint8_t> Payload, bool bIndication);
    const char* m_pCalling;  ///< format with the reason, before the callback in a failure
    void (*m_pFail)(Machine& rMachine, Reason Why);  ///< the callback with nulls
};

template <class Machine, class Source, class... Values>
void CallWithNulls(Machine& rMachine, Reason Why,
                   void (Source::*pCallback)(Reason Why, const Values*... pValues)) {
    (rMachine.*pCallback)(Why, static_cast<const Values*>(nullptr)...);
}

/// Reports a failure: calls back without values, however many the callback takes.
template <class Machine, auto pCallback>
void Fail(Machine& rMachine, Reason Why) {
    CallWithNulls(rMachine, Why, pCallback);
}

/// What an answer with a sub-code must look like.
struct CSubCodeRow {
    std::uint8_t m_SubCode;
    std::uint32_t m_Smallest;    ///< from the sub-code on
    std::uint32_t m_DecodeFrom;  ///< 0 if the message begins with the sub-code, 1 if behind it
    const char* m_pResponse;
};

/// Identification, for both families. The length is one short of what the message then asks for: meant so, a
/// frame of this length fails only there.
constexpr CSubCodeRow IDENTIFICATION_ROW{8, 45, 0, "--> ModuleIdentificationResponse(0x11-8)"};

/// What the log says of values that came as answers.
constexpr const char* RPM_DATA_RESPONSE = "--> RPMDataResponse received(0x1C)...";
constexpr const char* UNBALANCE_XY_RESPONSE = "--> UnbalanceCoordonatesResponse received(0x1E)...";

/// The machine of everything else, for both families. FamilyBase: the family's CStateBase. Machine, the
/// derived class, supplies GetRows(), by state from the first behind idle on, and SMALLEST_RESPONSE. It may
/// hide PostSubCodeIndication.
template <class Machine, class FamilyBase>
class CCommonStatesT : public FamilyBase {
public:
    /// Nonzero if the transaction was this machine's.
    int PutResponseFromProtocol(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) {
        RV_PROTOCOL_DETAIL("CCommonStates::PutResponseFromProtocol(TransactionID=%d) called",
                           static_cast<int>(TransactionID));
        RV_ASSERT(Protocols::g_pLog, nSize > 3, "Commands should be longer than 3 Bytes (Header)");
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        m_BaseclassCalled = true;
        m_OldState = this->m_State;
        this->ChangeState(this->IDLE_STATE);
        if (nSize >= Machine::SMALLEST_RESPONSE) {
            const Row* pRow = FindRow(m_OldState);
            if (pRow == nullptr) {
                RV_ASSERT_FAIL(Protocols::g_pLog, "impossible");
            } else {
                RV_ASSERT_AS(Protocols::g_pLog, pData[0] == pRow->m_Command, "pData[0] == Command",
                             "invalid response", false);
                const int nHandled =
                    (GetMachine().*pRow->m_pHandler)(Behind(pData, nSize, this->HEADER_SIZE), false);
                if (nHandled != 0) {
                    RV_ASSERT(Protocols::g_pLog, m_BaseclassCalled, "Baseclass not called");
                    m_OldState = this->m_State;
                    return nHandled;
                }
            }
        }
        RV_WARNING(Protocols::g_pLog, "Invalid response received");
        FailureHandler(Comm::eError, m_OldState);
        m_OldState = this->m_State;
        return 1;
    }

    /// Nonzero if the transaction was this machine's.
    int PutRequestTimeoutProtocol(std::uint32_t TransactionID) {
        if (TransactionID != this->m_TransactionID) {
            return 0;
        }
        const std::uint32_t OldState = this->m_State;
        this->ChangeState(this->IDLE_STATE);
        FailureHandler(Comm::eTimeout, OldState);
        return 1;
    }

    /// Takes a frame that answers no request. Nonzero if it held a value.
    int PostIndication(const std::uint8_t* pData, std::uint32_t nSize) {
        if (nSize < 4 || pData[1] != this->GetModuleAddress()) {
            return 0;
        }
        m_BaseclassCalled = true;
        for (const Row& rRow : Machine::GetRows()) {
            if (rRow.m_bIndication && rRow.m_Command == pData[0]) {
                const int nHandled =
                    (GetMachine().*rRow.m_pHandler)(Behind(pData, nSize, this->HEADER_SIZE), true);
                RV_ASSERT(Protocols::g_pLog, m_BaseclassCalled, "Baseclass not called");
                return nHandled;
            }
        }
        return GetMachine().PostSubCodeIndication(pData[0], Behind(pData, nSize, this->HEADER_SIZE));
    }

protected:
    using Row = CCommonRow<Machine>;

    explicit CCommonStatesT(const CStateTexts& rTexts) : FamilyBase(rTexts) {}

    /// Takes a frame that no row takes as an indication; Payload, from the sub-code on, isn't empty. Nonzero
    /// if it could be used.
    int PostSubCodeIndication(std::uint8_t /*Command*/, std::span<const std::uint8_t> /*Payload*/) {
        return 0;
    }

    /// Decodes an answer with a sub-code and reports it. Nonzero if it could be used.
    template <class Message>
    int SubCodeResponse(const CSubCodeRow& rRow, std::span<const std::uint8_t> Payload,
                        void (Machine::*pCallback)(Reason Why, const Message* pMessage)) {
        if (Payload.size() < rRow.m_Smallest) {
            RV_WARNING(Protocols::g_pLog, "not enough data");
            return 0;
        }
        if (Payload[0] != rRow.m_SubCode) {
            RV_ASSERT_FAIL(Protocols::g_pLog, "invalid request type");
            return 0;
        }
        Message Decoded(this->GetLogID());
        if (DecodeMessage(*this, Decoded, Payload.subspan(rRow.m_DecodeFrom)) == 0) {
            return 0;
        }
        RV_PROTOCOL("%s", rRow.m_pResponse);
        Decoded.Log();
        (GetMachine().*pCallback)(Comm::eSuccess, &Decoded);
        return 1;
    }

    /// Set by the default bodies of the callbacks.
    bool m_BaseclassCalled = false;

private:
    Machine& GetMachine() { return static_cast<Machine&>(*this); }

    static const Row* FindRow(std::uint32_t State) {
        const auto Rows = Machine::GetRows();
        return State != 0 && State - 1 < Rows.size() ? &Rows[State - 1] : nullptr;
    }

    void FailureHandler(Reason Why, std::uint32_t State) {
        m_BaseclassCalled = true;
        if (const Row* pRow = FindRow(State)) {
            RV_PROTOCOL_DETAIL(pRow->m_pCalling, ReasonToString(Why));
            pRow->m_pFail(GetMachine(), Why);
        } else {
            RV_ASSERT_FAIL(Protocols::g_pLog, "impossible");
        }
        RV_ASSERT(Protocols::g_pLog, m_BaseclassCalled, "Baseclass not called");
    }

    std::uint32_t m_OldState = 0;  ///< before the last change
};

}  // namespace Comm
