#include "simulator/uart.h"

#include <cmath>

namespace {

constexpr std::size_t BITS = 10;  // of a byte, with start and stop
constexpr std::size_t DATA_BITS = 8;
constexpr double HALF = 0.5;
/// Steps in which a receiver looks for an edge, in a bit of its own.
constexpr double EDGE_STEPS = 16.0;

/// The wire over time, which counts in bits of the sender.
class CWire {
public:
    CWire(std::span<const std::uint8_t> Bytes, bool bInverted) : m_Bytes(Bytes), m_bInverted(bInverted) {}

    double GetEnd() const { return static_cast<double>(m_Bytes.size() * BITS); }
    bool IsHigh(double Time) const { return IsSentHigh(Time) != m_bInverted; }

private:
    bool IsSentHigh(double Time) const {
        if (Time < 0.0 || Time >= GetEnd()) {
            return true;
        }
        const auto nBit = static_cast<std::size_t>(Time);
        const std::size_t nPlace = nBit % BITS;
        if (nPlace == 0) {
            return false;
        }
        return nPlace > DATA_BITS || ((m_Bytes[nBit / BITS] >> (nPlace - 1)) & 1U) != 0;
    }

    std::span<const std::uint8_t> m_Bytes;
    bool m_bInverted;
};

}  // namespace

std::vector<std::uint8_t> Uart::Receive(std::span<const std::uint8_t> Sent, std::uint32_t SenderBaud,
                                        std::uint32_t ReceiverBaud, bool bInverted) {
    if (SenderBaud == ReceiverBaud && !bInverted) {
        return {Sent.begin(), Sent.end()};
    }
    const CWire Wire(Sent, bInverted);
    const double Bit = static_cast<double>(SenderBaud) / static_cast<double>(ReceiverBaud);
    const double Step = Bit / EDGE_STEPS;
    std::vector<std::uint8_t> Received;
    bool bWasHigh = Wire.IsHigh(-1.0);
    double Time = 0.0;
    while (Time < Wire.GetEnd()) {
        const bool bHigh = Wire.IsHigh(Time);
        if (!bWasHigh || bHigh || Wire.IsHigh(Time + HALF * Bit)) {
            bWasHigh = bHigh;  // no edge, or one too short for a start bit
            Time += Step;
            continue;
        }
        unsigned Byte = 0;
        for (std::size_t nBit = 0; nBit < DATA_BITS; ++nBit) {
            Byte |= Wire.IsHigh(Time + (static_cast<double>(nBit) + 1.0 + HALF) * Bit) ? 1U << nBit : 0U;
        }
        Received.push_back(static_cast<std::uint8_t>(Byte));
        Time += (static_cast<double>(BITS - 1) + HALF) * Bit;
        bWasHigh = Wire.IsHigh(Time);
        Time += Step;
    }
    return Received;
}
