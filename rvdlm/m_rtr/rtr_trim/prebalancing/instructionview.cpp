#include "rvdlm/m_rtr/rtr_trim/prebalancing/instructionview.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "contract/warnings.h"
#include "platform/rvldb/gettext.h"
#include "platform/window/dc.h"
#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvdlm/m_rtr/rtr_trim/pagestyle.h"

namespace {

/// Text keys by instruction mode.
constexpr std::array INSTRUCTION_KEYS{
    "PB_TERMINATE_TEXT4",                  // 0
    "PB_STOP_SPINDLE_OR_CONFIRM_TEXT",     // 1
    "PB_STOP_SPINDLE_TEXT",                // 2
    "PB_MOVE_TO_NEUTRAL_TEXTNEUTRAL",      // 3
    "PB_RUN_AT_SELECTED_RPM_TEXT",         // 4
    "PB_RUN_AT_DESIRED_RPM_TEXT_NEXT",     // 5
    "PB_UNBAL_MSRMNT_TEXT",                // 6
    "PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA",  // 7
    "PB_MOVE_TO_GIVEN_POSITION_TEXT_PBA",  // 8
    "PB_MAP_WEIGHTS_TO_DISPLAY",           // 9
};

/// What a warning consists of: a literal text, or one or two texts by key.
struct CWarningText {
    enum Kind { eLiteral, eKey, eKeyAndPercent, eTwoKeys };
    Kind m_Kind;
    const char* m_pFirst;
    const char* m_pSecond = nullptr;
};

/// By warning mode.
constexpr std::array<CWarningText, Warnings::eCount> WARNINGS{{
    {CWarningText::eLiteral, "eNone"},                     // 0, never painted
    {CWarningText::eKey, "SET_SWITCH"},                    // 1
    {CWarningText::eKey, "PB_RUN_AT_SELECTED_RPM_TEXT"},   // 2
    {CWarningText::eLiteral, "Out of Lock!"},              // 3, deliberately not translated
    {CWarningText::eKey, "PB_RUN_AT_SELECTED_RPM_TEXT"},   // 4
    {CWarningText::eKey, "PB_CANNOT_BALANCE3"},            // 5
    {CWarningText::eKeyAndPercent, "PB_CANNOT_BALANCE1"},  // 6
    {CWarningText::eTwoKeys, "PB_REBAL_NOT_POSSIBLE", "PB_CANNOT_BALANCE1"},  // 7
    {CWarningText::eKey, "PB_UNBAL_OVER_LIMIT_TEXT"},                         // 8
    {CWarningText::eKey, "PB_TERMINATE_TEXT"},                                // 9
    {CWarningText::eKey, "PB_STOP_SPINDLE_TEXT"},                             // 10
    {CWarningText::eKey, "MODULE_STATE_CHANGED"},                             // 11
}};

/// The configuration that every database has; its name tells the operator nothing.
constexpr const char* DEFAULT_PROCESS = "Default";

}  // namespace

void CInstructionView::SetCurrentStep(std::uint32_t Step) {
    RV_ASSERT_AS(RtrTrim::g_pLog, Step <= m_NumberOfSteps, "CurrentStep <= m_NumberOfSteps",
                 "CurrentStep <= m_NumberOfSteps", false);
    m_CurrentStep = Step;
}

void CInstructionView::SetMode(std::uint32_t Mode) {
    m_Mode = Mode;
    m_WarningMode = Warnings::eNone;
    m_Percent = 0.0;
    // Even if there was no warning: a new instruction tells the NC anew that all is well.
    WarningModeChanged(Warnings::eNone);
}

void CInstructionView::SetWarningMode(std::uint32_t Mode, const double* pPercent) {
    if (Mode != m_WarningMode) {
        WarningModeChanged(Mode);
    }
    m_WarningMode = Mode;
    m_Percent = pPercent != nullptr ? *pPercent : 0.0;
}

std::string CInstructionView::GetTitleText() const {
    std::string Title = GetText("PREBAL_CONFIG") + " " + GetText("SET") + " " + m_SetText;
    if (!m_SetName.empty()) {
        Title += " / " + m_SetName;
    }
    Title += ":";
    if (m_ProcessName != DEFAULT_PROCESS) {
        Title += " " + m_ProcessName;
    }
    return Title;
}

std::string CInstructionView::GetStepText() const {
    return GetText("STEP") + " " + std::to_string(m_CurrentStep) + "/" + std::to_string(m_NumberOfSteps);
}

std::string CInstructionView::GetInstructionText() const {
    return ModeToLanguageString(m_Mode);
}

std::string CInstructionView::GetWarningText() const {
    return m_WarningMode != Warnings::eNone ? WarningModeToLanguageString(m_WarningMode, m_Percent)
                                            : std::string();
}

std::string CInstructionView::ModeToLanguageString(std::uint32_t Mode) {
    if (Mode >= INSTRUCTION_KEYS.size()) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return "invalid mode";
    }
    return GetText(INSTRUCTION_KEYS[Mode]);
}

std::string CInstructionView::WarningModeToLanguageString(std::uint32_t Mode, double Percent) {
    if (Mode >= WARNINGS.size()) {
        RV_ASSERT_FAIL(RtrTrim::g_pLog, "impossible");
        return "WARNING";
    }
    const CWarningText& rWarning = WARNINGS[Mode];
    switch (rWarning.m_Kind) {
        case CWarningText::eLiteral:
            return rWarning.m_pFirst;
        case CWarningText::eKey:
            return GetText(rWarning.m_pFirst);
        case CWarningText::eKeyAndPercent:
            return GetText(rWarning.m_pFirst) + " (" +
                   std::to_string(static_cast<int>(std::trunc(Percent + 0.5))) + "%)";
        case CWarningText::eTwoKeys:
            return GetText(rWarning.m_pFirst) + " " + GetText(rWarning.m_pSecond);
    }
    return {};
}

void CInstructionView::Paint(CDC* pDC, const CRect& rRect) const {
    CRect Header = rRect;
    Header.bottom = Header.top + rRect.Height() / 3;
    CRect Body = rRect;
    Body.top = Header.bottom;

    const int Saved = pDC->SaveDC();
    PaintHeader(*pDC, Header);
    PaintBody(*pDC, Body);
    pDC->RestoreDC(Saved);
}

void CInstructionView::PaintHeader(CDC& rDC, const CRect& rRect) const {
    constexpr int INSET = 10;
    PageStyle::PaintArea(rDC, rRect, PageStyle::GetPanelColor(rDC));
    CRect Inner = rRect;
    Inner.DeflateRect(INSET, 0);
    const int nFontHeight = rRect.Width() / 47;
    PageStyle::PaintLine(rDC, Inner, GetTitleText(), nFontHeight, DT_VCENTER | DT_LEFT);
    PageStyle::PaintLine(rDC, Inner, GetStepText(), nFontHeight, DT_VCENTER | DT_RIGHT);
}

void CInstructionView::PaintBody(CDC& rDC, const CRect& rRect) const {
    PageStyle::PaintArea(rDC, rRect, PageStyle::BODY);
    CRect Inner = rRect;
    Inner.DeflateRect(10, 5, 5, 10);
    int nInstruction = Inner.Width() / 38;
    int nWarning = Inner.Width() / 46;
    if (m_WarningMode != Warnings::eNone) {
        // In a low pane the two lines would lie upon each other: the warning then goes into the margin below,
        // and if that doesn't do, both get lower.
        constexpr int MARGIN = 8;
        const int nBoth = nInstruction + nWarning;
        Inner.bottom += std::clamp(nBoth - Inner.Height(), 0, MARGIN);
        if (nBoth > Inner.Height()) {
            nInstruction = nInstruction * Inner.Height() / nBoth;
            nWarning = Inner.Height() - nInstruction;
        }
        PageStyle::PaintLine(rDC, Inner, GetWarningText(), nWarning, DT_BOTTOM | DT_LEFT, PageStyle::WARNING);
    }
    PageStyle::PaintLine(rDC, Inner, GetInstructionText(), nInstruction, DT_TOP | DT_LEFT);
}
