#pragma once

/// Bits of message 1122, by which the host learns which softkeys make sense.
namespace Softkeys {

enum Mask : int {
    ePages = 12,        ///< the page shown takes the host's selection keys
    eScrewPage = 16,    ///< the screw page exists
    eReBalancing = 64,  ///< the configuration is calibrated
};

}  // namespace Softkeys
