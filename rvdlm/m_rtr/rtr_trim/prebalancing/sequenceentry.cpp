#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequenceentry.h"

namespace Sequence {

CStepCount CountStep(const CStepRule& rRule, CStepCount Now) {
    const CStepCount First{1, rRule.m_nSteps};
    const CStepCount Next{Now.m_Step + 1, Now.m_nSteps};
    switch (rRule.m_Kind) {
        case CStepRule::eKeep:
            return Now;
        case CStepRule::eNext:
            return Next;
        case CStepRule::eNone:
            return {};
        case CStepRule::eFirst:
            return First;
        case CStepRule::eFirstUnless:
            return Now.m_Step == 1 ? Next : First;
        case CStepRule::eFirstOrNext:
            return Now.m_Step == 1 ? CStepCount{2, Now.m_nSteps, true} : First;
        case CStepRule::eNextOfFew:
            return {Now.m_Step + 1, Now.m_Step == 0 ? rRule.m_nSteps : Now.m_nSteps};
    }
    return Now;
}

}  // namespace Sequence

void CSequenceEntry::Show(const Sequence::CState& rState, std::uint32_t Step) {
    for (std::size_t i = 0; i < m_rPlanes.GetCount(); ++i) {
        for (const Sequence::CShow& rShow : rState.m_Display.at(i)) {
            ShowOnPlane(*m_rPlanes.Get(i).m_pMethod, rShow, Step);
        }
    }
}

void CSequenceEntry::ShowForChange(const Sequence::CShow& rShow, std::uint32_t Step) {
    constexpr Sequence::CShow INACTIVE{Sequence::CShow::eFull, CPlaneBalancingMethod::eInactive};
    for (std::size_t i = 0; i < m_rPlanes.GetCount(); ++i) {
        ShowOnPlane(*m_rPlanes.Get(i).m_pMethod, i == 0 ? rShow : INACTIVE, Step);
    }
}

void CSequenceEntry::ShowOnPlane(CPlaneBalancingMethod& rMethod, const Sequence::CShow& rShow,
                                 std::uint32_t Step) const {
    using Sequence::CShow;
    switch (rShow.m_Kind) {
        case CShow::eNothing:
            return;
        case CShow::eFull:
            break;
        case CShow::ePlain:
            rMethod.SetPlainDisplayMode(rShow.m_Mode);
            return;
        case CShow::ePlainAfterStop:
            // Step 2 only after the spindle was stopped; the weights may have been moved there already.
            if (m_rPlanes.HasWeightsOnly() && Step == 2) {
                rMethod.SetPlainDisplayMode(rShow.m_Mode);
                return;
            }
            break;
    }
    rMethod.SetDisplayMode(rShow.m_Mode);
}

std::optional<std::int32_t> CSequenceEntry::ChooseMenu(const Sequence::CState& rState) const {
    using Sequence::CMenuRule;
    const CMenuRule& rMenu = rState.m_Menu;
    switch (rMenu.m_Kind) {
        case CMenuRule::eNone:
            break;
        case CMenuRule::eFixed:
            return rMenu.m_Weights;
        case CMenuRule::eByMeans:
            return m_rPlanes.HasWeightsOnly() ? rMenu.m_Weights : rMenu.m_Screws;
        case CMenuRule::eByStore:
            return !m_rPlanes.HasWeightsOnly() ? rMenu.m_Screws
                   : m_rPositions.IsOffered()  ? rMenu.m_Stored
                                               : rMenu.m_Weights;
        case CMenuRule::eTestUnbalance:
            return m_GetActive().GetTestUnbalanceMenu();
        case CMenuRule::eCheckWeights:
            return m_rPlanes.Get(0).m_pMethod->GetCheckWeightsMenu(GetMenuPlanes());
    }
    return std::nullopt;
}
