#include "simulator/faults.h"

#include <limits>

#include "platform/system/eventloop.h"
#include "simulator/jsonfields.h"

namespace {

constexpr std::string_view KINDS[] = {"drop",   "corrupt",   "delay_ms", "silence_ms",  "cut",
                                      "double", "unlock_ms", "cut_ms",   "noise_counts"};
constexpr std::string_view FRAMES[] = {"answers", "indications", "requests"};  // as CFaults::Frame
constexpr std::int64_t MAX_FRAMES = 1'000'000;
constexpr std::int64_t MAX_MILLISECONDS = 3'600'000;
constexpr double MAX_NOISE = 32767.0;  // counts
constexpr std::uint64_t ENDLESS = std::numeric_limits<std::uint64_t>::max();

}  // namespace

void CFaults::Set(const nlohmann::json& rFault, std::size_t nModules) {
    const CJsonFields Fields(rFault, "fault", {"kind", "next", "value", "at", "only", "module"});
    Fields.Require("kind");
    const auto Kind = static_cast<Kinds>(Fields.GetChoice("kind", 0, KINDS));
    const bool bFrames = Kind < eNumberOfKinds;
    const bool bSpan = Kind == eSilence || !bFrames;
    const bool bTimed = Kind == eDelay || bSpan;
    if (bTimed) {
        Fields.Require("value");
    } else if (Fields.Has("value")) {
        throw CJsonError(
            "fault.value belongs to delay_ms, silence_ms, cut_ms, unlock_ms and noise_counts; the other "
            "kinds take next");
    }
    if (bSpan && (Fields.Has("next") || Fields.Has("at"))) {
        throw CJsonError("fault.next and fault.at don't belong to " + std::string(KINDS[Kind]) +
                         ", which takes value");
    }
    std::array<bool, 2> bModules{true, true};
    if (Fields.Has("module")) {
        bModules.fill(false);
        const std::int64_t nModule = Fields.GetInteger("module", 1, 1, static_cast<std::int64_t>(nModules));
        bModules.at(static_cast<std::size_t>(nModule - 1)) = true;
    }
    if (!bFrames) {
        SetWithoutFrames(Kind, Fields, bModules);
        return;
    }

    CFault Fault;
    Fault.m_Value = static_cast<std::uint64_t>(Fields.GetInteger("value", 0, 0, MAX_MILLISECONDS));
    Fault.m_Until = IFEventLoop::Current().Now() + Fault.m_Value;
    Fault.m_First = static_cast<std::uint64_t>(Fields.GetInteger("at", 0, 1, MAX_FRAMES));
    const bool bCounted = !bTimed || Fields.Has("next") || Fields.Has("at");
    Fault.m_Next =
        bCounted ? static_cast<std::uint64_t>(Fields.GetInteger("next", 1, 0, MAX_FRAMES)) : ENDLESS;
    if (Fields.Has("only")) {
        Fault.m_bStrikes.fill(false);
        Fault.m_bStrikes.at(Fields.GetChoice("only", 0, FRAMES)) = true;
    }
    Fault.m_bModules = bModules;
    m_Faults.at(Kind) = Fault;
}

void CFaults::SetWithoutFrames(Kinds Kind, const CJsonFields& rFields,
                               const std::array<bool, 2>& rModules) const {
    if (Kind == eUnlock && (rFields.Has("only") || rFields.Has("module"))) {
        throw CJsonError(
            "fault.only and fault.module don't belong to unlock_ms: the lock is that of all modules");
    }
    if (Kind == eCutLine && (rFields.Has("only") || rFields.Has("module"))) {
        throw CJsonError(
            "fault.only and fault.module don't belong to cut_ms: the line is that of all modules");
    }
    if (Kind == eNoise) {
        if (rFields.Has("only")) {
            throw CJsonError("fault.only doesn't belong to noise_counts: it is in the readings themselves");
        }
        OnNoise(rFields.GetNumber("value", 0.0, 0.0, MAX_NOISE), rModules);
        return;
    }
    const auto Milliseconds = static_cast<std::uint32_t>(rFields.GetInteger("value", 0, 0, MAX_MILLISECONDS));
    (Kind == eUnlock ? OnUnlock : OnCut)(Milliseconds);
}

bool CFaults::Strike(CFault& rFault, Frame Kind, std::size_t nModule, std::uint64_t nNumber) {
    if (rFault.m_Next == 0 || nNumber < rFault.m_First || !rFault.m_bStrikes.at(Kind) ||
        !rFault.m_bModules.at(nModule)) {
        return false;
    }
    if (rFault.m_Next != ENDLESS) {
        --rFault.m_Next;
    }
    return true;
}

CFaults::CVerdict CFaults::Judge(Frame Kind, std::size_t nModule) {
    const std::uint64_t nNumber = (Kind == eRequest) ? ++m_nReceived : ++m_nSent;
    const auto Strikes = [&](Kinds Fault) { return Strike(m_Faults.at(Fault), Kind, nModule, nNumber); };
    CVerdict Verdict;
    // A frame that is never sent doesn't use up the counts of the later faults.
    const bool bSilent = IFEventLoop::Current().Now() < m_Faults[eSilence].m_Until;
    Verdict.m_bDrop = (bSilent && Strikes(eSilence)) || Strikes(eDrop);
    if (Verdict.m_bDrop) {
        return Verdict;
    }
    Verdict.m_bCorrupt = Strikes(eCorrupt);
    Verdict.m_bCut = Strikes(eCut);
    Verdict.m_bDouble = Strikes(eDouble);
    if (Strikes(eDelay)) {
        Verdict.m_DelayMs = static_cast<std::uint32_t>(m_Faults[eDelay].m_Value);
    }
    return Verdict;
}
