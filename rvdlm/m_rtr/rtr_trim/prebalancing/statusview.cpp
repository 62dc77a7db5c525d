#include "rvdlm/m_rtr/rtr_trim/prebalancing/statusview.h"

#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"

void CStatusView::SetCalibratedRPM(std::uint32_t RPM) {
    PB_FLOW("Calibrated RPM: %d", static_cast<int>(RPM));
    m_CalibratedRPM = RPM;
}

std::string CStatusView::GetCalibratedText() const {
    const std::string Label = GetText("PB_CALIBRATED_RPM_TEXT") + ": ";
    return m_CalibratedRPM != 0 ? Label + std::to_string(m_CalibratedRPM) + " " + GetText("RPM")
                                : Label + "---";
}

std::string CStatusView::GetCurrentText() const {
    // Five places, so that the label stands still while the speed changes.
    constexpr std::size_t PLACES = 5;
    std::string Number = std::to_string(m_CurrentRPM);
    if (Number.size() < PLACES) {
        Number.insert(0, PLACES - Number.size(), ' ');
    }
    return GetText("PB_CURRENT_RPM_TEXT") + ": " + Number + " " + GetText("RPM");
}

void CStatusView::Paint(CDC* pDC, const CRect& rRect) const {
    constexpr int INSET = 10;
    const int nMiddle = rRect.left + rRect.Width() / 2;
    CRect Left = rRect;
    Left.right = nMiddle + 1;
    CRect Right = rRect;
    Right.left = nMiddle;

    const int Saved = pDC->SaveDC();
    // The halves overlap by a pixel: the left one last, so that its frame line divides them.
    for (const CRect& rHalf : {Right, Left}) {
        PageStyle::PaintArea(*pDC, rHalf, PageStyle::BODY);
    }
    const int nFontHeight = Left.Width() / 18;
    // The text begins a tenth of the height below the top, and stays above the frame line.
    const auto GetTextRect = [](const CRect& rHalf) {
        CRect Text = rHalf;
        Text.DeflateRect(INSET, rHalf.Height() / 10, INSET, 1);
        return Text;
    };
    PageStyle::PaintLine(*pDC, GetTextRect(Left), GetCalibratedText(), nFontHeight, DT_TOP | DT_LEFT);
    PageStyle::PaintLine(*pDC, GetTextRect(Right), GetCurrentText(), nFontHeight, DT_TOP | DT_RIGHT);
    pDC->RestoreDC(Saved);
}
