#pragma once
#include <array>
#include <cstdint>
#include <optional>
#include <vector>

/// The plain enumeration of all placements, as the search defines its result: the reference that it is held
/// against.
struct CPlainPlacement {
    std::array<std::uint16_t, 3> m_Holes{};
    std::array<std::uint16_t, 3> m_Entries{};
    double m_SumX = 0.0;
    double m_SumY = 0.0;
    double m_DeltaX = 0.0;
    double m_DeltaY = 0.0;
};

std::optional<CPlainPlacement> SearchPlainly(const std::vector<double>& rTable, bool bThree, int nHoles,
                                             double TargetX, double TargetY);
