#pragma once
#include <complex>
#include <cstdint>
#include <vector>

#include "simulator/rotorfile.h"

/// A screw in a hole of the ring. Holes count from 1 as they are numbered on the rotor, in the sense of its
/// scale.
struct CSimulatedScrew {
    int m_Hole = 1;
    double m_Grams = 0.0;
};

/// The rotor: its own unbalance, what is fitted to it, and what the sensors make of that. No time, no noise.
///
/// Vectors in a plane are complex numbers, counting counter-clockwise as seen from plane 1's end. Planes and
/// sensors count from 0 here.
class CRotor {
public:
    using Vector = std::complex<double>;

    explicit CRotor(const CRotorFile& rFile);

    std::size_t GetNumberOfPlanes() const { return m_Planes.size(); }
    int GetNumberOfHoles(std::size_t nPlane) const { return m_Planes[nPlane].m_Holes; }
    CRotorFile::Sense GetScale(std::size_t nPlane) const { return m_Planes[nPlane].m_Scale; }
    CRotorFile::Sense GetRotation() const { return m_Rotation; }

    /// The rotor's own unbalance changes, as with a wheel that wears.
    void SetUnbalance(std::size_t nPlane, double Amount, double AngleDeg);
    const CRotorFile::CUnbalance& GetUnbalance(std::size_t nPlane) const {
        return m_Planes[nPlane].m_Unbalance;
    }
    /// Each takes the place of what was fitted of its kind in the plane; an empty list removes all. Weights
    /// are given by their angles on the plane's scale, in degrees; each has the amount 1.
    void FitWeights(std::size_t nPlane, std::vector<int> AnglesDeg);
    void FitScrews(std::size_t nPlane, std::vector<CSimulatedScrew> Screws);
    const std::vector<int>& GetWeights(std::size_t nPlane) const { return m_Fitted[nPlane].m_WeightsDeg; }
    const std::vector<CSimulatedScrew>& GetScrews(std::size_t nPlane) const {
        return m_Fitted[nPlane].m_Screws;
    }

    /// Vector sum of own unbalance and everything fitted: what balancing leaves.
    Vector GetResidual(std::size_t nPlane) const;
    /// The exact reading of a sensor in counts, X real and Y imaginary.
    Vector GetReading(std::size_t nSensor) const;

    /// Direction of a position on a plane's scale. A scale counts in its sense as seen from its own plane's
    /// end, and plane 2 is looked at from the other end of the rotor.
    static Vector DirectionOnScale(std::size_t nPlane, CRotorFile::Sense Scale, double ScaleDeg);
    /// A reading as the electronics send it: rounded to whole counts, halves away from 0, limited to 16 bits.
    static std::int16_t ToCounts(double Value);
    /// A vector's direction in degrees, from 0 to below 360.
    static double AngleDeg(Vector Value);

private:
    struct CFitted {
        std::vector<int> m_WeightsDeg;
        std::vector<CSimulatedScrew> m_Screws;
    };
    CRotorFile::Sense m_Rotation;
    std::vector<CRotorFile::CRotorPlane> m_Planes;
    std::vector<std::vector<Vector>> m_Influence;
    std::vector<CFitted> m_Fitted;
};
