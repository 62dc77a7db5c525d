#include "simulator/rotor.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <utility>

namespace {

CRotor::Vector FromPolar(double Length, double AngleDeg) {
    return std::polar(Length, AngleDeg * std::numbers::pi / 180.0);
}

}  // namespace

CRotor::CRotor(const CRotorFile& rFile)
    : m_Rotation(rFile.m_Rotation), m_Planes(rFile.m_Planes), m_Fitted(rFile.m_Planes.size()) {
    for (const auto& rRow : rFile.m_Influence) {
        auto& rVectors = m_Influence.emplace_back();
        for (const CRotorFile::CInfluence& rInfluence : rRow) {
            rVectors.push_back(FromPolar(rInfluence.m_Amplitude, rInfluence.m_PhaseDeg));
        }
    }
}

void CRotor::SetUnbalance(std::size_t nPlane, double Amount, double AngleDeg) {
    m_Planes[nPlane].m_Unbalance = {Amount, AngleDeg};
}

void CRotor::FitWeights(std::size_t nPlane, std::vector<int> AnglesDeg) {
    m_Fitted[nPlane].m_WeightsDeg = std::move(AnglesDeg);
}

void CRotor::FitScrews(std::size_t nPlane, std::vector<CSimulatedScrew> Screws) {
    m_Fitted[nPlane].m_Screws = std::move(Screws);
}

CRotor::Vector CRotor::GetResidual(std::size_t nPlane) const {
    const CRotorFile::CRotorPlane& rPlane = m_Planes[nPlane];
    Vector Sum = FromPolar(rPlane.m_Unbalance.m_Amount, rPlane.m_Unbalance.m_AngleDeg);
    for (int AngleDeg : m_Fitted[nPlane].m_WeightsDeg) {
        Sum += DirectionOnScale(nPlane, rPlane.m_Scale, AngleDeg);
    }
    for (const CSimulatedScrew& rScrew : m_Fitted[nPlane].m_Screws) {
        const double ScaleDeg = (rScrew.m_Hole - 1) * 360.0 / rPlane.m_Holes;
        Sum += rScrew.m_Grams * DirectionOnScale(nPlane, rPlane.m_Scale, ScaleDeg);
    }
    return Sum;
}

CRotor::Vector CRotor::GetReading(std::size_t nSensor) const {
    Vector Sum;
    for (std::size_t nPlane = 0; nPlane < m_Planes.size(); ++nPlane) {
        Sum += m_Influence[nSensor][nPlane] * std::conj(GetResidual(nPlane));
    }
    return (m_Rotation == CRotorFile::eClockwise) ? Vector(-Sum.real(), Sum.imag()) : Sum;
}

CRotor::Vector CRotor::DirectionOnScale(std::size_t nPlane, CRotorFile::Sense Scale, double ScaleDeg) {
    const bool bCountsUp = (Scale == CRotorFile::eCounterClockwise) == (nPlane == 0);
    return FromPolar(1.0, bCountsUp ? ScaleDeg : -ScaleDeg);
}

std::int16_t CRotor::ToCounts(double Value) {
    return static_cast<std::int16_t>(std::clamp(std::round(Value), -32768.0, 32767.0));
}

double CRotor::AngleDeg(Vector Value) {
    const double Angle = std::arg(Value) * 180.0 / std::numbers::pi;
    const double Positive = (Angle < 0.0) ? Angle + 360.0 : Angle;
    return (Positive >= 360.0) ? 0.0 : Positive;
}
