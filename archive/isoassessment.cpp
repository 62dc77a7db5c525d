#include "archive/isoassessment.h"

#include "archive/advicethresholds.h"

CIso21940::CScale MakeIsoScale(const CRunRecord& rRecord) {
    CIso21940::CScale Scale;
    const CRunSetup& rSetup = rRecord.m_Setup;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (rSetup.m_Planes.at(Plane)) {
            Scale.m_bBalanced.at(Plane) = true;
            Scale.m_Unit.at(Plane) =
                rSetup.m_Iso.m_Unit.at(Plane) *
                (rSetup.m_Planes.at(Plane)->m_bScrews ? rRecord.GetReferenceWeight(Plane) : 1.0);
        }
    }
    Scale.m_InvA = rRecord.m_Calibration ? rRecord.m_Calibration->m_InvA : rSetup.m_InvA;
    Scale.m_bClockwise = rSetup.m_bClockwise;
    return Scale;
}

std::optional<CIsoAssessment> CIsoAssessment::Make(const CRunRecord& rRecord) {
    const CIsoData& rData = rRecord.m_Setup.m_Iso;
    if (!(rData.m_RotorMass > 0.0) || !(rData.m_ServiceSpeed > 0.0)) {
        return std::nullopt;
    }
    const CIso21940 Iso(rData, MakeIsoScale(rRecord));
    CIsoAssessment Assessment;
    Assessment.m_Grade = rData.m_Grade;
    Assessment.m_Permissible = Iso.GetPermissible();
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        Assessment.m_PermissiblePerPlane.at(Plane) = Iso.GetPermissible(Plane);
    }
    Assessment.m_Target = Iso.GetTarget(rData.m_Grade);
    if (const CRunMeasurement* const pFinal = rRecord.Find(Measurement::eFinal)) {
        using namespace AdviceThresholds;
        CIso21940::CReadings Readings;
        for (std::size_t Plane = 0; Plane < 2; ++Plane) {
            if (const auto& rPlane = pFinal->m_Planes.at(Plane)) {
                const double n = static_cast<double>(rPlane->m_nReadings);
                CIso21940::CReading& rReading = Readings.at(Plane);
                rReading.m_Mean = rPlane->m_Smoothed;
                rReading.m_bCovariance = rPlane->m_nReadings >= MIN_READINGS;
                if (rReading.m_bCovariance) {
                    rReading.m_VarianceX = rPlane->m_VarianceX / n + ROUNDING_VARIANCE;
                    rReading.m_VarianceY = rPlane->m_VarianceY / n + ROUNDING_VARIANCE;
                    rReading.m_CovarianceXY = rPlane->m_CovarianceXY / n;
                }
            }
        }
        Assessment.m_Residuals = Iso.GetResiduals(Readings);
        Assessment.m_Reached = Iso.GetReached(Assessment.m_Residuals);
    }
    return Assessment;
}
