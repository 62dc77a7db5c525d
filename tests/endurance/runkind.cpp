#include "tests/endurance/runkind.h"

#include <algorithm>
#include <array>
#include <cmath>
#include "tests/system/whattheoryallows.h"

namespace {

struct CFamily {
    CRotorFile::Modules m_Modules;
    const char* m_pName;
    const char* m_pMode;
};
constexpr std::array FAMILIES = {
    CFamily{CRotorFile::eKestrel, "kestrel", "plane1"},
    CFamily{CRotorFile::eKestrelPair, "kestrel-pair", "two-plane"},
    CFamily{CRotorFile::eLanner, "lanner", "plane1"},
    CFamily{CRotorFile::eLanner, "lanner", "plane2"},
    CFamily{CRotorFile::eLanner, "lanner", "two-plane"},
};
constexpr std::array METHODS = {"weights", "screws"};
const std::vector<double> TABLE = {0.5, 1.0, 1.5, 2.0, 2.5, 3.0};
constexpr double NOISE = 1.5;
/// Of a moving average of 2 s, one reading every 50 ms.
constexpr double READINGS = 40.0;

CRotorFile::Sense DrawSense(CChance& rChance) {
    return rChance.Happens(0.5) ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
}

}  // namespace

CRunKind CRunKind::Draw(CChance& rChance) {
    const CFamily& rFamily = rChance.Pick(FAMILIES);
    CRunKind Kind;
    Kind.m_Mode = rFamily.m_pMode;
    for (std::size_t Column = 0; Column < (Kind.IsTwoPlane() ? 2U : 1U); ++Column) {
        Kind.m_Methods.emplace_back(rChance.Pick(METHODS));
    }
    Kind.m_nScrews = rChance.Happens(0.5) ? 2 : 3;
    Kind.m_bStartTurning = rChance.Happens(0.3);

    CRotorFile& rRotor = Kind.m_Rotor;
    rRotor = CRotorFile::GetBuiltIn(rFamily.m_Modules);
    constexpr std::array<std::uint32_t, 3> SLOW = {200, 1000, 2000};
    rRotor.m_ReportPeriodMs = rChance.Happens(0.8) ? rRotor.m_ReportPeriodMs : rChance.Pick(SLOW);
    rRotor.m_NoiseCounts = rRotor.m_ReportPeriodMs == 50 && rChance.Happens(0.5) ? NOISE : 0.0;
    rRotor.m_Rotation = DrawSense(rChance);
    rRotor.m_RampRpmPerS = rChance.Between(1000.0, 6000.0);
    rRotor.m_Seed = 1 + rChance.Draw(1000000);
    rRotor.m_bSwap = Kind.IsTwoPlane() && rFamily.m_Modules == CRotorFile::eLanner && rChance.Happens(0.5);
    for (std::size_t Plane = 0; Plane < rRotor.m_Planes.size(); ++Plane) {
        rRotor.m_Planes[Plane].m_Scale = DrawSense(rChance);
        rRotor.m_Planes[Plane].m_Unbalance = {rChance.Between(0.3, Kind.IsTwoPlane() ? 1.4 : 0.95),
                                              rChance.Between(0.0, 360.0)};
        rRotor.m_Influence[Plane][Plane] = {rChance.Between(150.0, 600.0), rChance.Between(0.0, 360.0)};
    }
    if (Kind.IsTwoPlane()) {
        const double Smaller =
            std::min(rRotor.m_Influence[0][0].m_Amplitude, rRotor.m_Influence[1][1].m_Amplitude);
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            rRotor.m_Influence[Plane][1 - Plane] = {rChance.Between(0.0, 0.5) * Smaller,
                                                    rChance.Between(0.0, 360.0)};
        }
    }
    return Kind;
}

std::string CRunKind::GetName() const {
    const auto* const pFamily = std::ranges::find(FAMILIES, m_Rotor.m_Modules, &CFamily::m_Modules);
    std::string Means;
    for (const std::string& rMethod : m_Methods) {
        Means += (Means.empty() ? "" : " + ") + rMethod;
    }
    return std::string(pFamily->m_pName) + ", " + m_Mode + ", " + Means;
}

void CRunKind::Choose(COptions& rOptions) const {
    rOptions.m_Mode = m_Mode;
    rOptions.m_Methods = m_Methods;
    rOptions.m_nScrews = m_nScrews;
    rOptions.m_ScrewTable = TABLE;
    rOptions.m_bStartTurning = m_bStartTurning;
}

std::vector<std::size_t> CRunKind::GetPlanes() const {
    if (IsTwoPlane()) {
        return {0, 1};
    }
    return {m_Mode == "plane2" ? std::size_t{1} : std::size_t{0}};
}

bool CRunKind::NeedsConsistentOrder() const {
    return std::ranges::any_of(GetPlanes(), [this](std::size_t Plane) {
        return m_Rotor.m_Planes[Plane].m_Scale == CRotorFile::eCounterClockwise;
    });
}

double CRunKind::GetReadingError() const {
    // Five standard deviations of the mean.
    return Theory::COUNT_ERROR + 5.0 * m_Rotor.m_NoiseCounts / std::sqrt(READINGS);
}
