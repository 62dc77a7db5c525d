#pragma once
#include <cstdint>
#include <string>

/// The active set of the module as the main window sees it. 0xFF means not known.
class CSet {
public:
    enum SetMode : std::uint8_t {
        eNothing = 0,
        ePlane1 = 1,
        ePlane2 = 2,
        eBothIndependent = 3,
        eTwoPlane = 4
    };

    std::uint8_t GetRPMFactorPlane1() const { return RPMFactorPlane1; }
    std::uint8_t GetRPMInputPlane1() const { return RPMInputPlane1; }
    std::uint8_t GetSensorAdaptionPlane1() const { return SensorAdaptionPlane1; }

    std::uint8_t Number = 0xFF;
    std::string Name;
    std::uint8_t Mode = 0xFF;
    std::uint8_t RPMInputPlane1 = 0xFF;  ///< 0 or 1: the RPM input of this plane
    std::uint8_t RPMFactorPlane1 = 0xFF;
    std::uint8_t RPMInputPlane2 = 0xFF;
    std::uint8_t RPMFactorPlane2 = 0xFF;
    std::uint8_t SensorAdaptionPlane1 = 0xFF;
    std::uint8_t SensorAdaptionPlane2 = 0xFF;
    std::uint32_t Swap = 0;
};
