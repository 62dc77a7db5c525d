#include "rvlib/rvbas/xymovingaverage.h"

#include <algorithm>
#include <cmath>

#include "rvlib/rvbas/log.h"

namespace {

void Put(double* pTarget, double Value) {
    if (pTarget != nullptr) {
        *pTarget = Value;
    }
}

}  // namespace

CXYMovingAverage::CXYMovingAverage(std::uint32_t nLength)
    : m_Length(nLength),
      m_pXValues(std::make_unique<std::int16_t[]>(nLength)),
      m_pYValues(std::make_unique<std::int16_t[]>(nLength)) {}

CXYMovingAverage::~CXYMovingAverage() {
    RV_ASSERT(Base::g_pLog, m_pXValues && m_pYValues, "impossible");
}

int CXYMovingAverage::AddValue(std::int16_t x, std::int16_t y) {
    ++m_Index;  // NO_SAMPLE becomes 0
    if (m_Index >= m_Length) {
        m_Index = 0;
        m_Complete = 1;
    }
    m_pXValues[m_Index] = x;
    m_pYValues[m_Index] = y;
    return m_Complete;
}

void CXYMovingAverage::Reset() {
    m_Index = NO_SAMPLE;
    m_Complete = 0;
    std::fill_n(m_pXValues.get(), m_Length, std::int16_t{0});
    std::fill_n(m_pYValues.get(), m_Length, std::int16_t{0});
}

void CXYMovingAverage::GetValues(double* pMagnitude, double* pAngle, double* pLastMagnitude, double* pX,
                                 double* pY) const {
    const std::uint32_t n = m_Complete != 0 ? m_Length : m_Index + 1;  // 0 without a sample: NO_SAMPLE + 1
    double MeanX = 0.0;
    double MeanY = 0.0;
    double LastMagnitude = 0.0;
    if (n != 0) {
        // Summed anew at each read: a window is short, and no error can pile up.
        for (std::uint32_t i = 0; i < n; ++i) {
            MeanX += m_pXValues[i];
            MeanY += m_pYValues[i];
        }
        MeanX /= n;
        MeanY /= n;
        const double x = m_pXValues[m_Index];
        const double y = m_pYValues[m_Index];
        LastMagnitude = std::sqrt(x * x + y * y);
    }
    double Angle = std::atan2(MeanY, MeanX) * (45.0 / std::atan(1.0));
    if (Angle < 0.0) {
        Angle += 360.0;
    }
    Put(pX, MeanX);
    Put(pY, MeanY);
    Put(pMagnitude, std::sqrt(MeanX * MeanX + MeanY * MeanY));
    Put(pAngle, Angle);
    Put(pLastMagnitude, LastMagnitude);
}
