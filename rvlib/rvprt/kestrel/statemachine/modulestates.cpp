#include "rvlib/rvprt/kestrel/statemachine/modulestates.h"

namespace Kestrel {

namespace {

constexpr const char* StateNames[] = {"eModuleStateIdle", "eQueryModuleState"};
constexpr Comm::CStateTexts Texts{StateNames, "invalid module state!!", "NewState: %s (OldState: %s)"};

}  // namespace

CModuleStates::CModuleStates() : CModuleStatesT(Texts) {}

}  // namespace Kestrel
