#include "console/traininglesson.h"

#include <QString>
#include <algorithm>
#include <cmath>

#include "console/operatorrules.h"
#include "platform/rvldb/gettext.h"
#include "simulator/simulator.h"

namespace {

constexpr std::int32_t REBALANCING = 2;  // of message 1124

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

/// The largest of the planes that are balanced.
double GetShownReading(const CSituation& rSituation) {
    double Largest = 0.0;
    for (const CPreBalProgress::CReading& rReading : rSituation.m_Progress.m_Readings) {
        Largest = rReading.m_bShown ? std::max(Largest, rReading.m_Amplitude) : Largest;
    }
    return Largest;
}

bool IsWithinTarget(std::int32_t Step) {
    return Step == CPreBalCodes::eSetupSuccess || Step == CPreBalCodes::eRebalSuccess;
}

}  // namespace

CTrainingLesson::CTrainingLesson(const CTrainingSituation& rSituation, CConsoleSession& rSession)
    : m_rSituation(rSituation), m_rSession(rSession), m_Slip(rSituation.m_Slip) {
    m_Timer.StartPeriodic(PERIOD, [this] { Look(); });
}

CTrainingLesson::~CTrainingLesson() {
    m_Timer.Stop();
}

void CTrainingLesson::Look() {
    if (!m_rSession.GetHost().IsConfigured()) {
        return;
    }
    CSituation Situation = m_rSession.Look();
    if (!Situation.m_bRunning) {
        if (m_LastSeen) {
            m_Result = Judge();
            m_LastSeen.reset();
            m_Warnings.clear();
            m_bTroublePlayed = false;
            if (OnResult) {
                OnResult(*m_Result);
            }
        }
        return;
    }
    PlayTrouble(Situation);
    m_Warnings.insert(Situation.m_Progress.m_WarningMode);
    m_Activity = m_rSession.GetHost().GetActivity();
    m_LastSeen = std::move(Situation);
}

void CTrainingLesson::PlayTrouble(const CSituation& rSituation) {
    if (!m_rSituation.m_bLosesLock || m_bTroublePlayed || !IsVerdict(rSituation.m_Notification.GetStep())) {
        return;
    }
    constexpr int LONG = 15000;  // ms
    m_bTroublePlayed = true;
    m_rSession.GetMachine()->Request({{"fault", {{"kind", "unlock_ms"}, {"value", LONG}}}},
                                     [](const nlohmann::json&) {});
}

double CTrainingLesson::GetTruth() const {
    const CRotor& rRotor = m_rSession.GetSimulator()->GetRotor();
    double Largest = 0.0;
    for (std::size_t Plane = 0; Plane < rRotor.GetNumberOfPlanes(); ++Plane) {
        if (m_LastSeen->m_Progress.m_Readings.at(Plane).m_bShown) {
            Largest = std::max(Largest, std::abs(rRotor.GetReading(Plane)));
        }
    }
    return Largest;
}

CTrainingResult CTrainingLesson::Judge() const {
    const QString Lesson = Text(m_rSituation.m_pLessonKey);
    if (m_rSituation.m_Goal == CTrainingSituation::Goal::eEnded) {
        return JudgeEnding();
    }
    const std::int32_t Step = m_LastSeen->m_Notification.GetStep();
    const double Shown = GetShownReading(*m_LastSeen);
    const double Target = m_LastSeen->m_Progress.m_TargetUnbalance;
    const double Truth = GetTruth();
    const auto Numbers = [&](const char* pKey) {
        return Text(pKey).arg(Shown, 0, 'f', 1).arg(Target, 0, 'f', 0).arg(Truth, 0, 'f', 1);
    };
    // What noise alone may add to a reading that is within the target.
    constexpr double SLACK = 1.5;
    QString Why;
    if (!IsVerdict(Step)) {
        Why = Text("TRAINING_TOO_EARLY");
    } else if (!IsMeasuredVerdict(*m_LastSeen)) {
        Why = Text("TRAINING_NOT_MEASURED");
    } else if (!IsWithinTarget(Step)) {
        Why = Numbers("TRAINING_OVER_TARGET");
    } else if (Truth > Target * SLACK) {
        Why = Numbers("TRAINING_NOT_TRUE");
    } else if (m_rSituation.m_Goal == CTrainingSituation::Goal::eRebalanced && m_Activity != REBALANCING) {
        Why = Text("TRAINING_NOT_REBALANCED");
    }
    const bool bMastered = Why.isEmpty();
    return {bMastered, ((bMastered ? Numbers("TRAINING_MASTERED") : Why) + " " + Lesson).toStdString()};
}

CTrainingResult CTrainingLesson::JudgeEnding() const {
    QString What = Text("TRAINING_ENDED_IN_TIME");
    bool bMastered = true;
    if (IsVerdict(m_LastSeen->m_Notification.GetStep())) {
        What = Text("TRAINING_WENT_ON");
        bMastered = false;
    } else if (!m_Warnings.contains(m_rSituation.m_Warning)) {
        What = Text("TRAINING_NO_WARNING_YET");
        bMastered = false;
    }
    return {bMastered, (What + " " + Text(m_rSituation.m_pLessonKey)).toStdString()};
}
