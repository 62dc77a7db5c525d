#include "rvlib/rvprt/kestrel/statemachine/modulestates.h"

namespace Kestrel {

namespace {

constexpr const char* STATE_NAMES[] = {"eModuleStateIdle", "eQueryModuleState"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid module state!!", "NewState: %s (OldState: %s)"};

}  // namespace

CModuleStates::CModuleStates() : CModuleStatesT(TEXTS) {}

}  // namespace Kestrel
