#include "archive/iso21940.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double GRAMS_PER_KILOGRAM = 1000.0;
constexpr double LEAST_SHARE = 0.3;
constexpr double LARGEST_SHARE = 0.7;
constexpr double NORMAL_95 = 1.959963984540054;  // both sides

double GetOmega(double Rpm) {
    return Rpm * 2.0 * std::numbers::pi / 60.0;
}

}  // namespace

double CIso21940::GetPerGrade() const {
    if (!(m_Data.m_RotorMass > 0.0) || !(m_Data.m_ServiceSpeed > 0.0)) {
        return 0.0;
    }
    return GRAMS_PER_KILOGRAM * m_Data.m_RotorMass / GetOmega(m_Data.m_ServiceSpeed);
}

std::optional<double> CIso21940::GetPermissible() const {
    const double Permissible = GetPerGrade() * m_Data.m_Grade;
    return Permissible > 0.0 ? std::optional(Permissible) : std::nullopt;
}

double CIso21940::GetShare(std::size_t Plane) const {
    if (!m_Scale.m_bBalanced.at(Plane)) {
        return 0.0;
    }
    const std::size_t Other = 1 - Plane;
    if (!m_Scale.m_bBalanced.at(Other)) {
        return 1.0;
    }
    const double Sum = m_Data.m_Distance[0] + m_Data.m_Distance[1];
    return Sum > 0.0 ? std::clamp(m_Data.m_Distance.at(Other) / Sum, LEAST_SHARE, LARGEST_SHARE) : 0.5;
}

std::optional<double> CIso21940::GetPermissible(std::size_t Plane) const {
    const std::optional<double> Permissible = GetPermissible();
    return Permissible && m_Scale.m_bBalanced.at(Plane) ? std::optional(*Permissible * GetShare(Plane))
                                                        : std::nullopt;
}

bool CIso21940::IsUsable() const {
    std::uint32_t Rows = 0;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (m_Scale.m_bBalanced.at(Plane)) {
            Rows += 2;
            if (!(m_Scale.m_Unit.at(Plane) > 0.0)) {
                return false;
            }
        }
    }
    if (Rows == 0 || m_Scale.m_InvA.RowNo() != Rows || m_Scale.m_InvA.ColNo() != Rows) {
        return false;
    }
    double Sum = 0.0;
    for (std::uint32_t i = 0; i < Rows; ++i) {
        for (std::uint32_t j = 0; j < Rows; ++j) {
            Sum += std::abs(m_Scale.m_InvA(i, j));
        }
    }
    return std::isfinite(Sum) && Sum > 0.0;
}

double CIso21940::GetLength(std::uint32_t Row, std::uint32_t Column) const {
    return std::hypot(m_Scale.m_InvA(2 * Row, 2 * Column), m_Scale.m_InvA(2 * Row + 1, 2 * Column));
}

CIso21940::CResiduals CIso21940::GetResiduals(const CReadings& rReadings) const {
    CResiduals Residuals;
    if (!IsUsable()) {
        return Residuals;
    }
    const double Sign = m_Scale.m_bClockwise ? -1.0 : 1.0;
    std::uint32_t Row = 0;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (!m_Scale.m_bBalanced.at(Plane)) {
            continue;
        }
        const double Unit = m_Scale.m_Unit.at(Plane);
        const math::matrix<double>& rInvA = m_Scale.m_InvA;
        double X = 0.0;
        double Y = 0.0;
        std::uint32_t Column = 0;
        for (std::size_t From = 0; From < 2; ++From) {
            if (m_Scale.m_bBalanced.at(From)) {
                const CVectorReading& rMean = rReadings.at(From).m_Mean;
                X += rInvA(Row, Column) * Sign * rMean.m_X + rInvA(Row, Column + 1) * rMean.m_Y;
                Y += rInvA(Row + 1, Column) * Sign * rMean.m_X + rInvA(Row + 1, Column + 1) * rMean.m_Y;
                Column += 2;
            }
        }
        CResidual Residual{std::hypot(X, Y) * Unit, std::nullopt};
        // Along its direction; with none to be seen, along X.
        const double c = Residual.m_Amount > 0.0 ? X * Unit / Residual.m_Amount : 1.0;
        const double s = Residual.m_Amount > 0.0 ? Y * Unit / Residual.m_Amount : 0.0;
        double Variance = 0.0;
        bool bKnown = true;
        Column = 0;
        for (std::size_t From = 0; From < 2; ++From) {
            if (m_Scale.m_bBalanced.at(From)) {
                const CReading& rReading = rReadings.at(From);
                const double A = Sign * (c * rInvA(Row, Column) + s * rInvA(Row + 1, Column));
                const double B = c * rInvA(Row, Column + 1) + s * rInvA(Row + 1, Column + 1);
                Variance += A * A * rReading.m_VarianceX + 2.0 * A * B * rReading.m_CovarianceXY +
                            B * B * rReading.m_VarianceY;
                bKnown = bKnown && rReading.m_bCovariance;
                Column += 2;
            }
        }
        if (bKnown) {
            Residual.m_Uncertainty95 = NORMAL_95 * Unit * std::sqrt(std::max(Variance, 0.0));
        }
        Residuals.at(Plane) = Residual;
        Row += 2;
    }
    return Residuals;
}

std::optional<double> CIso21940::GetReached(const CResiduals& rResiduals) const {
    const double PerGrade = GetPerGrade();
    std::optional<double> Reached;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (!m_Scale.m_bBalanced.at(Plane)) {
            continue;
        }
        if (!rResiduals.at(Plane) || PerGrade <= 0.0) {
            return std::nullopt;
        }
        const double Grade = rResiduals.at(Plane)->m_Amount / (PerGrade * GetShare(Plane));
        Reached = std::max(Reached.value_or(0.0), Grade);
    }
    return Reached;
}

std::optional<double> CIso21940::GetGradePerCount() const {
    const double PerGrade = GetPerGrade();
    if (!IsUsable() || PerGrade <= 0.0) {
        return std::nullopt;
    }
    double Largest = 0.0;
    std::uint32_t Row = 0;
    const std::uint32_t nPlanes = m_Scale.m_InvA.RowNo() / 2;
    for (std::size_t Plane = 0; Plane < 2; ++Plane) {
        if (m_Scale.m_bBalanced.at(Plane)) {
            double Sum = 0.0;
            for (std::uint32_t Column = 0; Column < nPlanes; ++Column) {
                Sum += GetLength(Row, Column);
            }
            Largest = std::max(Largest, Sum * m_Scale.m_Unit.at(Plane) / (PerGrade * GetShare(Plane)));
            ++Row;
        }
    }
    return Largest;
}

std::optional<double> CIso21940::GetTarget(double Grade) const {
    const std::optional<double> PerCount = GetGradePerCount();
    return PerCount && Grade > 0.0 ? std::optional(Grade / *PerCount) : std::nullopt;
}

std::optional<double> CIso21940::GetGrade(double Target) const {
    const std::optional<double> PerCount = GetGradePerCount();
    return PerCount ? std::optional(Target * *PerCount) : std::nullopt;
}
