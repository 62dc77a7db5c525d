// What must hold whatever the random operator does.
#include "console/operatorrules.h"
#include "console/softkeybar.h"
#include "tests/system/randomoperator.h"

namespace {

/// The only one that the module raises on purpose: the balancing of two planes takes a way that it knows from
/// one.
constexpr const char* ON_PURPOSE = "this path is new";

}  // namespace

bool CRandomOperatorTestBase::IsExplained(const std::string& rAssertion) const {
    return rAssertion.find(ON_PURPOSE) != std::string::npos;
}

void CRandomOperatorTestBase::LookForTrouble(By Kind) {
    QApplication::processEvents();
    for (const std::string& rText : m_pLog->GetAssertions()) {
        EXPECT_TRUE(IsExplained(rText)) << rText << " by " << m_Last;
    }
    m_pLog->Clear();
    const CSituation Now = m_pSession->Look();
    LookAtRun(Kind, Now);
    LookAtCalibration(Kind, Now);
    LookAtLabels();
}

void CRandomOperatorTestBase::LookAtRun(By Kind, const CSituation& rNow) {
    const bool bGone = !m_pWindow->isVisible();
    if (!m_Before.m_bRunning || (rNow.m_bRunning && !bGone)) {
        return;
    }
    ++m_nEnded;
    const bool bFailed = m_Before.m_Notification.GetStep() == CNcNotification::eFailure;
    const bool bFinished = IsMeasuredVerdict(m_Before);
    m_nFinished += bFinished ? 1 : 0;
    const bool bFirst = m_Before.m_Progress.m_Step <= 1;
    const bool bAnswered = m_bEndAsked && Kind == By::ePage;
    EXPECT_TRUE(bFirst || bFailed || bFinished || bAnswered)
        << "the run ended in step " << m_Before.m_Progress.m_Step << " (" << m_Before.m_Progress.m_State
        << ") by " << m_Last;
}

void CRandomOperatorTestBase::LookAtCalibration(By Kind, const CSituation& rNow) {
    const CShownConfiguration Shown = GetShown();
    if (!m_Shown.m_bCalibrated || Shown.m_bCalibrated || Shown.m_Name != m_Shown.m_Name) {
        return;
    }
    // A pre-balancing makes a new one: the old one isn't valid any more from its first step on.
    const bool bBegun =
        !m_Before.m_bRunning && rNow.m_bRunning && !rNow.m_Progress.m_State.starts_with("eReBalance");
    const bool bHeld = m_HeldKey || m_pHeld;
    const bool bEdited = (Kind == By::ePage || bHeld) && !m_Before.m_bRunning && !rNow.m_bRunning;
    EXPECT_TRUE(bBegun || bEdited) << "the calibration of " << m_Shown.m_Name << " is gone by " << m_Last;
    if (bBegun) {
        return;  // what is stored stays
    }
    m_Changed.insert(Shown.m_Name);
}

std::map<std::string, std::string> CRandomOperatorTestBase::ReadBases() {
    std::map<std::string, std::string> Bases;
    for (const char* const pQuery :
         {"SELECT configuration, 1, rotation_direction FROM single_plane ORDER BY 1",
          "SELECT configuration, 2, rotation_direction FROM two_plane ORDER BY 1",
          "SELECT configuration, part, scaling_direction FROM weight_compensation ORDER BY 1, 2",
          "SELECT configuration, part, scaling_direction FROM screw_compensation ORDER BY 1, 2"}) {
        for (const auto& rRow : m_pStore->Query(pQuery)) {
            Bases[rRow.GetText(0)] += rRow.GetText(1) + "/" + rRow.GetText(2) + " ";
        }
        for (auto& [rName, rBasis] : Bases) {
            rBasis += "; ";
        }
    }
    return Bases;
}

void CRandomOperatorTestBase::LookAtStore() {
    const std::map<std::string, std::string> Bases = ReadBases();
    std::set<std::string> Calibrated;
    for (const auto& rRow :
         m_pStore->Query("SELECT name FROM configuration WHERE is_calibrated <> 0 AND calibrated_rpm > 0")) {
        Calibrated.insert(rRow.GetText(0));
        m_Changed.erase(rRow.GetText(0));
    }
    for (const std::string& rName : m_Stored) {
        const auto Basis = Bases.find(rName);
        const bool bDeleted = Basis == Bases.end() && m_bDeleteAsked;
        const bool bOtherBasis = Basis != Bases.end() && Basis->second != m_Bases[rName];
        EXPECT_TRUE(Calibrated.contains(rName) || m_Changed.contains(rName) || bDeleted || bOtherBasis)
            << "the stored calibration of " << rName << " is lost by " << m_Last;
    }
    m_Stored = Calibrated;
    m_Bases = Bases;
}

void CRandomOperatorTestBase::LookAtLabels() {
    for (const CSoftkeyBar::CLabelPlace& rLabel : GetBar().MeasureLabels()) {
        EXPECT_LE(rLabel.m_Size.width(), rLabel.m_Place.width())
            << rLabel.m_Text.toStdString() << " in a window of " << m_pWindow->width();
        EXPECT_LE(rLabel.m_Size.height(), rLabel.m_Place.height())
            << rLabel.m_Text.toStdString() << " in a window of " << m_pWindow->width();
    }
}
