#pragma once
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "platform/rvcom/bytelink.h"

/// What went over a line and when, both ways, seen from the computer's end. As text a line for each piece:
/// milliseconds, "<" for received or ">" for sent, and the bytes in hexadecimal digits.
struct CLineRecording {
    struct CPiece {
        std::uint64_t m_At = 0;
        bool m_bReceived = false;
        std::vector<std::uint8_t> m_Bytes;
        bool operator==(const CPiece&) const = default;
    };

    std::string ToText() const;
    /// Throws std::runtime_error with the number of a line that can't be read.
    static CLineRecording FromText(const std::string& rText);

    std::vector<CPiece> m_Pieces;
};

/// Passes everything on and notes it. The recording must outlive the link.
std::unique_ptr<IFByteLink> MakeRecordingLink(std::unique_ptr<IFByteLink> pLink, CLineRecording& rRecording);

/// Delivers what was received in a recording, at its instants, and notes what is sent. Both recordings must
/// outlive the link; times count from the event loop's beginning.
std::unique_ptr<IFByteLink> MakeReplayLink(const CLineRecording& rRecording, CLineRecording& rSent);
