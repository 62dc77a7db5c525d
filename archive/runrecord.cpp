#include "archive/runrecord.h"

#include <algorithm>
#include <cmath>

const CRunMeasurement* CRunRecord::Find(Measurement Which) const {
    const auto Found = std::find_if(m_Measurements.rbegin(), m_Measurements.rend(),
                                    [Which](const CRunMeasurement& rEach) { return rEach.m_Which == Which; });
    return Found == m_Measurements.rend() ? nullptr : &*Found;
}

std::optional<double> CRunRecord::GetReading(Measurement Which) const {
    const CRunMeasurement* const pMeasurement = Find(Which);
    std::optional<double> Largest;
    if (pMeasurement != nullptr) {
        for (const auto& rPlane : pMeasurement->m_Planes) {
            if (rPlane) {
                Largest = std::max(Largest.value_or(0.0),
                                   std::hypot(rPlane->m_Smoothed.m_X, rPlane->m_Smoothed.m_Y));
            }
        }
    }
    return Largest;
}

std::optional<math::matrix<double>> CRunRecord::GetInfluence() const {
    const auto nPlanes = static_cast<std::uint32_t>(std::ranges::count_if(
        m_Setup.m_Planes, [](const std::optional<CPlaneSetup>& rPlane) { return rPlane.has_value(); }));
    math::matrix<double> A = m_Calibration ? m_Calibration->m_InvA : m_Setup.m_InvA;
    if (nPlanes == 0 || A.RowNo() != 2 * nPlanes || A.ColNo() != 2 * nPlanes) {
        return std::nullopt;
    }
    try {
        A = !A;
    } catch (const math::matrix_error&) {
        return std::nullopt;
    }
    for (std::uint32_t i = 0; i < A.RowNo(); ++i) {
        for (std::uint32_t j = 0; j < A.ColNo(); ++j) {
            if (!std::isfinite(A(i, j))) {
                return std::nullopt;
            }
        }
    }
    return A;
}

double CRunRecord::GetReferenceWeight(std::size_t Plane) const {
    const auto& rSetup = m_Setup.m_Planes.at(Plane);
    double Grams = rSetup ? rSetup->m_ReferenceWeight : 0.0;
    for (const CRunMeasurement& rMeasurement : m_Measurements) {
        const bool bTest =
            rMeasurement.m_Which == Measurement::eTest1 || rMeasurement.m_Which == Measurement::eTest2;
        const auto& rPlane = rMeasurement.m_Planes.at(Plane);
        if (bTest && rPlane && rPlane->m_Fitted.m_Screws.size() == 1) {
            Grams = rPlane->m_Fitted.m_Screws.front().m_Grams;
        }
    }
    return Grams;
}
