#include "console/linkfacts.h"

#include <algorithm>

namespace {

/// Below it a module calls the speed invalid.
constexpr std::uint32_t TURNING_RPM = 60;
/// The usual tolerance of a measurement.
constexpr std::uint32_t STEADY_RPM = 10;

}  // namespace

double CModuleFacts::CPlane::GetRate() const {
    return m_LastReading > m_FirstReading ? static_cast<double>(m_nReadings - 1) * 1000.0 /
                                                static_cast<double>(m_LastReading - m_FirstReading)
                                          : 0.0;
}

bool CModuleFacts::IsTurning() const {
    return m_SpeedRpm.value_or(0) >= TURNING_RPM;
}

bool CModuleFacts::IsSteady() const {
    return m_FastestRpm - m_SlowestRpm <= std::max(STEADY_RPM, m_FastestRpm / 100);
}
