#include "rvdlm/m_rtr/rtr_trim/prebalancing/sequencetables.h"

namespace Sequence {

namespace {

constexpr std::array<const char*, eTriggerCount> TRIGGERS = {
    "entered",
    "start of a pre-balancing",
    "start of a re-balancing",
    "speed",
    "validity of the speed",
    "key eNext",
    "key eRebalance",
    "key eCheckWeightPositions",
    "key eNeutralPositionAdjusted",
    "key ePositionAdoption",
    "key eNext, the test run is usable",
    "key eNext, the test run has no effect",
    "key eNext, the test run can't be judged",
    "entered, beyond capacity",
    "never",
};

constexpr std::array<const char*, eGuardCount> GUARDS = {
    "",
    "the spindle stands",
    "the spindle turns",
    "valid",
    "valid and in lock",
    "calibrated speed",
    "measured",
    "weights only",
    "weights only, positions stored",
    "calibrated, speed not valid",
    "calibrated, speed valid",
};

constexpr std::array<const char*, eDeedCount> DEEDS = {
    "",
    "count the step left out",
    "read the stored positions",
    "take the positions shown",
    "take the positions stored",
    "take the first reading",
    "end the measurement",
    "take the test positions",
    "store the compensation",
    "forget the steps",
};

}  // namespace

const char* ToText(Trigger Value) {
    return TRIGGERS.at(static_cast<std::size_t>(Value));
}

const char* ToText(Guard Value) {
    return GUARDS.at(static_cast<std::size_t>(Value));
}

const char* ToText(Deed Value) {
    return DEEDS.at(static_cast<std::size_t>(Value));
}

}  // namespace Sequence
