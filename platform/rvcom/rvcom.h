#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/window/types.h"

/// Code of rvCOM::Notify: deliver frames of an address to a window.
constexpr UINT RV_NOTIFY_RAWDATA = 1008;

class CWnd;
class IFByteLink;

/// The raw transport. Whole frames in and out; owns the line discipline (linediscipline.h) and the link, and
/// opens a lost link again by itself. Window thread only.
namespace rvCOM {

/// Address under which this computer transmits: 1 unless configured.
std::uint8_t GetTransmitAddress();
void SetTransmitAddress(std::uint8_t Address);

/// Sends a frame of 3 to 2048 bytes; returns at once, the caller's buffer may be reused. Nonzero if a link
/// took it. While the link is down frames are dropped: what is old by the time it opens again must not reach
/// a module.
int SendRawData(const std::uint8_t* pData, std::uint32_t nSize);

/// With Code RV_NOTIFY_RAWDATA: frames from module Address go to pWnd as message 1035, wParam the buffer,
/// lParam its length. The buffer holds a handle (16 bits, low byte first), one unused byte, then the frame.
/// It stays valid until FreeBuffer or until its window goes. A frame whose first byte is 4 is never
/// delivered. Null pWnd and other codes are refused with 0. Registering twice delivers once; a window that is
/// destroyed is forgotten.
int Notify(CWnd* pWnd, UINT Code, std::uint8_t Address);
/// Ends all registrations of the window and takes back its buffers, as the end of the window does; a handler
/// that destroys its own window may still read its frame to the end.
void Forget(const CWnd* pWnd);

/// Gives a delivered buffer back. False for a handle that isn't out.
bool FreeBuffer(std::uint16_t Handle);

/// Counters of the line since the link was taken into use, for the log and for service staff.
struct CStatistics {
    std::uint64_t m_FramesReceived = 0;
    std::uint64_t m_FramesSent = 0;
    std::uint64_t m_BadCrc = 0;
    std::uint64_t m_TooShort = 0;
    std::uint64_t m_TooLong = 0;
    std::uint64_t m_NotAddressed = 0;     ///< good frames that no window asked for
    std::uint64_t m_ReservedCommand = 0;  ///< frames with first byte 4
    std::uint64_t m_NoBuffer = 0;         ///< deliveries dropped because 65535 buffers were out
    std::uint64_t m_LinkLost = 0;
};
CStatistics GetStatistics();

/// Takes a link into use in place of the former one and opens it. A link that is lost or can't be opened is
/// opened again after 0.5, 1, 2, 4, 8 and then 10 s each; the pauses begin anew once it has held for 10 s.
/// Null closes the transport and drops buffers and registrations.
void SetLink(std::unique_ptr<IFByteLink> pLink);
/// Buffers delivered and not yet freed.
std::size_t GetBuffersOut();
/// Whether the link is open now.
bool IsLinkOpen();
/// Why the link could not be opened the last time it was tried; empty while it is open.
std::string GetOutageReason();

}  // namespace rvCOM
