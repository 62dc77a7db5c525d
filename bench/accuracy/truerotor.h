#pragma once
#include <complex>
#include <cstddef>
#include <numbers>

#include "archive/runrecord.h"
#include "bench/accuracy/textbook.h"
#include "contract/holering.h"
#include "simulator/rotor.h"

/// The simulated rotor in the frame of the textbook: readings as a sensor of a rotor that turns
/// counter-clockwise has them, and what is in a plane as the sensors see it, mirrored.
class CTrueRotor {
public:
    /// The file must outlive this.
    explicit CTrueRotor(const CRotorFile& rFile) : m_rFile(rFile) {}

    std::complex<double> GetInfluence(std::size_t Sensor, std::size_t Plane) const {
        const CRotorFile::CInfluence& rInfluence = m_rFile.m_Influence[Sensor][Plane];
        return FromPolar(rInfluence.m_Amplitude, rInfluence.m_PhaseDeg);
    }
    Textbook::Matrix GetInfluence() const {
        Textbook::Matrix Result{};
        for (std::size_t i = 0; i < m_rFile.m_Planes.size(); ++i) {
            for (std::size_t j = 0; j < m_rFile.m_Planes.size(); ++j) {
                Result[i][j] = GetInfluence(i, j);
            }
        }
        return Result;
    }
    /// The rotor's own.
    std::complex<double> GetUnbalance(std::size_t Plane) const {
        const CRotorFile::CUnbalance& rUnbalance = m_rFile.m_Planes[Plane].m_Unbalance;
        return std::conj(FromPolar(rUnbalance.m_Amount, rUnbalance.m_AngleDeg));
    }
    /// With this fitted besides.
    Textbook::Vector GetReading(const Textbook::Vector& rFitted) const {
        Textbook::Vector Sum = rFitted;
        for (std::size_t i = 0; i < m_rFile.m_Planes.size(); ++i) {
            Sum[i] += GetUnbalance(i);
        }
        return Textbook::Multiply(GetInfluence(), Sum, m_rFile.m_Planes.size());
    }
    /// A reading of this rotor's sensors, brought into the frame.
    std::complex<double> FromSensor(std::complex<double> Reading) const {
        return m_rFile.m_Rotation == CRotorFile::eClockwise ? -std::conj(Reading) : Reading;
    }
    /// What a fitting of a plane amounts to.
    std::complex<double> GetSum(std::size_t Plane, const CPlaneFitting& rFitting) const {
        const CRotorFile::CRotorPlane& rPlane = m_rFile.m_Planes[Plane];
        std::complex<double> Sum;
        for (const int Angle : rFitting.m_Weights) {
            Sum += CRotor::DirectionOnScale(Plane, rPlane.m_Scale, Angle);
        }
        const CHoleRing Ring{static_cast<std::uint32_t>(rPlane.m_Holes),
                             rPlane.m_Scale == CRotorFile::eCounterClockwise};
        for (const CFittedScrew& rScrew : rFitting.m_Screws) {
            Sum += rScrew.m_Grams *
                   CRotor::DirectionOnScale(Plane, rPlane.m_Scale,
                                            (Ring.GetRotorHole(rScrew.m_Hole) - 1) * 360.0 / rPlane.m_Holes);
        }
        return std::conj(Sum);
    }

private:
    static std::complex<double> FromPolar(double Length, double AngleDeg) {
        return std::polar(Length, AngleDeg * std::numbers::pi / 180.0);
    }
    const CRotorFile& m_rFile;
};
