#pragma once
#include "rvlib/rvprt/lanner/balconfiguration.h"
#include "rvlib/rvprt/lanner/moduleconfiguration.h"
#include "rvlib/rvprt/lanner/modulediagnosisdata.h"
#include "rvlib/rvprt/lanner/moduleidentification.h"
#include "rvlib/rvprt/lanner/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/commonstates.h"

namespace Lanner {

/// Everything but module state and set. Of its queries one can be out at a time. The system enters the states
/// of identification, RPM data and unbalance coordinates only; the others stand for what the module could be
/// asked besides.
class CCommonStates : public Comm::CCommonStatesT<CCommonStates, CStateBase> {
public:
    enum States : std::uint32_t {
        eIdle = 0,
        eQueryBalConfiguration = 1,
        eSetBalConfiguration = 2,
        eQueryMinBalConfiguration = 3,
        eQueryDefaultBalConfiguration = 4,
        eQueryMaxBalConfiguration = 5,
        eQueryModuleConfiguration = 6,
        eSetModuleConfiguration = 7,
        eQueryMinModuleConfiguration = 8,
        eQueryDefaultModuleConfiguration = 9,
        eQueryMaxModuleConfiguration = 10,
        eQueryModuleIdentification = 11,
        eQueryModuleDiagnosisData = 12,
        eSetModuleDiagnosisData = 13,
        eQueryRPMData = 14,
        eQueryUnbalanceAmplitude = 15,
        eQueryUnbalanceCoordinates = 16,
        eQueryDiagnosis = 17
    };

    /// What the module says of itself in a diagnosis: nobody here knows its meaning.
    using DiagnosisBlock = std::span<const std::uint8_t>;

    CCommonStates();

    /// Queries: 1 if the request went out.
    int QueryModuleIdentification() {
        return Query(Comm::Requests::ModuleIdentification(eQueryModuleIdentification));
    }
    int QueryRPMData() { return Query(Comm::Requests::RPMData(eQueryRPMData)); }
    int QueryUnbalanceXYValues() {
        return Query(Comm::Requests::UnbalanceXYValues(eQueryUnbalanceCoordinates));
    }

    // Pointers are null in a failure. Planes are 0 or 1, after swap.
    virtual void OnBalConfiguration(Reason Why, const CBalConfiguration* pConfiguration);
    virtual void OnQueryMinBalConfiguration(Reason Why, const CBalConfiguration* pConfiguration);
    virtual void OnQueryDefaultBalConfiguration(Reason Why, const CBalConfiguration* pConfiguration);
    virtual void OnMaxQueryBalConfiguration(Reason Why, const CBalConfiguration* pConfiguration);
    virtual void OnModuleConfiguration(Reason Why, const CModuleConfiguration* pConfiguration);
    virtual void OnQueryMinModuleConfiguration(Reason Why, const CModuleConfiguration* pConfiguration);
    virtual void OnQueryDefaultModuleConfiguration(Reason Why, const CModuleConfiguration* pConfiguration);
    virtual void OnQueryMaxModuleConfiguration(Reason Why, const CModuleConfiguration* pConfiguration);
    virtual void OnQueryModuleIdentification(Reason Why, const CModuleIdentification* pModule);
    virtual void OnModuleDiagnosisData(Reason Why, const CModuleDiagnosisData* pData);
    /// rpm.
    virtual void OnRPMData(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pRPM);
    /// Counts.
    virtual void OnUnbalanceAmplitude(Reason Why, const std::uint32_t* pPlane,
                                      const std::uint32_t* pAmplitude);
    /// Counts: the low 16 bits, read as signed.
    virtual void OnUnbalanceXYValues(Reason Why, const std::uint32_t* pPlane, const std::uint32_t* pX,
                                     const std::uint32_t* pY);
    virtual void OnDiagnosis(Reason Why, const DiagnosisBlock* pBlock);

    /// Changes a plane of the module, 0 or 1, in place to the system's. Any other number asserts and shows
    /// it; null is passed over.
    void FricklSwapDataSource(std::uint32_t* pPlane) const;

private:
    friend Comm::CCommonStatesT<CCommonStates, CStateBase>;

    using Payload = std::span<const std::uint8_t>;
    using PlaneValueCallback = void (CCommonStates::*)(Reason Why, const std::uint32_t* pPlane,
                                                       const std::uint32_t* pValue);

    /// Smallest answer frame that is looked into: one byte more than in the other family, since values name
    /// their plane.
    static constexpr std::uint32_t SMALLEST_RESPONSE = 6;

    static std::span<const Row> GetRows();

    int BalConfigurationResponse(Payload Data, bool bIndication);
    int QueryMinBalConfigurationResponse(Payload Data, bool bIndication);
    int QueryDefaultBalConfigurationResponse(Payload Data, bool bIndication);
    int QueryMaxBalConfigurationResponse(Payload Data, bool bIndication);
    int ModuleConfigurationResponse(Payload Data, bool bIndication);
    int QueryMinModuleConfigurationResponse(Payload Data, bool bIndication);
    int QueryDefaultModuleConfigurationResponse(Payload Data, bool bIndication);
    int QueryMaxModuleConfigurationResponse(Payload Data, bool bIndication);
    int ModuleIdentificationResponse(Payload Data, bool bIndication);
    int ModuleDiagnosisDataResponse(Payload Data, bool bIndication);
    int RPMDataReceiveHandler(Payload Data, bool bIndication);
    int UnbalanceAmplitudeReceiveHandler(Payload Data, bool bIndication);
    int UnbalanceCoordinatesReceiveHandler(Payload Data, bool bIndication);
    int DiagnosisReceiveHandler(Payload Data, bool bIndication);

    /// One value of a plane.
    int PlaneValueReceiveHandler(Payload Data, bool bIndication, const char* pResponse,
                                 PlaneValueCallback pCallback);
    int PostSubCodeIndication(std::uint8_t Command, Payload Data);
    template <class Message>
    int PostMessageIndication(Payload Body, const char* pReceived, const char* pCalling,
                              void (CCommonStates::*pCallback)(Reason Why, const Message* pMessage));
};

}  // namespace Lanner
