#include "simulator/rotorfile.h"

#include <algorithm>
#include <iterator>
#include <nlohmann/json.hpp>
#include <string_view>

#include "platform/system/files.h"
#include "simulator/jsonfields.h"

using nlohmann::json;

namespace {

constexpr std::size_t MAX_PLANES = 2;
constexpr double MAX_ANGLE_DEG = 3600.0;
constexpr double MAX_AMOUNT = 1.0e6;
constexpr int MAX_HOLES = 360;
constexpr std::string_view FAMILIES[] = {"kestrel", "kestrel-pair", "lanner"};
constexpr std::string_view SENSES[] = {"cw", "ccw"};

/// Planes that the modules measure: the number of planes of a rotor that doesn't say.
std::size_t GetMeasuredPlanes(CRotorFile::Modules Family) {
    return (Family == CRotorFile::eKestrel) ? 1 : 2;
}

CRotorFile::Sense ToSense(std::size_t nChoice) {
    return (nChoice == 0) ? CRotorFile::eClockwise : CRotorFile::eCounterClockwise;
}

void ReadUnbalance(const json& rValue, const std::string& rPath, CRotorFile::CUnbalance& rUnbalance) {
    const CJsonFields Fields(rValue, rPath, {"amount", "angle_deg"});
    rUnbalance.m_Amount = Fields.GetNumber("amount", rUnbalance.m_Amount, 0.0, MAX_AMOUNT);
    rUnbalance.m_AngleDeg =
        Fields.GetNumber("angle_deg", rUnbalance.m_AngleDeg, -MAX_ANGLE_DEG, MAX_ANGLE_DEG);
}

/// Makes the defaults for a number of planes.
void Resize(CRotorFile& rFile, std::size_t nPlanes) {
    rFile.m_Planes.assign(nPlanes, {});
    rFile.m_Influence.assign(nPlanes, std::vector<CRotorFile::CInfluence>(nPlanes, {0.0, 0.0}));
    for (std::size_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
        rFile.m_Influence[nPlane][nPlane] = {};
    }
}

std::size_t FindNumberOfPlanes(const CJsonFields& rFields, CRotorFile::Modules Family) {
    for (std::string_view Name : {"planes", "influence", "scale", "holes"}) {
        if (const json* pList = rFields.GetArray(Name, 1, MAX_PLANES)) {
            return pList->size();
        }
    }
    return GetMeasuredPlanes(Family);
}

void ReadInfluence(const json& rRows, std::vector<std::vector<CRotorFile::CInfluence>>& rInfluence) {
    for (std::size_t nSensor = 0; nSensor < rInfluence.size(); ++nSensor) {
        const std::string RowPath = CJsonFields::ElementPath("influence", nSensor);
        const json& rRow = CJsonFields::ToArray(rRows[nSensor], RowPath, rInfluence[nSensor].size(),
                                                rInfluence[nSensor].size());
        for (std::size_t nPlane = 0; nPlane < rRow.size(); ++nPlane) {
            const CJsonFields Fields(rRow[nPlane], CJsonFields::ElementPath(RowPath, nPlane),
                                     {"amplitude", "phase_deg"});
            // An entry that is there starts from the built-in one, on the diagonal or off it.
            CRotorFile::CInfluence Influence;
            Influence.m_Amplitude = Fields.GetNumber("amplitude", Influence.m_Amplitude, 0.0, MAX_AMOUNT);
            Influence.m_PhaseDeg =
                Fields.GetNumber("phase_deg", Influence.m_PhaseDeg, -MAX_ANGLE_DEG, MAX_ANGLE_DEG);
            rInfluence[nSensor][nPlane] = Influence;
        }
    }
}

CRotorFile FromJson(const json& rValue, std::optional<CRotorFile::Modules> Family) {
    const CJsonFields Fields(rValue, "",
                             {"modules", "rotation", "speed_rpm", "ramp_rpm_per_s", "planes", "influence",
                              "noise_counts", "scale", "holes", "seed", "swap", "report_period_ms"});
    CRotorFile File;
    // The file's own family is checked even when another one is asked for.
    const auto OwnFamily = static_cast<CRotorFile::Modules>(Fields.GetChoice("modules", 0, FAMILIES));
    File.m_Modules = Family.value_or(OwnFamily);
    File.m_Rotation = ToSense(Fields.GetChoice("rotation", 0, SENSES));
    // Below 60 rpm the electronics call the speed invalid, above 65535 it doesn't fit their frames.
    File.m_SpeedRpm = Fields.GetNumber("speed_rpm", File.m_SpeedRpm, 60.0, 65535.0);
    File.m_RampRpmPerS = Fields.GetNumber("ramp_rpm_per_s", File.m_RampRpmPerS, 1.0, 1.0e6);
    File.m_NoiseCounts = Fields.GetNumber("noise_counts", File.m_NoiseCounts, 0.0, 32767.0);
    File.m_Seed = Fields.GetUnsigned("seed", File.m_Seed);
    File.m_ReportPeriodMs =
        static_cast<std::uint32_t>(Fields.GetInteger("report_period_ms", File.m_ReportPeriodMs, 10, 60000));
    File.m_bSwap = Fields.GetBool("swap", File.m_bSwap);
    if (File.m_bSwap && File.m_Modules != CRotorFile::eLanner) {
        throw CJsonError("swap goes with modules lanner only");
    }

    const std::size_t nPlanes = FindNumberOfPlanes(Fields, File.m_Modules);
    if (File.m_Modules == CRotorFile::eKestrelPair && nPlanes != MAX_PLANES) {
        throw CJsonError("planes must be an array of 2: the modules kestrel-pair measure two planes");
    }
    Resize(File, nPlanes);
    if (const json* pPlanes = Fields.GetArray("planes", nPlanes, nPlanes)) {
        for (std::size_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
            const CJsonFields Plane((*pPlanes)[nPlane], CJsonFields::ElementPath("planes", nPlane),
                                    {"unbalance"});
            if (const json* pUnbalance = Plane.Get("unbalance")) {
                ReadUnbalance(*pUnbalance, Plane.GetPath("unbalance"), File.m_Planes[nPlane].m_Unbalance);
            }
        }
    }
    if (const json* pRows = Fields.GetArray("influence", nPlanes, nPlanes)) {
        ReadInfluence(*pRows, File.m_Influence);
    }
    if (const json* pScale = Fields.GetArray("scale", nPlanes, nPlanes)) {
        for (std::size_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
            File.m_Planes[nPlane].m_Scale = ToSense(
                CJsonFields::ToChoice((*pScale)[nPlane], CJsonFields::ElementPath("scale", nPlane), SENSES));
        }
    }
    if (const json* pHoles = Fields.GetArray("holes", nPlanes, nPlanes)) {
        for (std::size_t nPlane = 0; nPlane < nPlanes; ++nPlane) {
            File.m_Planes[nPlane].m_Holes = static_cast<int>(CJsonFields::ToInteger(
                (*pHoles)[nPlane], CJsonFields::ElementPath("holes", nPlane), 1, MAX_HOLES));
        }
    }
    return File;
}

}  // namespace

CRotorFile CRotorFile::GetBuiltIn(Modules Family) {
    return FromJson(json::object(), Family);
}

std::optional<CRotorFile> CRotorFile::Read(const std::string& rPath, std::string& rError,
                                           std::optional<Modules> Family) {
    const auto Contents = Files::ReadAll(rPath);
    if (!Contents) {
        rError = rPath + ": can't be read; give the path of a rotor file";
        return std::nullopt;
    }
    auto File = Parse({Contents->begin(), Contents->end()}, rError, Family);
    if (!File) {
        rError = rPath + ": " + rError;
    }
    return File;
}

std::optional<CRotorFile> CRotorFile::Parse(const std::string& rText, std::string& rError,
                                            std::optional<Modules> Family) {
    constexpr bool COMMENTS = true;
    try {
        return FromJson(ParseJson(rText, COMMENTS), Family);
    } catch (const CJsonError& rException) {
        rError = rException.what();
    }
    return std::nullopt;
}

std::optional<CRotorFile::Modules> CRotorFile::ModulesFromString(const std::string& rText) {
    const auto Found = std::find(std::begin(FAMILIES), std::end(FAMILIES), rText);
    if (Found == std::end(FAMILIES)) {
        return std::nullopt;
    }
    return static_cast<Modules>(Found - std::begin(FAMILIES));
}
