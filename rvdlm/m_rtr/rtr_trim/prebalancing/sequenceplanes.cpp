#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceplanes.h"

#include <algorithm>

bool CSequencePlanes::HasWeightsOnly() const {
    return std::ranges::all_of(m_Planes, [](const CSequencePlane& rPlane) {
        return rPlane.m_CompensationMethod == PreBalDB::CCompensationTableEntry::eWeights;
    });
}

void CSequencePlanes::SetDisplayModes(CPlaneBalancingMethod::DisplayMode Mode) {
    for (CSequencePlane& rPlane : m_Planes) {
        rPlane.m_pMethod->SetDisplayMode(Mode);
    }
}

void CSequencePlanes::FillNotification(CPreBalNotification& rNotification) {
    for (CSequencePlane& rPlane : m_Planes) {
        rPlane.m_pMethod->FillNotification(rNotification);
    }
}

std::vector<CSequencePlanes::Matrix> CSequencePlanes::GetWeightPositions() {
    std::vector<Matrix> Positions;
    for (CSequencePlane& rPlane : m_Planes) {
        int Angle1 = 0;
        int Angle2 = 0;
        rPlane.m_pMethod->GetWeightPositions(Angle1, Angle2);
        Matrix Plane(2, 1);
        Plane(0, 0) = Angle1;
        Plane(1, 0) = Angle2;
        Positions.push_back(Plane);
    }
    return Positions;
}

bool CSequencePlanes::SetUA(const std::vector<Matrix>& rUA, double* pPercent, bool bAllowEqualAngles) {
    bool bReached = true;
    for (std::size_t i = 0; i < m_Planes.size(); ++i) {
        double PlanePercent = 0.0;
        bReached = m_Planes[i].m_pMethod->SetUA(rUA.at(i), pPercent != nullptr ? &PlanePercent : nullptr,
                                                bAllowEqualAngles) &&
                   bReached;
        if (pPercent != nullptr) {
            *pPercent = std::max(*pPercent, PlanePercent);
        }
    }
    return bReached;
}
