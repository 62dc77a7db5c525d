#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// The frames that a balancing module of the Lanner family sends, from their figures to their bytes. Inputs
/// are the module's own two, counted from 0; which plane of the machine stands behind an input is no matter
/// of a frame.
namespace LannerFrames {

using Bytes = std::vector<std::uint8_t>;

/// Who sends to whom.
struct CRoute {
    std::uint8_t m_Source = 0;
    std::uint8_t m_Destination = 0;
};

struct CState {
    // Bits of m_Flags and of m_Failures.
    enum Flag : std::uint8_t {
        eRotationLimit1Exceeded = 1U << 0,
        eUnbalanceLimit1Exceeded = 1U << 1,
        eUnbalanceLimit2Exceeded = 1U << 2,
        eDSGNocke = 1U << 3,
    };
    enum Failure : std::uint8_t {
        eSensorFailure = 1U << 0,
        eRotationTooSlow = 1U << 1,
        eOveramplify = 1U << 2,
        eOutOfLock = 1U << 3,
    };
    static constexpr std::uint8_t SUPERVISION_MODE = 1;

    std::uint8_t m_State = SUPERVISION_MODE;
    std::uint8_t m_Parameter = 0;
    bool m_bUILocked = false;
    std::array<std::uint8_t, 2> m_Flags{};     ///< per input
    std::array<std::uint8_t, 2> m_Failures{};  ///< per input
};

struct CSetParams {
    /// Values of m_Mode; the last two are the two before them with the planes exchanged.
    enum Mode : std::uint8_t {
        eNothing = 0,
        ePlane1 = 1,
        ePlane2 = 2,
        eBothIndependent = 3,
        eTwoPlane = 4,
        eBothIndependentSwapped = 5,
        eTwoPlaneSwapped = 6,
    };
    std::uint8_t m_AnalogOutput = 0;
    std::uint8_t m_Mode = eBothIndependent;
    std::uint8_t m_AnalogScaling = 1;
    std::string m_Name;  ///< longer ones are cut: the block's length is one byte
};

struct CPlaneParams {
    std::uint8_t m_Id = 0;
    std::uint8_t m_RpmInput = 0;
    std::uint8_t m_SensorAdaption = 1;
    std::uint16_t m_UnbalanceLimit1 = 400;
    std::uint16_t m_UnbalanceLimit2 = 800;
    std::uint16_t m_RpmLimit1 = 10000;
    std::uint8_t m_Offset = 5;
};

struct CActiveSet {
    std::uint8_t m_Number = 1;
    std::optional<CSetParams> m_Params;
    std::vector<CPlaneParams> m_Planes;
};

struct CBalConfiguration {
    /// Rates of speed, amplitude and coordinates, and what coordinates are made of.
    struct CRates {
        std::uint8_t m_MaxRpm = 10;
        std::uint8_t m_MaxAmplitude = 5;
        std::uint8_t m_MaxXY = 20;
        std::uint8_t m_ConfigurationXY = 0;
    };
    std::uint8_t m_Flags = 0;
    std::uint16_t m_RpmLimit = 20000;
    std::array<CRates, 2> m_Rates;  ///< per input
    std::uint8_t m_MaxDiagnosisRate = 1;
    std::uint8_t m_ConfigurationDiagnosis = 0;
};

struct CModuleConfiguration {
    std::uint8_t m_Baudrate = 23;  ///< 115200
    bool m_bTwoStopBits = false;
    std::uint8_t m_FanPowerOnTemperature = 45;
    std::uint8_t m_TestFlags = 0;
    std::uint8_t m_AttachedSlave = 255;
};

struct CDiagnosisData {
    std::uint8_t m_CurrentTemperature = 38;
    std::uint8_t m_MaxTemperature = 51;
    std::uint8_t m_ReservedFlags = 0;
    std::uint8_t m_DiagByte4 = 0;
    std::uint16_t m_PicVersion = 33;
    std::uint16_t m_SignalCount = 0;
    std::uint16_t m_ProfibusClock = 0;
    std::array<std::uint16_t, 3> m_DiagWords{};  ///< numbers 4 to 6
    std::string m_Text;
};

Bytes MakeState(CRoute Route, const CState& rState);
Bytes MakeActiveSet(CRoute Route, const CActiveSet& rSet);
Bytes MakeBalConfiguration(CRoute Route, const CBalConfiguration& rConfiguration);
Bytes MakeModuleConfiguration(CRoute Route, const CModuleConfiguration& rConfiguration);
Bytes MakeDiagnosisData(CRoute Route, const CDiagnosisData& rData);
Bytes MakeRpm(CRoute Route, std::uint8_t Input, std::uint16_t Rpm);
Bytes MakeAmplitude(CRoute Route, std::uint8_t Input, std::uint16_t Amplitude);
Bytes MakeXY(CRoute Route, std::uint8_t Input, std::int16_t X, std::int16_t Y);
/// An opaque block of at least one byte.
Bytes MakeDiagnosis(CRoute Route, const Bytes& rBlock);

}  // namespace LannerFrames
