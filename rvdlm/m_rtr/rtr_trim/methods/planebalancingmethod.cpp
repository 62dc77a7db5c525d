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

void CPlaneBalancingMethod::PaintByMode(CDC* pDC, const CRect& rRect, bool bRedrawAll,
                                        const PaintView& rPaintView) const {
    const int Saved = pDC->SaveDC();
    switch (m_DisplayMode) {
        case eEmpty:
            RV_ASSERT(RtrTrim::g_pLog, bRedrawAll, "must be TRUE!");
            break;
        case eNeutralPosition:
        case eTestUnbalance:
        case eUACompensation:
        case eInactive:
            RV_ASSERT(RtrTrim::g_pLog, bRedrawAll, "must be TRUE!");
            rPaintView(nullptr, nullptr, nullptr);
            if (m_DisplayMode == eInactive) {
                CBalancingView::DrawInactive(pDC, rRect);
            }
            break;
        case eMeasurementValues: {
            double Magnitude = 0.0;
            double Angle = 0.0;
            double LastMagnitude = 0.0;
            m_MovingAverage.GetValues(&Magnitude, &Angle, &LastMagnitude, nullptr, nullptr);
            rPaintView(&Magnitude, &Angle, &LastMagnitude);
            break;
        }
    }
    pDC->RestoreDC(Saved);
}

const char* CPlaneBalancingMethod::DisplayModeToString(DisplayMode Mode) {
    static constexpr std::array NAMES = {"eEmpty",         "eNeutralPosition", "eInactive",
                                         "eTestUnbalance", "eUACompensation",  "eMeasurementValues"};
    const auto Index = static_cast<std::size_t>(Mode);
    if (Index < NAMES.size()) {
        return NAMES[Index];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "Unknown mode";
}
