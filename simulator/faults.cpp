#include "simulator/faults.h"

#include <limits>

#include "platform/system/eventloop.h"
#include "simulator/jsonfields.h"

namespace {

constexpr std::string_view ms_Kinds[] = {"drop", "corrupt", "delay_ms", "silence_ms"};  // as CFaults::Kinds
constexpr std::string_view ms_Frames[] = {"answers", "indications"};                    // as CFaults::Frame
constexpr std::int64_t eMaxFrames = 1'000'000;
constexpr std::int64_t eMaxMilliseconds = 3'600'000;
constexpr std::uint64_t eEndless = std::numeric_limits<std::uint64_t>::max();

}  // namespace

void CFaults::Set(const nlohmann::json& rFault) {
    const CJsonFields Fields(rFault, "fault", {"kind", "next", "value", "only"});
    Fields.Require("kind");
    const std::size_t nKind = Fields.GetChoice("kind", 0, ms_Kinds);
    const bool bTimed = (nKind == eDelay) || (nKind == eSilence);
    if (bTimed) {
        Fields.Require("value");
    } else if (Fields.Has("value")) {
        throw CJsonError("fault.value belongs to delay_ms and silence_ms; drop and corrupt take next");
    }
    if (nKind == eSilence && Fields.Has("next")) {
        throw CJsonError("fault.next belongs to drop, corrupt and delay_ms; silence_ms takes value");
    }

    CFault Fault;
    Fault.m_Value = static_cast<std::uint64_t>(Fields.GetInteger("value", 0, 0, eMaxMilliseconds));
    Fault.m_Until = IFEventLoop::Current().Now() + Fault.m_Value;
    Fault.m_Next = Fields.Has("next")
                       ? static_cast<std::uint64_t>(Fields.GetInteger("next", 1, 0, eMaxFrames))
                   : bTimed ? eEndless
                            : 1U;
    if (Fields.Has("only")) {
        const std::size_t nOnly = Fields.GetChoice("only", 0, ms_Frames);
        Fault.m_bStrikes[eAnswer] = (nOnly == eAnswer);
        Fault.m_bStrikes[eIndication] = (nOnly == eIndication);
    }
    m_Faults[nKind] = Fault;
}

bool CFaults::Strike(CFault& rFault, Frame Kind) {
    if (rFault.m_Next == 0 || !rFault.m_bStrikes[Kind]) {
        return false;
    }
    if (rFault.m_Next != eEndless) {
        --rFault.m_Next;
    }
    return true;
}

CFaults::CVerdict CFaults::Judge(Frame Kind) {
    CVerdict Verdict;
    // A frame that is never sent doesn't use up the counts of the later faults.
    const bool bSilent = IFEventLoop::Current().Now() < m_Faults[eSilence].m_Until;
    Verdict.m_bDrop = (bSilent && Strike(m_Faults[eSilence], Kind)) || Strike(m_Faults[eDrop], Kind);
    if (Verdict.m_bDrop) {
        return Verdict;
    }
    Verdict.m_bCorrupt = Strike(m_Faults[eCorrupt], Kind);
    if (Strike(m_Faults[eDelay], Kind)) {
        Verdict.m_DelayMs = static_cast<std::uint32_t>(m_Faults[eDelay].m_Value);
    }
    return Verdict;
}
