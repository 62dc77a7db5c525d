#pragma once
#include <complex>
#include <cstdint>
#include <string_view>
#include <vector>

#include "simulator/balancingmodule.h"
#include "simulator/lannerframes.h"
#include "simulator/noise.h"

/// A balancing module of the Lanner family at byte level: two inputs, a sensor each. It answers the five
/// queries to whoever asked, speed and coordinates with a frame for each input that its set uses, and reports
/// by itself to any address: besides what every module does the amplitudes at 5 Hz and a diagnosis block
/// every second.
///
/// Input 0 measures the machine's plane 1 and input 1 its plane 2; with a swapped set it is the other way
/// round.
class CLannerModule : public CBalancingModule {
public:
    static constexpr std::uint32_t AMPLITUDE_EVERY_NTH_XY = 4;
    static constexpr std::uint32_t DIAGNOSIS_EVERY_NTH_XY = 20;

    /// One noise per plane of the machine. bSwap: of the first set.
    CLannerModule(const CWiring& rWiring, std::uint8_t Address, const std::vector<CNoise>& rNoises,
                  bool bSwap);

    /// "bal_configuration", "module_configuration", "diagnosis_data".
    std::span<const std::string_view> GetReports() const override;
    void SendReport(std::size_t nReport) override;
    void DisturbReadings(double Deviation) override {
        for (CNoise& rNoise : m_Noises) {
            rNoise.SetDisturbance(Deviation);
        }
    }

protected:
    const CNameplate& GetNameplate() const override;
    std::uint8_t GetSetSubCode() const override { return 2; }
    Bytes MakeState(std::uint8_t Destination) const override;
    Bytes MakeSet(std::uint8_t Destination) const override;
    Frames MakeRpm(std::uint8_t Destination) const override;
    Frames MakeXY(std::uint8_t Destination) override;
    void OnTurningTick(std::uint32_t nTick) override;

private:
    LannerFrames::CRoute RouteTo(std::uint8_t Destination) const { return {GetAddress(), Destination}; }
    /// The machine's plane behind an input, and the other way round.
    std::size_t Exchange(std::size_t nIndex) const { return GetSet().m_bSwap ? 1 - nIndex : nIndex; }
    /// Inputs that the set's mode uses.
    std::vector<std::uint8_t> GetInputs() const;
    /// An input whose plane the rotor doesn't have reads nothing.
    std::complex<double> ReadInput(std::uint8_t Input);

    std::vector<CNoise> m_Noises;
};
