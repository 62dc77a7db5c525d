#include "rvlib/rvprt/lanner/statemachine/modulestates.h"

namespace Lanner {

namespace {

constexpr const char* STATE_NAMES[] = {"eModuleStateIdle", "eQueryModuleState", "eSetModuleState"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid module state!!", "NewState: %s (OldState: %s)"};

}  // namespace

CModuleStates::CModuleStates() : CModuleStatesT(TEXTS) {}

}  // namespace Lanner
