#include "console/runadviser.h"

#include <utility>

#include "archive/suggestedtest.h"
#include "console/rundriver.h"
#include "console/runsetup.h"
#include "platform/rvldb/gettext.h"
#include "platform/system/eventloop.h"

namespace {

using TestRun = CRunAdvice::CQuality::TestRun;

/// What the situation asks to be fitted, by the record's numbering of holes.
std::array<std::optional<CPlaneFitting>, 2> FindAsked(const CSituation& rSituation, const CRunSetup& rSetup) {
    std::array<std::optional<CPlaneFitting>, 2> Result;
    for (const CFitting& rFitting : FindFittings(rSituation, GetRecordRings(rSetup))) {
        CPlaneFitting& rPlane = Result.at(rFitting.m_Plane).emplace();
        rPlane.m_Weights = rFitting.m_Angles;
        for (const CRotorScrew& rScrew : rFitting.m_Screws) {
            rPlane.m_Screws.push_back({rScrew.m_Hole, rScrew.m_Grams});
        }
    }
    return Result;
}

}  // namespace

void CRunAdviser::Tell(const std::string& rText) const {
    if (OnAdvice && !rText.empty()) {
        OnAdvice(rText);
    }
}

CRunRecord CRunAdviser::GetRecord() const {
    CRunRecord Record = m_rArchivist.GetPresent();
    const auto& rComplete = m_rArchivist.GetComplete();
    if (m_rArchivist.IsRunning() && rComplete && rComplete->m_Which == Measurement::eFinal) {
        Record.m_Measurements.push_back(*rComplete);
    }
    return Record;
}

void CRunAdviser::Compute() {
    const CRunRecord Record = GetRecord();
    m_bFinal = Record.Find(Measurement::eFinal) != nullptr;
    m_Computed = IFEventLoop::Current().Now();
    m_Language = GetLanguage();
    const std::string Suggestion = std::exchange(m_Advice.m_Suggestion, {});
    m_Advice = Advise(Record, {.m_Repeatability = {}, .m_Earlier = m_Earlier, .m_Asked = m_Asked});
    m_Advice.m_Suggestion = Suggestion;
}

const CRunAdvice& CRunAdviser::Get() {
    if (m_Language != GetLanguage()) {
        Compute();
    }
    return m_Advice;
}

std::string CRunAdviser::GetDoubt() const {
    return m_Doubt ? m_Doubt->m_Text : std::string();
}

void CRunAdviser::Look(const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        m_Doubt.reset();
        m_bFresh = false;
        return;
    }
    const CRunRecord& rRecord = m_rArchivist.GetPresent();
    const bool bFresh = rRecord.m_Measurements.empty();
    if (bFresh && !m_bFresh) {
        Begin(rRecord);
    }
    m_bFresh = bFresh;
    if (rSituation.m_Notification.GetStep() == CNcNotification::eFailure) {
        if (!std::exchange(m_bFailed, true)) {
            Compute();
            Tell(m_Advice.m_Refusal);
        }
        return;
    }
    if (rSituation.m_Notification.GetAction() == CNcNotification::eSetWeights) {
        Predict(rSituation);
    }
    const auto& rComplete = m_rArchivist.GetComplete();
    const bool bFinal = rComplete && rComplete->m_Which == Measurement::eFinal;
    if (bFinal && (!m_bFinal || IFEventLoop::Current().Now() >= m_Computed + PERIOD)) {
        Compute();
    }
}

void CRunAdviser::Begin(const CRunRecord& rRecord) {
    m_Advice = {};
    m_Asked = {};
    m_bFailed = m_bFinal = false;
    m_Earlier = m_rArchivist.LoadEarlier();
    if (!rRecord.m_bRebalance) {
        m_Doubt.reset();  // a re-balancing stands on the calibration before it
    }
}

void CRunAdviser::SuggestTest() {
    const CRunRecord& rRecord = m_rArchivist.GetPresent();
    m_Advice.m_Suggestion.clear();
    const Measurement Last = rRecord.m_Measurements.back().m_Which;
    const bool bTwoPlanes = rRecord.m_Setup.m_Planes[0] && rRecord.m_Setup.m_Planes[1];
    const bool bTestComes =
        !rRecord.m_bRebalance && (Last == Measurement::eFirst || (Last == Measurement::eTest1 && bTwoPlanes));
    if (!bTestComes) {
        return;
    }
    const bool bSecond = Last == Measurement::eTest1 || !rRecord.m_Setup.m_Planes[0];
    if (const auto Test = SuggestedTest::Find(rRecord.m_Setup, bSecond ? 1 : 0, m_Earlier)) {
        m_Advice.m_Suggestion = Test->m_Text;
        Tell(Test->m_Text);
    }
}

void CRunAdviser::Predict(const CSituation& rSituation) {
    const CRunRecord& rRecord = m_rArchivist.GetPresent();
    if (rRecord.Find(Measurement::eFinal) != nullptr) {
        return;
    }
    auto Asked = FindAsked(rSituation, rRecord.m_Setup);
    if (Asked == m_Asked) {
        return;
    }
    m_Asked = std::move(Asked);
    const std::string Before = m_Advice.m_Prediction ? m_Advice.m_Prediction->m_Text : std::string();
    Compute();
    if (m_Advice.m_Prediction) {
        m_rArchivist.SetPrediction(m_Advice.m_Prediction->m_Planes);
        if (m_Advice.m_Prediction->m_Text != Before) {
            Tell(m_Advice.m_Prediction->m_Text);
        }
    }
}

void CRunAdviser::Accept() {
    const CRunRecord& rRecord = m_rArchivist.GetPresent();
    if (rRecord.m_Measurements.empty()) {
        return;
    }
    const Measurement Which = rRecord.m_Measurements.back().m_Which;
    if (Which != Measurement::eFinal) {
        m_Asked = {};  // that was fitted for what is measured now
    }
    m_bFresh = false;
    Compute();
    if (Which == Measurement::eFinal) {
        Tell(m_Advice.m_Explanation ? m_Advice.m_Explanation->m_Text : std::string());
    } else if (Which != Measurement::eFirst && m_Advice.m_Quality) {
        if (m_Advice.m_Quality->m_TestRun == TestRun::eNone) {
            m_Doubt = m_Advice.m_Quality;
        }
        Tell(m_Advice.m_Quality->m_Text);
        Tell(m_Advice.m_Quality->m_ConditionText);
        if (m_Advice.m_Influence && m_Advice.m_Influence->m_bDiffers) {
            Tell(m_Advice.m_Influence->m_Text);
        }
    }
    SuggestTest();
}
