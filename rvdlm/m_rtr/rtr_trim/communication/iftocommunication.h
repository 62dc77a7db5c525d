#pragma once
#include <cstdint>

/// The main window's view of the module, whatever stands behind it: one or two modules of either family.
/// Nothing behind it polls; a query's answer comes through IFFromCommunication.
class IFToCommunication {
public:
    virtual ~IFToCommunication() = default;
    /// A frame as received, header included. Nonzero if taken.
    virtual int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) = 0;
    /// Queries: nonzero if sent.
    virtual int QueryModuleIdentification() = 0;
    virtual int QueryActiveSet() = 0;
    virtual int QueryModuleState() = 0;
    virtual int QueryRPMData() = 0;
    virtual int QueryUnbalanceXYValues() = 0;
};
