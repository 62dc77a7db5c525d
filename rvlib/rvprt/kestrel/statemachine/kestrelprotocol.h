#pragma once
#include "rvlib/rvprt/kestrel/statemachine/commonstates.h"
#include "rvlib/rvprt/kestrel/statemachine/modulestates.h"
#include "rvlib/rvprt/kestrel/statemachine/setstates.h"
#include "rvlib/rvprt/statemachine/moduleprotocol.h"

namespace Kestrel {

/// The conversation with one Kestrel module.
class CKestrelProtocol : public Comm::CModuleProtocol<CModuleStates, CSetStates, CCommonStates> {
public:
    explicit CKestrelProtocol(std::uint8_t ModuleAddress) : CModuleProtocol(ModuleAddress, "MMapper") {}
};

}  // namespace Kestrel
