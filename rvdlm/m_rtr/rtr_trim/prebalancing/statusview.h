#pragma once
#include <cstdint>
#include <string>

#include "platform/window/rect.h"

class CDC;

/// The bottom line of a procedure's page: calibrated and current speed, in rpm.
class CStatusView {
public:
    CStatusView() = default;
    CStatusView(const CStatusView&) = delete;
    CStatusView& operator=(const CStatusView&) = delete;

    /// 0: there is none yet.
    void SetCalibratedRPM(std::uint32_t RPM);
    std::uint32_t GetCalibratedRPM() const { return m_CalibratedRPM; }
    void SetCurrentRPM(std::uint32_t RPM) { m_CurrentRPM = RPM; }
    std::uint32_t GetCurrentRPM() const { return m_CurrentRPM; }

    // The texts as they stand on the page.
    std::string GetCalibratedText() const;
    std::string GetCurrentText() const;

    /// Draws the line into rRect, in two halves.
    void Paint(CDC* pDC, const CRect& rRect) const;

protected:
    ~CStatusView() = default;

private:
    std::uint32_t m_CalibratedRPM = 0;
    std::uint32_t m_CurrentRPM = 0;
};
