#include "rvlib/rvprt/kestrel/modulestaterequest.h"

#include <array>
#include <span>

#include "rvlib/rvprt/log.h"
#include "rvlib/rvprt/names.h"

namespace Kestrel {

namespace {

constexpr std::array STATE_NAMES{"Idle",
                                 "AutomaticModeStop",
                                 "AutomaticModeStart",
                                 "AutomaticNeutralPositionStart",
                                 "ManualModeStop",
                                 "ManualModeStart",
                                 "ManualModeNeutralPositionStart",
                                 "PrebalancingStart",
                                 "SpectrumStart",
                                 "TwoPlaneBalancingStop",
                                 "TwoPlaneBalancingStart"};
constexpr std::array PARAM_NAMES{"NoSBA", "SBA1", "SBA2", "SBA3", "SBA4", "SBA5"};

const char* ToString(std::span<const char* const> Names, const char* pNotKnown, std::uint32_t Value) {
    const char* const pName = Value == 255 ? pNotKnown : Comm::NameOf(Names, Value, nullptr);
    RV_ASSERT_AS(Protocols::g_pLog, pName != nullptr, "FALSE", "impossible", false);
    return pName != nullptr ? pName : "invalid";
}

}  // namespace

const char* CModuleStateRequest::ModuleStateToString(std::uint32_t State) {
    return ToString(STATE_NAMES, "InvalidState", State);
}

const char* CModuleStateRequest::StateParamsToString(std::uint32_t Param) {
    return ToString(PARAM_NAMES, "InvalidParam", Param);
}

}  // namespace Kestrel
