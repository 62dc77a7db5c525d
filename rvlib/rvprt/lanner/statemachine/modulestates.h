#pragma once
#include "rvlib/rvprt/lanner/modulestateresponse.h"
#include "rvlib/rvprt/lanner/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/modulestates.h"

namespace Lanner {

/// The module state.
class CModuleStates : public Comm::CModuleStatesT<CStateBase, CModuleStateResponse> {
public:
    /// Behind the states that both families have. The system never sets the module's state; an answer to that
    /// would be treated like the query's.
    enum FurtherStates : std::uint32_t { eSetModuleState = 2 };

    CModuleStates();
};

}  // namespace Lanner
