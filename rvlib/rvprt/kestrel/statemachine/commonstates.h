#pragma once
#include "rvlib/rvprt/kestrel/moduleidentification.h"
#include "rvlib/rvprt/kestrel/statemachine/statebase.h"
#include "rvlib/rvprt/statemachine/commonstates.h"

namespace Kestrel {

/// Everything but module state and set. Of its queries one can be out at a time.
class CCommonStates : public Comm::CCommonStatesT<CCommonStates, CStateBase> {
public:
    enum States : std::uint32_t {
        eIdle = 0,
        eQueryModuleIdentification = 1,
        eQueryRPMData = 2,
        eQueryUnbalanceCoordinates = 3
    };

    CCommonStates();

    /// Queries: 1 if the request went out.
    int QueryModuleIdentification() {
        return Query(Comm::Requests::ModuleIdentification(eQueryModuleIdentification));
    }
    int QueryRPMData() { return Query(Comm::Requests::RPMData(eQueryRPMData)); }
    int QueryUnbalanceXYValues() {
        return Query(Comm::Requests::UnbalanceXYValues(eQueryUnbalanceCoordinates));
    }

    /// Null in a failure.
    virtual void OnQueryModuleIdentification(Reason /*Why*/, const CModuleIdentification* /*pModule*/) {}
    /// rpm; null in a failure.
    virtual void OnRPMData(Reason /*Why*/, const std::uint32_t* /*pRPM*/) { m_BaseclassCalled = true; }
    /// Counts: the low 16 bits, read as signed; null in a failure.
    virtual void OnUnbalanceXYValues(Reason /*Why*/, const std::uint32_t* /*pX*/,
                                     const std::uint32_t* /*pY*/) {
        m_BaseclassCalled = true;
    }

private:
    friend Comm::CCommonStatesT<CCommonStates, CStateBase>;

    /// Smallest answer frame that is looked into.
    static constexpr std::uint32_t SMALLEST_RESPONSE = 5;

    static std::span<const Row> GetRows();

    int ModuleIdentificationResponse(std::span<const std::uint8_t> Payload, bool bIndication);
    int RPMDataReceiveHandler(std::span<const std::uint8_t> Payload, bool bIndication);
    int UnbalanceCoordinatesReceiveHandler(std::span<const std::uint8_t> Payload, bool bIndication);
};

}  // namespace Kestrel
