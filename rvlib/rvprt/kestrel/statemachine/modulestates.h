#pragma once
#include "rvlib/rvprt/kestrel/modulestateresponse.h"
#include "rvlib/rvprt/kestrel/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/modulestates.h"

namespace Kestrel {

/// The module state.
class CModuleStates : public Comm::CModuleStatesT<CStateBase, CModuleStateResponse> {
public:
    CModuleStates();
};

}  // namespace Kestrel
