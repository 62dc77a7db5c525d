#pragma once
#include <cstdint>

#include "platform/rvmdb/prebaldatabase.h"
#include "platform/window/types.h"

/// The bit field by which the host says, with message 1045, what module this window works on.
class CInitFlags {
public:
    explicit constexpr CInitFlags(LPARAM Value) : m_Value(static_cast<std::uint32_t>(Value)) {}

    /// Bits 0 to 3.
    constexpr PreBalDB::CPreBalDatabase::BalancingMode GetBalancingMode() const {
        return static_cast<PreBalDB::CPreBalDatabase::BalancingMode>(m_Value & 0xFU);
    }
    /// Bits 8 to 15.
    constexpr std::uint8_t GetSlaveAddress() const { return static_cast<std::uint8_t>(m_Value >> 8U); }
    /// Neither 0, which is no module's address, nor 255, which says so, names a slave.
    constexpr bool HasSlave() const { return GetSlaveAddress() != 0 && GetSlaveAddress() != 255; }
    /// Bits 16 to 23.
    constexpr std::uint8_t GetIdentification() const { return static_cast<std::uint8_t>(m_Value >> 16U); }
    constexpr bool IsKestrel() const { return GetIdentification() == 1 || GetIdentification() == 2; }
    constexpr bool IsLanner() const { return GetIdentification() == 9; }
    /// Bits 24 to 31.
    constexpr std::uint8_t GetHardwareType() const { return static_cast<std::uint8_t>(m_Value >> 24U); }
    /// Plane that a module serves, by the hardware it sits in: 1 for type 5, else 0.
    constexpr int GetPlane() const { return GetHardwareType() == 5 ? 1 : 0; }

private:
    std::uint32_t m_Value;
};
