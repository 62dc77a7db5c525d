#include "simulator/noise.h"

#include <cmath>
#include <numbers>

CNoise::CNoise(std::uint64_t Seed, std::uint32_t nStream, double Deviation) : m_Deviation(Deviation) {
    std::seed_seq Sequence{static_cast<std::uint32_t>(Seed), static_cast<std::uint32_t>(Seed >> 32), nStream};
    m_Generator.seed(Sequence);
}

double CNoise::NextUniform() {
    // 0 is left out: its logarithm is asked for below.
    return (static_cast<double>(m_Generator() >> 11) + 1.0) * 0x1.0p-53;
}

std::complex<double> CNoise::Next() {
    const double Deviation = m_Disturbance > 0.0 ? m_Disturbance : m_Deviation;
    const double Radius = Deviation * std::sqrt(-2.0 * std::log(NextUniform()));
    const double Angle = 2.0 * std::numbers::pi * NextUniform();
    return {Radius * std::cos(Angle), Radius * std::sin(Angle)};
}
