#pragma once
#include <array>
#include <optional>

#include "archive/isodata.h"
#include "archive/vectorstatistics.h"
#include "rvlib/math/matrix.h"

/// What readings of a rotor mean in g·mm, and how its balance quality stands, by ISO 21940-11: Mechanical
/// vibration, Rotor balancing, Procedures and tolerances for rotors with rigid behaviour. Planes are those of
/// the machine, from 0. What can't be told, because a value isn't known, is no value.
///
/// The standard states its tolerances in the planes of the bearings; here they are held in the planes in
/// which the rotor is corrected, as is usual where these lie near the bearings.
class CIso21940 {
public:
    /// The balanced planes of a run, and how the readings of a calibration become unbalances.
    struct CScale {
        std::array<bool, 2> m_bBalanced{};
        /// Per plane what one unit of compensation is in g·mm; 0: not known.
        std::array<double, 2> m_Unit{};
        /// Inverse of the influence in the module's frame, 2 by 2 for one balanced plane, else 4 by 4.
        math::matrix<double> m_InvA{2, 2};
        bool m_bClockwise = true;  ///< the frame has X of the readings turned round
    };
    /// The mean of the last measurement in a plane, and the covariance of that mean if it is known.
    struct CReading {
        CVectorReading m_Mean;
        bool m_bCovariance = false;
        double m_VarianceX = 0.0;
        double m_VarianceY = 0.0;
        double m_CovarianceXY = 0.0;
    };
    using CReadings = std::array<CReading, 2>;
    /// Of a plane, in g·mm.
    struct CResidual {
        double m_Amount = 0.0;
        std::optional<double> m_Uncertainty95;  ///< half width of the interval that holds it with 95 %
    };
    using CResiduals = std::array<std::optional<CResidual>, 2>;

    CIso21940(const CIsoData& rData, const CScale& rScale) : m_Data(rData), m_Scale(rScale) {}

    /// U_per = 1000 m G / omega in g·mm, with omega = 2 pi n / 60: for the whole rotor.
    std::optional<double> GetPermissible() const;
    /// What of it falls to a plane, as a fraction: all to a single one. Of two, half each without distances
    /// to the centre of mass; with distances L1 and L2 plane 1 gets L2 / (L1 + L2), the nearer plane more,
    /// but no plane more than 0.7 or less than 0.3.
    double GetShare(std::size_t Plane) const;
    std::optional<double> GetPermissible(std::size_t Plane) const;

    /// What is left by a measurement with all compensation fitted: |InvA r| in units of compensation, times
    /// what a unit is. Uncertainty by linear propagation of the covariances of the means along the direction
    /// of the unbalance, 1.96 standard deviations.
    CResiduals GetResiduals(const CReadings& rReadings) const;
    /// The grade that this comes to: the largest of G_p = U_p omega / (1000 m share_p).
    std::optional<double> GetReached(const CResiduals& rResiduals) const;

    /// The largest reading, in counts in each plane, that proves a grade whatever its direction: for planes p
    /// and q, the smallest of share_p U_per / (unit_p sum_q |InvA_pq|).
    std::optional<double> GetTarget(double Grade) const;
    /// The grade that readings of at most so many counts prove: the other way round.
    std::optional<double> GetGrade(double Target) const;

private:
    /// Permissible g·mm of the whole rotor for grade 1, 0 if it can't be told.
    double GetPerGrade() const;
    /// The largest unbalance in a plane by readings of one count, in permissible g·mm for grade 1.
    std::optional<double> GetGradePerCount() const;
    bool IsUsable() const;
    /// Block of InvA, by the places of the planes among the balanced ones.
    double GetLength(std::uint32_t Row, std::uint32_t Column) const;

    CIsoData m_Data;
    CScale m_Scale;
};
