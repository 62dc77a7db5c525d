#include "console/linewatch.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "console/framecodes.h"
#include "rvlib/rvprt/kestrel/moduleidentification.h"
#include "rvlib/rvprt/kestrel/modulestateresponse.h"
#include "rvlib/rvprt/lanner/modulestateresponse.h"
#include "rvlib/rvprt/lanner/setparams.h"

using namespace FrameCodes;

namespace {

/// A drive's speed ripples; what moves more is on its way to another speed.
constexpr std::uint32_t RIPPLE_RPM = 5;

std::uint32_t GetWord(std::span<const std::uint8_t> Bytes) {
    return static_cast<std::uint32_t>(Bytes[0] | (Bytes[1] << 8U));
}

}  // namespace

CLineWatch::CLineWatch(bool bLanner, std::vector<std::size_t> Planes)
    : m_bLanner(bLanner), m_Planes(std::move(Planes)) {}

const CLineWatch::CModule* CLineWatch::Find(std::uint8_t Address) const {
    const auto Found = m_Modules.find(Address);
    return Found == m_Modules.end() ? nullptr : &Found->second;
}

void CLineWatch::OnFrame(std::span<const std::uint8_t> Frame, std::uint64_t Now) {
    if (Frame.size() < HEADER) {
        return;
    }
    CModule& rModule = m_Modules[Frame[1]];
    rModule.m_LastHeard = Now;
    switch (Frame[0]) {
        case MODULE_STATE:
            OnState(rModule, Frame.subspan(HEADER));
            break;
        case ACTIVE_SET:
            OnSet(Frame.subspan(HEADER));
            break;
        case MODULE_DATA:
            OnIdentification(rModule, Frame.subspan(HEADER));
            break;
        case SPEED:
            OnSpeed(rModule, Frame.subspan(HEADER), Now);
            break;
        default:
            break;
    }
}

void CLineWatch::OnState(CModule& rModule, std::span<const std::uint8_t> Frame) const {
    std::uint32_t nUsed = 0;
    const auto nSize = static_cast<std::uint32_t>(Frame.size());
    if (nSize == 0) {
        return;
    }
    if (!m_bLanner) {
        Kestrel::CModuleStateResponse State("head line");
        if (State.Decode(Frame.data(), nSize, &nUsed) != 0) {
            rModule.m_bStateHeard = true;
            rModule.m_bOutOfLock = State.m_OutOfLock != 0;
            rModule.m_bInvalidSpeed = State.m_InvalidRPM != 0;
        }
        return;
    }
    Lanner::CModuleStateResponse State("head line");
    // What it can't decode it warns of in the log, where the module itself has told it already.
    if (Frame[0] != Lanner::CModuleStateResponse::eSupervisionMode ||
        State.Decode(Frame.data(), nSize, &nUsed, m_bSwapped ? 1 : 0) == 0) {
        return;
    }
    const auto Any = [this](std::uint32_t Plane1, std::uint32_t Plane2) {
        return std::ranges::any_of(m_Planes,
                                   [&](std::size_t nPlane) { return (nPlane == 0 ? Plane1 : Plane2) != 0; });
    };
    rModule.m_bStateHeard = true;
    rModule.m_bOutOfLock = Any(State.Plane1OutOfLock, State.Plane2OutOfLock);
    rModule.m_bSensorFailure = Any(State.Plane1SensorFailure, State.Plane2SensorFailure);
    rModule.m_bTooSlow = Any(State.Plane1RotationToSlow, State.Plane2RotationToSlow);
    rModule.m_bOveramplified = Any(State.Plane1Overamplify, State.Plane2Overamplify);
}

void CLineWatch::OnSet(std::span<const std::uint8_t> Frame) {
    // Behind sub-code and number: the block that concerns both planes, its type, its length, and two bytes
    // further on the mode, whose last two values exchange the planes.
    constexpr std::size_t TYPE = 2;
    constexpr std::size_t MODE = TYPE + 4;
    if (m_bLanner && Frame.size() > MODE && Frame[TYPE] == Lanner::CSetParams::TYPE) {
        m_bSwapped = Frame[MODE] == 5 || Frame[MODE] == 6;
    }
}

void CLineWatch::OnIdentification(CModule& rModule, std::span<const std::uint8_t> Frame) {
    std::uint32_t nUsed = 0;
    Kestrel::CModuleIdentification Plate("head line");  // laid out alike in both families
    if (Frame.size() >= Kestrel::CModuleIdentification::SIZE &&
        Frame[0] == Kestrel::CModuleIdentification::SUB_CODE &&
        Plate.Decode(Frame.data(), static_cast<std::uint32_t>(Frame.size()), &nUsed) != 0) {
        rModule.m_Software = Plate.m_SoftwareVersion;
        rModule.m_Article = Plate.m_ArticleNumber;
        rModule.m_Serial = Plate.m_SerialNumber;
    }
}

void CLineWatch::OnSpeed(CModule& rModule, std::span<const std::uint8_t> Frame, std::uint64_t Now) const {
    const std::size_t nSkip = m_bLanner ? 1 : 0;  // the plane's number
    if (Frame.size() < nSkip + 2) {
        return;
    }
    const std::uint32_t Speed = GetWord(Frame.subspan(nSkip));
    const std::uint32_t Former = rModule.m_SpeedRpm.value_or(Speed);
    if (std::max(Speed, Former) - std::min(Speed, Former) > RIPPLE_RPM) {
        rModule.m_SteadySince = Now;
    }
    rModule.m_SpeedRpm = Speed;
}
