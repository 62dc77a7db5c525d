#include "console/operatorrules.h"

#include <algorithm>
#include <array>

#include "contract/actions.h"
#include "contract/menukeys.h"

namespace {

struct CRule {
    std::int32_t m_Action;
    Deed m_Deed;
};

/// While a procedure runs (steps eSetup and eReBalActive), by the action asked for.
constexpr std::array RULES = {
    // No action yet: the procedure waits for a speed of the operator's choice.
    CRule{CNcNotification::eNone, Deed::eStartSpindle},
    CRule{CNcNotification::eSetSpindleSpeed, Deed::eConfirm},
    CRule{CNcNotification::eSpindleStart, Deed::eStartSpindle},
    CRule{CNcNotification::eSpindleStop, Deed::eStopSpindle},
    CRule{CNcNotification::eSetWeights, Deed::eFitAndConfirm},
    CRule{CNcNotification::eMeasure, Deed::eWait},
    CRule{CNcNotification::eMeasurementValuesOK, Deed::eConfirm},
};

bool AreReadingsComplete(const CSituation& rSituation) {
    return std::ranges::all_of(
        rSituation.m_Progress.m_Readings,
        [](const CPreBalProgress::CReading& rReading) { return !rReading.m_bShown || rReading.m_bComplete; });
}

}  // namespace

bool IsVerdict(std::int32_t Step) {
    constexpr std::array VERDICTS = {CNcNotification::eSetupSuccess, CNcNotification::eRebalSuccess,
                                     CNcNotification::eSetupOverTarget, CNcNotification::eRebalOverTarget};
    return std::ranges::find(VERDICTS, Step) != VERDICTS.end();
}

bool IsMeasuredVerdict(const CSituation& rSituation) {
    return rSituation.m_bRunning && IsVerdict(rSituation.m_Notification.GetStep()) &&
           AreReadingsComplete(rSituation);
}

Deed ChooseDeed(const CSituation& rSituation) {
    if (!rSituation.m_bRunning) {
        return Deed::eWait;
    }
    const std::int32_t Step = rSituation.m_Notification.GetStep();
    if (Step == CNcNotification::eFailure) {
        return Deed::eGiveUp;
    }
    if (IsVerdict(Step)) {
        return IsMeasuredVerdict(rSituation) ? Deed::eJudge : Deed::eWait;
    }
    if (Step != CNcNotification::eSetup && Step != CNcNotification::eReBalActive) {
        return Deed::eWait;
    }
    const auto* pRule = std::ranges::find(RULES, rSituation.m_Notification.GetAction(), &CRule::m_Action);
    if (pRule == RULES.end()) {
        return Deed::eWait;
    }
    const bool bCanConfirm = MenuKeys::FindKey(rSituation.m_Menu, Actions::eNext) != nullptr;
    return pRule->m_Deed == Deed::eConfirm && !bCanConfirm ? Deed::eWait : pRule->m_Deed;
}
