#include "rvdlm/m_rtr/rtr_trim/methods/weightcompensation.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <utility>

#include "rvdlm/m_rtr/rtr_trim/log.h"
#include "rvlib/math/matrixlog.h"
#include "rvlib/math/vector.h"

using PreBalDB::CTypeBase;

namespace {

/// A pair could reach 2, but with no room left for a later correction.
constexpr double CAPACITY = 1.95;
/// A sum of weights below this has no x component.
constexpr double NOTHING = 1e-8;

/// To the nearest whole number, exactly one half down.
int RoundHalfDown(double x) {
    if (!std::isfinite(x)) {
        return 0;  // a vector that is no number has no direction; converting it to an int would be undefined
    }
    const double Floor = std::floor(x);
    return static_cast<int>(x - Floor > 0.5 ? std::ceil(x) : Floor);
}

/// Radians to whole degrees, 0 to 359 for the angles that occur here.
int ToDegrees(double Angle) {
    return RoundHalfDown(Angle * 180.0 / math::PI + 360.0) % 360;
}

/// Which of the two positions goes to weight 1, which to weight 2. The first rule that applies wins. M(0) is
/// 360 on a counter-clockwise scale, and isn't wrapped.
std::pair<int, int> Order(int A1, int A2, bool bCounterClockwise) {
    const int M1 = bCounterClockwise ? 360 - A1 : A1;
    const int M2 = bCounterClockwise ? 360 - A2 : A2;
    if (M1 <= 90 || M2 <= 90) {
        return std::minmax({M1, M2});
    }
    if (A1 <= 180 && A2 <= 180) {
        return std::minmax({M1, M2});
    }
    if (A1 >= 180 && A2 >= 180) {
        return {std::max(M1, M2), std::min(M1, M2)};
    }
    if (A1 < 180 && A2 > 180) {
        // Deliberately the raw positions, not M1 and M2. On a counter-clockwise scale they produce the
        // mirrored vector; CWeightBalancingMethod::SetUA deals with that.
        return A1 <= 360 - A2 ? std::pair{A1, A2} : std::pair{M2, M1};
    }
    return A2 <= 360 - A1 ? std::pair{M1, M2} : std::pair{M2, M1};
}

}  // namespace

bool CWeightCompensation::IsFlipped() const {
    return (m_Plane == 0 && m_ScalingDirection == CTypeBase::eCounterClockwise) ||
           (m_Plane == 1 && m_ScalingDirection == CTypeBase::eClockwise);
}

bool CWeightCompensation::UA2Angles(const math::matrix<double>& rUA, int& rAngleWeight1, int& rAngleWeight2,
                                    double* pPerCentCompensationDifference) const {
    PB_FLOW("CWeightCompensation::UA2Angles() called with (%.4f %.4f)", rUA(0, 0), rUA(1, 0));
    LOG_MATRIX(RtrTrim::g_pLog, "UA", rUA);

    const double Angle = std::atan2(rUA(1, 0), rUA(0, 0));
    const double Norm = rUA.Norm();
    const bool bEnough = !(Norm > CAPACITY);
    const double Half = bEnough ? std::acos(Norm * 0.5) : 0.0;
    if (pPerCentCompensationDifference != nullptr) {
        *pPerCentCompensationDifference = bEnough ? 0.0 : (Norm - CAPACITY) / CAPACITY * 100;
    }

    const bool bCounterClockwise = m_ScalingDirection == CTypeBase::eCounterClockwise;
    auto [R1, R2] = Order(ToDegrees(Angle + Half), ToDegrees(Angle - Half), bCounterClockwise);
    if (bCounterClockwise) {
        R1 = 360 - R1;
        R2 = 360 - R2;
    }
    if (IsFlipped()) {
        R1 = (360 - R1) % 360;
        R2 = (360 - R2) % 360;
    }
    rAngleWeight1 = R1;
    rAngleWeight2 = R2;
    PB_MATH("UA2Angles returns: AngleWeight1: %d AngleWeight2: %d", R1, R2);
    return bEnough;
}

bool CWeightCompensation::Angles2UA(const int& rAngleWeight1, const int& rAngleWeight2,
                                    math::matrix<double>& rUA) const {
    PB_FLOW("CWeightCompensation::Angles2UA(%d, %d, rUA) called", rAngleWeight1, rAngleWeight2);
    RV_ASSERT_AS(RtrTrim::g_pLog, (std::abs(rAngleWeight1) < 360) && (std::abs(rAngleWeight2) < 360),
                 "(abs(rAngleWeight1) < 360) && (abs(rAngleWeight2) < 360)", "invalid angles", false);
    const double a = rAngleWeight1 * math::PI / 180;
    const double b = rAngleWeight2 * math::PI / 180;
    const double X = std::cos(b) + std::cos(a);
    const double Y = std::sin(b) + std::sin(a);

    double Phi = 0.0;
    if (std::abs(X) >= NOTHING) {
        Phi = std::atan2(Y, X);
    } else if (Y > NOTHING) {
        Phi = 1.5707963267948966;
    } else if (std::sin(b) + std::sin(b) < -NOTHING) {
        Phi = 4.71238898038469;  // twice sin(b) is meant, not sin(a) + sin(b)
    }
    const double R = std::sqrt(Y * Y + X * X);
    rUA(0, 0) = std::cos(Phi) * R;
    rUA(1, 0) = std::sin(Phi) * R;
    if (IsFlipped()) {
        rUA(1, 0) = -rUA(1, 0);
    }
    PB_MATH("Angles2UA returns");
    LOG_MATRIX(RtrTrim::g_pLog, "rUA", rUA);
    return true;
}
