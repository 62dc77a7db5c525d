#pragma once
#include <cstdint>
#include <optional>
#include <span>

#include "rvlib/rvprt/protocol.h"
#include "rvlib/rvprt/reason.h"

namespace Comm {

/// A query: what is sent, how its answer is told from others, and what the log says.
struct CRequestRow {
    std::uint8_t m_Command;
    std::optional<std::uint8_t> m_SubCode;  ///< byte 3, if the frame has one
    CProtocol::RequestType m_Type;
    std::uint32_t m_State;  ///< of the machine while it waits for the answer
    const char* m_pCalled;
    const char* m_pSending;
};

/// Queries that are the same in both families but for the state; the rest stands in the family's own rows.
namespace Requests {
constexpr CRequestRow ModuleState(std::uint32_t State) {
    return {0x08,
            std::nullopt,
            CProtocol::eNoSubCode,
            State,
            "QueryModuleState called",
            "<-- Sending QueryModuleState (0x08)"};
}
constexpr CRequestRow ModuleIdentification(std::uint32_t State) {
    // The log's text names another query. It is meant to stay.
    return {0x11,
            std::uint8_t{8},
            CProtocol::eSubCode,
            State,
            "QueryMaxModuleConfiguration called",
            "<-- Sending QueryModuleIdentification (0x11-8)"};
}
constexpr CRequestRow RPMData(std::uint32_t State) {
    return {0x1C,  std::nullopt,          CProtocol::eNoSubCode,
            State, "QueryRPMData called", "<-- Sending QueryRPMData (0x1C)"};
}
constexpr CRequestRow UnbalanceXYValues(std::uint32_t State) {
    return {0x1E,
            std::nullopt,
            CProtocol::eNoSubCode,
            State,
            "QueryUnbalanceXYValues called",
            "<-- Sending QueryUnbalanceXYValues (0x1E)"};
}
}  // namespace Requests

/// What a machine writes to the log about its states.
struct CStateTexts {
    std::span<const char* const> m_Names;  ///< by value of the state
    const char* m_pInvalid;                ///< for a value without a name
    const char* m_pNewState;               ///< format with the new and the old name
};

/// Base of the state machines of both families: one request at a time, and idle again before every callback,
/// so that a callback may send the next query. No failure can leave a machine waiting. Window thread only.
class CStateBase {
public:
    using Reason = Comm::Reason;
    static constexpr Reason eSuccess = Comm::eSuccess;
    static constexpr Reason eIndication = Comm::eIndication;
    static constexpr Reason eTimeout = Comm::eTimeout;
    static constexpr Reason eError = Comm::eError;

    virtual ~CStateBase() = default;
    CStateBase(const CStateBase&) = delete;
    CStateBase& operator=(const CStateBase&) = delete;

    /// As CProtocol::SendRequest.
    virtual std::uint32_t SendRequestToProtocol(std::uint32_t Type, std::uint8_t* pFrame, std::uint32_t nSize,
                                                std::uint32_t msTimeout, std::int32_t nRetries,
                                                CWnd* hWnd) = 0;
    virtual std::uint8_t GetModuleAddress() const = 0;
    /// The text that identifies this protocol in the log.
    virtual const char* GetLogID() const = 0;

    std::uint32_t GetState() const { return m_State; }

protected:
    static constexpr std::uint32_t IDLE_STATE = 0;
    static constexpr std::uint32_t HEADER_SIZE = 3;

    explicit CStateBase(const CStateTexts& rTexts) : m_rTexts(rTexts) {}

    /// Sends a query. 1 if it went out; 0 if another is under way or it could not be sent.
    int Query(const CRequestRow& rRow);
    /// Whether the machine is idle; else a warning.
    bool IsCommandPossible() const;
    void ChangeState(std::uint32_t NewState);
    const char* StateToString(std::uint32_t State) const;
    /// Whether a frame of at least nSmallest bytes comes from this module and has this command.
    bool IsOwnFrame(const std::uint8_t* pData, std::uint32_t nSize, std::uint32_t nSmallest,
                    std::uint8_t Command) const;

    const CStateTexts& m_rTexts;
    std::uint32_t m_State = IDLE_STATE;
    std::uint32_t m_TransactionID = 0;
    std::uint32_t m_Timeout = 500;  ///< ms
    std::int32_t m_Retries = 3;     ///< after the first sending
};

/// Decodes a message; the families' only difference is that some messages need to know whether the module's
/// planes are exchanged.
template <class Machine, class Message>
int DecodeMessage(const Machine& rMachine, Message& rMessage, std::span<const std::uint8_t> Payload) {
    std::uint32_t nUsed = 0;
    const auto nSize = static_cast<std::uint32_t>(Payload.size());
    if constexpr (requires { rMessage.Decode(Payload.data(), nSize, &nUsed, rMachine.GetSwap()); }) {
        return rMessage.Decode(Payload.data(), nSize, &nUsed, rMachine.GetSwap());
    } else {
        return rMessage.Decode(Payload.data(), nSize, &nUsed);
    }
}

}  // namespace Comm
