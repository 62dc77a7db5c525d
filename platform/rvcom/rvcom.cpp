#include "platform/rvcom/rvcom.h"

#include <algorithm>
#include <cinttypes>
#include <span>
#include <unordered_map>
#include <utility>
#include <vector>

#include "contract/hostmessages.h"
#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"
#include "platform/rvlog/log.h"
#include "platform/system/eventloop.h"
#include "platform/system/growingpause.h"
#include "platform/window/messages.h"
#include "platform/window/wnd.h"
#include "platform/window/wndend.h"

namespace rvCOM {

namespace {

constexpr std::size_t BUFFER_HEADER = 3;  ///< handle and one unused byte
constexpr std::uint8_t RESERVED_COMMAND = 4;
constexpr std::size_t MAX_BUFFERS = 65535;  ///< all handles but 0
/// A link that has held this long is sound: its next loss begins with the shortest pause again.
constexpr std::uint64_t SOUND_AFTER = 10000;
/// Bad frames are told in the log at most this often, in ms: a bad cable must not fill it.
constexpr std::uint64_t REPORT_PERIOD = 60000;

CLogComponent* g_pLog = CLogComponent::Register("rvCOM", {});

std::uint8_t TransmitAddress = 1;

/// A frame that was handed out.
struct CBuffer {
    std::vector<std::uint8_t> m_Bytes;
    const CWnd* m_pWnd = nullptr;
};

struct CRegistration {
    CWnd* m_pWnd = nullptr;
    std::uint8_t m_Address = 0;
    friend bool operator==(const CRegistration&, const CRegistration&) = default;
};

class CTransport {
public:
    static CTransport& Instance() {
        static CTransport ms_Instance;
        return ms_Instance;
    }

    void SetLink(std::unique_ptr<IFByteLink> pLink);
    bool IsLinkOpen() const { return m_pLink != nullptr && m_pLink->IsOpen(); }
    const std::string& GetOutageReason() const { return m_LastReason; }
    int Send(std::span<const std::uint8_t> Frame);
    int Register(CWnd* pWnd, std::uint8_t Address);
    void Forget(const CWnd* pWnd);
    bool FreeBuffer(std::uint16_t Handle) { return m_Buffers.erase(Handle) != 0; }
    std::size_t GetBuffersOut() const { return m_Buffers.size(); }
    CStatistics GetStatistics() const;

private:
    CTransport() {
        AddWindowEndListener([this](const CWnd& rWnd) { Forget(&rWnd); });
    }

    void OnOpened();
    void OnClosed(const std::string& rReason);
    void ReopenAfterPause();
    void Reopen();
    void StopTimer();
    void OnFrame(std::span<const std::uint8_t> Frame);
    void Deliver(CWnd& rWnd, std::span<const std::uint8_t> Frame);
    std::uint16_t TakeHandle();
    void Withdraw(const CWnd* pWnd);
    std::uint64_t CountBadFrames() const;
    void ReportBadFrames(bool bNow);

    std::unique_ptr<IFByteLink> m_pLink;
    LineDiscipline::CDecoder m_Decoder{[this](std::span<const std::uint8_t> Frame) { OnFrame(Frame); }};
    std::vector<CRegistration> m_Registrations;
    std::unordered_map<std::uint16_t, CBuffer> m_Buffers;
    std::uint16_t m_LastHandle = 0;
    CStatistics m_Statistics;

    std::uint32_t m_TimerID = 0;
    CGrowingPause m_Pause;
    std::uint64_t m_OpenedAt = 0;    ///< when the link was opened last
    bool m_bWasOpen = false;         ///< between OnOpened and OnClosed
    std::string m_LastReason;        ///< of the outage that lasts; told once
    std::uint64_t m_nReported = 0;   ///< bad frames told so far
    std::uint64_t m_ReportedAt = 0;  ///< when; only of meaning if m_nReported isn't 0
};

void CTransport::SetLink(std::unique_ptr<IFByteLink> pLink) {
    if (m_pLink != nullptr) {
        StopTimer();
        ReportBadFrames(true);
        m_pLink->Close();
        m_pLink.reset();
    }
    m_Pause.Reset();
    m_bWasOpen = false;
    m_LastReason.clear();
    if (pLink == nullptr) {
        m_Registrations.clear();
        Withdraw(nullptr);
        return;
    }
    m_Decoder = LineDiscipline::CDecoder([this](std::span<const std::uint8_t> Frame) { OnFrame(Frame); });
    m_Statistics = CStatistics();
    m_nReported = 0;
    m_pLink = std::move(pLink);
    m_pLink->OnBytes = [this](std::span<const std::uint8_t> Bytes) {
        m_Decoder.Put(Bytes);
        ReportBadFrames(false);
    };
    m_pLink->OnOpened = [this] { OnOpened(); };
    m_pLink->OnClosed = [this](const std::string& rReason) { OnClosed(rReason); };
    m_pLink->Open();
}

void CTransport::OnOpened() {
    m_bWasOpen = true;
    m_OpenedAt = IFEventLoop::Current().Now();
    m_LastReason.clear();
    const char* pAgain = m_Statistics.m_LinkLost != 0 ? " again" : "";
    if (m_Pause.HasBegun()) {
        // As visible as the outage that it ends.
        RV_WARNING(g_pLog, "%s is open%s", m_pLink->GetName().c_str(), pAgain);
    } else {
        RV_INFORMATION(g_pLog, "%s is open%s", m_pLink->GetName().c_str(), pAgain);
    }
}

void CTransport::OnClosed(const std::string& rReason) {
    m_Decoder.Reset();
    if (m_bWasOpen) {
        m_bWasOpen = false;
        ++m_Statistics.m_LinkLost;
        if (IFEventLoop::Current().Now() - m_OpenedAt >= SOUND_AFTER) {
            m_Pause.Reset();
        }
        ReportBadFrames(true);
        RV_WARNING(g_pLog, "%s is lost: %s", m_pLink->GetName().c_str(), rReason.c_str());
    } else if (rReason != m_LastReason) {
        RV_WARNING(g_pLog, "%s can't be opened and is tried again: %s", m_pLink->GetName().c_str(),
                   rReason.c_str());
        m_LastReason = rReason;
    }
    ReopenAfterPause();
}

void CTransport::ReopenAfterPause() {
    StopTimer();
    m_TimerID = IFEventLoop::Current().SetTimer(m_Pause.Next(), [this](std::uint32_t) { Reopen(); });
    if (m_TimerID == 0) {
        RV_ERROR(g_pLog, "%s stays closed: no timer to open it again", m_pLink->GetName().c_str());
    }
}

void CTransport::Reopen() {
    StopTimer();
    m_pLink->Open();
}

void CTransport::StopTimer() {
    // The loop may be gone when a program closes the transport at its very end.
    if (m_TimerID != 0 && IFEventLoop::HasCurrent()) {
        IFEventLoop::Current().KillTimer(m_TimerID);
    }
    m_TimerID = 0;
}

int CTransport::Send(std::span<const std::uint8_t> Frame) {
    if (Frame.size() < LineDiscipline::MIN_FRAME || Frame.size() > LineDiscipline::MAX_FRAME) {
        RV_ERROR(g_pLog, "a frame of %zu bytes isn't sent: 3 to 2048 bytes are possible", Frame.size());
        return 0;
    }
    if (!IsLinkOpen() || !m_pLink->Write(LineDiscipline::Encode(Frame))) {
        return 0;
    }
    ++m_Statistics.m_FramesSent;
    return 1;
}

int CTransport::Register(CWnd* pWnd, std::uint8_t Address) {
    const CRegistration Wanted{pWnd, Address};
    if (std::find(m_Registrations.begin(), m_Registrations.end(), Wanted) == m_Registrations.end()) {
        m_Registrations.push_back(Wanted);
    }
    return 1;
}

void CTransport::Forget(const CWnd* pWnd) {
    std::erase_if(m_Registrations, [pWnd](const CRegistration& rOne) { return rOne.m_pWnd == pWnd; });
    Withdraw(pWnd);
}

/// Takes back the buffers of a window, or all with null. Their memory goes behind the messages that are
/// queued now, so that neither a handler that destroys its window nor a message on its way meets freed
/// memory. Should the loop end first, its queue frees them.
void CTransport::Withdraw(const CWnd* pWnd) {
    auto pDoomed = std::make_shared<std::vector<CBuffer>>();
    for (auto it = m_Buffers.begin(); it != m_Buffers.end();) {
        if (pWnd == nullptr || it->second.m_pWnd == pWnd) {
            pDoomed->push_back(std::move(it->second));
            it = m_Buffers.erase(it);
        } else {
            ++it;
        }
    }
    if (!pDoomed->empty() && IFEventLoop::HasCurrent()) {
        IFEventLoop::Current().Post([pDoomed] {});
    }
}

void CTransport::OnFrame(std::span<const std::uint8_t> Frame) {
    ++m_Statistics.m_FramesReceived;
    if (Frame[0] == RESERVED_COMMAND) {
        ++m_Statistics.m_ReservedCommand;
        return;
    }
    bool bWanted = false;
    for (const CRegistration& rOne : m_Registrations) {
        if (rOne.m_Address == Frame[1]) {
            bWanted = true;
            Deliver(*rOne.m_pWnd, Frame);
        }
    }
    if (!bWanted) {
        ++m_Statistics.m_NotAddressed;
    }
}

void CTransport::Deliver(CWnd& rWnd, std::span<const std::uint8_t> Frame) {
    const std::uint16_t Handle = TakeHandle();
    if (Handle == 0) {
        if (m_Statistics.m_NoBuffer++ == 0) {
            RV_ERROR(g_pLog, "frames are dropped: %zu buffers are out, a window doesn't free them",
                     m_Buffers.size());
        }
        return;
    }
    CBuffer& rBuffer = m_Buffers[Handle];
    rBuffer.m_pWnd = &rWnd;
    std::vector<std::uint8_t>& rBytes = rBuffer.m_Bytes;
    rBytes.reserve(BUFFER_HEADER + Frame.size());
    rBytes = {static_cast<std::uint8_t>(Handle & 0xFFU), static_cast<std::uint8_t>(Handle >> 8U), 0};
    rBytes.insert(rBytes.end(), Frame.begin(), Frame.end());
    if (!rWnd.PostMessage(WM_RV_RAWDATA_FIRST, reinterpret_cast<WPARAM>(rBytes.data()),
                          static_cast<LPARAM>(rBytes.size()))) {
        FreeBuffer(Handle);
    }
}

/// A free handle, 0 if there is none. They go round, so that a handle freed twice by mistake rarely meets a
/// buffer that is out.
std::uint16_t CTransport::TakeHandle() {
    if (m_Buffers.size() >= MAX_BUFFERS) {
        return 0;
    }
    do {
        ++m_LastHandle;
    } while (m_LastHandle == 0 || m_Buffers.contains(m_LastHandle));
    return m_LastHandle;
}

CStatistics CTransport::GetStatistics() const {
    CStatistics Statistics = m_Statistics;
    Statistics.m_BadCrc = m_Decoder.GetBadCrc();
    Statistics.m_TooShort = m_Decoder.GetTooShort();
    Statistics.m_TooLong = m_Decoder.GetTooLong();
    return Statistics;
}

std::uint64_t CTransport::CountBadFrames() const {
    return m_Decoder.GetBadCrc() + m_Decoder.GetTooShort() + m_Decoder.GetTooLong();
}

/// A line with the counters if frames were bad since the last one: the first at once, then once a period, and
/// with bNow whenever there is something to tell.
void CTransport::ReportBadFrames(bool bNow) {
    const std::uint64_t nBad = CountBadFrames();
    if (nBad == m_nReported) {
        return;
    }
    const std::uint64_t Now = IFEventLoop::HasCurrent() ? IFEventLoop::Current().Now() : m_ReportedAt;
    if (!bNow && m_nReported != 0 && Now - m_ReportedAt < REPORT_PERIOD) {
        return;
    }
    RV_WARNING(g_pLog,
               "bad frames on %s: %" PRIu64 " since the last line (in all %" PRIu64
               " with a bad CRC, %" PRIu64 " too short, %" PRIu64 " too long; %" PRIu64 " good)",
               m_pLink->GetName().c_str(), nBad - m_nReported, m_Decoder.GetBadCrc(), m_Decoder.GetTooShort(),
               m_Decoder.GetTooLong(), m_Statistics.m_FramesReceived);
    m_nReported = nBad;
    m_ReportedAt = Now;
}

}  // namespace

std::uint8_t GetTransmitAddress() {
    return TransmitAddress;
}

void SetTransmitAddress(std::uint8_t Address) {
    TransmitAddress = Address;
}

int SendRawData(const std::uint8_t* pData, std::uint32_t nSize) {
    return pData == nullptr ? 0 : CTransport::Instance().Send({pData, nSize});
}

int Notify(CWnd* pWnd, UINT Code, std::uint8_t Address) {
    if (pWnd == nullptr || Code != RV_NOTIFY_RAWDATA) {
        RV_ERROR(g_pLog, "Notify refused: window %p, code %u (%u is the one that is known)",
                 static_cast<void*>(pWnd), Code, RV_NOTIFY_RAWDATA);
        return 0;
    }
    return CTransport::Instance().Register(pWnd, Address);
}

void Forget(const CWnd* pWnd) {
    if (pWnd != nullptr) {
        CTransport::Instance().Forget(pWnd);
    }
}

bool FreeBuffer(std::uint16_t Handle) {
    return CTransport::Instance().FreeBuffer(Handle);
}

CStatistics GetStatistics() {
    return CTransport::Instance().GetStatistics();
}

void SetLink(std::unique_ptr<IFByteLink> pLink) {
    CTransport::Instance().SetLink(std::move(pLink));
}

std::size_t GetBuffersOut() {
    return CTransport::Instance().GetBuffersOut();
}

bool IsLinkOpen() {
    return CTransport::Instance().IsLinkOpen();
}

std::string GetOutageReason() {
    return CTransport::Instance().GetOutageReason();
}

}  // namespace rvCOM
