#include "platform/rvcom/linediscipline.h"

#include <array>

namespace LineDiscipline {

namespace {

constexpr std::uint8_t END = 0xC0;
constexpr std::uint8_t ESC = 0xDB;
constexpr std::uint8_t ESC_END = 0xDC;
constexpr std::uint8_t ESC_ESC = 0xDD;

constexpr std::size_t CRC_SIZE = 2;

/// Remainder of every first byte, so that a byte of the frame costs one look-up.
constexpr std::array<std::uint16_t, 256> MakeCrcTable() {
    constexpr std::uint16_t POLYNOMIAL = 0x1021;
    std::array<std::uint16_t, 256> Table{};
    for (std::uint32_t nByte = 0; nByte < Table.size(); ++nByte) {
        std::uint32_t Remainder = nByte << 8U;
        for (int nBit = 0; nBit < 8; ++nBit) {
            Remainder = (Remainder & 0x8000U) != 0 ? (Remainder << 1U) ^ POLYNOMIAL : Remainder << 1U;
        }
        Table[nByte] = static_cast<std::uint16_t>(Remainder & 0xFFFFU);
    }
    return Table;
}
constexpr std::array<std::uint16_t, 256> CRC_TABLE = MakeCrcTable();

void PutEscaped(std::vector<std::uint8_t>& rLine, std::uint8_t Byte) {
    if (Byte == END) {
        rLine.insert(rLine.end(), {ESC, ESC_END});
    } else if (Byte == ESC) {
        rLine.insert(rLine.end(), {ESC, ESC_ESC});
    } else {
        rLine.push_back(Byte);
    }
}

}  // namespace

std::uint16_t Crc16(std::span<const std::uint8_t> Bytes) {
    std::uint16_t Crc = 0xFFFF;
    for (const std::uint8_t Byte : Bytes) {
        const std::uint8_t Index = static_cast<std::uint8_t>((Crc >> 8U) ^ Byte);
        Crc = static_cast<std::uint16_t>((Crc << 8U) ^ CRC_TABLE[Index]);
    }
    return Crc;
}

std::vector<std::uint8_t> Encode(std::span<const std::uint8_t> Frame) {
    const std::uint16_t Crc = Crc16(Frame);
    std::vector<std::uint8_t> Line;
    Line.reserve(Frame.size() + CRC_SIZE + 2 + Frame.size() / 16);
    Line.push_back(END);
    for (const std::uint8_t Byte : Frame) {
        PutEscaped(Line, Byte);
    }
    PutEscaped(Line, static_cast<std::uint8_t>(Crc & 0xFFU));
    PutEscaped(Line, static_cast<std::uint8_t>(Crc >> 8U));
    Line.push_back(END);
    return Line;
}

void CDecoder::Put(std::span<const std::uint8_t> Bytes) {
    for (std::uint8_t Byte : Bytes) {
        if (Byte == END) {
            EndFrame();
            continue;
        }
        if (m_bEscaped) {
            m_bEscaped = false;
            if (Byte == ESC_END) {
                Byte = END;
            } else if (Byte == ESC_ESC) {
                Byte = ESC;
            } else {
                m_bBadEscape = true;
            }
        } else if (Byte == ESC) {
            m_bEscaped = true;
            continue;
        }
        // What is too long isn't kept: a line that never sends an END must not fill the memory.
        if (m_Buffer.size() < MAX_FRAME + CRC_SIZE) {
            m_Buffer.push_back(Byte);
        } else {
            m_bTooLong = true;
        }
    }
}

void CDecoder::Reset() {
    m_Buffer.clear();
    m_bEscaped = false;
    m_bTooLong = false;
    m_bBadEscape = false;
}

void CDecoder::EndFrame() {
    std::vector<std::uint8_t> Received;
    Received.swap(m_Buffer);
    // An END right behind an ESC cuts the escape in two.
    const bool bBadEscape = m_bBadEscape || m_bEscaped;
    const bool bTooLong = m_bTooLong;
    // Before the handler runs, which may put further bytes.
    Reset();

    if (Received.empty() && !bBadEscape) {
        return;  // the END before a frame, or two in a row
    }
    if (bTooLong) {
        ++m_nTooLong;
        return;
    }
    if (bBadEscape) {
        ++m_nBadCrc;
        return;
    }
    if (Received.size() < MIN_FRAME + CRC_SIZE) {
        ++m_nTooShort;
        return;
    }
    const std::size_t nFrame = Received.size() - CRC_SIZE;
    const std::span<const std::uint8_t> Frame(Received.data(), nFrame);
    const auto Crc = static_cast<std::uint16_t>(Received[nFrame] | (Received[nFrame + 1] << 8U));
    if (Crc16(Frame) != Crc) {
        ++m_nBadCrc;
        return;
    }
    m_Handler(Frame);
}

}  // namespace LineDiscipline
