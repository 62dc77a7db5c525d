#pragma once
#include <cstdint>

/// The bit field of message 1045 (WM_RV_INITWINDOW), by which the host says what module a window works on.
class CInitFlags {
public:
    static constexpr std::uint8_t NO_SLAVE = 255;
    static constexpr std::uint8_t KESTREL = 1;
    static constexpr std::uint8_t KESTREL_ALSO = 2;
    static constexpr std::uint8_t LANNER = 9;
    /// Hardware that serves plane 2.
    static constexpr std::uint8_t PLANE2_HARDWARE = 5;

    explicit constexpr CInitFlags(std::intptr_t Value) : m_Value(static_cast<std::uint32_t>(Value)) {}
    /// BalancingMode: 0 plane 1, 1 plane 2, 2 both planes.
    constexpr CInitFlags(std::uint8_t BalancingMode, std::uint8_t SlaveAddress, std::uint8_t Identification,
                         std::uint8_t HardwareType = 0)
        : m_Value((BalancingMode & MODE_MASK) | std::uint32_t{SlaveAddress} << SLAVE_SHIFT |
                  std::uint32_t{Identification} << IDENTIFICATION_SHIFT |
                  std::uint32_t{HardwareType} << HARDWARE_SHIFT) {}

    /// As lParam of the message.
    constexpr std::intptr_t GetValue() const { return static_cast<std::intptr_t>(m_Value); }

    constexpr std::uint8_t GetBalancingMode() const { return static_cast<std::uint8_t>(m_Value & MODE_MASK); }
    constexpr std::uint8_t GetSlaveAddress() const {
        return static_cast<std::uint8_t>(m_Value >> SLAVE_SHIFT);
    }
    /// Neither 0, which is no module's address, nor 255, which says so, names a slave.
    constexpr bool HasSlave() const { return GetSlaveAddress() != 0 && GetSlaveAddress() != NO_SLAVE; }
    constexpr std::uint8_t GetIdentification() const {
        return static_cast<std::uint8_t>(m_Value >> IDENTIFICATION_SHIFT);
    }
    constexpr bool IsKestrel() const {
        return GetIdentification() == KESTREL || GetIdentification() == KESTREL_ALSO;
    }
    constexpr bool IsLanner() const { return GetIdentification() == LANNER; }
    constexpr std::uint8_t GetHardwareType() const {
        return static_cast<std::uint8_t>(m_Value >> HARDWARE_SHIFT);
    }
    /// Plane that a module serves, by the hardware it sits in: 1 for type 5, else 0.
    constexpr int GetPlane() const { return GetHardwareType() == PLANE2_HARDWARE ? 1 : 0; }

private:
    static constexpr std::uint32_t MODE_MASK = 0xF;            // bits 0 to 3
    static constexpr std::uint32_t SLAVE_SHIFT = 8;            // to bit 15
    static constexpr std::uint32_t IDENTIFICATION_SHIFT = 16;  // to bit 23
    static constexpr std::uint32_t HARDWARE_SHIFT = 24;        // to bit 31

    std::uint32_t m_Value;
};
