#pragma once
#include <cstdint>
#include <nlohmann/json_fwd.hpp>

/// Faults of the line on demand. They strike the frames that the modules send, in the order of sending; they
/// are counted, not drawn by lot, so that a failure repeats exactly.
///
///   {"kind": "drop", "next": 3}           the next 3 frames never reach the line
///   {"kind": "corrupt", "next": 3}        one bit of each of the next 3 frames flips on the line, behind the
///   CRC
///   {"kind": "delay_ms", "value": 600}    frames leave 600 ms late from now on, 0 ends it; with "next": only
///   so many
///   {"kind": "silence_ms", "value": 2500} nothing is sent for so long from now, frames of that time are lost
///
/// "next" is 1 where it is missing, but endless for delay_ms. "only": "answers" or "indications" leaves the
/// other frames alone; without it all count. Kinds work side by side; a new fault of a kind replaces the old
/// one. Frames on the line keep their order: what is sent behind a late frame is late too.
class CFaults {
public:
    enum Frame { eAnswer = 0, eIndication = 1 };
    struct CVerdict {
        bool m_bDrop = false;
        bool m_bCorrupt = false;
        std::uint32_t m_DelayMs = 0;
    };

    /// Throws CJsonError on what it doesn't know.
    void Set(const nlohmann::json& rFault);
    /// Decides on the next frame to send, and counts it.
    CVerdict Judge(Frame Kind);

private:
    enum Kinds { eDrop = 0, eCorrupt = 1, eDelay = 2, eSilence = 3, eNumberOfKinds = 4 };
    struct CFault {
        std::uint64_t m_Next = 0;           ///< frames still to strike
        std::uint64_t m_Value = 0;          ///< ms
        std::uint64_t m_Until = 0;          ///< end of a silence
        bool m_bStrikes[2] = {true, true};  ///< by Frame
    };
    /// Whether the fault strikes this frame; counts it if so.
    static bool Strike(CFault& rFault, Frame Kind);

    CFault m_Faults[eNumberOfKinds];
};
