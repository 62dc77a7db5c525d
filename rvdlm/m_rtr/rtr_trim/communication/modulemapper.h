#pragma once
#include <cstdint>

/// What the mappers of both families share: the operations that one looks for in Interface stand in the
/// family's Protocol under the same names. The callbacks, in which the families differ, are left to the
/// derived mapper.
template <class Interface, class Protocol>
class CModuleMapper : public Interface, protected Protocol {
public:
    int PutReceivedModuleData(const std::uint8_t* pData, std::uint32_t nSize) override {
        return Protocol::PutReceivedModuleData(pData, nSize);
    }
    int QueryModuleIdentification() override { return Protocol::QueryModuleIdentification(); }
    int QueryActiveSet() override { return Protocol::QueryActiveSet(); }
    int QueryModuleState() override { return Protocol::QueryModuleState(); }
    int QueryRPMData() override { return Protocol::QueryRPMData(); }
    int QueryUnbalanceXYValues() override { return Protocol::QueryUnbalanceXYValues(); }

protected:
    explicit CModuleMapper(std::uint8_t ModuleAddress) : Protocol(ModuleAddress) {}
};
