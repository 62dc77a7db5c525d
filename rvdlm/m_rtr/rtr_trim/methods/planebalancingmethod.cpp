#include "rvdlm/m_rtr/rtr_trim/methods/planebalancingmethod.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <string>

#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"

void CPlaneBalancingMethod::SetDisplayMode(DisplayMode Mode) {
    m_MovingAverage.Reset();
    m_DisplayMode = Mode;
}

void CPlaneBalancingMethod::PaintPlaneTitle(CDC* pDC, const CRect& rRect, int Plane) const {
    if (m_DisplayMode == eEmpty) {
        return;
    }
    const int Side = std::min(rRect.Width(), rRect.Height()) - 20;
    CRect TextRect = rRect;
    // Up by as much as the drawing leaves free below it, so that the title stands at the drawing's foot.
    TextRect.OffsetRect((rRect.Width() - Side) / 2, -std::abs(rRect.Height() - Side - 10));
    const int Saved = pDC->SaveDC();
    pDC->SelectFont(CFont("Arial", Side / 24, CFont::eNormal));
    pDC->SetTextColor(RGB(0, 0, 0));
    pDC->DrawText(GetText("PB_PLANE_TEXT") + " " + std::to_string(Plane), TextRect,
                  DT_LEFT | DT_BOTTOM | DT_SINGLELINE);
    pDC->RestoreDC(Saved);
}

const char* CPlaneBalancingMethod::DisplayModeToString(DisplayMode Mode) {
    static constexpr std::array eNames = {"eEmpty",         "eNeutralPosition", "eInactive",
                                          "eTestUnbalance", "eUACompensation",  "eMeasurementValues"};
    const auto Index = static_cast<std::size_t>(Mode);
    if (Index < eNames.size()) {
        return eNames[Index];
    }
    RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
    return "Unknown mode";
}
