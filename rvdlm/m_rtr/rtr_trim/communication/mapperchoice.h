#pragma once
#include <cstdint>
#include <memory>

#include "contract/initflags.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iffromcommunication.h"
#include "rvdlm/m_rtr/rtr_trim/communication/iftocommunication.h"

/// The mapper for the module that the host names. An unknown identification, 0 included, counts as a Lanner
/// module, after an assertion. rWindow must outlive the mapper.
std::unique_ptr<IFToCommunication> MakeMapper(IFFromCommunication& rWindow, std::uint32_t Address,
                                              const CInitFlags& rFlags);
