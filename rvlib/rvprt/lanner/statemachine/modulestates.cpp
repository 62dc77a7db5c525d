#include "rvlib/rvprt/lanner/statemachine/modulestates.h"

namespace Lanner {

namespace {

constexpr const char* StateNames[] = {"eModuleStateIdle", "eQueryModuleState", "eSetModuleState"};
constexpr Comm::CStateTexts Texts{StateNames, "invalid module state!!", "NewState: %s (OldState: %s)"};

}  // namespace

CModuleStates::CModuleStates() : CModuleStatesT(Texts) {}

}  // namespace Lanner
