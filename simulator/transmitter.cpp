#include "simulator/transmitter.h"

#include <algorithm>

#include "platform/rvcom/bytelink.h"
#include "platform/rvcom/linediscipline.h"

namespace {

constexpr std::uint8_t SLIP_END = 0xC0;
constexpr std::uint8_t SLIP_ESC = 0xDB;

bool IsFraming(std::uint8_t Byte) {
    return Byte == SLIP_END || Byte == SLIP_ESC;
}

}  // namespace

void CTransmitter::Send(std::span<const std::uint8_t> Frame, CFaults::Frame Kind) {
    const CFaults::CVerdict Verdict = m_rFaults.Judge(Kind, m_nModule);
    if (Verdict.m_bDrop) {
        return;
    }
    CPending Pending;
    Pending.m_LineBytes = LineDiscipline::Encode(Frame);
    if (Verdict.m_bCorrupt) {
        Corrupt(Pending.m_LineBytes);
    }
    if (Verdict.m_bCut) {
        Cut(Pending.m_LineBytes);
    }
    Pending.m_Due = IFEventLoop::Current().Now() + Verdict.m_DelayMs;
    if (Kind == CFaults::eAnswer) {
        Pending.m_Due += m_AnswerDelayMs;
    }
    if (!m_Pending.empty() && !m_bOvertaken) {
        Pending.m_Due = std::max(Pending.m_Due, m_Pending.back().m_Due);
    }
    const auto Place = std::ranges::upper_bound(m_Pending, Pending.m_Due, {}, &CPending::m_Due);
    const bool bNext = Place == m_Pending.begin();
    m_Pending.insert(Place, Verdict.m_bDouble ? 2 : 1, Pending);
    if (bNext) {
        SendDue();
    }
}

void CTransmitter::SendDue() {
    const std::uint64_t Now = IFEventLoop::Current().Now();
    while (!m_Pending.empty() && m_Pending.front().m_Due <= Now) {
        // A closed link loses it, as a cable that is off does.
        m_rLink.Write(m_Pending.front().m_LineBytes);
        m_Pending.pop_front();
    }
    if (!m_Pending.empty()) {
        m_Timer.StartOnce(static_cast<std::uint32_t>(m_Pending.front().m_Due - Now), [this] { SendDue(); });
    }
}

void CTransmitter::Corrupt(std::vector<std::uint8_t>& rLineBytes) {
    // From the middle on, the first byte that is plain data and stays so: the frame keeps its bounds and
    // length, and a CRC finds every single flipped bit.
    for (std::size_t nIndex = rLineBytes.size() / 2; nIndex < rLineBytes.size(); ++nIndex) {
        std::uint8_t& rByte = rLineBytes[nIndex];
        const auto Flipped = static_cast<std::uint8_t>(rByte ^ 0x04U);
        const bool bEscaped = nIndex > 0 && rLineBytes[nIndex - 1] == SLIP_ESC;
        if (!bEscaped && !IsFraming(rByte) && !IsFraming(Flipped)) {
            rByte = Flipped;
            return;
        }
    }
    // All framing from the middle on: losing the end mark damages the frame as well.
    rLineBytes.back() = static_cast<std::uint8_t>(SLIP_END ^ 0x04U);
}

void CTransmitter::Cut(std::vector<std::uint8_t>& rLineBytes) {
    rLineBytes.resize(rLineBytes.size() / 2);
}
