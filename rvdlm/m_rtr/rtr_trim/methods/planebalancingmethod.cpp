#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"

#include <array>
#include <cstddef>

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/methods/balancingview.h"

void CPlaneBalancingMethod::SetDisplayMode(DisplayMode Mode) {
    m_MovingAverage.Reset();
    m_DisplayMode = Mode;
}

void CPlaneBalancingMethod::PaintPlaneTitle(CDC* pDC, const CRect& rRect, int Plane) const {
    if (m_DisplayMode != eEmpty) {
        PaintPlaneTitleText(*pDC, rRect, Plane);
    }
}

const char* CPlaneBalancingMethod::DisplayModeToString(DisplayMode Mode) {
    static constexpr std::array s_Names = {"eEmpty",         "eNeutralPosition", "eInactive",
                                           "eTestUnbalance", "eUACompensation",  "eMeasurementValues"};
    const auto Index = static_cast<std::size_t>(Mode);
    if (Index < s_Names.size()) {
        return s_Names[Index];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "Unknown mode";
}
