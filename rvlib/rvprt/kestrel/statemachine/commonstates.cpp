#include "rvlib/rvprt/kestrel/statemachine/commonstates.h"

namespace Kestrel {

namespace {

constexpr const char* STATE_NAMES[] = {"eIdle", "eQueryModuleIdentification", "eQueryRPMData",
                                       "eQueryUnbalanceCoordinates"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid state", "New CommonState: %s (OldState: %s)"};

}  // namespace

CCommonStates::CCommonStates() : CCommonStatesT(TEXTS) {}

std::span<const CCommonStates::Row> CCommonStates::GetRows() {
    static constexpr Row ROWS[] = {
        {0x11, false, &CCommonStates::ModuleIdentificationResponse,
         "calling OnQueryModuleIdentification(%s, NULL)",
         &Comm::Fail<CCommonStates, &CCommonStates::OnQueryModuleIdentification>},
        {0x1C, true, &CCommonStates::RPMDataReceiveHandler, "calling OnRPMData(%s, NULL, NULL)",
         &Comm::Fail<CCommonStates, &CCommonStates::OnRPMData>},
        {0x1E, true, &CCommonStates::UnbalanceCoordinatesReceiveHandler,
         "calling OnUnbalanceXYValues(%s, NULL, NULL, NULL)",
         &Comm::Fail<CCommonStates, &CCommonStates::OnUnbalanceXYValues>},
    };
    return ROWS;
}

int CCommonStates::ModuleIdentificationResponse(std::span<const std::uint8_t> Payload, bool /*bIndication*/) {
    return SubCodeResponse(Comm::IDENTIFICATION_ROW, Payload, &CCommonStates::OnQueryModuleIdentification);
}

int CCommonStates::RPMDataReceiveHandler(std::span<const std::uint8_t> Payload, bool bIndication) {
    if (Payload.size() < 2) {
        return 0;
    }
    const std::uint32_t RPM = Comm::ReadU16(Payload.data());
    if (!bIndication) {
        RV_PROTOCOL("%s", Comm::RPM_DATA_RESPONSE);
    }
    OnRPMData(bIndication ? eIndication : eSuccess, &RPM);
    return 1;
}

int CCommonStates::UnbalanceCoordinatesReceiveHandler(std::span<const std::uint8_t> Payload,
                                                      bool bIndication) {
    if (Payload.size() < 4) {
        return 0;
    }
    const std::uint32_t X = Comm::ReadU16(Payload.data());
    const std::uint32_t Y = Comm::ReadU16(Payload.data() + 2);
    if (!bIndication) {
        RV_PROTOCOL("%s", Comm::UNBALANCE_XY_RESPONSE);
    }
    OnUnbalanceXYValues(bIndication ? eIndication : eSuccess, &X, &Y);
    return 1;
}

}  // namespace Kestrel
