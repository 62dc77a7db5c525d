#include "simulator/lannerframes.h"

#include <string_view>

#include "simulator/framebytes.h"

using FrameBytes::PutBytes;
using FrameBytes::PutWord;

namespace LannerFrames {

namespace {

enum Command : std::uint8_t {
    eModuleState = 0x08,
    eSet = 0x10,
    eModuleData = 0x11,
    eRpmData = 0x1C,
    eAmplitude = 0x1D,
    eXYData = 0x1E,
    eDiagnosis = 0x1F,
};

enum SubCode : std::uint8_t {
    eBalConfigurationData = 0,
    eActiveSet = 2,
    eModuleConfigurationData = 4,
    eModuleDiagnosisData = 9,
};

// Blocks of a set: type, whole length, then the block's own.
constexpr std::uint8_t PARAMS_BLOCK = 1;
constexpr std::uint8_t PLANE_BLOCK = 2;
constexpr std::uint8_t PLANE_BLOCK_LENGTH = 12;
constexpr std::size_t PARAMS_BLOCK_LENGTH = 7;  // without the name
constexpr std::size_t MAX_NAME = 255 - PARAMS_BLOCK_LENGTH;

constexpr std::uint8_t UI_LOCKED = 1U << 7;
constexpr std::uint8_t TWO_STOP_BITS = 1U << 7;
constexpr unsigned DIAGNOSIS_RATE_SHIFT = 4;

Bytes MakeHeader(CRoute Route, Command Kind) {
    return {Kind, Route.m_Source, Route.m_Destination};
}

Bytes MakeHeader(CRoute Route, Command Kind, SubCode Which) {
    return {Kind, Route.m_Source, Route.m_Destination, Which};
}

void PutText(Bytes& rFrame, std::string_view Text) {
    for (const char Character : Text) {
        rFrame.push_back(static_cast<std::uint8_t>(Character));
    }
}

void PutParams(Bytes& rFrame, const CSetParams& rParams) {
    const std::string_view Name = std::string_view(rParams.m_Name).substr(0, MAX_NAME);
    PutBytes(rFrame, {PARAMS_BLOCK, static_cast<std::uint8_t>(PARAMS_BLOCK_LENGTH + Name.size()), 0,
                      rParams.m_AnalogOutput, rParams.m_Mode, rParams.m_AnalogScaling,
                      static_cast<std::uint8_t>(Name.size())});
    PutText(rFrame, Name);
}

void PutPlane(Bytes& rFrame, const CPlaneParams& rPlane) {
    PutBytes(rFrame,
             {PLANE_BLOCK, PLANE_BLOCK_LENGTH, rPlane.m_Id, rPlane.m_RpmInput, rPlane.m_SensorAdaption});
    PutWord(rFrame, rPlane.m_UnbalanceLimit1);
    PutWord(rFrame, rPlane.m_UnbalanceLimit2);
    PutWord(rFrame, rPlane.m_RpmLimit1);
    rFrame.push_back(rPlane.m_Offset);
}

}  // namespace

Bytes MakeState(CRoute Route, const CState& rState) {
    Bytes Frame = MakeHeader(Route, eModuleState);
    PutBytes(Frame, {rState.m_State, rState.m_Parameter, rState.m_bUILocked ? UI_LOCKED : std::uint8_t{0},
                     rState.m_Flags[0], rState.m_Flags[1], rState.m_Failures[0], rState.m_Failures[1]});
    return Frame;
}

Bytes MakeActiveSet(CRoute Route, const CActiveSet& rSet) {
    Bytes Frame = MakeHeader(Route, eSet, eActiveSet);
    Frame.push_back(rSet.m_Number);
    if (rSet.m_Params) {
        PutParams(Frame, *rSet.m_Params);
    }
    for (const CPlaneParams& rPlane : rSet.m_Planes) {
        PutPlane(Frame, rPlane);
    }
    return Frame;
}

Bytes MakeBalConfiguration(CRoute Route, const CBalConfiguration& rConfiguration) {
    Bytes Frame = MakeHeader(Route, eModuleData, eBalConfigurationData);
    PutBytes(Frame, {rConfiguration.m_Flags, 0});
    PutWord(Frame, rConfiguration.m_RpmLimit);
    for (const CBalConfiguration::CRates& rRates : rConfiguration.m_Rates) {
        PutBytes(Frame, {rRates.m_MaxRpm, rRates.m_MaxAmplitude, rRates.m_MaxXY, rRates.m_ConfigurationXY});
    }
    Frame.push_back(static_cast<std::uint8_t>(rConfiguration.m_MaxDiagnosisRate << DIAGNOSIS_RATE_SHIFT));
    Frame.push_back(rConfiguration.m_ConfigurationDiagnosis);
    return Frame;
}

Bytes MakeModuleConfiguration(CRoute Route, const CModuleConfiguration& rConfiguration) {
    Bytes Frame = MakeHeader(Route, eModuleData, eModuleConfigurationData);
    Frame.push_back(static_cast<std::uint8_t>(rConfiguration.m_Baudrate |
                                              (rConfiguration.m_bTwoStopBits ? TWO_STOP_BITS : 0U)));
    PutBytes(Frame, {rConfiguration.m_FanPowerOnTemperature, rConfiguration.m_TestFlags,
                     rConfiguration.m_AttachedSlave, 0, 0});
    return Frame;
}

Bytes MakeDiagnosisData(CRoute Route, const CDiagnosisData& rData) {
    Bytes Frame = MakeHeader(Route, eModuleData, eModuleDiagnosisData);
    PutBytes(Frame,
             {rData.m_CurrentTemperature, rData.m_MaxTemperature, rData.m_ReservedFlags, rData.m_DiagByte4});
    PutWord(Frame, rData.m_PicVersion);
    PutWord(Frame, rData.m_SignalCount);
    PutWord(Frame, rData.m_ProfibusClock);
    for (const std::uint16_t Word : rData.m_DiagWords) {
        PutWord(Frame, Word);
    }
    PutText(Frame, rData.m_Text);
    Frame.push_back(0);
    return Frame;
}

Bytes MakeRpm(CRoute Route, std::uint8_t Input, std::uint16_t Rpm) {
    Bytes Frame = MakeHeader(Route, eRpmData);
    Frame.push_back(Input);
    PutWord(Frame, Rpm);
    return Frame;
}

Bytes MakeAmplitude(CRoute Route, std::uint8_t Input, std::uint16_t Amplitude) {
    Bytes Frame = MakeHeader(Route, eAmplitude);
    Frame.push_back(Input);
    PutWord(Frame, Amplitude);
    return Frame;
}

Bytes MakeXY(CRoute Route, std::uint8_t Input, std::int16_t X, std::int16_t Y) {
    Bytes Frame = MakeHeader(Route, eXYData);
    Frame.push_back(Input);
    PutWord(Frame, static_cast<std::uint16_t>(X));
    PutWord(Frame, static_cast<std::uint16_t>(Y));
    return Frame;
}

Bytes MakeDiagnosis(CRoute Route, const Bytes& rBlock) {
    Bytes Frame = MakeHeader(Route, eDiagnosis);
    for (const std::uint8_t Byte : rBlock) {
        Frame.push_back(Byte);
    }
    return Frame;
}

}  // namespace LannerFrames
