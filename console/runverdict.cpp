#include "console/runverdict.h"

#include <QString>
#include <QStringList>
#include <algorithm>

#include "console/figures.h"
#include "console/operatorrules.h"
#include "contract/units.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/localtime.h"

namespace {

QString Text(const char* pKey) {
    return QString::fromStdString(GetText(pKey));
}

CSentence MakeSentence(CSentence::Kind Kind, const QString& rText, const QString& rDetail = {}) {
    return {Kind, rText.toStdString(), rDetail.toStdString()};
}

bool IsComplete(const CSituation& rSituation) {
    return rSituation.m_Notification.GetAction() == CNcNotification::eMeasurementValuesOK;
}

}  // namespace

void CRunVerdict::Look(const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        m_bRunning = false;
        return;
    }
    if (!m_bRunning) {
        Forget();
        m_bRunning = true;
    }
    if (m_Path.Look(rSituation)) {
        m_Saved.reset();  // what was saved or not is past
    }
    m_Run = rSituation;
}

bool CRunVerdict::HasTwoPlanes() const {
    return m_Run && std::ranges::all_of(m_Run->m_Progress.m_Readings, &CPreBalProgress::CReading::m_bShown);
}

bool CRunVerdict::IsFailed() const {
    return m_Run && m_Run->m_Notification.GetStep() == CNcNotification::eFailure;
}

bool CRunVerdict::IsWithin() const {
    return GetFinal() &&
           std::ranges::all_of(*GetFinal(), [this](const std::optional<CRunPath::CReading>& rReading) {
               return !rReading || rReading->m_Amplitude <= m_Run->m_Progress.m_TargetUnbalance;
           });
}

CSentence::Kind CRunVerdict::GetKindOfVerdict() const {
    if (!GetFinal()) {
        return CSentence::Kind::eWaiting;
    }
    return IsWithin() ? CSentence::Kind::eWithin : CSentence::Kind::eOver;
}

CSentence CRunVerdict::GetSentence() const {
    if (!m_Run) {
        return HasReason() ? MakeSentence(CSentence::Kind::eFailed, DescribeReason()) : CSentence();
    }
    if (!m_bRunning) {
        return DescribeEnd();
    }
    if (IsFailed()) {
        return MakeSentence(CSentence::Kind::eFailed, DescribeReason(),
                            m_Advice.m_Refusal.empty() ? Text("CONSOLE_FAILED_PRESS_END")
                                                       : QString::fromStdString(m_Advice.m_Refusal));
    }
    if (m_Saved && !m_Saved->m_bSaved) {
        return DescribeUnsaved();
    }
    return DescribeMeasuring();
}

CSentence CRunVerdict::DescribeMeasuring() const {
    const CPreBalProgress& rProgress = m_Run->m_Progress;
    const CPreBalProgress::CMeasuring& rMeasuring = rProgress.m_Measuring;
    const QString Step = Text("CONSOLE_STEP").arg(rProgress.m_Step).arg(rProgress.m_NumberOfSteps);
    if (rMeasuring.m_Which == Measurement::eNone) {
        return MakeSentence(CSentence::Kind::eStep, Step, DescribeBetween());
    }
    if (GetFinal()) {
        return MakeSentence(GetKindOfVerdict(), DescribeVerdict(), DescribeWhatNow());
    }
    if (rMeasuring.m_Which != Measurement::eFinal && IsComplete(*m_Run)) {
        return MakeSentence(CSentence::Kind::eReady, Text("CONSOLE_MEASURED"),
                            DescribeMeasurement() + ": " + DescribeReadings(*m_Path.GetLatest()));
    }
    if (!rMeasuring.m_bSampling) {
        return DescribeWaiting(rProgress);
    }
    const std::uint32_t nLeft = rMeasuring.m_nNeeded - std::min(rMeasuring.m_nNeeded, rMeasuring.m_nAveraged);
    return MakeSentence(CSentence::Kind::eProgress,
                        Text("CONSOLE_AVERAGING")
                            .arg(rMeasuring.m_nAveraged)
                            .arg(rMeasuring.m_nNeeded)
                            .arg(nLeft * rMeasuring.m_SamplePeriod / 1000.0, 0, 'f', 1),
                        DescribeMeasurement() + ": " + DescribeReadings(CRunPath::GetReadings(*m_Run)));
}

QString CRunVerdict::DescribeBetween() const {
    if (m_Advice.m_Prediction) {
        return QString::fromStdString(m_Advice.m_Prediction->m_Text);
    }
    QStringList Sentences;
    if (m_Advice.m_Quality) {
        Sentences << QString::fromStdString(m_Advice.m_Quality->m_Text);
        if (m_Advice.m_Quality->m_ConditionLight != CRunAdvice::CQuality::Light::eGreen) {
            Sentences << QString::fromStdString(m_Advice.m_Quality->m_ConditionText);
        }
    }
    if (m_Advice.m_Influence && m_Advice.m_Influence->m_bDiffers) {
        Sentences << QString::fromStdString(m_Advice.m_Influence->m_Text);
    }
    if (!m_Advice.m_Suggestion.empty()) {
        Sentences << QString::fromStdString(m_Advice.m_Suggestion);
    }
    if (!Sentences.isEmpty()) {
        return Sentences.join(" ");
    }
    return m_Path.GetLatest() ? Text("CONSOLE_LAST_MEASURED").arg(DescribeReadings(*m_Path.GetLatest()))
                              : QString();
}

QString CRunVerdict::DescribeWhatNow() const {
    if (m_Advice.m_Explanation && !m_Advice.m_Explanation->m_bInside) {
        return QString::fromStdString(m_Advice.m_Explanation->m_Text);
    }
    return Text(IsWithin() ? "CONSOLE_WITHIN_PRESS" : "CONSOLE_OVER_PRESS");
}

CSentence CRunVerdict::DescribeWaiting(const CPreBalProgress& rProgress) const {
    const CPreBalProgress::CMeasuring& rMeasuring = rProgress.m_Measuring;
    if (!rMeasuring.m_bAtSpeed) {
        return MakeSentence(
            CSentence::Kind::eWaiting,
            Text("CONSOLE_WRONG_SPEED")
                .arg(rProgress.m_CurrentRPM)
                .arg(rMeasuring.m_TargetRPM)
                .arg(rMeasuring.m_RPMTolerance),
            Text(rMeasuring.m_bLocked ? "CONSOLE_WRONG_SPEED_DO" : "CONSOLE_WRONG_SPEED_AND_LOCK_DO"));
    }
    if (!rMeasuring.m_bLocked) {
        return MakeSentence(CSentence::Kind::eWaiting, Text("CONSOLE_OUT_OF_LOCK"),
                            Text("CONSOLE_OUT_OF_LOCK_DO"));
    }
    return MakeSentence(CSentence::Kind::eProgress, Text("CONSOLE_STEADY_SPEED"), DescribeMeasurement());
}

CSentence CRunVerdict::DescribeUnsaved() const {
    return MakeSentence(CSentence::Kind::eFailed, Text("CONSOLE_UNSAVED").arg(DescribeVerdict()),
                        Text(m_bRunning ? "CONSOLE_UNSAVED_DO" : "CONSOLE_UNSAVED_ENDED"));
}

CSentence CRunVerdict::DescribeEnd() const {
    if (m_Saved && !m_Saved->m_bSaved) {
        return DescribeUnsaved();
    }
    if (m_Saved) {
        return MakeSentence(GetKindOfVerdict(), Text("CONSOLE_SAVED").arg(DescribeVerdict()),
                            DescribePlaceOfResult());
    }
    if (IsFailed() || HasReason()) {
        return MakeSentence(CSentence::Kind::eFailed, DescribeReason(), Text("CONSOLE_NOTHING_SAVED"));
    }
    return MakeSentence(CSentence::Kind::eWaiting,
                        GetFinal() ? DescribeVerdict() : Text("CONSOLE_ENDED_EARLY"),
                        Text("CONSOLE_NOTHING_SAVED"));
}

std::string CRunVerdict::GetConclusion() const {
    if (!m_Run) {
        return DescribeReason().toStdString();
    }
    const CSentence End = DescribeEnd();
    QString Sentence = QString::fromStdString(End.m_Text);
    if (m_Saved && m_Saved->m_bSaved) {
        Sentence = HasReason() ? DescribeReason() + "; " + DescribeVerdict() : DescribeVerdict();
        return Text("CONSOLE_CONCLUSION_SAVED").arg(Sentence, DescribePlaceOfResult()).toStdString();
    }
    if (GetFinal() && !m_Saved && HasReason()) {
        Sentence += "; " + DescribeVerdict();
    }
    return (Sentence + "; " + QString::fromStdString(End.m_Detail)).toStdString();
}

QString CRunVerdict::DescribeMeasurement() const {
    switch (m_Run->m_Progress.m_Measuring.m_Which) {
        case Measurement::eNone:
            return {};
        case Measurement::eFirst:
            return Text("CONSOLE_FIRST_MEASUREMENT");
        case Measurement::eTest1:
            return HasTwoPlanes() ? Text("CONSOLE_TEST_OF_PLANE").arg(1) : Text("CONSOLE_TEST_MEASUREMENT");
        case Measurement::eTest2:
            return Text("CONSOLE_TEST_OF_PLANE").arg(2);
        case Measurement::eFinal:
            return Text("CONSOLE_FINAL_MEASUREMENT");
    }
    return {};
}

QString CRunVerdict::DescribeReadings(const Readings& rReadings) const {
    QStringList Parts;
    for (std::size_t Plane = 0; Plane < rReadings.size(); ++Plane) {
        if (const std::optional<CRunPath::CReading>& rReading = rReadings.at(Plane)) {
            const QString Reading =
                Text("CONSOLE_READING")
                    .arg(Figures::WriteReading(rReading->m_Amplitude), QString::fromUtf8(Units::UNBALANCE),
                         Figures::WriteAngle(rReading->m_AngleDeg));
            Parts << (HasTwoPlanes() ? Text("CONSOLE_PLANE").arg(Plane + 1) + ": " + Reading : Reading);
        }
    }
    return Parts.join(", ");
}

QString CRunVerdict::DescribePlane(std::size_t Plane) const {
    const double Target = m_Run->m_Progress.m_TargetUnbalance;
    const double Left = GetFinal()->at(Plane)->m_Amplitude;
    QString Figure = Figures::WriteOfTarget(Left, Target);
    if (const std::optional<Readings>& rFirst = m_Path.Get(Measurement::eFirst);
        rFirst && rFirst->at(Plane)) {
        Figure += " " + Text("CONSOLE_WAS").arg(Figures::WriteReading(rFirst->at(Plane)->m_Amplitude));
    }
    if (!HasTwoPlanes()) {
        return Figure;
    }
    Figure = Text("CONSOLE_PLANE").arg(Plane + 1) + ": " + Figure;
    // The sentence begins with the worse one.
    return !IsWithin() && Left <= Target ? Figure + ", " + Text("CONSOLE_PLANE_WITHIN") : Figure;
}

QString CRunVerdict::DescribeVerdict() const {
    if (!GetFinal()) {
        return Text("CONSOLE_NO_VERDICT");
    }
    QStringList Parts;
    for (std::size_t Plane = 0; Plane < GetFinal()->size(); ++Plane) {
        if (GetFinal()->at(Plane)) {
            Parts << DescribePlane(Plane);
        }
    }
    return Text(IsWithin() ? "CONSOLE_WITHIN" : "CONSOLE_OVER").arg(Parts.join("; "));
}

QString CRunVerdict::DescribePlaceOfResult() const {
    if (m_Saved->m_Store.empty()) {
        return Text("CONSOLE_SAVED_TEMPORARILY");
    }
    return Text(m_Saved->m_bDelivered ? "CONSOLE_SAVED_WHERE" : "CONSOLE_SAVED_WAITING")
        .arg(QString::fromStdString(FormatLocalTime(m_Saved->m_When, "%d.%m.%Y %H:%M")),
             QString::fromStdString(m_Saved->m_Configuration), QString::fromStdString(m_Saved->m_Store));
}

QString CRunVerdict::DescribeReason() const {
    if (!m_BrokenOffBy.empty()) {
        return Text("CONSOLE_BROKEN_OFF").arg(QString::fromStdString(m_BrokenOffBy));
    }
    QString Reason =
        QString::fromStdString(m_Reason.empty() && m_Run ? m_Run->m_Progress.m_Warning : m_Reason);
    if (Reason.endsWith('.')) {
        Reason.chop(1);  // more of the sentence follows
    }
    return Text("CONSOLE_FAILED").arg(Reason);
}
