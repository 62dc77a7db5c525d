#pragma once
#include <array>
#include <cstddef>

#include "contract/measurement.h"

/// The measurements of a procedure by their names in files.
namespace MeasurementName {

inline const char* Get(Measurement Which) {
    constexpr std::array NAMES = {"none", "first", "test1", "test2", "final"};
    return NAMES.at(static_cast<std::size_t>(Which));
}

}  // namespace MeasurementName
