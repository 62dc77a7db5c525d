#include "console/runpath.h"

#include <utility>

#include "console/operatorrules.h"

CRunPath::Readings CRunPath::GetReadings(const CSituation& rSituation) {
    Readings Result;
    for (std::size_t Plane = 0; Plane < Result.size(); ++Plane) {
        const CPreBalProgress::CReading& rReading = rSituation.m_Progress.m_Readings.at(Plane);
        if (rReading.m_bShown) {
            Result.at(Plane) = CReading{rReading.m_Amplitude, rReading.m_AngleDeg};
        }
    }
    return Result;
}

bool CRunPath::Look(const CSituation& rSituation) {
    const Measurement Which = rSituation.m_Progress.m_Measuring.m_Which;
    const bool bBegins = std::exchange(m_LastSeen, Which) != Which && Which == Measurement::eFirst;
    if (bBegins) {
        m_Stations = {};
        m_Latest = Measurement::eNone;
    }
    std::optional<Readings>& rFinal = m_Stations.back();
    rFinal.reset();
    if (Which == Measurement::eFinal) {
        if (IsMeasuredVerdict(rSituation)) {
            rFinal = GetReadings(rSituation);
        }
    } else if (Which != Measurement::eNone &&
               rSituation.m_Notification.GetAction() == CNcNotification::eMeasurementValuesOK) {
        m_Stations.at(static_cast<std::size_t>(Which)) = GetReadings(rSituation);
        m_Latest = Which;
    }
    return bBegins;
}
