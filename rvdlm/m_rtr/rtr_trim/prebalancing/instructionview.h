#pragma once
#include <cstdint>
#include <string>

#include "platform/window/rect.h"

class CDC;

/// The top of a procedure's page: which run this is, which step, what the operator is to do now, and a
/// warning under it. The texts come from the text library at each paint, so they follow a change of language.
class CInstructionView {
public:
    CInstructionView() = default;
    virtual ~CInstructionView() = default;
    CInstructionView(const CInstructionView&) = delete;
    CInstructionView& operator=(const CInstructionView&) = delete;

    /// The number of the set, as it stands in the machine name.
    void SetSetText(const std::string& rText) { m_SetText = rText; }
    /// The name of the set; may be empty.
    void SetSetName(const std::string& rName) { m_SetName = rName; }
    /// The name of the configuration. "Default" isn't shown.
    void SetProcessName(const std::string& rName) { m_ProcessName = rName; }
    void SetNumberOfSteps(std::uint32_t nSteps) { m_NumberOfSteps = nSteps; }
    /// Asserts that there are so many steps.
    void SetCurrentStep(std::uint32_t Step);
    /// Chooses the instruction, 0 to 9. Clears the warning, and announces that even if there was none.
    void SetMode(std::uint32_t Mode);
    /// Chooses the warning, 0 (none) to 11; a change is announced. pPercent is the number that warning 6
    /// shows; null counts as 0.
    void SetWarningMode(std::uint32_t Mode, const double* pPercent = nullptr);

    const std::string& GetSetText() const { return m_SetText; }
    const std::string& GetSetName() const { return m_SetName; }
    const std::string& GetProcessName() const { return m_ProcessName; }
    std::uint32_t GetNumberOfSteps() const { return m_NumberOfSteps; }
    std::uint32_t GetCurrentStep() const { return m_CurrentStep; }
    std::uint32_t GetMode() const { return m_Mode; }
    std::uint32_t GetWarningMode() const { return m_WarningMode; }
    double GetPercent() const { return m_Percent; }

    // The texts as they stand on the page.
    std::string GetTitleText() const;
    std::string GetStepText() const;
    std::string GetInstructionText() const;
    /// Empty without a warning.
    std::string GetWarningText() const;

    /// Text of an instruction; "invalid mode", after an assertion, for one above 9.
    static std::string ModeToLanguageString(std::uint32_t Mode);
    /// Text of a warning with its percentage; "WARNING", after an assertion, for one above 11.
    static std::string WarningModeToLanguageString(std::uint32_t Mode, double Percent);

    /// Draws into rRect: a third for the title and the step, the rest for instruction and warning.
    void Paint(CDC* pDC, const CRect& rRect) const;

protected:
    /// The warning is now Mode.
    virtual void WarningModeChanged(std::uint32_t Mode) = 0;

private:
    void PaintHeader(CDC& rDC, const CRect& rRect) const;
    void PaintBody(CDC& rDC, const CRect& rRect) const;

    std::string m_SetText;
    std::string m_SetName;
    std::string m_ProcessName;
    std::uint32_t m_NumberOfSteps = 0;
    std::uint32_t m_CurrentStep = 0;
    std::uint32_t m_Mode = 0;
    std::uint32_t m_WarningMode = 0;
    double m_Percent = 0.0;
};
