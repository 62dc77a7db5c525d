#include "console/rundisplay.h"

#include <utility>

#include "console/liveview.h"
#include "console/savedresult.h"
#include "console/session.h"
#include "console/verdictband.h"

void CRunDisplay::Look() {
    const CSituation Situation = m_rSession.Look();
    m_Verdict.Look(Situation);
    const std::optional<bool> Saved = m_rSession.GetHost().GetResultSaved();
    if (std::exchange(m_ResultSaved, Saved) != Saved && Saved) {
        m_Verdict.SetSaved(DescribeSavedResult(m_rSession, *Saved));
    }
    if (GetAdvice) {
        m_Verdict.SetAdvice(GetAdvice());
    }
    m_rBand.Show(m_Verdict.GetSentence());
    m_Arrived.m_Readings.clear();
    m_rSession.GetReadings(m_Arrived);
    m_LiveData.Look(Situation, m_Arrived.m_Readings);
    m_rLive.Show(m_LiveData.GetPlanes());
    if (Situation.m_bRunning && Situation.m_Progress.m_Measuring.m_Which != Measurement::eNone) {
        m_Timer.StartOnce(MEASURING_PERIOD, [this] { Look(); });
    }
}
