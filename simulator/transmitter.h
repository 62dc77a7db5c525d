#pragma once
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "platform/system/timer.h"
#include "simulator/faults.h"

class IFByteLink;

/// A module's way onto the line: its frames go out one behind the other, answers after the time that it needs
/// to work on a request, and each through the faults that are set. Modules on one line have one each, and
/// share link and faults.
class CTransmitter {
public:
    static constexpr std::uint32_t ANSWER_DELAY_MS = 3;

    /// Modules count from 0.
    CTransmitter(IFByteLink& rLink, CFaults& rFaults, std::size_t nModule)
        : m_rLink(rLink), m_rFaults(rFaults), m_nModule(nModule) {}

    void Send(std::span<const std::uint8_t> Frame, CFaults::Frame Kind);
    /// bOvertaken: reports don't wait for an answer that is being worked on, so it is older than they are
    /// when it comes.
    void SetAnswerDelay(std::uint32_t Milliseconds, bool bOvertaken) {
        m_AnswerDelayMs = Milliseconds;
        m_bOvertaken = bOvertaken;
    }

    /// Flips one bit in bytes that are ready for the line, so that only the CRC can tell.
    static void Corrupt(std::vector<std::uint8_t>& rLineBytes);
    /// Leaves the first half, so that the next frame's bytes follow at once.
    static void Cut(std::vector<std::uint8_t>& rLineBytes);

private:
    struct CPending {
        std::uint64_t m_Due = 0;
        std::vector<std::uint8_t> m_LineBytes;
    };
    void SendDue();

    IFByteLink& m_rLink;
    CFaults& m_rFaults;
    std::size_t m_nModule;
    std::uint32_t m_AnswerDelayMs = ANSWER_DELAY_MS;
    bool m_bOvertaken = false;
    std::deque<CPending> m_Pending;  ///< none due before the one in front of it
    CTimer m_Timer;
};
