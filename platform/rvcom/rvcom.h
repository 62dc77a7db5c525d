#pragma once
#include <cstdint>
#include <memory>
#include <string>

#include "platform/window/types.h"

class CWnd;
class IFByteLink;

/// The raw transport. Whole frames in and out; owns the line discipline (linediscipline.h) and the link, and
/// opens a lost link again by itself. Window thread only.
namespace rvCOM {

/// Address under which this computer transmits: 1 unless configured.
std::uint8_t GetTransmitAddress();
void SetTransmitAddress(std::uint8_t Address);

/// Sends a frame; returns at once, the caller's buffer may be reused. Nonzero if a link took it.
int SendRawData(const std::uint8_t* pData, std::uint32_t nSize);

/// With Code 1008: frames from module Address go to pWnd as message 1035, wParam the buffer, lParam its length.
/// The buffer holds a handle (16 bits, low byte first), one unused byte, then the frame. It stays valid until
/// FreeBuffer. A frame whose first byte is 4 is never delivered. Null pWnd is refused. Registering twice
/// delivers once; a window that is destroyed is forgotten.
int Notify(CWnd* pWnd, UINT Code, std::uint8_t Address);
/// Ends all registrations of the window. Called by windows that go.
void Forget(const CWnd* pWnd);

/// Gives a delivered buffer back. False for a handle that isn't out.
bool FreeBuffer(std::uint16_t Handle);

/// Counters of the line, for the log and for service staff.
struct CStatistics {
    std::uint64_t m_FramesReceived = 0;
    std::uint64_t m_FramesSent = 0;
    std::uint64_t m_BadCrc = 0;
    std::uint64_t m_TooShort = 0;
    std::uint64_t m_TooLong = 0;
    std::uint64_t m_NotAddressed = 0;  ///< good frames that no window asked for
    std::uint64_t m_ReservedCommand = 0;   ///< frames with first byte 4
    std::uint64_t m_LinkLost = 0;
};
CStatistics GetStatistics();

/// Takes a link into use in place of the former one and opens it. Null closes the transport and drops buffers and
/// registrations.
void SetLink(std::unique_ptr<IFByteLink> pLink);
/// Buffers delivered and not yet freed.
std::size_t GetBuffersOut();
/// Whether the link is open now.
bool IsLinkOpen();

}  // namespace rvCOM
