#pragma once
#include <array>
#include <vector>

#include "bench/accuracy/randomrun.h"
#include "bench/accuracy/residualtheory.h"
#include "bench/accuracy/textbook.h"
#include "bench/accuracy/truerotor.h"

/// A random run through the module's mathematics and methods, judged by the rotor's physics: what would still
/// have to be fitted, beside what theory says of it, and beside the textbook with the same readings.
class CAccuracyRun {
public:
    enum class Outcome {
        eBalanced,
        eTestRefused,     ///< the module found too little effect
        eStartRefused,    ///< the correction that a re-balancing begins with is beyond the capacity
        eCapacityWarned,  ///< the correction asked for is
        eMirrored         ///< positions that don't produce the correction, on a counter-clockwise scale
    };
    struct CPlaneResult {
        double m_Residual = 0.0;  ///< share of the first
        double m_Textbook = 0.0;  ///< the same
        /// What the plane itself has left, share of what it had: more than the sensor tells if that reads
        /// another plane, too.
        double m_OwnResidual = 0.0;
        CResidualError m_Theory;
    };

    explicit CAccuracyRun(const CRandomRun& rRun);

    Outcome GetOutcome() const { return m_Outcome; }
    /// By plane. Of a run with a refused test run nothing.
    const std::vector<CPlaneResult>& GetPlanes() const { return m_Planes; }
    /// Between the module's compensation before it was turned into positions and the textbook's, relative.
    double GetDifference() const { return m_Difference; }
    /// Smallest change by a test run relative to the first reading.
    double GetEffect() const { return m_Effect; }
    const CSimulatedRun& GetRun() const { return m_Run; }

private:
    using Vector = Textbook::Vector;

    void Prebalance();
    void Rebalance();
    /// Of the last measurements, as read, by the textbook's frame.
    Textbook::CState GetRead(const CRunMeasurement& rMeasured) const;
    CErrorPropagation::CMeasured GetTrue(const CTrueRotor& rRotor, const Vector& rFitted) const;
    Vector GetFitted(const CRunMeasurement& rMeasured) const;
    void Judge(const CTrueRotor& rRotor, const Vector& rBefore, const Vector& rTextbook,
               const CErrorPropagation& rErrors);
    CResidualError MakeTheory(std::size_t Plane, std::complex<double> Wanted,
                              const CErrorPropagation& rErrors) const;
    void CompareToTextbook(const Vector& rTextbook);

    const CRandomRun& m_rRun;
    std::size_t m_nPlanes;
    CTrueRotor m_Rotor;
    CSimulatedRun m_Run;
    std::vector<CErrorPropagation::CMeasured> m_Measured;  ///< of the pre-balancing
    Textbook::Matrix m_Influence{};                        ///< by the textbook, as read
    Outcome m_Outcome = Outcome::eBalanced;
    double m_Difference = 0.0;
    double m_Effect = 0.0;
    std::vector<CPlaneResult> m_Planes;
};
