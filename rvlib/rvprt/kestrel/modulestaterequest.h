#pragma once
#include <cstdint>

namespace Kestrel {

/// Values of the module state frame and their names.
class CModuleStateRequest {
public:
    enum ModuleState : std::uint32_t {
        eIdle = 0,
        eAutomaticModeStop = 1,
        eAutomaticModeStart = 2,
        eAutomaticNeutralPositionStart = 3,
        eManualModeStop = 4,
        eManualModeStart = 5,
        eManualModeNeutralPositionStart = 6,
        ePrebalancingStart = 7,
        eSpectrumStart = 8,
        eTwoPlaneBalancingStop = 9,
        eTwoPlaneBalancingStart = 10,
        eInvalidState = 255
    };
    enum StateParams : std::uint32_t {
        eNoSBA = 0,
        eSBA1 = 1,
        eSBA2 = 2,
        eSBA3 = 3,
        eSBA4 = 4,
        eSBA5 = 5,
        eInvalidParam = 255
    };

    /// Names for the log. A value without a name asserts and reads "invalid".
    static const char* ModuleStateToString(std::uint32_t State);
    static const char* StateParamsToString(std::uint32_t Param);
};

}  // namespace Kestrel
