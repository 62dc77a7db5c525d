#pragma once
#include <cstdint>
#include <deque>
#include <span>
#include <vector>

#include "simulator/faults.h"
#include "simulator/timer.h"

class IFByteLink;

/// The modules' way onto the line: frames go out one behind the other, answers after the time that a module
/// needs to work on a request, and each through the faults that are set.
class CTransmitter {
public:
    static constexpr std::uint32_t eAnswerDelayMs = 3;

    explicit CTransmitter(IFByteLink& rLink) : m_rLink(rLink) {}

    void Send(std::span<const std::uint8_t> Frame, CFaults::Frame Kind);
    CFaults& GetFaults() { return m_Faults; }

    /// Flips one bit in bytes that are ready for the line, so that only the CRC can tell.
    static void Corrupt(std::vector<std::uint8_t>& rLineBytes);

private:
    struct CPending {
        std::uint64_t m_Due = 0;
        std::vector<std::uint8_t> m_LineBytes;
    };
    void SendDue();

    IFByteLink& m_rLink;
    CFaults m_Faults;
    std::deque<CPending> m_Pending;  ///< in order of sending, none due before the one in front of it
    CTimer m_Timer;
};
