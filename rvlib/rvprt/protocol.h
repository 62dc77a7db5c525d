#pragma once
#include <array>
#include <cstdint>
#include <list>

#include "rvlib/rvbas/base/idtimer.h"

/// Matches the requests sent to a module with the answers that come back, repeats a request that goes
/// unanswered, and reports when all attempts are used up. Of a frame it knows the first five bytes: command,
/// source address, destination address, and two bytes by which a request may be told from others of the same
/// command.
///
/// Identity: an answer belongs to the oldest record whose command is the same, whose destination is the
/// answer's source, and whose source is the answer's destination (or that is 0), and whose further bytes
/// match as the request's type says. A matching answer ends the transaction, whatever it says; so does the
/// last time-out. Each repetition waits for the full time-out again. There is no cancel.
///
/// Window thread only; no locks. Must not be destroyed out of its own callbacks.
class CProtocol : public Base::CIDTimer {
public:
    /// What besides command and addresses tells an answer.
    enum RequestType : std::uint32_t {
        eNoSubCode = 0,   ///< nothing
        eSubCode = 1,     ///< byte 3; bit 7 is ignored
        eTwoSubCodes = 2  ///< bytes 3 and 4
    };

    CProtocol() = default;
    /// Frames outstanding are forgotten without a callback.
    ~CProtocol() override;

    /// Sends a frame, with this computer's transmit address written into byte 1 of pFrame. Up to nRetries
    /// repetitions follow at msTimeout ms, then OnRequestTimeout. Returns the transaction's id; 0 if nothing
    /// is awaited: wrong size or type, no timer, or msTimeout 0, which sends the frame once, as it is.
    std::uint32_t SendRequest(std::uint32_t Type, std::uint8_t* pFrame, std::uint32_t nSize,
                              std::uint32_t msTimeout, std::int32_t nRetries, CWnd* hWnd);
    /// For every received frame. 1 if it answered a request; 0 makes it an indication.
    int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize);
    /// The stored frame of a transaction. 1 if there is one; else 0, and both outputs are 0.
    int GetRequestData(std::uint32_t TransactionID, const std::uint8_t** ppData, std::uint32_t* pSize) const;

protected:
    /// Hands a frame to the transport.
    virtual void SendRawData(const std::uint8_t* pData, std::uint32_t nSize) = 0;
    /// An answer, as received, header included. Requests may be sent from here.
    virtual void OnResponse(std::uint32_t TransactionID, const std::uint8_t* pData, std::uint32_t nSize) = 0;
    /// All attempts went unanswered. Requests may be sent from here.
    virtual void OnRequestTimeout(std::uint32_t TransactionID) = 0;

private:
    static constexpr std::uint32_t MAX_FRAME = 2048;

    /// Busy exactly while m_TimerID isn't 0. Records are reused and go with the protocol.
    struct CRequest {
        /// A byte of the stored frame; 0 if fewer than nNeeded bytes are stored.
        std::uint8_t GetByte(std::uint32_t Index, std::uint32_t nNeeded) const {
            return m_Size < nNeeded ? std::uint8_t{0} : m_Data[Index];
        }
        /// Idle again, under the next transaction id. The type stays.
        void Retire();

        std::uint32_t m_Type = eNoSubCode;
        std::array<std::uint8_t, MAX_FRAME> m_Data{};
        std::uint32_t m_Size = 0;
        std::uint32_t m_TransactionID = GetNextTransactionID();
        std::int32_t m_TimerID = 0;
        std::uint32_t m_Timeout = 0;  ///< ms
        std::int32_t m_Retries = 0;   ///< repetitions still allowed
        CWnd* m_hWnd = nullptr;
    };

    void OnIDTimeout(std::int32_t TimerID) override;
    void SendDataToModule(const std::uint8_t* pData, std::uint32_t nSize);
    CRequest& GetIdleRequest();
    /// pSubCode, pSecondSubCode: null if the frame ends before.
    CRequest* FindRequest(std::uint8_t Command, std::uint8_t AddressA, std::uint8_t AddressB,
                          const std::uint8_t* pSubCode, const std::uint8_t* pSecondSubCode);
    static std::uint32_t GetNextTransactionID();

    std::list<CRequest> m_Requests;  ///< in order of creation

    /// Shared by all protocols, so that an id tells one transaction of the whole machine.
    static std::uint32_t ms_NextTransactionID;
};
