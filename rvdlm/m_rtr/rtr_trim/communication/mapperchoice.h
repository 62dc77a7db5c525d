#pragma once
#include <cstdint>
#include <memory>

#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/initflags.h"

/// The mapper for the module that the host names. An unknown identification counts as a Lanner module, after
/// an assertion. Null, after an error in the log, for a family that isn't there; the window then works
/// without a module.
std::unique_ptr<IFToCommunication> MakeMapper(IFFromCommunication& rWindow, std::uint32_t Address,
                                              const CInitFlags& rFlags);
