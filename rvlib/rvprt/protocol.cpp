#include "rvlib/rvprt/protocol.h"

#include <algorithm>

#include "platform/rvcom/rvcom.h"
#include "rvlib/rvprt/logblock.h"

using Protocols::g_pLog;

namespace {

/// Smallest frame of each request type: header and the bytes by which it is told.
constexpr std::array<std::uint32_t, 3> SMALLEST_FRAME{3, 4, 5};

constexpr std::uint32_t HEADER_SIZE = 3;
/// Set in the sub-code of some answers; no part of the sub-code's identity.
constexpr std::uint8_t ANSWER_BIT = 0x80;

}  // namespace

std::uint32_t CProtocol::ms_NextTransactionID = 1;

CProtocol::~CProtocol() {
    for (const CRequest& rRequest : m_Requests) {
        if (rRequest.m_TimerID != 0) {
            Stop(rRequest.m_TimerID);
        }
    }
}

std::uint32_t CProtocol::SendRequest(std::uint32_t Type, std::uint8_t* pFrame, std::uint32_t nSize,
                                     std::uint32_t msTimeout, std::int32_t nRetries, CWnd* hWnd) {
    if (Type >= SMALLEST_FRAME.size() || nSize < SMALLEST_FRAME[Type]) {
        RV_ASSERT_AS(g_pLog, false, "FALSE", "invalid size", true);
        return 0;
    }
    if (msTimeout == 0) {
        SendDataToModule(pFrame, nSize);
        return 0;
    }
    const std::int32_t TimerID = Start(msTimeout, 1, hWnd);
    if (TimerID == 0) {
        return 0;
    }
    CRequest& rRequest = GetIdleRequest();
    const std::uint32_t TransactionID = rRequest.m_TransactionID;
    rRequest.m_TimerID = TimerID;
    rRequest.m_Timeout = msTimeout;
    rRequest.m_Retries = nRetries;
    rRequest.m_hWnd = hWnd;
    pFrame[1] = rvCOM::GetTransmitAddress();
    if (nSize < MAX_FRAME) {
        // A larger frame is sent all the same, but can't be matched or repeated. No module has such frames.
        std::copy_n(pFrame, nSize, rRequest.m_Data.begin());
        rRequest.m_Size = nSize;
        rRequest.m_Type = Type;
    }
    SendDataToModule(pFrame, nSize);
    return TransactionID;
}

int CProtocol::PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) {
    Protocols::LogFrame("Module --> PC: Data received", {pData, nSize});
    if (nSize < HEADER_SIZE) {
        return 0;
    }
    CRequest* pRequest = FindRequest(pData[0], pData[2], pData[1], nSize > 3 ? &pData[3] : nullptr,
                                     nSize > 4 ? &pData[4] : nullptr);
    if (pRequest == nullptr) {
        return 0;
    }
    Stop(pRequest->m_TimerID);
    // Busy until the callback returns: a request sent from there takes another record.
    OnResponse(pRequest->m_TransactionID, pData, nSize);
    pRequest->Retire();
    return 1;
}

int CProtocol::GetRequestData(std::uint32_t TransactionID, const std::uint8_t** ppData,
                              std::uint32_t* pSize) const {
    const auto iRequest = std::ranges::find(m_Requests, TransactionID, &CRequest::m_TransactionID);
    const bool bFound = iRequest != m_Requests.end();
    *ppData = bFound ? iRequest->m_Data.data() : nullptr;
    *pSize = bFound ? iRequest->m_Size : 0;
    return bFound ? 1 : 0;
}

void CProtocol::OnIDTimeout(std::int32_t TimerID) {
    const auto pRequest = std::ranges::find(m_Requests, TimerID, &CRequest::m_TimerID);
    if (pRequest == m_Requests.end()) {
        RV_ASSERT_AS(g_pLog, false, "pRequest", "a request for thist timer must exist", false);
        return;
    }
    if (pRequest->m_Retries <= 0) {
        OnRequestTimeout(pRequest->m_TransactionID);
        pRequest->Retire();
        return;
    }
    const std::int32_t NewTimerID = Start(pRequest->m_Timeout, 1, pRequest->m_hWnd);
    if (NewTimerID == 0) {
        return;  // Deliberate: the request is lost without a report.
    }
    --pRequest->m_Retries;
    pRequest->m_TimerID = NewTimerID;
    RV_WARNING(g_pLog, "Retransmisssion (TransactionID=%d)", static_cast<int>(pRequest->m_TransactionID));
    SendDataToModule(pRequest->m_Data.data(), pRequest->m_Size);
}

void CProtocol::SendDataToModule(const std::uint8_t* pData, std::uint32_t nSize) {
    Protocols::LogFrame("PC --> Module: sending data", {pData, nSize});
    SendRawData(pData, nSize);
}

CProtocol::CRequest& CProtocol::GetIdleRequest() {
    const auto iRequest = std::ranges::find(m_Requests, 0, &CRequest::m_TimerID);
    return iRequest != m_Requests.end() ? *iRequest : m_Requests.emplace_back();
}

CProtocol::CRequest* CProtocol::FindRequest(std::uint8_t Command, std::uint8_t AddressA,
                                            std::uint8_t AddressB, const std::uint8_t* pSubCode,
                                            const std::uint8_t* pSecondSubCode) {
    const auto Matches = [=](const CRequest& rRequest) {
        if (rRequest.GetByte(0, HEADER_SIZE) != Command ||
            (AddressA != 0 && rRequest.GetByte(1, HEADER_SIZE) != AddressA) ||
            rRequest.GetByte(2, HEADER_SIZE) != AddressB) {
            return false;
        }
        switch (rRequest.m_Type) {
            case eNoSubCode:
                return true;
            case eSubCode:
                return pSubCode != nullptr && ((*pSubCode ^ rRequest.GetByte(3, 4)) & ~ANSWER_BIT) == 0;
            case eTwoSubCodes:
                return pSubCode != nullptr && pSecondSubCode != nullptr &&
                       *pSubCode == rRequest.GetByte(3, 4) && *pSecondSubCode == rRequest.GetByte(4, 5);
            default:
                return false;
        }
    };
    // An idle record isn't excluded: all its bytes read as 0. No module sends a frame that would match it.
    const auto iRequest = std::ranges::find_if(m_Requests, Matches);
    return iRequest == m_Requests.end() ? nullptr : &*iRequest;
}

std::uint32_t CProtocol::GetNextTransactionID() {
    return ms_NextTransactionID++;
}

void CProtocol::CRequest::Retire() {
    m_TimerID = 0;
    m_Timeout = 0;
    m_Retries = 0;
    m_hWnd = nullptr;
    m_Size = 0;
    m_TransactionID = GetNextTransactionID();
}
