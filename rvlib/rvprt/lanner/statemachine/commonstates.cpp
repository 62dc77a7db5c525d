#include "rvlib/rvprt/lanner/statemachine/commonstates.h"

namespace Lanner {

namespace {

constexpr const char* STATE_NAMES[] = {"eIdle",
                                       "eQueryBalConfiguration",
                                       "eSetBalConfiguration",
                                       "eQueryMinBalConfiguration",
                                       "eQueryDefaultBalConfiguration",
                                       "eQueryMaxBalConfiguration",
                                       "eQueryModuleConfiguration",
                                       "eSetModuleConfiguration",
                                       "eQueryMinModuleConfiguration",
                                       "eQueryDefaultModuleConfiguration",
                                       "eQueryMaxModuleConfiguration",
                                       "eQueryModuleIdentification",
                                       "eQueryModuleDiagnosisData",
                                       "eSetModuleDiagnosisData",
                                       "eQueryRPMData",
                                       "eQueryUnbalanceAmplitude",
                                       "eQueryUnbalanceCoordinates",
                                       "eQueryDiagnosis"};
constexpr Comm::CStateTexts TEXTS{STATE_NAMES, "invalid state", "New CommonState: %s (OldState: %s)"};

constexpr std::uint8_t CONFIGURATION_COMMAND = 0x11;
constexpr std::uint8_t BAL_CONFIGURATION = 0;
constexpr std::uint8_t MODULE_CONFIGURATION = 4;
constexpr std::uint8_t MODULE_DIAGNOSIS_DATA = 9;

/// A body and its sub-code.
constexpr std::uint32_t BAL_SIZE = CBalConfiguration::SIZE + 1;
constexpr std::uint32_t MODULE_SIZE = CModuleConfiguration::SIZE + 1;
constexpr std::uint32_t DIAGNOSIS_SIZE = CModuleDiagnosisData::SIZE + 1;

constexpr Comm::CSubCodeRow BAL_ROW{BAL_CONFIGURATION, BAL_SIZE, 1, "--> BalConfigurationResponse(0x11-0)"};
constexpr Comm::CSubCodeRow MIN_BAL_ROW{1, BAL_SIZE, 1, "--> QueryMinBalConfigurationResponse(0x11-1)"};
constexpr Comm::CSubCodeRow DEFAULT_BAL_ROW{2, BAL_SIZE, 1,
                                            "--> QueryDefaultBalConfigurationResponse(0x11-2)"};
constexpr Comm::CSubCodeRow MAX_BAL_ROW{3, BAL_SIZE, 1, "--> QueryMaxBalConfigurationResponse(0x11-3)"};
constexpr Comm::CSubCodeRow MODULE_ROW{MODULE_CONFIGURATION, MODULE_SIZE, 1,
                                       "--> QueryModuleConfigurationResponse(0x11-4)"};
constexpr Comm::CSubCodeRow MIN_MODULE_ROW{5, MODULE_SIZE, 1,
                                           "--> QueryMinModuleConfigurationResponse(0x11-5)"};
constexpr Comm::CSubCodeRow DEFAULT_MODULE_ROW{6, MODULE_SIZE, 1,
                                               "--> QueryDefaultModuleConfigurationResponse(0x11-6)"};
constexpr Comm::CSubCodeRow MAX_MODULE_ROW{7, MODULE_SIZE, 1,
                                           "--> QueryMaxModuleConfigurationResponse(0x11-7)"};
constexpr Comm::CSubCodeRow DIAGNOSIS_ROW{MODULE_DIAGNOSIS_DATA, DIAGNOSIS_SIZE, 1,
                                          "--> ModuleDiagnosisDataResponse(0x11-9)"};

/// The plane that a value's first byte names; nothing if it names none or fewer than nSmallest bytes are
/// there.
std::optional<std::uint32_t> ReadPlane(std::span<const std::uint8_t> Data, std::size_t nSmallest) {
    if (Data.size() < nSmallest) {
        return std::nullopt;
    }
    if (Data[0] > 1) {
        RV_WARNING(Protocols::g_pLog, "invalid data");
        return std::nullopt;
    }
    return Data[0];
}

}  // namespace

CCommonStates::CCommonStates() : CCommonStatesT(TEXTS) {}

std::span<const CCommonStates::Row> CCommonStates::GetRows() {
    using M = CCommonStates;
    static constexpr Row ROWS[] = {
        {0x11, false, &M::BalConfigurationResponse, "calling OnBalConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnBalConfiguration>},
        {0x11, false, &M::BalConfigurationResponse, "calling OnBalConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnBalConfiguration>},
        {0x11, false, &M::QueryMinBalConfigurationResponse, "calling OnQueryMinBalConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryMinBalConfiguration>},
        {0x11, false, &M::QueryDefaultBalConfigurationResponse,
         "calling OnQueryDefaultBalConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryDefaultBalConfiguration>},
        {0x11, false, &M::QueryMaxBalConfigurationResponse, "calling OnMaxQueryBalConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnMaxQueryBalConfiguration>},
        {0x11, false, &M::ModuleConfigurationResponse, "calling OnModuleConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnModuleConfiguration>},
        {0x11, false, &M::ModuleConfigurationResponse, "calling OnModuleConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnModuleConfiguration>},
        {0x11, false, &M::QueryMinModuleConfigurationResponse,
         "calling OnQueryMinModuleConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryMinModuleConfiguration>},
        {0x11, false, &M::QueryDefaultModuleConfigurationResponse,
         "calling OnQueryDefaultModuleConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryDefaultModuleConfiguration>},
        {0x11, false, &M::QueryMaxModuleConfigurationResponse,
         "calling OnQueryMaxModuleConfiguration(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryMaxModuleConfiguration>},
        {0x11, false, &M::ModuleIdentificationResponse, "calling OnQueryModuleIdentification(%s, NULL)",
         &Comm::Fail<M, &M::OnQueryModuleIdentification>},
        {0x11, false, &M::ModuleDiagnosisDataResponse, "calling OnModuleDiagnosisData(%s, NULL)",
         &Comm::Fail<M, &M::OnModuleDiagnosisData>},
        {0x11, false, &M::ModuleDiagnosisDataResponse, "calling OnModuleDiagnosisData(%s, NULL)",
         &Comm::Fail<M, &M::OnModuleDiagnosisData>},
        {0x1C, true, &M::RPMDataReceiveHandler, "calling OnRPMData(%s, NULL, NULL)",
         &Comm::Fail<M, &M::OnRPMData>},
        {0x1D, true, &M::UnbalanceAmplitudeReceiveHandler, "calling OnUnbalanceAmplitude(%s, NULL, NULL)",
         &Comm::Fail<M, &M::OnUnbalanceAmplitude>},
        {0x1E, true, &M::UnbalanceCoordinatesReceiveHandler,
         "calling OnUnbalanceXYValues(%s, NULL, NULL, NULL)", &Comm::Fail<M, &M::OnUnbalanceXYValues>},
        {0x1F, true, &M::DiagnosisReceiveHandler, "calling OnDiagnosis(%s, NULL)",
         &Comm::Fail<M, &M::OnDiagnosis>},
    };
    return ROWS;
}

// The callbacks do nothing but note that they came; whoever wants a value overrides them.
void CCommonStates::OnBalConfiguration(Reason, const CBalConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryMinBalConfiguration(Reason, const CBalConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryDefaultBalConfiguration(Reason, const CBalConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnMaxQueryBalConfiguration(Reason, const CBalConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnModuleConfiguration(Reason, const CModuleConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryMinModuleConfiguration(Reason, const CModuleConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryDefaultModuleConfiguration(Reason, const CModuleConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryMaxModuleConfiguration(Reason, const CModuleConfiguration*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnQueryModuleIdentification(Reason, const CModuleIdentification*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnModuleDiagnosisData(Reason, const CModuleDiagnosisData*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnRPMData(Reason, const std::uint32_t*, const std::uint32_t*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnUnbalanceAmplitude(Reason, const std::uint32_t*, const std::uint32_t*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnUnbalanceXYValues(Reason, const std::uint32_t*, const std::uint32_t*,
                                        const std::uint32_t*) {
    m_BaseclassCalled = true;
}
void CCommonStates::OnDiagnosis(Reason, const DiagnosisBlock*) {
    m_BaseclassCalled = true;
}

void CCommonStates::FricklSwapDataSource(std::uint32_t* pPlane) const {
    if (pPlane == nullptr) {
        return;
    }
    if (*pPlane > 1) {
        RV_ASSERT_AS(Protocols::g_pLog, false, "FALSE", "impossible", true);
        return;
    }
    if (GetSwap() > 0) {
        *pPlane = 1 - *pPlane;
    }
}

int CCommonStates::BalConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(BAL_ROW, Data, &CCommonStates::OnBalConfiguration);
}
int CCommonStates::QueryMinBalConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(MIN_BAL_ROW, Data, &CCommonStates::OnQueryMinBalConfiguration);
}
int CCommonStates::QueryDefaultBalConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(DEFAULT_BAL_ROW, Data, &CCommonStates::OnQueryDefaultBalConfiguration);
}
int CCommonStates::QueryMaxBalConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(MAX_BAL_ROW, Data, &CCommonStates::OnMaxQueryBalConfiguration);
}
int CCommonStates::ModuleConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(MODULE_ROW, Data, &CCommonStates::OnModuleConfiguration);
}
int CCommonStates::QueryMinModuleConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(MIN_MODULE_ROW, Data, &CCommonStates::OnQueryMinModuleConfiguration);
}
int CCommonStates::QueryDefaultModuleConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(DEFAULT_MODULE_ROW, Data, &CCommonStates::OnQueryDefaultModuleConfiguration);
}
int CCommonStates::QueryMaxModuleConfigurationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(MAX_MODULE_ROW, Data, &CCommonStates::OnQueryMaxModuleConfiguration);
}
int CCommonStates::ModuleIdentificationResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(Comm::IDENTIFICATION_ROW, Data, &CCommonStates::OnQueryModuleIdentification);
}
int CCommonStates::ModuleDiagnosisDataResponse(Payload Data, bool /*bIndication*/) {
    return SubCodeResponse(DIAGNOSIS_ROW, Data, &CCommonStates::OnModuleDiagnosisData);
}

int CCommonStates::RPMDataReceiveHandler(Payload Data, bool bIndication) {
    return PlaneValueReceiveHandler(Data, bIndication, Comm::RPM_DATA_RESPONSE, &CCommonStates::OnRPMData);
}

int CCommonStates::UnbalanceAmplitudeReceiveHandler(Payload Data, bool bIndication) {
    return PlaneValueReceiveHandler(Data, bIndication, "--> UnbalanceAmplitudeResponse received(0x1D)...",
                                    &CCommonStates::OnUnbalanceAmplitude);
}

int CCommonStates::PlaneValueReceiveHandler(Payload Data, bool bIndication, const char* pResponse,
                                            PlaneValueCallback pCallback) {
    std::optional<std::uint32_t> Plane = ReadPlane(Data, 3);
    if (!Plane) {
        return 0;
    }
    const std::uint32_t Value = Comm::ReadU16(&Data[1]);
    if (!bIndication) {
        RV_PROTOCOL("%s", pResponse);
    }
    FricklSwapDataSource(&*Plane);
    (this->*pCallback)(bIndication ? eIndication : eSuccess, &*Plane, &Value);
    return 1;
}

int CCommonStates::UnbalanceCoordinatesReceiveHandler(Payload Data, bool bIndication) {
    std::optional<std::uint32_t> Plane = ReadPlane(Data, 5);
    if (!Plane) {
        return 0;
    }
    const std::uint32_t X = Comm::ReadU16(&Data[1]);
    const std::uint32_t Y = Comm::ReadU16(&Data[3]);
    if (!bIndication) {
        RV_PROTOCOL("%s", Comm::UNBALANCE_XY_RESPONSE);
    }
    FricklSwapDataSource(&*Plane);
    OnUnbalanceXYValues(bIndication ? eIndication : eSuccess, &*Plane, &X, &Y);
    return 1;
}

int CCommonStates::DiagnosisReceiveHandler(Payload Data, bool bIndication) {
    if (Data.empty()) {
        return 0;
    }
    if (!bIndication) {
        RV_PROTOCOL("--> DiagnosisResponse received(0x1F)...");
    }
    OnDiagnosis(bIndication ? eIndication : eSuccess, &Data);
    return 1;
}

int CCommonStates::PostSubCodeIndication(std::uint8_t Command, Payload Data) {
    if (Command != CONFIGURATION_COMMAND) {
        return 0;
    }
    const Payload Body = Data.subspan(1);
    switch (Data[0]) {
        case BAL_CONFIGURATION:
            return PostMessageIndication(
                Body, "--> BalConfiguration indication received",
                "calling OnBalConfiguration(CStateBase::eIndication, &BalConfiguration)",
                &CCommonStates::OnBalConfiguration);
        case MODULE_CONFIGURATION:
            return PostMessageIndication(Body, "--> ModuleConfiguration indication received",
                                         "calling OnModuleConfiguration(eIndication, pModuleConfiguration)",
                                         &CCommonStates::OnModuleConfiguration);
        case MODULE_DIAGNOSIS_DATA:
            return PostMessageIndication(Body, "--> ModuleDiagnosisData indication received",
                                         "calling OnModuleDiagnosisData(eIndication, pModuleDiagnosisData)",
                                         &CCommonStates::OnModuleDiagnosisData);
        default:
            return 0;
    }
}

template <class Message>
int CCommonStates::PostMessageIndication(Payload Body, const char* pReceived, const char* pCalling,
                                         void (CCommonStates::*pCallback)(Reason Why,
                                                                          const Message* pMessage)) {
    Message Decoded(GetLogID());
    if (DecodeMessage(*this, Decoded, Body) == 0) {
        return 0;
    }
    RV_PROTOCOL("%s", pReceived);
    Decoded.Log();
    RV_PROTOCOL_DETAIL("%s", pCalling);
    (this->*pCallback)(eIndication, &Decoded);
    return 1;
}

}  // namespace Lanner
