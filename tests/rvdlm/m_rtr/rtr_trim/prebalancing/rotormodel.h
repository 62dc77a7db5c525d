#pragma once
#include <array>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>

#include "platform/rvmdb/typebase.h"

/// A rotor on a spindle with one sensor, in plain complex numbers: the physics that the procedure is to cope
/// with, written without a look at the product's conventions. Unbalance counts counter-clockwise as seen from
/// the plane's end; 1 is one balance weight.
class CRotorModel {
public:
    using Complex = std::complex<double>;
    using Direction = PreBalDB::CTypeBase::Direction;

    Complex m_Own;                   ///< the rotor's own unbalance
    Complex m_Influence;             ///< counts per unit
    Complex m_Background{0.0, 0.0};  ///< a reading that no weight changes
    Direction m_Rotation = PreBalDB::CTypeBase::eClockwise;
    Direction m_Scale = PreBalDB::CTypeBase::eClockwise;
    std::array<int, 2> m_Weights{0, 180};  ///< degrees on the scale

    static Complex Polar(double Amount, double Degrees) {
        return std::polar(Amount, Degrees * std::numbers::pi / 180.0);
    }
    /// What is left of the unbalance.
    Complex GetResidual() const {
        const double Sense = m_Scale == PreBalDB::CTypeBase::eClockwise ? -1.0 : 1.0;
        return m_Own + Polar(1.0, Sense * m_Weights[0]) + Polar(1.0, Sense * m_Weights[1]);
    }
    /// The reading, in whole counts of 16 bits.
    std::pair<std::int16_t, std::int16_t> Read() const {
        const Complex Reading = m_Influence * std::conj(GetResidual()) + m_Background;
        const double X = m_Rotation == PreBalDB::CTypeBase::eClockwise ? -Reading.real() : Reading.real();
        return {ToCounts(X), ToCounts(Reading.imag())};
    }

private:
    static std::int16_t ToCounts(double Value) {
        return static_cast<std::int16_t>(std::lround(std::fmin(std::fmax(Value, -32768.0), 32767.0)));
    }
};
