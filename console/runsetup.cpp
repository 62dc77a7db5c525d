#include "console/runsetup.h"

#include <stdexcept>

#include "console/configurationjson.h"
#include "console/isoaccess.h"
#include "console/session.h"
#include "platform/rvmdb/patience.h"

namespace {

using PreBalDB::CPreBalBaseTableEntry;
using PreBalDB::CPreBalDatabase;
using PreBalDB::CTypeBase;

math::matrix<double> Zero(std::uint32_t nRows, std::uint32_t nColumns) {
    math::matrix<double> Matrix(nRows, nColumns);
    Matrix.Null();
    return Matrix;
}

double GetReferenceWeight(const PreBalDB::CScrewCompensationTableEntry* pScrews) {
    return pScrews == nullptr ? 0.0 : pScrews->GetReferenceWeight();
}

CPlaneSetup MakePlane(const PreBalDB::CWeightCompensationTableEntry* pWeights,
                      const PreBalDB::CScrewCompensationTableEntry* pScrews) {
    CPlaneSetup Plane;
    if (pScrews == nullptr) {
        Plane.m_bScaleClockwise =
            pWeights == nullptr || pWeights->GetScalingDirection() == CTypeBase::eClockwise;
        return Plane;
    }
    Plane.m_bScrews = true;
    Plane.m_bScaleClockwise = pScrews->GetScalingDirection() == CTypeBase::eClockwise;
    Plane.m_nHoles = pScrews->GetNumberOfHoles();
    Plane.m_nScrews = pScrews->GetNumberOfScrews();
    Plane.m_ReferenceWeight = pScrews->GetReferenceWeight();
    Plane.m_TableName = pScrews->GetScrewTableName();
    for (const PreBalDB::CScrew& rScrew : pScrews->GetScrewTable()) {
        Plane.m_Table.push_back({rScrew.GetScrewName(), rScrew.GetWeight()});
    }
    return Plane;
}

/// Reads the configuration on show and hands it over; nothing happens if that can't be.
template <typename Use>
void ReadEntry(const CConsoleSession& rSession, Use Take) {
    const std::optional<CShownConfiguration> Shown = rSession.GetShownConfiguration();
    if (!Shown) {
        return;
    }
    try {
        const PreBalDB::CPatience Patience;
        CPreBalDatabase Database(Shown->m_Machine);
        Take(*Shown, Database.ReadConfiguration(Shown->m_Name));
    } catch (const PreBalDB::CDatabaseError&) {
        // The module tells what becomes of its result.
    }
}

}  // namespace

CRunSetup ReadRunSetup(const CConsoleSession& rSession) {
    CRunSetup Setup;
    const bool bTwoPlane = rSession.GetMode() == CPreBalDatabase::eModeTwoPlane;
    Setup.m_Mode = rSession.GetModeName();
    Setup.m_InvA = bTwoPlane ? Zero(4, 4) : Zero(2, 2);
    Setup.m_UA.assign(bTwoPlane ? 2 : 1, Zero(2, 1));
    ReadEntry(rSession, [&](const CShownConfiguration& rShown, const CPreBalBaseTableEntry& rEntry) {
        Setup.m_Configuration = rShown.m_Name;
        Setup.m_RpmTolerance = rEntry.GetRPMTolerance();
        Setup.m_TargetUnbalance = rEntry.GetTargetUnbalance();
        Setup.m_nSamples = rEntry.GetNumberOfSamples();
        Setup.m_Iso = IsoAccess::Read(rShown.m_Machine, rShown.m_Name);
        if (const auto* const pPlanes = rEntry.GetTwoPlane(); bTwoPlane && pPlanes != nullptr) {
            Setup.m_bClockwise = pPlanes->GetRotationDirection() == CTypeBase::eClockwise;
            Setup.m_Planes[0] = MakePlane(pPlanes->GetPlane1WeightCompensationTableEntry(),
                                          pPlanes->GetPlane1ScrewCompensationTableEntry());
            Setup.m_Planes[1] = MakePlane(pPlanes->GetPlane2WeightCompensationTableEntry(),
                                          pPlanes->GetPlane2ScrewCompensationTableEntry());
            Setup.m_InvA = pPlanes->GetInvA();
            Setup.m_UA = {pPlanes->GetUAPlane1(), pPlanes->GetUAPlane2()};
        } else if (const auto* const pPlane = rEntry.GetSinglePlane(); pPlane != nullptr) {
            Setup.m_bClockwise = pPlane->GetRotationDirection() == CTypeBase::eClockwise;
            Setup.m_Planes.at(rSession.GetMode() == CPreBalDatabase::eModePlane2 ? 1 : 0) = MakePlane(
                pPlane->GetWeightCompensationTableEntry(), pPlane->GetScrewCompensationTableEntry());
            Setup.m_InvA = pPlane->GetInvA();
            Setup.m_UA = {pPlane->GetUA()};
        }
        Setup.m_Properties = ToText(ConfigurationToJson(rShown.m_Machine, Setup.m_Mode, rShown.m_Name,
                                                        PreBalDB::ConfigurationFields::Read(rEntry)));
    });
    return Setup;
}

std::optional<CRunCalibration> ReadRunCalibration(const CConsoleSession& rSession) {
    std::optional<CRunCalibration> Calibration;
    ReadEntry(rSession, [&](const CShownConfiguration& /*rShown*/, const CPreBalBaseTableEntry& rEntry) {
        if (rEntry.IsCalibrated() == 0) {
            return;
        }
        // A machine has records of one kind: its key tells the mode.
        if (const auto* const pPlanes = rEntry.GetTwoPlane()) {
            Calibration =
                CRunCalibration{rEntry.GetCalibratedRPM(),
                                pPlanes->GetInvA(),
                                {pPlanes->GetUAPlane1(), pPlanes->GetUAPlane2()},
                                {GetReferenceWeight(pPlanes->GetPlane1ScrewCompensationTableEntry()),
                                 GetReferenceWeight(pPlanes->GetPlane2ScrewCompensationTableEntry())}};
        } else if (const auto* const pPlane = rEntry.GetSinglePlane()) {
            Calibration =
                CRunCalibration{rEntry.GetCalibratedRPM(), pPlane->GetInvA(), {pPlane->GetUA()}, {}};
            Calibration->m_ReferenceWeight.at(rSession.GetMode() == CPreBalDatabase::eModePlane2 ? 1 : 0) =
                GetReferenceWeight(pPlane->GetScrewCompensationTableEntry());
        }
    });
    return Calibration;
}

std::array<CHoleRing, 2> GetRecordRings(const CRunSetup& rSetup) {
    std::array<CHoleRing, 2> Rings;
    for (std::size_t Plane = 0; Plane < Rings.size(); ++Plane) {
        if (const auto& rPlane = rSetup.m_Planes.at(Plane); rPlane && rPlane->m_bScrews) {
            Rings.at(Plane) = CHoleRing{rPlane->m_nHoles, false};
        }
    }
    return Rings;
}
