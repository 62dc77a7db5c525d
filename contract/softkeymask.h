#pragma once
#include <cstdint>

/// Bits of message 1122 (WM_RV_SOFTKEYENABLE), by which the host learns which softkeys make sense.
namespace SoftkeyMask {

enum Bits : std::int32_t {
    ePages = 12,        ///< the page shown takes the host's selection keys
    eScrewPage = 16,    ///< the screw page exists
    eReBalancing = 64,  ///< the configuration is calibrated
};

}  // namespace SoftkeyMask
