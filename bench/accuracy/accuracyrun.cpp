#include "bench/accuracy/accuracyrun.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace {

using Complex = std::complex<double>;

constexpr double DEGREE = std::numbers::pi / 180.0;
/// Two positions that are each off by half a degree at most.
const double g_PositionBound = 4.0 * std::sin(0.25 * DEGREE) + 1e-6;

}  // namespace

CAccuracyRun::CAccuracyRun(const CRandomRun& rRun)
    : m_rRun(rRun), m_nPlanes(rRun.m_World.GetPlanes()), m_Rotor(rRun.m_Setup.m_Rotor), m_Run(rRun.m_Setup) {
    Prebalance();
    if (m_rRun.m_World.m_bRebalance && m_Outcome == Outcome::eBalanced) {
        Rebalance();
    }
}

CAccuracyRun::Vector CAccuracyRun::GetFitted(const CRunMeasurement& rMeasured) const {
    Vector Fitted{};
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        Fitted[i] = m_Rotor.GetSum(i, rMeasured.m_Planes[i]->m_Fitted);
    }
    return Fitted;
}

Textbook::CState CAccuracyRun::GetRead(const CRunMeasurement& rMeasured) const {
    Textbook::CState State;
    State.m_Fitted = GetFitted(rMeasured);
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        const CVectorReading& rMean = rMeasured.m_Planes[i]->m_Smoothed;
        State.m_Reading[i] = m_Rotor.FromSensor({rMean.m_X, rMean.m_Y});
    }
    return State;
}

CErrorPropagation::CMeasured CAccuracyRun::GetTrue(const CTrueRotor& rRotor, const Vector& rFitted) const {
    CErrorPropagation::CMeasured Measured;
    Measured.m_True = {rFitted, rRotor.GetReading(rFitted)};
    Measured.m_GainVariance = m_rRun.m_GainVariance;
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        const double Drift = m_rRun.m_Setup.m_Drift * std::abs(Measured.m_True.m_Reading[i]);
        Measured.m_Error[i] = CCovariance::Isotropic(
            GetVarianceOfMean(m_rRun.m_ReadingDeviation[i], m_rRun.m_Setup.m_nReadings) + Drift * Drift);
    }
    return Measured;
}

void CAccuracyRun::Prebalance() {
    m_Run.RunTests();
    std::vector<Textbook::CState> Read;
    m_Effect = std::numeric_limits<double>::infinity();
    for (const CRunMeasurement& rMeasured : m_Run.GetRecord().m_Measurements) {
        Read.push_back(GetRead(rMeasured));
        m_Measured.push_back(GetTrue(m_Rotor, GetFitted(rMeasured)));
        if (m_Measured.size() > 1) {
            const std::size_t Plane = m_Measured.size() - 2;
            const auto GetReading = [&](std::size_t i) { return m_Measured[i].m_True.m_Reading[Plane]; };
            m_Effect = std::min(
                m_Effect, std::abs(GetReading(Plane + 1) - GetReading(Plane)) / std::abs(GetReading(0)));
        }
    }
    if (!m_Run.IsAccepted()) {
        m_Outcome = Outcome::eTestRefused;
        return;
    }
    m_Influence = Textbook::GetInfluence(Read, m_nPlanes);
    const Vector Correction = Textbook::GetCorrection(m_Influence, Read[0], m_nPlanes);
    const Vector True = Textbook::GetCorrection(m_Rotor.GetInfluence(), m_Measured[0].m_True, m_nPlanes);
    CErrorPropagation Errors(m_Rotor.GetInfluence(), m_nPlanes);
    Errors.AddPrebalancing(m_Measured, True);
    CompareToTextbook(Correction);
    Judge(m_Rotor, m_Measured[0].m_True.m_Fitted, Correction, Errors);
}

void CAccuracyRun::Rebalance() {
    const CTrueRotor Later(m_rRun.m_Later);
    const Vector Fitted = [&] {
        Vector Sums{};
        for (std::size_t i = 0; i < m_nPlanes; ++i) {
            Sums[i] = m_Rotor.GetSum(i, m_Run.GetNoted()[i]);
        }
        return Sums;
    }();
    if (!m_Run.Rebalance(m_rRun.m_Later)) {
        m_Outcome = Outcome::eStartRefused;
        return;
    }
    const Textbook::CState Read = GetRead(m_Run.GetRecord().m_Measurements.back());
    const Vector Correction = Textbook::GetCorrection(m_Influence, Read, m_nPlanes);
    const CErrorPropagation::CMeasured Now = GetTrue(Later, Fitted);
    const Vector True = Textbook::GetCorrection(Later.GetInfluence(), Now.m_True, m_nPlanes);
    Vector Missing{};
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        Missing[i] = True[i] - Fitted[i];
    }
    CErrorPropagation Errors(m_Rotor.GetInfluence(), m_nPlanes);
    Errors.AddInfluence(m_Measured, Missing);
    Errors.Add(Now, 1.0);
    std::array<CCovariance, 2> Drifted;
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        double Square = 0.0;
        for (std::size_t j = 0; j < m_nPlanes; ++j) {
            Square += std::norm(m_Rotor.GetInfluence(i, j) * Missing[j]);
        }
        Drifted[i] = CCovariance::Isotropic(std::pow(m_rRun.m_InfluenceDrift, 2) * Square);
    }
    Errors.Add(Drifted);
    CompareToTextbook(Correction);
    m_Planes.clear();
    Judge(Later, Fitted, Correction, Errors);
}

void CAccuracyRun::CompareToTextbook(const Vector& rTextbook) {
    // The module's frame is the textbook's, or for all planes together its mirror image.
    double Plain = 0.0;
    double Mirrored = 0.0;
    double Length = 0.0;
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        const math::matrix<double>& rUA = m_Run.GetWantedUA()[i];
        const Complex Wanted =
            (m_rRun.m_Setup.m_bScrews ? m_rRun.m_Setup.m_TestGrams[i] : 1.0) * Complex(rUA(0, 0), rUA(1, 0));
        Plain = std::max(Plain, std::abs(Wanted - rTextbook[i]));
        Mirrored = std::max(Mirrored, std::abs(std::conj(Wanted) - rTextbook[i]));
        Length = std::max(Length, std::abs(rTextbook[i]));
    }
    m_Difference = std::max(m_Difference, std::min(Plain, Mirrored) / Length);
}

CResidualError CAccuracyRun::MakeTheory(std::size_t Plane, Complex Wanted,
                                        const CErrorPropagation& rErrors) const {
    CResidualError Error;
    Error.m_Covariance = rErrors.GetCovariance(Plane);
    const CSimulatedRun::CSetup& rSetup = m_rRun.m_Setup;
    if (!rSetup.m_bScrews) {
        Error.m_HalfEdges = CResidualError::GetHalfEdges(Wanted, DEGREE);
        return Error;
    }
    Base::CWDArray<PreBalDB::CScrew> Table;
    for (const CTableScrew& rScrew : rSetup.m_Table) {
        Table.Add({rScrew.m_Name, rScrew.m_Grams});
    }
    struct CCompensation : CScrewCompensation {
        using CScrewCompensation::CScrewCompensation;
    };
    CCompensation Compensation(Table, static_cast<int>(rSetup.m_nScrews),
                               rSetup.m_Rotor.m_Planes[Plane].m_Holes, 0, 0.0);
    math::matrix<double> UA(2, 1);
    UA(0, 0) = Wanted.real();
    UA(1, 0) = Wanted.imag();
    math::matrix<double> Placed(2, 1);
    Base::CWDArray<CScrew> Screws;
    Compensation.UA2Screws(UA, Screws, nullptr, Placed, 1.0);
    Error.m_Offset = Complex(Placed(0, 0), Placed(1, 0)) - Wanted;
    return Error;
}

void CAccuracyRun::Judge(const CTrueRotor& rRotor, const Vector& rBefore, const Vector& rTextbook,
                         const CErrorPropagation& rErrors) {
    if (!m_Run.IsCapacityEnough()) {
        m_Outcome = Outcome::eCapacityWarned;
    }
    m_Run.Fit(Measurement::eFinal);
    Vector Readings{};
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        Readings[i] = rRotor.FromSensor(m_Run.GetRotor().GetReading(i));
    }
    const Textbook::Matrix Influence = rRotor.GetInfluence();
    const Vector Left = Textbook::Multiply(Textbook::Invert(Influence, m_nPlanes), Readings, m_nPlanes);
    const Vector True = Textbook::GetCorrection(Influence, {rBefore, rRotor.GetReading(rBefore)}, m_nPlanes);
    for (std::size_t i = 0; i < m_nPlanes; ++i) {
        CPlaneResult Result;
        Result.m_Theory = MakeTheory(i, True[i], rErrors);
        Result.m_Theory.m_First = std::abs(True[i] - rBefore[i]);
        Result.m_Residual = std::abs(Left[i]) / Result.m_Theory.m_First;
        Result.m_Textbook = std::abs(rTextbook[i] - True[i]) / Result.m_Theory.m_First;
        Result.m_OwnResidual =
            std::abs(m_Run.GetRotor().GetResidual(i)) / std::abs(rRotor.GetUnbalance(i) + rBefore[i]);
        m_Planes.push_back(Result);
        if (!m_rRun.m_World.m_bScrews && m_Run.IsCapacityEnough() &&
            std::abs(m_Rotor.GetSum(i, m_Run.GetNoted()[i]) - rTextbook[i]) > g_PositionBound) {
            m_Outcome = Outcome::eMirrored;
        }
    }
}
