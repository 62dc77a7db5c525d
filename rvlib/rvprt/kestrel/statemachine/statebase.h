#pragma once
#include "rvlib/rvprt/statemachine/statebase.h"

namespace Kestrel {

using CStateBase = Comm::CStateBase;

}  // namespace Kestrel
