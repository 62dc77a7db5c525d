#pragma once
#include <array>

/// What is known of a rotor beside its configuration, to say what a reading means by ISO 21940-11. A value of
/// 0 isn't known.
struct CIsoData {
    double m_RotorMass = 0.0;     ///< kg
    double m_ServiceSpeed = 0.0;  ///< rpm
    double m_Grade = 0.0;         ///< asked for: the product of eccentricity and angular velocity, mm/s
    /// Per plane of the machine: what one balance weight is in g·mm; with screws the radius of their holes in
    /// mm, by which grams become g·mm.
    std::array<double, 2> m_Unit{};
    /// Distance of each plane of the machine from the centre of mass, mm; both 0: half of what is permissible
    /// goes to each plane.
    std::array<double, 2> m_Distance{};

    bool operator==(const CIsoData&) const = default;
};
