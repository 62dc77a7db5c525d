#pragma once
#include <cstddef>
#include <optional>
#include <span>
#include <string>

#include "archive/runrecord.h"

/// A test to begin a pre-balancing with.
struct CSuggestedTest {
    int m_Step = 0;        ///< of the first weight from its neutral position, degrees; 0 with screws
    double m_Grams = 0.0;  ///< of the test screw; 0 with weights
    bool m_bFromHistory = false;
    std::string m_Text;
};

namespace SuggestedTest {

/// For a plane of the machine. By the latest of the earlier runs of this mode and means: what would change
/// its first reading by about 30 %, and what the module's rule accepts; else by the rotor's mass and speed,
/// if they are known: a tenth of its weight as force. Nothing if neither is known.
std::optional<CSuggestedTest> Find(const CRunSetup& rSetup, std::size_t Plane,
                                   std::span<const CRunRecord> Earlier);

}  // namespace SuggestedTest
