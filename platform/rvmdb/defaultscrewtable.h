#pragma once
#include <array>

namespace PreBalDB {

/// The screw table that every machine has.
struct CDefaultScrewTable {
    static constexpr const char* NAME = "Default";
    /// Its screws, in grams, named by their weight. Rising, as the last one counts as the largest; fine steps
    /// where small corrections are made, and few enough that three of them in twelve holes are searched in no
    /// time.
    static constexpr std::array<double, 8> WEIGHTS = {0.5, 1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0};
};

}  // namespace PreBalDB
