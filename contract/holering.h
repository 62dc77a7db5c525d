#pragma once
#include <cmath>
#include <cstdint>

/// The ring of holes of a plane, and the one place where its two numberings meet.
///
/// The module counts holes clockwise as seen from the plane's end, whatever the rotor; the angles of its
/// notifications count so too. On the rotor the numbers are engraved in the sense of its scale. The page, the
/// rotor file, the control link and a person at the machine go by those. Hole 1 is the same in both.
struct CHoleRing {
    std::uint32_t m_nHoles = 0;
    bool m_bCounterClockwise = false;  ///< sense of the rotor's scale

    /// Module's number of the hole at an angle of a notification, which is rounded to whole degrees.
    std::uint32_t GetModuleHole(int AngleDeg) const {
        return static_cast<std::uint32_t>(std::lround(AngleDeg * (m_nHoles / 360.0))) % m_nHoles + 1;
    }
    /// Number engraved at the module's hole.
    std::uint32_t GetRotorHole(std::uint32_t ModuleHole) const {
        return m_bCounterClockwise ? (m_nHoles - (ModuleHole - 1)) % m_nHoles + 1 : ModuleHole;
    }
};

/// A screw in the rotor.
struct CRotorScrew {
    std::uint32_t m_Hole = 0;  ///< as engraved
    double m_Grams = 0.0;

    friend bool operator==(const CRotorScrew&, const CRotorScrew&) = default;
};
