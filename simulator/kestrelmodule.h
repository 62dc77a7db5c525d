#pragma once
#include <cstdint>

#include "simulator/balancingmodule.h"
#include "simulator/noise.h"

/// A balancing module of the Kestrel family at byte level: one sensor, one plane. It answers the five queries
/// to whoever asked, in the byte order and layout of the family, and reports by itself to any address.
class CKestrelModule : public CBalancingModule {
public:
    /// The state in which a module works for pre-balancing.
    static constexpr std::uint8_t PREBALANCING_START = 7;

    /// Sensors count from 0.
    CKestrelModule(const CWiring& rWiring, std::uint8_t Address, std::size_t nSensor, const CNoise& rNoise);

    void DisturbReadings(double Deviation) override { m_Noise.SetDisturbance(Deviation); }

protected:
    const CNameplate& GetNameplate() const override;
    std::uint8_t GetSetSubCode() const override { return 0; }
    Bytes MakeState(std::uint8_t Destination) const override;
    Bytes MakeSet(std::uint8_t Destination) const override;
    Frames MakeRpm(std::uint8_t Destination) const override;
    Frames MakeXY(std::uint8_t Destination) override;

private:
    std::size_t m_nSensor;
    CNoise m_Noise;
};
