#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "platform/rvmdb/prebaldatabase.h"

/// Of the balancing modes, on the command line and in files; as BalancingMode.
inline constexpr std::array BALANCING_MODE_NAMES = {"plane1", "plane2", "two-plane"};

/// The key of a machine in the store, "0#1#255-0-ARTICLE-SERIAL-SET": speed input, sensors, balancing mode
/// ("s" behind it for exchanged planes), then module and set. What a configuration takes from its module's
/// set can be read from it, without the module.
struct CMachineKey {
    PreBalDB::CTypeBase::AffectedPlane m_SpeedInput{};
    std::uint8_t m_Sensor1 = 0;
    std::uint8_t m_Sensor2 = 0;
    PreBalDB::CPreBalDatabase::BalancingMode m_Mode{};
    std::string m_Module;     ///< article and serial number of the balancing module
    std::uint32_t m_Set = 0;  ///< number of its active set

    /// Nothing if the text is no such key.
    static std::optional<CMachineKey> Parse(const std::string& rText);
    const char* GetModeName() const { return BALANCING_MODE_NAMES.at(m_Mode); }
    bool IsTwoPlane() const { return m_Mode == PreBalDB::CPreBalDatabase::eModeTwoPlane; }
    /// Plane of the machine, from 0.
    bool IsBalanced(std::size_t Plane) const;
};
