#pragma once
#include <array>
#include <complex>
#include <optional>
#include <vector>

#include "archive/noisemodel.h"
#include "archive/runrecord.h"

/// How a rotor answers to what is fitted to it, as one run has measured it: the linear model of influence
/// coefficients (Goodman 1964), in complex numbers,
///
///     z_p = u_p + sum over q of a_pq v_q,
///
/// z_p the reading of sensor p with X negated for a rotor that turns clockwise, v_q the vector sum of what is
/// fitted to plane q in the frame of the compensation UA: a place at angle s of a scale is exp(is) on a
/// clockwise one and exp(-is) else, the other way round on the second of two planes, which is looked at from
/// the opposite end. (The module's mathematics for one plane counts w = conj(v); its UA doesn't.) Weights
/// have the length 1, screws their grams.
///
/// A pre-balancing measures as many states as there are unknown coefficients. So any other state's reading is
/// a weighted sum of those, with shares that follow from what was fitted alone: see GetShares. A re-balancing
/// has one state, and the influence that it begins with.
class CRotorModel {
public:
    using Vector = std::complex<double>;
    /// What is fitted, by planes of the procedure.
    using Fit = std::array<Vector, 2>;
    /// What was fitted in the measured states, and what is in the one asked for.
    struct CAssumption {
        std::vector<Fit> m_Measured;
        Fit m_Asked{};
    };
    struct CPredicted {
        Vector m_Reading;
        CErrorSum m_Error;
    };
    struct CState {
        std::array<Vector, 2> m_Reading;        ///< by planes of the procedure
        std::array<CErrorSum, 2> m_Error;       ///< of the mean, without repeatability
        std::array<CPlaneFitting, 2> m_Fitted;  ///< as the record has it
        bool m_bScatterKnown = true;
    };

    /// Nothing if the run hasn't all measurements yet, or if what is fitted or the influence isn't known.
    static std::optional<CRotorModel> Make(const CRunRecord& rRun, double Repeatability);

    std::size_t GetNumberOfPlanes() const { return m_Planes.size(); }
    /// Plane of the machine.
    std::size_t GetPlane(std::size_t nColumn) const { return m_Planes[nColumn]; }
    const CPlaneSetup& GetSetup(std::size_t nColumn) const { return m_Setups[nColumn]; }
    const std::vector<CState>& GetStates() const { return m_States; }
    /// Whether the scatter of all measurements is known.
    bool IsScatterKnown() const { return m_bScatterKnown; }
    /// Whether it rests on a stored influence.
    bool IsInfluenceStored() const { return !m_Influence.empty(); }

    /// A measurement in the frame of the model; nothing if a plane is missing.
    std::optional<CState> Read(const CRunMeasurement& rMeasurement) const;
    /// Error of a reading of such a state, repeatability included.
    CErrorSum GetError(const CState& rState, std::size_t nColumn) const;

    /// By planes of the machine.
    Fit MakeFit(const std::array<CPlaneFitting, 2>& rFittings) const;
    /// A place on the scale of a plane of the procedure, as a vector of length 1.
    Vector GetPlace(std::size_t nColumn, double AngleDeg) const;
    /// The same for a hole, from 1.
    Vector GetHolePlace(std::size_t nColumn, std::uint32_t Hole) const;
    Vector GetSum(std::size_t nColumn, const CPlaneFitting& rFitting) const;
    /// With what the record says was fitted in the measured states.
    CAssumption AssumeNoted(const Fit& rAsked) const;

    /// Influence by sensor and plane, in the order of the procedure: counts per weight, or per gram. Nothing
    /// if the measured states don't differ enough.
    std::optional<std::vector<std::vector<Vector>>> GetInfluence() const;
    /// Share of each measured state in the one asked for; they add up to 1. Nothing if the states don't
    /// differ enough to tell.
    std::optional<std::vector<Vector>> GetShares(const CAssumption& rAssumption) const;
    /// The readings without noise of the state asked for, and their error by that of all measurements.
    /// Nothing as above, or if a share is so large that nothing would be known.
    std::optional<std::vector<CPredicted>> Predict(const CAssumption& rAssumption) const;
    /// The same for a reading that is yet to be measured, like the others: its own error is part of the
    /// error.
    std::optional<std::vector<CPredicted>> PredictMeasurement(const CAssumption& rAssumption) const;

    /// A reading as the module sends it, in the frame of the model, and back: the same operation.
    static Vector TurnX(Vector Reading, bool bClockwise) {
        return bClockwise ? Vector(-Reading.real(), Reading.imag()) : Reading;
    }
    /// A calibration as complex numbers, by sensor and plane; nothing if it is singular or has another form.
    static std::optional<std::vector<std::vector<Vector>>> InvertBlocks(const math::matrix<double>& rBlocks);

private:
    CRotorModel() = default;
    bool AddState(const CRunMeasurement& rMeasurement);
    bool SetStoredInfluence(const CRunSetup& rSetup);
    std::optional<std::vector<CPredicted>> Predict(const CAssumption& rAssumption,
                                                   double NewMeasurement) const;
    std::vector<CPredicted> PredictByInfluence(const CAssumption& rAssumption, double NewMeasurement) const;

    bool m_bClockwise = true;
    double m_Repeatability = 0.0;
    bool m_bScatterKnown = true;
    std::vector<std::size_t> m_Planes;
    std::vector<CPlaneSetup> m_Setups;
    std::vector<CState> m_States;
    /// By sensor and plane, counts per unit of what is fitted; empty unless it was stored.
    std::vector<std::vector<Vector>> m_Influence;
    std::optional<Fit> m_StoredFit;  ///< what the stored compensation stands for
};
