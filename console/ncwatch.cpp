#include "console/ncwatch.h"

#include "console/operatorrules.h"
#include "platform/rvldb/gettext.h"

void CNcWatch::OnLook(const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        if (m_Last) {
            const CSituation Done = *m_Last;
            Accept(Done);
            const bool bFailed = Done.m_Notification.GetStep() == CNcNotification::eFailure;
            m_Last.reset();
            if (IsMeasuredVerdict(Done)) {
                End(Outcome::eFinished);
            } else {
                End(Outcome::eFailed, bFailed ? Done.m_Progress.m_Warning : GetText("RUN_ENDED_EARLY"));
            }
        } else if (const std::string Loss = GetDriverLoss ? GetDriverLoss() : ""; !Loss.empty()) {
            End(Outcome::eFailed, Loss);
        }
        return;
    }
    if (m_Last && m_Last->m_Progress.m_State != rSituation.m_Progress.m_State) {
        Accept(*m_Last);
    }
    m_Last = rSituation;
    if (const std::string Loss = GetDriverLoss ? GetDriverLoss() : ""; !Loss.empty()) {
        End(Outcome::eFailed, Loss);
    }
}

void CNcWatch::Accept(const CSituation& rDone) {
    if (IsVerdict(rDone.m_Notification.GetStep())) {
        if (IsMeasuredVerdict(rDone) && OnVerdictAccepted) {
            OnVerdictAccepted(rDone);
        }
        return;
    }
    switch (rDone.m_Notification.GetAction()) {
        case CNcNotification::eMeasurementValuesOK:
            if (OnMeasurementAccepted) {
                OnMeasurementAccepted(rDone);
            }
            break;
        case CNcNotification::eSetWeights:
            for (const CFitting& rFitting : FindFittings(rDone, GetHoleRings())) {
                if (OnFitted) {
                    OnFitted(rFitting);
                }
            }
            break;
        default:
            break;
    }
}
