#pragma once
#include <array>
#include <cstdint>
#include <functional>
#include <nlohmann/json_fwd.hpp>

class CJsonFields;

/// Faults of the line on demand. They strike the frames that the modules send, in the order of sending; they
/// are counted, not drawn by lot, so that a failure repeats exactly.
///
///   {"kind": "drop", "next": 3}           the next 3 frames never reach the line
///   {"kind": "corrupt", "next": 3}        one bit of each of the next 3 frames flips on the line, behind the
///   CRC
///   {"kind": "cut", "next": 3}            the next 3 frames end in their middle, without an end mark
///   {"kind": "double", "next": 3}         the next 3 frames are sent twice
///   {"kind": "delay_ms", "value": 600}    frames leave 600 ms late from now on, 0 ends it; with "next" or
///   "at": only so many
///   {"kind": "silence_ms", "value": 2500} nothing is sent for so long from now, frames of that time are lost
///   {"kind": "cut_ms", "value": 5000}     the line itself is cut for so long from now, 0 mends it: a TCP
///   connection closes and is refused, a pseudo terminal hangs up and its link goes
///   {"kind": "unlock_ms", "value": 300}   no fault of the line: the modules lose their lock for so long
///   {"kind": "noise_counts", "value": 20} nor this: standard deviation of each of X and Y from now on, in
///   place of the rotor file's, 0 ends it; with "module" of that module alone
///
/// "next" is 1 where it is missing, but endless for delay_ms. "at": 17 lets the fault begin with the frame of
/// that number, in place of the next one; frames count from 1 since the simulator began, those lost included.
/// "only": "answers" or "indications" leaves the other frames alone; without it both count. "only":
/// "requests" strikes what the modules are sent in their place; requests have a count of their own. "module":
/// 1 or 2 leaves the frames of the other module alone, its requests are those to its address. Kinds work side
/// by side; a new fault of a kind replaces the old one. Frames of a module keep their order: what it sends
/// behind a late frame is late too.
class CFaults {
public:
    enum Frame { eAnswer = 0, eIndication = 1, eRequest = 2 };
    struct CVerdict {
        bool m_bDrop = false;
        bool m_bCorrupt = false;
        bool m_bCut = false;
        bool m_bDouble = false;
        std::uint32_t m_DelayMs = 0;
    };

    /// Throws CJsonError on what it doesn't know. nModules: how many there are.
    void Set(const nlohmann::json& rFault, std::size_t nModules = 1);
    /// Decides on the next frame of a module, counted from 0, and counts it.
    CVerdict Judge(Frame Kind, std::size_t nModule = 0);

    /// Loses the lock for so many ms.
    std::function<void(std::uint32_t)> OnUnlock;
    /// Cuts the line for so many ms.
    std::function<void(std::uint32_t)> OnCut;
    /// Disturbs the readings of the modules, from 0, that are so marked.
    std::function<void(double Counts, const std::array<bool, 2>& rModules)> OnNoise;

    /// Frames that modules have sent or would have without a fault, and those that came for them.
    std::uint64_t GetSent() const { return m_nSent; }
    std::uint64_t GetReceived() const { return m_nReceived; }

private:
    enum Kinds {
        eDrop = 0,
        eCorrupt = 1,
        eDelay = 2,
        eSilence = 3,
        eCut = 4,
        eDouble = 5,
        eNumberOfKinds = 6,
        // These strike no frame.
        eUnlock = 6,
        eCutLine = 7,
        eNoise = 8
    };
    struct CFault {
        std::uint64_t m_First = 0;                          ///< number of the first frame that it may strike
        std::uint64_t m_Next = 0;                           ///< frames still to strike
        std::uint64_t m_Value = 0;                          ///< ms
        std::uint64_t m_Until = 0;                          ///< end of a silence
        std::array<bool, 3> m_bStrikes{true, true, false};  ///< by Frame
        std::array<bool, 2> m_bModules{true, true};
    };
    /// Those that strike no frame.
    void SetWithoutFrames(Kinds Kind, const CJsonFields& rFields, const std::array<bool, 2>& rModules) const;
    /// Whether the fault strikes this frame; counts it if so.
    static bool Strike(CFault& rFault, Frame Kind, std::size_t nModule, std::uint64_t nNumber);

    std::array<CFault, eNumberOfKinds> m_Faults;
    std::uint64_t m_nSent = 0;
    std::uint64_t m_nReceived = 0;
};
